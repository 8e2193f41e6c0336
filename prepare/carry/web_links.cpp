#include "prepare/carry/web_links.h"

#include <string>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/web_address.h"

namespace folioweld {

namespace {

/// What links to the web begin with that have no address of their own.
std::string BaseOf(const QPDFObjectHandle& catalog) {
  QPDFObjectHandle base = EntryOf(EntryOf(catalog, "/URI"), "/Base");
  return base.isString() ? base.getStringValue() : std::string();
}

/// Whether some relative links have no base, so that the file may have none either, and all that begin with
/// the first document's can do without.
bool HasToGo(Revision& revision, const std::string& base, const UsesByDocument& uses) {
  if (!IsWholeAddress(base)) return false;
  bool isInTheWay = false;
  for (const CarriedDocument& document : revision.Documents()) {
    const auto found = uses.find(document.Index);
    const std::string own = BaseOf(document.Catalog);
    if (found == uses.end() && own == base) return false;
    isInTheWay = isInTheWay || (own.empty() && found != uses.end() && !found->second.WebLinks.empty());
  }
  return isInTheWay;
}

void RemoveBase(Revision& revision) {
  QPDFObjectHandle links = revision.Catalog().getKey("/URI").shallowCopy();
  links.removeKey("/Base");
  revision.Catalog().replaceKey("/URI", links);
}

void MakeWhole(Revision& revision, const std::string& base, const NameUses& uses) {
  for (const NameUse& link : uses.WebLinks)
    SetEntry(revision, link.Where, link.Key, QPDFObjectHandle::newString(WholeAddress(base, link.Name)));
}

}  // namespace

void CarryWebLinks(Revision& revision, const UsesByDocument& uses) {
  std::string kept = BaseOf(revision.Catalog());
  if (HasToGo(revision, kept, uses)) {
    RemoveBase(revision);
    kept.clear();
  }
  for (const CarriedDocument& document : revision.Documents()) {
    const auto found = uses.find(document.Index);
    const std::string base = BaseOf(document.Catalog);
    if (found == uses.end() || found->second.WebLinks.empty() || base == kept) continue;
    if (IsWholeAddress(base)) {
      MakeWhole(revision, base, found->second);
    } else {
      revision.TellLost(document, "destinations", "its relative links to the web lead elsewhere");
    }
  }
}

}  // namespace folioweld
