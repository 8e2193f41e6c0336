#include "prepare/carry/name_tree_new.h"

#include <cstddef>
#include <vector>

namespace folioweld {

namespace {

constexpr std::size_t kMostInNode = 64;
/// Of names in a leaf; a longer one has a leaf of its own.
constexpr std::size_t kMostBytesInLeaf = 32 * 1024;

QPDFObjectHandle Written(const std::string& name) {
  return QPDFObjectHandle::newString(name);
}

QPDFObjectHandle Written(int number) {
  return QPDFObjectHandle::newInteger(number);
}

std::size_t BytesOf(const std::string& name) {
  return name.size();
}

std::size_t BytesOf(int number) {
  return sizeof(number);
}

/// A node, and the keys between which its values are.
struct TreeNode {
  QPDFObjectHandle Dictionary = QPDFObjectHandle::newDictionary();
  QPDFObjectHandle Lowest;
  QPDFObjectHandle Highest;
};

template <class Key>
std::vector<TreeNode> Leaves(const std::map<Key, QPDFObjectHandle>& values, const std::string& leafKey) {
  std::vector<TreeNode> leaves;
  QPDFObjectHandle pairs;
  std::size_t bytes = 0;
  for (const auto& [key, value] : values) {
    bytes += BytesOf(key);
    if (leaves.empty() || pairs.getArrayNItems() == 2 * kMostInNode || bytes > kMostBytesInLeaf) {
      leaves.emplace_back();
      leaves.back().Lowest = Written(key);
      leaves.back().Dictionary.replaceKey(leafKey, pairs = QPDFObjectHandle::newArray());
      bytes = BytesOf(key);
    }
    leaves.back().Highest = Written(key);
    pairs.appendItem(leaves.back().Highest);
    pairs.appendItem(value);
  }
  return leaves;
}

/// The nodes' parents, each with as many of them as a node may have.
std::vector<TreeNode> Parents(Revision& revision, const std::vector<TreeNode>& nodes) {
  std::vector<TreeNode> parents;
  QPDFObjectHandle kids;
  for (TreeNode node : nodes) {
    if (parents.empty() || kids.getArrayNItems() == kMostInNode) {
      parents.emplace_back();
      parents.back().Lowest = node.Lowest;
      parents.back().Dictionary.replaceKey("/Kids", kids = QPDFObjectHandle::newArray());
    }
    node.Dictionary.replaceKey("/Limits", QPDFObjectHandle::newArray({node.Lowest, node.Highest}));
    kids.appendItem(revision.Add(node.Dictionary));
    parents.back().Highest = node.Highest;
  }
  return parents;
}

template <class Key>
QPDFObjectHandle NewTree(Revision& revision, const std::map<Key, QPDFObjectHandle>& values,
                         const std::string& leafKey) {
  std::vector<TreeNode> nodes = Leaves(values, leafKey);
  while (nodes.size() > 1) nodes = Parents(revision, nodes);
  if (nodes.empty()) nodes.emplace_back().Dictionary.replaceKey(leafKey, QPDFObjectHandle::newArray());
  return revision.Add(nodes.front().Dictionary);
}

}  // namespace

QPDFObjectHandle NewNameTree(Revision& revision, const std::map<std::string, QPDFObjectHandle>& values) {
  return NewTree(revision, values, "/Names");
}

QPDFObjectHandle NewNumberTree(Revision& revision, const std::map<int, QPDFObjectHandle>& values) {
  return NewTree(revision, values, "/Nums");
}

}  // namespace folioweld
