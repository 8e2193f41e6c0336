#include "prepare/carry/end_pages.h"

#include <vector>

#include "prepare/carry/dictionaries.h"

namespace folioweld {

namespace {

using Pages = std::vector<QPDFObjectHandle>;

/// The page that such an action leads to where these are all pages.
QPDFObjectHandle EndPage(const Pages& pages, const Place& action) {
  const bool isFirst = EntryOf(action.Dictionary, "/N").isNameAndEquals("/FirstPage");
  return isFirst ? pages.front() : pages.back();
}

/// Where it is seen as large as the page before.
void LeadTo(Revision& revision, const Place& action, const QPDFObjectHandle& page) {
  const QPDFObjectHandle null = QPDFObjectHandle::newNull();
  const Pages destination = {page, QPDFObjectHandle::newName("/XYZ"), null, null, null};
  SetEntry(revision, action, "/S", QPDFObjectHandle::newName("/GoTo"));
  SetEntry(revision, action, "/D", QPDFObjectHandle::newArray(destination));
  SetEntry(revision, action, "/N", null);
}

}  // namespace

void KeepEndPages(Revision& revision, const UsesByDocument& uses) {
  Pages all;
  for (const CarriedDocument& document : revision.Documents())
    all.insert(all.end(), document.Pages.begin(), document.Pages.end());
  for (const CarriedDocument& document : revision.Documents()) {
    const auto found = uses.find(document.Index);
    if (found == uses.end() || document.Pages.empty()) continue;
    for (const Place& action : found->second.EndPages) {
      const QPDFObjectHandle page = EndPage(document.Pages, action);
      const bool isSame = page.isSameObjectAs(EndPage(all, action));
      if (page.isIndirect() && !isSame) LeadTo(revision, action, page);
    }
  }
}

}  // namespace folioweld
