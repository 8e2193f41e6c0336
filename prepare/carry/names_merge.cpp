#include "prepare/carry/names_merge.h"

#include <algorithm>
#include <utility>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/name_tree_new.h"

namespace folioweld {

namespace {

/// Text after a name: in UTF-16 where the name is.
std::string Extended(const std::string& name, const std::string& suffix) {
  if (name.compare(0, 2, "\xFE\xFF") != 0) return name + suffix;
  std::string extended = name;
  for (const char c : suffix) extended += {'\0', c};
  return extended;
}

std::set<std::string> AllOf(const DocumentNames& document) {
  std::set<std::string> all = document.Used;
  for (const auto& [name, value] : document.Own.Values) all.insert(name);
  return all;
}

}  // namespace

std::vector<DocumentNames> ReadNames(Revision& revision, const std::string& part,
                                     const std::function<void(DocumentNames&)>& read) {
  std::vector<DocumentNames> documents;
  revision.ForEach(part, [&](CarriedDocument& document) {
    DocumentNames names;
    names.Document = &document;
    read(names);
    const bool hasFirst = document.Index == 1 || !documents.empty();
    if (hasFirst) {
      documents.push_back(std::move(names));
    } else if (!names.Own.Values.empty()) {
      throw NotCarried("the names in the first document cannot be read");
    }
  });
  return documents;
}

void MakeNamesUnique(std::vector<DocumentNames>& documents) {
  std::map<std::string, const DocumentNames*> keepers;
  std::set<std::string> known;
  for (const DocumentNames& document : documents) {
    for (const auto& [name, value] : document.Own.Values) keepers.emplace(name, &document);
    known.merge(AllOf(document));
  }
  for (DocumentNames& document : documents) {
    for (const std::string& name : AllOf(document)) {
      const auto keeper = keepers.find(name);
      if (keeper == keepers.end() || keeper->second == &document) continue;
      int number = document.Document->Index;
      std::string free;
      do {
        free = Extended(name, "-" + std::to_string(number++));
      } while (!known.insert(free).second);
      document.NewNames[name] = free;
    }
  }
}

bool HasLaterNames(const std::vector<DocumentNames>& documents) {
  return std::any_of(documents.begin(), documents.end(), [](const DocumentNames& document) {
    return document.Document->Index > 1 && !document.Own.Values.empty();
  });
}

std::map<std::string, QPDFObjectHandle> MergedNames(Revision& revision, const std::string& part,
                                                    const std::vector<DocumentNames>& documents) {
  std::map<std::string, QPDFObjectHandle> merged;
  for (const DocumentNames& document : documents) {
    for (const auto& [name, value] : document.Own.Values) {
      const auto renamed = document.NewNames.find(name);
      merged.emplace(renamed == document.NewNames.end() ? name : renamed->second, value);
    }
    const std::string& flaw = document.Own.Flaw;
    if (!flaw.empty())
      revision.TellLost(*document.Document, part, "a part of the tree of names, which " + flaw);
  }
  return merged;
}

void SetNames(Revision& revision, const std::string& key,
              const std::map<std::string, QPDFObjectHandle>& values) {
  QPDFObjectHandle before = revision.Catalog().getKey("/Names");
  QPDFObjectHandle names = before.isDictionary() ? before.shallowCopy() : QPDFObjectHandle::newDictionary();
  names.replaceKey(key, NewNameTree(revision, values));
  revision.Catalog().replaceKey("/Names", names);
}

}  // namespace folioweld
