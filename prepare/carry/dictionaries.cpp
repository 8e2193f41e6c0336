#include "prepare/carry/dictionaries.h"

#include <vector>

namespace folioweld {

namespace {

class DictionaryWalk {
 public:
  DictionaryWalk(Revision& revision, const CarriedDocument& document, const std::set<std::string>& leftAlone,
                 const std::function<void(const Place&)>& visit)
      : revision_(revision), document_(document), leftAlone_(leftAlone), visit_(visit) {}

  void Run() {
    for (const QPDFObjectHandle& page : document_.Pages) Look(page);
    QPDFObjectHandle catalog = CatalogOf(revision_, document_);
    std::vector<QPDFObjectHandle> roots = {EntryOf(catalog, "/Outlines"), EntryOf(catalog, "/AcroForm")};
    for (const char* key : {"/Pages", "/Templates"})
      roots.push_back(EntryOf(EntryOf(catalog, "/Names"), key));
    if (document_.Index == 1) {
      for (const char* key : {"/OpenAction", "/AA"}) roots.push_back(EntryOf(catalog, key));
    }
    for (const QPDFObjectHandle& root : roots) Look(root);
  }

 private:
  struct Waiting {
    QPDFObjectHandle Value;
    QPDFObjectHandle Owner;
  };

  void Look(const QPDFObjectHandle& root) {
    Wait(root, QPDFObjectHandle());
    while (!waiting_.empty()) {
      const Waiting next = waiting_.back();
      waiting_.pop_back();
      LookAt(next.Value, next.Owner);
    }
  }

  void LookAt(QPDFObjectHandle value, QPDFObjectHandle owner) {
    revision_.Spend();
    if (value.isIndirect()) {
      if (!document_.Has(value) || !seen_.insert(value.getObjGen()).second) return;
      owner = value;
    }
    if (value.isStream()) value = value.getDict();
    if (value.isArray()) {
      for (const QPDFObjectHandle& item : value.getArrayAsVector()) Wait(item, owner);
    } else if (value.isDictionary()) {
      visit_({value, owner});
      for (const auto& [key, entry] : value.getDictAsMap()) {
        if (leftAlone_.count(key) == 0) Wait(entry, owner);
      }
    }
  }

  void Wait(QPDFObjectHandle value, const QPDFObjectHandle& owner) {
    if (value.isIndirect() || value.isArray() || value.isDictionary()) waiting_.push_back({value, owner});
  }

  Revision& revision_;
  const CarriedDocument& document_;
  const std::set<std::string>& leftAlone_;
  const std::function<void(const Place&)>& visit_;
  std::vector<Waiting> waiting_;
  std::set<QPDFObjGen> seen_;
};

}  // namespace

QPDFObjectHandle EntryOf(QPDFObjectHandle of, const std::string& key) {
  return of.isInitialized() && of.isDictionary() ? of.getKey(key) : QPDFObjectHandle::newNull();
}

QPDFObjectHandle CatalogOf(Revision& revision, const CarriedDocument& document) {
  return document.Index == 1 ? revision.Catalog() : document.Catalog;
}

void SetEntry(Revision& revision, const Place& place, const std::string& key, const QPDFObjectHandle& value) {
  QPDFObjectHandle dictionary = place.Dictionary;
  dictionary.replaceKey(key, value);
  if (place.Owner.isInitialized()) revision.Change(place.Owner);
}

void ForEachDictionary(Revision& revision, const CarriedDocument& document,
                       const std::set<std::string>& leftAlone,
                       const std::function<void(const Place&)>& visit) {
  DictionaryWalk(revision, document, leftAlone, visit).Run();
}

}  // namespace folioweld
