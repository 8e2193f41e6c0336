#include "prepare/carry/names.h"

#include <set>
#include <string>
#include <vector>

#include "prepare/carry/articles.h"
#include "prepare/carry/catalog_lists.h"
#include "prepare/carry/destinations.h"
#include "prepare/carry/destinations_uses.h"
#include "prepare/carry/dictionaries.h"
#include "prepare/carry/end_pages.h"
#include "prepare/carry/names_merge.h"
#include "prepare/carry/web_links.h"

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
  });
}

}  // namespace

void CarryNames(Revision& revision) {
  const UsesByDocument uses = CarryDestinations(revision);
  for (const std::string& key : TreesOf(revision)) CarryTree(revision, key, uses);
  CarryList(revision, "/AF", "attachments");
  KeepEndPages(revision, uses);
  CarryArticles(revision, uses);
  CarryWebLinks(revision, uses);
  TellWhatStaysBehind(revision);
}

}  // namespace folioweld
