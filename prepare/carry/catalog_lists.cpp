#include "prepare/carry/catalog_lists.h"

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/items.h"

namespace folioweld {

std::vector<QPDFObjectHandle> CatalogList(Revision& revision, const CarriedDocument& document,
                                          const std::string& key) {
  const QPDFObjectHandle list = EntryOf(CatalogOf(revision, document), key);
  if (QPDFObjectHandle(list).isDictionary()) return {list};
  return ItemsOf(revision, list);
}

void CarryList(Revision& revision, const std::string& key, const std::string& part) {
  std::vector<QPDFObjectHandle> all;
  bool hasLater = false;
  revision.ForEach(part, [&](const CarriedDocument& document) {
    const std::vector<QPDFObjectHandle> items = CatalogList(revision, document, key);
    all.insert(all.end(), items.begin(), items.end());
    hasLater = hasLater || (document.Index > 1 && !items.empty());
  });
  if (hasLater) revision.Catalog().replaceKey(key, QPDFObjectHandle::newArray(all));
}

}  // namespace folioweld
