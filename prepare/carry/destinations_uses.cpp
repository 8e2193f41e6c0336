#include "prepare/carry/destinations_uses.h"

#include <cstddef>
#include <set>

namespace folioweld {

namespace {

/// What leads to much, but not to an action.
const std::set<std::string> kLeftAlone = {"/AP",        "/Contents", "/EF",     "/Metadata",
                                          "/OC",        "/P",        "/Parent", "/PieceInfo",
                                          "/Resources", "/SD",       "/SE",     "/Thumb"};

bool StartsWithInteger(QPDFObjectHandle array) {
  return array.isArray() && array.getArrayNItems() > 0 && array.getArrayItem(0).isInteger();
}

void NoteDestination(NameUses& uses, const Place& place, const std::string& key) {
  QPDFObjectHandle value = EntryOf(place.Dictionary, key);
  if (value.isString()) uses.Destinations.push_back({place, key, value.getStringValue(), false});
  if (value.isName()) uses.Destinations.push_back({place, key, value.getName().substr(1), true});
  if (StartsWithInteger(value)) uses.Pages.push_back({place, key, "", false});
}

/// Without a file, the target is in this one.
void NoteTarget(NameUses& uses, const Place& action) {
  QPDFObjectHandle target = EntryOf(action.Dictionary, "/T");
  QPDFObjectHandle name = EntryOf(target, "/N");
  if (!EntryOf(action.Dictionary, "/F").isNull() || !name.isString()) return;
  if (!EntryOf(target, "/R").isNameAndEquals("/C")) return;
  const Place place = {target, target.isIndirect() ? target : action.Owner};
  uses.Attachments.push_back({place, "/N", name.getStringValue(), false});
}

}  // namespace

NameUses FindNameUses(Revision& revision, const CarriedDocument& document) {
  NameUses uses;
  ForEachDictionary(revision, document, kLeftAlone, [&](const Place& place) {
    NoteDestination(uses, place, "/Dest");
    QPDFObjectHandle action = EntryOf(place.Dictionary, "/S");
    if (action.isNameAndEquals("/GoTo")) NoteDestination(uses, place, "/D");
    if (action.isNameAndEquals("/GoToE")) NoteTarget(uses, place);
  });
  return uses;
}

void ChangeUse(Revision& revision, const NameUse& use, const std::string& name, bool asNameObject) {
  SetEntry(revision, use.Where, use.Key,
           asNameObject ? QPDFObjectHandle::newName("/" + name) : QPDFObjectHandle::newString(name));
}

QPDFObjectHandle WithPage(const CarriedDocument& document, QPDFObjectHandle destination) {
  if (destination.isDictionary()) {
    QPDFObjectHandle inner = destination.getKey("/D");
    if (!StartsWithInteger(inner)) return destination;
    QPDFObjectHandle changed = destination.shallowCopy();
    changed.replaceKey("/D", WithPage(document, inner));
    return changed;
  }
  if (!StartsWithInteger(destination)) return destination;
  const auto index = static_cast<unsigned long long>(destination.getArrayItem(0).getIntValue());
  const bool isThere = index < document.Pages.size();
  const QPDFObjectHandle page =
      isThere ? document.Pages[static_cast<std::size_t>(index)] : QPDFObjectHandle::newNull();
  if (isThere && !QPDFObjectHandle(page).isIndirect()) return destination;
  QPDFObjectHandle changed = destination.shallowCopy();
  changed.setArrayItem(0, page);
  return changed;
}

}  // namespace folioweld
