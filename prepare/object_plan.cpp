#include "prepare/object_plan.h"

#include <algorithm>
#include <set>
#include <string>

namespace folioweld {

namespace {

/// A value in a value in a value, each of which was an object: deep enough for all that is known, and shallow
/// enough for every reader.
constexpr int kDeepestPlace = 8;

/// Dictionaries with one of these keys are nodes of something, or an annotation, a field, a signature or an
/// attached file: readers expect a reference to them.
const std::set<std::string> kKeysOfNodes = {"/Parent",    "/P",    "/Kids",  "/First", "/Last",
                                            "/Next",      "/Prev", "/FT",    "/Rect",  "/Subtype",
                                            "/ByteRange", "/EF",   "/Names", "/Nums",  "/Limits"};
/// Types of dictionaries that are values, of which there is no reference that has to be one.
const std::set<std::string> kTypesOfValues = {"/Action",    "/Border", "/Encoding",
                                              "/ExtGState", "/Group",  "/Mask"};

bool IsScalar(QPDFObjectHandle value) {
  return value.isNull() || value.isBool() || value.isInteger() || value.isReal() || value.isName();
}

/// Such as the states of a button, of which poppler draws another one where they stand in its appearance.
bool HoldsStreamsOnly(QPDFObjectHandle dictionary) {
  const auto entries = dictionary.getDictAsMap();
  return !entries.empty() && std::all_of(entries.begin(), entries.end(), [](const auto& entry) {
    return QPDFObjectHandle(entry.second).isStream();
  });
}

bool MayStandInPlace(QPDFObjectHandle value) {
  if (value.isString() || value.isArray()) return true;
  if (!value.isDictionary() || HoldsStreamsOnly(value)) return false;
  for (const std::string& key : value.getKeys()) {
    if (kKeysOfNodes.count(key) != 0) return false;
    if (key != "/Type") continue;
    QPDFObjectHandle type = value.getKey(key);
    if (!type.isName() || kTypesOfValues.count(type.getName()) == 0) return false;
  }
  return true;
}

}  // namespace

void ObjectPlan::KeepOwn(const QPDFObjectHandle& object) {
  own_[object.getObjGen()] = true;
}

void ObjectPlan::Explore(const std::vector<QPDFObjectHandle>& roots) {
  for (const QPDFObjectHandle& root : roots) {
    KeepOwn(root);
    Refer(root, found_.size());
  }
  for (std::size_t i = 0; i < found_.size(); ++i) Look(found_[i].Object, i);
  // The first reference to an object precedes those that it makes.
  for (Found& object : found_) Place(object);
  GiveNumbers();
}

void ObjectPlan::Refer(const QPDFObjectHandle& object, std::size_t referrer) {
  const auto [place, isNew] = index_.try_emplace(object.getObjGen(), found_.size());
  if (isNew) found_.push_back({object, referrer, 0, own_.count(object.getObjGen()) != 0, 0, kInPlace});
  ++found_[place->second].References;
}

/// The object itself, and then what stands in it.
void ObjectPlan::Look(QPDFObjectHandle value, std::size_t referrer) {
  if (value.isStream()) {
    LookAtDictionary(value.getDict(), referrer);
  } else if (value.isDictionary()) {
    LookAtDictionary(value, referrer);
  } else if (value.isArray()) {
    for (const QPDFObjectHandle& item : value.getArrayAsVector()) {
      if (item.isIndirect()) {
        Refer(item, referrer);
      } else {
        Look(item, referrer);
      }
    }
  }
}

void ObjectPlan::LookAtDictionary(QPDFObjectHandle dictionary, std::size_t referrer) {
  const bool isOfStream = found_[referrer].Object.isStream();
  const auto entries = dictionary.getDictAsMap();
  if (entries.count("/ByteRange") != 0 && entries.count("/Contents") != 0) ++signatures_;
  for (const auto& [key, value] : entries) {
    // The serialiser gives every stream its own.
    if (isOfStream && key == "/Length") continue;
    if (value.isIndirect()) {
      Refer(value, referrer);
    } else {
      Look(value, referrer);
    }
  }
}

void ObjectPlan::Place(Found& object) {
  if (IsScalar(object.Object)) return;
  const Found& referrer = found_[object.Referrer];
  object.Depth = referrer.Own ? 1 : referrer.Depth + 1;
  if (object.References > 1 || object.Depth > kDeepestPlace || !MayStandInPlace(object.Object))
    object.Own = true;
}

void ObjectPlan::GiveNumbers() {
  for (const auto& [name, place] : index_) {
    Found& object = found_[place];
    if (!object.Own) continue;
    numbered_.push_back(object.Object);
    object.Number = static_cast<int>(numbered_.size());
  }
}

int ObjectPlan::NumberOf(const QPDFObjectHandle& object) const {
  const auto place = index_.find(object.getObjGen());
  return place == index_.end() ? kInPlace : found_[place->second].Number;
}

}  // namespace folioweld
