#include "prepare/page_tree.h"

#include <set>

#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

/// No tree of pages is that deep, and going down has to end.
constexpr int kDeepestNode = 400;

class PageTreeWalk {
 public:
  explicit PageTreeWalk(QPDF& document) : document_(document) {}

  PageTree Run() {
    QPDFObjectHandle catalog = document_.getRoot();
    QPDFObjectHandle root = catalog.getKey("/Pages");
    if (!root.isDictionary() || !root.getKey("/Kids").isArray()) {
      throw NotPrepared("its catalog leads to no page tree");
    }
    if (root.isIndirect() && root.isSameObjectAs(catalog))
      throw NotPrepared("its catalog is its own page tree");
    if (!root.isIndirect()) catalog.replaceKey("/Pages", root = document_.makeIndirectObject(root));
    // The output's root becomes the parent.
    root.removeKey("/Parent");
    tree_.Pages = CountPages(root, 0);
    if (taken_ > 0) {
      tree_.Repairs.push_back(std::to_string(taken_) +
                              " kids of the page tree, which are no pages, were taken out");
    }
    if (counts_ > 0) {
      tree_.Repairs.push_back("/Count was wrong in " + std::to_string(counts_) +
                              (counts_ == 1 ? " node" : " nodes") + " of the page tree");
    }
    return std::move(tree_);
  }

 private:
  std::size_t CountPages(QPDFObjectHandle node, int depth) {
    if (depth > kDeepestNode) throw NotPrepared("its page tree is too deep");
    if (!nodes_.insert(node.getObjGen()).second) {
      throw NotPrepared("its page tree leads to object " + std::to_string(node.getObjectID()) + " twice");
    }
    tree_.Nodes.push_back(node);
    std::size_t pages = 0;
    std::vector<QPDFObjectHandle> kids;
    for (QPDFObjectHandle kid : node.getKey("/Kids").getArrayAsVector()) {
      if (!kid.isDictionary()) {
        ++taken_;
        continue;
      }
      kids.push_back(kid.isIndirect() ? kid : document_.makeIndirectObject(kid));
      pages += IsNode(kids.back()) ? CountPages(kids.back(), depth + 1) : TakePage(kids.back());
    }
    node.replaceKey("/Kids", QPDFObjectHandle::newArray(kids));
    SetCount(node, static_cast<long long>(pages));
    return pages;
  }

  /// Whatever it calls itself, readers go on where there are kids.
  static bool IsNode(QPDFObjectHandle kid) { return kid.getKey("/Kids").isArray(); }

  /// Several kids may name one page: it is shown as often.
  std::size_t TakePage(QPDFObjectHandle page) {
    page.removeKey("/Kids");
    tree_.Nodes.push_back(page);
    return 1;
  }

  void SetCount(QPDFObjectHandle node, long long pages) {
    long long count = -1;
    if (node.getKey("/Count").getValueAsInt(count) && count == pages) return;
    ++counts_;
    node.replaceKey("/Count", QPDFObjectHandle::newInteger(pages));
  }

  QPDF& document_;
  PageTree tree_;
  std::set<QPDFObjGen> nodes_;
  std::size_t taken_ = 0;
  std::size_t counts_ = 0;
};

}  // namespace

PageTree SetPageTreeRight(QPDF& document) {
  return PageTreeWalk(document).Run();
}

}  // namespace folioweld
