#include "prepare/carry/destinations.h"

#include <string>
#include <utility>
#include <vector>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/forms_names.h"
#include "prepare/carry/names_merge.h"

namespace folioweld {

namespace {

constexpr char kDestinationsPart[] = "destinations";

class Destinations {
 public:
  explicit Destinations(Revision& revision) : revision_(revision) {}

  UsesByDocument Run() {
    std::vector<DocumentNames> documents =
        ReadNames(revision_, kDestinationsPart, [&](DocumentNames& names) { Read(names); });
    MakeNamesUnique(documents);
    const bool isCarried = HasLaterNames(documents) || leadsBeyondFirst_;
    for (const DocumentNames& document : documents) ChangeUses(document, isCarried && hasTree_);
    if (isCarried) Write(MergedNames(revision_, kDestinationsPart, documents));
    return std::move(uses_);
  }

 private:
  void Read(DocumentNames& names) {
    const CarriedDocument& document = *names.Document;
    NameUses& uses = uses_[document.Index] = FindNameUses(revision_, document);
    QPDFObjectHandle catalog = CatalogOf(revision_, document);
    QPDFObjectHandle tree = EntryOf(EntryOf(catalog, "/Names"), "/Dests");
    names.Own = ReadNameTree(revision_, document, tree);
    QPDFObjectHandle dictionary = EntryOf(catalog, "/Dests");
    if (dictionary.isDictionary()) AddDictionary(dictionary, names.Own.Values, uses);
    for (const NameUse& use : uses.Destinations) names.Used.insert(use.Name);
    for (auto& [name, value] : names.Own.Values) {
      const QPDFObjectHandle withPage = WithPage(document, value);
      leadsBeyondFirst_ = leadsBeyondFirst_ || (document.Index == 1 && !withPage.isSameObjectAs(value));
      value = withPage;
    }
    hasTree_ = hasTree_ || tree.isDictionary();
  }

  /// Where the tree has the same name for something else, the dictionary's gets another, and so does what
  /// leads there.
  void AddDictionary(QPDFObjectHandle dictionary, std::map<std::string, QPDFObjectHandle>& values,
                     NameUses& uses) {
    std::map<std::string, std::string> renamed;
    for (auto& [key, value] : dictionary.getDictAsMap()) {
      const std::string name = key.substr(1);
      const auto [place, isNew] = values.emplace(name, value);
      if (isNew || place->second.unparse() == value.unparse()) continue;
      const auto isTaken = [&](const std::string& free) {
        return values.count(free) > 0 || dictionary.hasKey("/" + free);
      };
      renamed[name] = Numbered(revision_, name, 0, isTaken);
      values.emplace(renamed[name], value);
    }
    for (NameUse& use : uses.Destinations) {
      const auto found = use.IsNameObject ? renamed.find(use.Name) : renamed.end();
      if (found != renamed.end()) use.Name = found->second;
    }
  }

  /// Names in the dictionary are name objects, those in the tree are strings.
  void ChangeUses(const DocumentNames& document, bool asStrings) {
    const NameUses& uses = uses_.at(document.Document->Index);
    for (const NameUse& use : uses.Destinations) {
      const auto renamed = document.NewNames.find(use.Name);
      const bool isRenamed = renamed != document.NewNames.end();
      const bool becomesString = asStrings && use.IsNameObject && document.Own.Values.count(use.Name) > 0;
      if (!isRenamed && !becomesString) continue;
      ChangeUse(revision_, use, isRenamed ? renamed->second : use.Name, use.IsNameObject && !becomesString);
    }
    for (const NameUse& use : uses.Pages) {
      const QPDFObjectHandle before = EntryOf(use.Where.Dictionary, use.Key);
      const QPDFObjectHandle withPage = WithPage(*document.Document, before);
      if (!withPage.isSameObjectAs(before)) SetEntry(revision_, use.Where, use.Key, withPage);
    }
    ChangePageNumbers(*document.Document, uses.PageNumbers);
  }

  void ChangePageNumbers(const CarriedDocument& document, const std::vector<Place>& targets) {
    long long before = 0;
    for (const CarriedDocument& other : revision_.Documents()) {
      if (other.Index < document.Index) before += static_cast<long long>(other.Pages.size());
    }
    for (const Place& target : targets) {
      const long long page = EntryOf(target.Dictionary, "/P").getIntValue();
      const bool isThere = page >= 0 && page < static_cast<long long>(document.Pages.size());
      if (isThere && document.Index == 1) continue;
      SetEntry(revision_, target, "/P",
               isThere ? QPDFObjectHandle::newInteger(before + page) : QPDFObjectHandle::newNull());
    }
  }

  void Write(const std::map<std::string, QPDFObjectHandle>& names) {
    if (hasTree_) {
      SetNames(revision_, "/Dests", names);
      revision_.Catalog().removeKey("/Dests");
      return;
    }
    QPDFObjectHandle dictionary = QPDFObjectHandle::newDictionary();
    for (const auto& [name, value] : names) dictionary.replaceKey("/" + name, value);
    revision_.Catalog().replaceKey("/Dests", revision_.Add(dictionary));
  }

  Revision& revision_;
  UsesByDocument uses_;
  bool hasTree_ = false;
  bool leadsBeyondFirst_ = false;  ///< a page number of the first document, out of it
};

}  // namespace

UsesByDocument CarryDestinations(Revision& revision) {
  return Destinations(revision).Run();
}

}  // namespace folioweld
