#include "prepare/carry/articles.h"

#include <cstddef>
#include <vector>

#include "prepare/carry/catalog_lists.h"
#include "prepare/carry/dictionaries.h"

namespace folioweld {

namespace {

constexpr char kThreads[] = "/Threads";

/// What an action names: an index (0-based) or a title; beyond the last one where it names none.
std::size_t IndexOf(Revision& revision, const std::vector<QPDFObjectHandle>& articles,
                    QPDFObjectHandle named) {
  if (named.isInteger()) return static_cast<std::size_t>(named.getIntValue());
  std::size_t index = 0;
  for (; index < articles.size(); ++index) {
    revision.Spend();
    QPDFObjectHandle title = EntryOf(EntryOf(articles[index], "/I"), "/Title");
    if (title.isString() && title.getUTF8Value() == named.getUTF8Value()) break;
  }
  return index;
}

}  // namespace

void CarryArticles(Revision& revision, const UsesByDocument& uses) {
  long long before = 0;  // Articles of the documents before.
  revision.ForEach("names", [&](const CarriedDocument& document) {
    const std::vector<QPDFObjectHandle> articles = CatalogList(revision, document, kThreads);
    const auto found = uses.find(document.Index);
    for (const Place& action : found == uses.end() ? std::vector<Place>() : found->second.Articles) {
      const std::size_t index = IndexOf(revision, articles, EntryOf(action.Dictionary, "/D"));
      const bool isThere = index < articles.size();
      if (isThere && document.Index == 1) continue;
      SetEntry(revision, action, "/D",
               isThere ? QPDFObjectHandle::newInteger(before + static_cast<long long>(index))
                       : QPDFObjectHandle::newNull());
    }
    before += static_cast<long long>(articles.size());
  });
  CarryList(revision, kThreads, "names");
}

}  // namespace folioweld
