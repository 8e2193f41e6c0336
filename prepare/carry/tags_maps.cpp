#include "prepare/carry/tags_maps.h"

#include <set>
#include <utility>

#include "prepare/carry/forms_names.h"
#include "prepare/carry/forms_same_value.h"

namespace folioweld {

namespace {

using Renames = std::map<std::string, std::string>;

/// The name in the joined file; a value that is no name stays.
QPDFObjectHandle Renamed(QPDFObjectHandle value, const Renames& renames) {
  const auto found = value.isName() ? renames.find(value.getName()) : renames.end();
  return found == renames.end() ? value : QPDFObjectHandle::newName(found->second);
}

/// Of names in both maps, those whose values differ; a name for a name that differs does as well.
Renames Clashes(Revision& revision, const NameMap& merged, const NameMap& own, int document) {
  const auto isTaken = [&](const std::string& name) { return merged.count(name) + own.count(name) > 0; };
  Renames renames;
  for (bool isComplete = false; !isComplete;) {
    isComplete = true;
    for (const auto& [name, value] : own) {
      revision.Spend();
      const auto other = merged.find(name);
      if (other == merged.end() || renames.count(name) > 0) continue;
      if (IsSameValue(other->second, Renamed(value, renames))) continue;
      renames[name] = Numbered(revision, name, document, isTaken);
      isComplete = false;
    }
  }
  return renames;
}

/// An element's classes: a name, or an array of names and revision numbers.
QPDFObjectHandle RenamedClasses(QPDFObjectHandle value, const Renames& classes) {
  if (!value.isArray()) return Renamed(value, classes);
  QPDFObjectHandle renamed = QPDFObjectHandle::newArray();
  for (const QPDFObjectHandle& item : value.getArrayAsVector()) renamed.appendItem(Renamed(item, classes));
  return renamed;
}

}  // namespace

std::map<std::string, std::string> MergeMap(Revision& revision, NameMap& merged, QPDFObjectHandle own,
                                            int document) {
  if (!own.isDictionary()) return {};
  const NameMap values = own.getDictAsMap();
  Renames renames = Clashes(revision, merged, values, document);
  for (const auto& [name, value] : values) {
    const auto renamed = renames.find(name);
    merged.emplace(renamed == renames.end() ? name : renamed->second, Renamed(value, renames));
  }
  return renames;
}

std::vector<Place> ElementsOf(Revision& revision, const CarriedDocument& document,
                              const std::vector<QPDFObjectHandle>& top) {
  std::vector<Place> elements;
  std::set<QPDFObjGen> seen;
  std::vector<Place> waiting;
  waiting.reserve(top.size());
  for (const QPDFObjectHandle& element : top) waiting.push_back({element, QPDFObjectHandle()});
  while (!waiting.empty()) {
    auto [value, owner] = waiting.back();
    waiting.pop_back();
    revision.Spend();
    if (value.isIndirect()) {
      if (!document.Has(value)) continue;
      if (!seen.insert(value.getObjGen()).second) throw NotCarried("its structure tree has a loop");
      owner = value;
    }
    if (value.isArray()) {
      for (const QPDFObjectHandle& kid : value.getArrayAsVector()) waiting.push_back({kid, owner});
    } else if (value.isDictionary()) {
      elements.push_back({value, owner});
      waiting.push_back({value.getKey("/K"), owner});
    }
  }
  return elements;
}

void RenameInElements(Revision& revision, const std::vector<Place>& elements,
                      const std::map<std::string, std::string>& roles,
                      const std::map<std::string, std::string>& classes) {
  for (const Place& element : elements) {
    const auto rename = [&](const char* key, const QPDFObjectHandle& value) {
      QPDFObjectHandle before = EntryOf(element.Dictionary, key);
      if (!IsSameValue(value, before)) SetEntry(revision, element, key, value);
    };
    // A namespace has a role map of its own.
    if (EntryOf(element.Dictionary, "/NS").isNull())
      rename("/S", Renamed(EntryOf(element.Dictionary, "/S"), roles));
    rename("/C", RenamedClasses(EntryOf(element.Dictionary, "/C"), classes));
  }
}

}  // namespace folioweld
