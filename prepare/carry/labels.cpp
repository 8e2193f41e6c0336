#include "prepare/carry/labels.h"

#include <map>
#include <utility>

#include "prepare/carry/name_tree.h"

namespace folioweld {

namespace {

using Labels = std::map<long long, QPDFObjectHandle>;  ///< by the index of a page

/// Those of pages that the document has.
Labels LabelsOf(Revision& revision, CarriedDocument& document) {
  Labels labels;
  const auto tree = ReadNumberTree(revision, document, document.Catalog.getKey("/PageLabels"));
  if (!tree.Flaw.empty()) throw NotCarried("their tree " + tree.Flaw);
  const auto pages = static_cast<long long>(document.Pages.size());
  for (const auto& [page, label] : tree.Values) {
    if (!QPDFObjectHandle(label).isDictionary()) throw NotCarried("one of them is no dictionary");
    if (page < pages) labels.emplace(page, label);
  }
  return labels;
}

QPDFObjectHandle PlainNumbers() {
  return QPDFObjectHandle::parse("<< /S /D >>");
}

}  // namespace

void CarryLabels(Revision& revision) {
  if (revision.Documents().size() < 2) return;
  std::map<int, Labels> found;
  revision.ForEach("labels", [&](CarriedDocument& document) {
    Labels labels = LabelsOf(revision, document);
    if (!labels.empty()) found[document.Index] = std::move(labels);
  });
  if (found.empty()) return;
  QPDFObjectHandle numbers = QPDFObjectHandle::newArray();
  long long firstPage = 0;
  for (const CarriedDocument& document : revision.Documents()) {
    Labels& labels = found[document.Index];
    if (!document.Pages.empty()) labels.emplace(0, PlainNumbers());
    for (const auto& [page, label] : labels) {
      numbers.appendItem(QPDFObjectHandle::newInteger(firstPage + page));
      numbers.appendItem(label);
    }
    firstPage += static_cast<long long>(document.Pages.size());
  }
  QPDFObjectHandle tree = QPDFObjectHandle::newDictionary();
  tree.replaceKey("/Nums", numbers);
  revision.Catalog().replaceKey("/PageLabels", revision.Add(tree));
}

}  // namespace folioweld
