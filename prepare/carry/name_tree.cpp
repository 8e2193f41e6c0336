#include "prepare/carry/name_tree.h"

#include <climits>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

namespace folioweld {

namespace {

/// How the nodes of a tree are written.
template <class Key>
struct TreeForm;

template <>
struct TreeForm<std::string> {
  static constexpr char kLeaf[] = "/Names";
  static constexpr char kNoKey[] = "has a key that is no string";

  static bool ReadKey(QPDFObjectHandle object, std::string& key) {
    if (!object.isString()) return false;
    key = object.getStringValue();
    return true;
  }
};

template <>
struct TreeForm<int> {
  static constexpr char kLeaf[] = "/Nums";
  static constexpr char kNoKey[] = "has a key that is no number from 0 on";

  static bool ReadKey(QPDFObjectHandle object, int& key) {
    long long number = -1;
    if (!object.getValueAsInt(number) || number < 0 || number > INT_MAX) return false;
    key = static_cast<int>(number);
    return true;
  }
};

template <class Key>
class TreeWalk {
 public:
  TreeWalk(Revision& revision, const CarriedDocument& document) : revision_(revision), document_(document) {}

  TreeValues<Key> Run(QPDFObjectHandle root) {
    if (!root.isNull()) waiting_.push_back(root);
    while (!waiting_.empty()) {
      const QPDFObjectHandle node = waiting_.back();
      waiting_.pop_back();
      TakeNode(node);
    }
    return std::move(found_);
  }

 private:
  using Form = TreeForm<Key>;

  void TakeNode(QPDFObjectHandle node) {
    revision_.Spend();
    if (!node.isDictionary()) return LeaveOut("has a node that is no dictionary");
    if (node.isIndirect() && !seen_.insert(node.getObjGen()).second) {
      const int number = node.getObjectID() - document_.FirstObject;
      return LeaveOut("leads to object " + std::to_string(number) + " twice");
    }
    QPDFObjectHandle pairs = node.getKey(Form::kLeaf);
    QPDFObjectHandle kids = node.getKey("/Kids");
    if (pairs.isArray()) TakePairs(pairs.getArrayAsVector());
    if (kids.isArray()) {
      const std::vector<QPDFObjectHandle> nodes = kids.getArrayAsVector();
      waiting_.insert(waiting_.end(), nodes.rbegin(), nodes.rend());
    }
  }

  void TakePairs(const std::vector<QPDFObjectHandle>& pairs) {
    if (pairs.size() % 2 != 0) LeaveOut("has a key without a value");
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
      revision_.Spend();
      Key key{};
      if (Form::ReadKey(pairs[i], key)) {
        found_.Values.emplace(std::move(key), pairs[i + 1]);
      } else {
        LeaveOut(Form::kNoKey);
      }
    }
  }

  void LeaveOut(const std::string& flaw) {
    if (found_.Flaw.empty()) found_.Flaw = flaw;
  }

  Revision& revision_;
  const CarriedDocument& document_;
  std::vector<QPDFObjectHandle> waiting_;
  std::set<QPDFObjGen> seen_;
  TreeValues<Key> found_;
};

}  // namespace

TreeValues<std::string> ReadNameTree(Revision& revision, const CarriedDocument& document,
                                     const QPDFObjectHandle& root) {
  return TreeWalk<std::string>(revision, document).Run(root);
}

TreeValues<int> ReadNumberTree(Revision& revision, const CarriedDocument& document,
                               const QPDFObjectHandle& root) {
  return TreeWalk<int>(revision, document).Run(root);
}

}  // namespace folioweld
