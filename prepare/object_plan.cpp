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

/// An output holds 16,384; beyond this a document gets a form that not every program may know.
constexpr std::size_t kManyObjects = 16'000;

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

/// Such as a link: nothing but its page has to find it.
bool IsPlainAnnotation(QPDFObjectHandle value) {
  return value.isDictionary() && value.hasKey("/Rect") && !value.hasKey("/Parent") &&
         !value.getKey("/Subtype").isNameAndEquals("/Widget");
}

}  // namespace

void ObjectPlan::KeepOwn(const QPDFObjectHandle& object) {
  own_.insert(object.getObjGen());
}

void ObjectPlan::Explore(const QPDFObjectHandle& catalog, const QPDFObjectHandle& information) {
  KeepOwn(catalog);
  Refer(catalog, 0);
  for (std::size_t i = 0; i < found_.size(); ++i) Look(found_[i].Object, i);
  const std::size_t ofCatalog = found_.size();
  if (information.isInitialized()) Look(information, 0);
  for (std::size_t i = ofCatalog; i < found_.size(); ++i) Look(found_[i].Object, i);
  PlaceAll(false);
  GiveNumbers(information);
  if (numbered_.size() <= kManyObjects) return;
  PlaceAll(true);
  GiveNumbers(information);
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

/// The first reference to an object precedes those that it makes.
void ObjectPlan::PlaceAll(bool annotationsToo) {
  for (Found& object : found_) {
    const Found& referrer = found_[object.Referrer];
    object.Depth = referrer.Number != kInPlace ? 1 : referrer.Depth + 1;
    // Any number will do until they are given.
    object.Number = IsOwn(object, annotationsToo) ? 1 : kInPlace;
  }
}

bool ObjectPlan::IsOwn(const Found& object, bool annotationsToo) const {
  if (object.Own) return true;
  if (IsScalar(object.Object)) return false;
  if (object.References > 1 || object.Depth > kDeepestPlace) return true;
  return !MayStandInPlace(object.Object) && !(annotationsToo && IsPlainAnnotation(object.Object));
}

void ObjectPlan::GiveNumbers(const QPDFObjectHandle& information) {
  numbered_.clear();
  for (const auto& [name, place] : index_) {
    Found& object = found_[place];
    if (object.Number == kInPlace) continue;
    numbered_.push_back(object.Object);
    object.Number = static_cast<int>(numbered_.size());
  }
  if (information.isInitialized()) numbered_.push_back(information);
}

int ObjectPlan::NumberOf(const QPDFObjectHandle& object) const {
  const auto place = index_.find(object.getObjGen());
  return place == index_.end() ? kInPlace : found_[place->second].Number;
}

std::size_t ObjectPlan::InPlace() const {
  const auto isInPlace = [](const Found& object) { return object.Number == kInPlace; };
  return static_cast<std::size_t>(std::count_if(found_.begin(), found_.end(), isInPlace));
}

}  // namespace folioweld
