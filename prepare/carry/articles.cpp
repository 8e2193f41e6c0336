#include "prepare/carry/articles.h"

#include <cstddef>
#include <string>
#include <vector>

#include "prepare/carry/catalog_lists.h"
#include "prepare/carry/dictionaries.h"
#include "prepare/carry/forms_read.h"

namespace folioweld {

namespace {

constexpr char kThreads[] = "/Threads";

/// What an action names: an index (0-based) or a title; beyond the last one where it names none.
std::size_t IndexOf(Revision& revision, const std::vector<QPDFObjectHandle>& articles,
                    QPDFObjectHandle named) {
  if (named.isInteger()) return static_cast<std::size_t>(named.getIntValue());
  const std::string wanted = TextOf(revision, named);
  std::size_t index = 0;
  for (; index < articles.size(); ++index) {
    QPDFObjectHandle title = EntryOf(EntryOf(articles[index], "/I"), "/Title");
    if (title.isString() && TextOf(revision, title) == wanted) break;
    revision.Spend();
  }
  return index;
}

}  // namespace

void CarryArticles(Revision& revision, const UsesByDocument& uses) {
  long long end = 0;  // Articles of the documents before, and of this one.
  revision.ForEach("names", [&](const CarriedDocument& document) {
    const std::vector<QPDFObjectHandle> articles = CatalogList(revision, document, kThreads);
    const long long before = end;
    end += static_cast<long long>(articles.size());
    const auto found = uses.find(document.Index);
    for (const Place& action : found == uses.end() ? std::vector<Place>() : found->second.Articles) {
      const std::size_t index = IndexOf(revision, articles, EntryOf(action.Dictionary, "/D"));
      const bool isThere = index < articles.size();
      if (isThere && document.Index == 1) continue;
      SetEntry(revision, action, "/D",
               isThere ? QPDFObjectHandle::newInteger(before + static_cast<long long>(index))
                       : QPDFObjectHandle::newNull());
    }
  });
  CarryList(revision, kThreads, "names");
}

}  // namespace folioweld
