#include "prepare/carry/outline_items.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace folioweld {

namespace {

/// More are never looked at.
constexpr long long kMostItems = 1'000'000;

class OutlineWalk {
 public:
  OutlineWalk(Revision& revision, const CarriedDocument& document)
      : revision_(revision), document_(document) {
    for (const QPDFObjectHandle& page : document.Pages) pages_.insert(page.getObjectID());
  }

  OutlineItems Run(QPDFObjectHandle root) {
    OutlineItems outline;
    if (!root.isDictionary()) return outline;
    if (root.isIndirect()) {
      Visit(root);
      outline.Root = root;
    }
    outline.Items = LevelOf(root.getKey("/First"));
    for (QPDFObjectHandle item : outline.Items) {
      long long below = 0;
      const bool isOpen = item.getKey("/Count").getValueAsInt(below) && below > 0;
      outline.Shown += isOpen ? 1 + std::min(below, kMostItems) : 1;
    }
    std::vector<QPDFObjectHandle> open = outline.Items;
    while (!open.empty()) {
      QPDFObjectHandle first = QPDFObjectHandle(open.back()).getKey("/First");
      open.pop_back();
      const std::vector<QPDFObjectHandle> level = LevelOf(first);
      open.insert(open.end(), level.begin(), level.end());
    }
    outline.Shown = std::min(outline.Shown, static_cast<long long>(seen_.size()));
    return outline;
  }

 private:
  std::vector<QPDFObjectHandle> LevelOf(QPDFObjectHandle item) {
    std::vector<QPDFObjectHandle> level;
    for (; item.isDictionary(); item = item.getKey("/Next")) {
      Visit(item);
      level.push_back(item);
    }
    return level;
  }

  void Visit(const QPDFObjectHandle& item) {
    revision_.Spend();
    if (!document_.Has(item)) throw NotCarried("it has an item that is no object of the document");
    const int number = item.getObjectID();
    const bool isPage = pages_.count(number) > 0 || QPDFObjectHandle(item).hasKey("/Kids");
    if (isPage) throw NotCarried("it has an item that belongs to the page tree");
    if (seen_.insert(number).second) return;
    throw NotCarried("it leads to object " + std::to_string(number - document_.FirstObject) + " twice");
  }

  Revision& revision_;
  const CarriedDocument& document_;
  std::set<int> pages_;
  std::set<int> seen_;
};

}  // namespace

OutlineItems FindOutline(Revision& revision, CarriedDocument& document) {
  return OutlineWalk(revision, document).Run(document.Catalog.getKey("/Outlines"));
}

}  // namespace folioweld
