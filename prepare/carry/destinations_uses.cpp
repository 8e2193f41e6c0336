#include "prepare/carry/destinations_uses.h"

#include <cstddef>
#include <set>

#include "prepare/carry/forms_read.h"
#include "prepare/carry/web_address.h"

namespace folioweld {

namespace {

/// What leads to much, but not to an action.
const std::set<std::string> kWithoutDestinations = {"/AP",        "/Contents", "/EF",     "/Metadata",
                                                    "/OC",        "/P",        "/Parent", "/PieceInfo",
                                                    "/Resources", "/SD",       "/SE",     "/Thumb"};

bool StartsWithInteger(QPDFObjectHandle array) {
  return array.isArray() && array.getArrayNItems() > 0 && array.getArrayItem(0).isInteger();
}

void NoteDestination(Revision& revision, NameUses& uses, const Place& place, const std::string& key) {
  QPDFObjectHandle value = EntryOf(place.Dictionary, key);
  if (value.isString()) uses.Destinations.push_back({place, key, BytesOf(revision, value), false});
  if (value.isName()) {
    uses.Destinations.push_back({place, key, value.getName().substr(1), true});
    SpendOn(revision, uses.Destinations.back().Name);
  }
  if (StartsWithInteger(value)) uses.Pages.push_back({place, key, "", false});
}

/// Without a file, the target is in this one.
void NoteTarget(Revision& revision, NameUses& uses, const Place& action) {
  QPDFObjectHandle target = EntryOf(action.Dictionary, "/T");
  if (!EntryOf(action.Dictionary, "/F").isNull() || !EntryOf(target, "/R").isNameAndEquals("/C")) return;
  const Place place = {target, target.isIndirect() ? target : action.Owner};
  QPDFObjectHandle name = EntryOf(target, "/N");
  if (name.isString()) uses.Attachments.push_back({place, "/N", BytesOf(revision, name), false});
  // The page that the file is attached to.
  NoteDestination(revision, uses, place, "/P");
  if (EntryOf(target, "/P").isInteger()) uses.PageNumbers.push_back(place);
}

void NoteEndPage(NameUses& uses, const Place& action) {
  QPDFObjectHandle page = EntryOf(action.Dictionary, "/N");
  if (page.isNameAndEquals("/FirstPage") || page.isNameAndEquals("/LastPage"))
    uses.EndPages.push_back(action);
}

void NoteArticle(NameUses& uses, const Place& action) {
  QPDFObjectHandle article = EntryOf(action.Dictionary, "/D");
  const bool isNamed = article.isInteger() || article.isString();
  if (isNamed && EntryOf(action.Dictionary, "/F").isNull()) uses.Articles.push_back(action);
}

void NoteAddress(Revision& revision, NameUses& uses, const Place& action) {
  QPDFObjectHandle address = EntryOf(action.Dictionary, "/URI");
  if (!address.isString()) return;
  const std::string link = BytesOf(revision, address);
  if (!IsWholeAddress(link)) uses.WebLinks.push_back({action, "/URI", link, false});
}

}  // namespace

NameUses FindNameUses(Revision& revision, const CarriedDocument& document) {
  NameUses uses;
  if (document.Index == 1)
    NoteDestination(revision, uses, {CatalogOf(revision, document), {}}, "/OpenAction");
  ForEachDictionary(revision, document, kWithoutDestinations, [&](const Place& place) {
    NoteDestination(revision, uses, place, "/Dest");
    QPDFObjectHandle action = EntryOf(place.Dictionary, "/S");
    if (action.isNameAndEquals("/GoTo")) NoteDestination(revision, uses, place, "/D");
    if (action.isNameAndEquals("/GoToE")) NoteTarget(revision, uses, place);
    if (action.isNameAndEquals("/Named")) NoteEndPage(uses, place);
    if (action.isNameAndEquals("/Thread")) NoteArticle(uses, place);
    if (action.isNameAndEquals("/URI")) NoteAddress(revision, uses, place);
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
    const QPDFObjectHandle withPage = StartsWithInteger(inner) ? WithPage(document, inner) : inner;
    if (withPage.isSameObjectAs(inner)) return destination;
    QPDFObjectHandle changed = destination.shallowCopy();
    changed.replaceKey("/D", withPage);
    return changed;
  }
  if (!StartsWithInteger(destination)) return destination;
  const auto index = static_cast<unsigned long long>(destination.getArrayItem(0).getIntValue());
  const bool isThere = index < document.Pages.size();
  if (isThere && document.Index == 1) return destination;
  const QPDFObjectHandle page =
      isThere ? document.Pages[static_cast<std::size_t>(index)] : QPDFObjectHandle::newNull();
  if (isThere && !QPDFObjectHandle(page).isIndirect()) return destination;
  QPDFObjectHandle changed = destination.shallowCopy();
  changed.setArrayItem(0, page);
  return changed;
}

}  // namespace folioweld
