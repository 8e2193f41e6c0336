#include "prepare/carry/items.h"

namespace folioweld {

std::vector<QPDFObjectHandle> ItemsOf(Revision& revision, QPDFObjectHandle array) {
  std::vector<QPDFObjectHandle> items;
  const int length = array.isArray() ? array.getArrayNItems() : 0;
  for (int i = 0; i < length; ++i) {
    revision.Spend();
    items.push_back(array.getArrayItem(i));
  }
  return items;
}

QPDFObjectHandle DictionaryOf(QPDFObjectHandle owner, const std::string& key) {
  QPDFObjectHandle value = owner.getKey(key);
  return value.isDictionary() ? value : QPDFObjectHandle::newDictionary();
}

}  // namespace folioweld
