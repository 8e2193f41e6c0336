#include "prepare/carry/names.h"

#include <set>
#include <string>
#include <vector>

#include "prepare/carry/destinations.h"
#include "prepare/carry/destinations_uses.h"
#include "prepare/carry/dictionaries.h"
#include "prepare/carry/names_merge.h"

namespace folioweld {

namespace {

constexpr char kFiles[] = "/EmbeddedFiles";

/// The trees in the documents' name dictionaries that are not carried in a way of their own.
std::set<std::string> TreesOf(Revision& revision) {
  std::set<std::string> trees;
  for (const CarriedDocument& document : revision.Documents()) {
    QPDFObjectHandle names = EntryOf(document.Catalog, "/Names");
    if (names.isDictionary()) trees.merge(names.getKeys());
  }
  trees.erase("/Dests");
  trees.erase("/JavaScript");
  return trees;
}

void CarryTree(Revision& revision, const std::string& key, const UsesByDocument& uses) {
  const bool isFiles = key == kFiles;
  const std::string part = isFiles ? "attachments" : "names";
  std::vector<DocumentNames> documents = ReadNames(revision, part, [&](DocumentNames& names) {
    QPDFObjectHandle catalog = CatalogOf(revision, *names.Document);
    names.Own = ReadNameTree(revision, *names.Document, EntryOf(EntryOf(catalog, "/Names"), key));
  });
  if (!HasLaterNames(documents)) return;
  MakeNamesUnique(documents);
  for (const DocumentNames& document : documents) {
    const auto found = uses.find(document.Document->Index);
    if (!isFiles || found == uses.end()) continue;
    for (const NameUse& use : found->second.Attachments) {
      const auto renamed = document.NewNames.find(use.Name);
      if (renamed != document.NewNames.end()) ChangeUse(revision, use, renamed->second, false);
    }
  }
  SetNames(revision, key, MergedNames(revision, part, documents));
}

/// An entry of the catalog whose items are objects that nothing calls by a name.
void CarryList(Revision& revision, const std::string& key, const std::string& part) {
  std::vector<QPDFObjectHandle> all;
  bool hasLater = false;
  revision.ForEach(part, [&](const CarriedDocument& document) {
    QPDFObjectHandle own = EntryOf(CatalogOf(revision, document), key);
    if (own.isDictionary()) own = QPDFObjectHandle::newArray({own});
    if (!own.isArray() || own.getArrayNItems() == 0) return;
    const std::vector<QPDFObjectHandle> items = own.getArrayAsVector();
    all.insert(all.end(), items.begin(), items.end());
    hasLater = hasLater || document.Index > 1;
  });
  if (hasLater) revision.Catalog().replaceKey(key, QPDFObjectHandle::newArray(all));
}

/// What links to the web begin with that have no address of their own.
std::string BaseOf(const QPDFObjectHandle& catalog) {
  QPDFObjectHandle base = EntryOf(EntryOf(catalog, "/URI"), "/Base");
  return base.isString() ? base.getStringValue() : std::string();
}

void TellWhatStaysBehind(Revision& revision) {
  revision.ForEach("scripts", [&](const CarriedDocument& document) {
    if (document.Index == 1) return;
    QPDFObjectHandle scripts = EntryOf(EntryOf(document.Catalog, "/Names"), "/JavaScript");
    if (scripts.isDictionary() || EntryOf(document.Catalog, "/AA").isDictionary()) {
      revision.TellLost(document, "scripts", "only the first document's can run for the whole file");
    }
    if (EntryOf(document.Catalog, "/Collection").isDictionary()) {
      revision.TellLost(document, "attachments", "only the first document can say how they are presented");
    }
    const std::string base = BaseOf(document.Catalog);
    if (!base.empty() && base != BaseOf(revision.Catalog())) {
      revision.TellLost(document, "destinations", "its relative links to the web do not begin with its base");
    }
  });
}

}  // namespace

void CarryNames(Revision& revision) {
  const UsesByDocument uses = CarryDestinations(revision);
  for (const std::string& key : TreesOf(revision)) CarryTree(revision, key, uses);
  CarryList(revision, "/AF", "attachments");
  CarryList(revision, "/Threads", "names");
  TellWhatStaysBehind(revision);
}

}  // namespace folioweld
