#include "prepare/carry/page_walk.h"

#include <algorithm>

namespace folioweld {

namespace {

/// More than a document may have, and the levels that joining adds.
constexpr std::size_t kDeepestPage = 450;
constexpr std::size_t kMostSteps = 1'000'000;

class PageWalk {
 public:
  std::vector<FoundPage> Run(QPDF& file) {
    QPDFObjectHandle root = file.getRoot().getKey("/Pages");
    if (!root.isDictionary()) throw NotCarried("the joined file's catalog leads to no page tree");
    Enter(root, root.getObjectID());
    return std::move(pages_);
  }

 private:
  void Enter(QPDFObjectHandle node, int number) {
    if (++steps_ > kMostSteps) throw NotCarried("the page tree has more than a million places");
    QPDFObjectHandle kids = node.getKey("/Kids");
    // Whatever it calls itself, readers go on where there are kids.
    if (!kids.isArray()) return pages_.push_back({node, number});
    if (path_.size() > kDeepestPage) throw NotCarried("the page tree is too deep");
    const bool isLoop = node.isIndirect() && std::find(path_.begin(), path_.end(), number) != path_.end();
    if (isLoop) throw NotCarried("the page tree leads back to object " + std::to_string(number));
    path_.push_back(node.isIndirect() ? number : -1);
    const int count = kids.getArrayNItems();
    for (int i = 0; i < count; ++i) {
      QPDFObjectHandle kid = kids.getArrayItem(i);
      if (kid.isDictionary()) Enter(kid, kid.isIndirect() ? kid.getObjectID() : number);
    }
    path_.pop_back();
  }

  std::vector<FoundPage> pages_;
  std::vector<int> path_;  ///< numbers of the nodes above; -1 for one without a number
  std::size_t steps_ = 0;
};

}  // namespace

std::vector<FoundPage> WalkPages(QPDF& file) {
  return PageWalk().Run(file);
}

void GivePages(const std::vector<FoundPage>& pages, std::vector<CarriedDocument>& documents) {
  for (const FoundPage& page : pages) {
    const auto above = std::upper_bound(
        documents.begin(), documents.end(), page.Number,
        [](int number, const CarriedDocument& document) { return number < document.FirstObject; });
    if (above != documents.begin()) (above - 1)->Pages.push_back(page.Page);
  }
}

}  // namespace folioweld
