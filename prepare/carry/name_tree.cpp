#include "prepare/carry/name_tree.h"

#include <climits>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

namespace folioweld {

namespace {

bool ReadKey(QPDFObjectHandle object, std::string& key) {
  if (!object.isString()) return false;
  key = object.getStringValue();
  return true;
}

bool ReadKey(QPDFObjectHandle object, int& key) {
  if (!object.isInteger()) return false;
  const long long number = object.getIntValue();
  key = static_cast<int>(number);
  return number >= 0 && number <= INT_MAX;
}

template <class Key>
class TreeWalk {
 public:
  TreeWalk(Revision& revision, std::string leafKey) : revision_(revision), leafKey_(std::move(leafKey)) {}

  TreeValues<Key> Run(QPDFObjectHandle root) {
    if (root.isDictionary()) waiting_.push_back(root);
    while (!waiting_.empty()) {
      const QPDFObjectHandle node = waiting_.back();
      waiting_.pop_back();
      TakeNode(node);
    }
    return std::move(found_);
  }

 private:
  void TakeNode(QPDFObjectHandle node) {
    revision_.Spend();
    const bool isSeen = node.isIndirect() && !seen_.insert(node.getObjGen()).second;
    if (isSeen || !node.isDictionary()) {
      found_.Whole = false;
      return;
    }
    QPDFObjectHandle pairs = node.getKey(leafKey_);
    QPDFObjectHandle kids = node.getKey("/Kids");
    if (pairs.isArray()) TakePairs(pairs.getArrayAsVector());
    if (kids.isArray()) {
      const std::vector<QPDFObjectHandle> nodes = kids.getArrayAsVector();
      waiting_.insert(waiting_.end(), nodes.rbegin(), nodes.rend());
    }
  }

  void TakePairs(const std::vector<QPDFObjectHandle>& pairs) {
    if (pairs.size() % 2 != 0) found_.Whole = false;
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
      revision_.Spend();
      Key key{};
      if (ReadKey(pairs[i], key)) {
        found_.Values.emplace(std::move(key), pairs[i + 1]);
      } else {
        found_.Whole = false;
      }
    }
  }

  Revision& revision_;
  std::string leafKey_;
  std::vector<QPDFObjectHandle> waiting_;
  std::set<QPDFObjGen> seen_;
  TreeValues<Key> found_;
};

}  // namespace

TreeValues<std::string> ReadNameTree(Revision& revision, const QPDFObjectHandle& root) {
  return TreeWalk<std::string>(revision, "/Names").Run(root);
}

TreeValues<int> ReadNumberTree(Revision& revision, const QPDFObjectHandle& root) {
  return TreeWalk<int>(revision, "/Nums").Run(root);
}

}  // namespace folioweld
