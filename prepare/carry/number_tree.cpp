#include "prepare/carry/number_tree.h"

#include <set>

namespace folioweld {

namespace {

constexpr int kDeepestNode = 100;

class TreeWalk {
 public:
  TreeWalk(Revision& revision, const CarriedDocument& document) : revision_(revision), document_(document) {}

  void Enter(QPDFObjectHandle node, int depth) {
    revision_.Spend();
    if (!node.isDictionary()) throw NotCarried("a node of their tree is no dictionary");
    if (depth > kDeepestNode) throw NotCarried("their tree is too deep");
    if (node.isIndirect() && !seen_.insert(node.getObjectID()).second) {
      const int number = node.getObjectID() - document_.FirstObject;
      throw NotCarried("their tree leads to object " + std::to_string(number) + " twice");
    }
    TakeNumbers(node.getKey("/Nums"));
    QPDFObjectHandle kids = node.getKey("/Kids");
    if (!kids.isArray()) return;
    for (const QPDFObjectHandle& kid : kids.getArrayAsVector()) Enter(kid, depth + 1);
  }

  std::map<long long, QPDFObjectHandle> Entries;

 private:
  void TakeNumbers(QPDFObjectHandle numbers) {
    if (!numbers.isArray()) return;
    const std::vector<QPDFObjectHandle> items = numbers.getArrayAsVector();
    for (std::size_t i = 0; i + 1 < items.size(); i += 2) {
      revision_.Spend();
      long long number = 0;
      if (!QPDFObjectHandle(items[i]).getValueAsInt(number))
        throw NotCarried("their tree has a key that is no number");
      Entries.emplace(number, items[i + 1]);
    }
  }

  Revision& revision_;
  const CarriedDocument& document_;
  std::set<int> seen_;
};

}  // namespace

std::map<long long, QPDFObjectHandle> ReadNumberTree(Revision& revision, const CarriedDocument& document,
                                                     QPDFObjectHandle root) {
  TreeWalk walk(revision, document);
  walk.Enter(root, 0);
  return std::move(walk.Entries);
}

}  // namespace folioweld
