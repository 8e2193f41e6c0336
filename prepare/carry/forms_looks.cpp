#include "prepare/carry/forms_looks.h"

#include <optional>

#include "prepare/carry/forms_fonts.h"

namespace folioweld {

namespace {

/// Where lines of text begin: 0 = left.
long long QuaddingOf(QPDFObjectHandle form) {
  long long quadding = 0;
  static_cast<void>(form.getKey("/Q").getValueAsInt(quadding));
  return quadding;
}

/// The default appearance with the new names, or nothing when the merged form has the same one.
std::optional<std::string> InheritedAppearance(Revision& revision, QPDFObjectHandle form,
                                               const NewNames& fonts, QPDFObjectHandle merged) {
  if (!form.getKey("/DA").isString()) return {};
  const std::string appearance = WithFonts(BytesOf(revision, form.getKey("/DA")), fonts);
  std::string common;
  if (merged.getKey("/DA").getValueAsString(common) && common == appearance) return {};
  return appearance;
}

}  // namespace

std::vector<NewEntry> EntriesForLooks(Revision& revision, const DocumentForm& read, const NewNames& fonts,
                                      const QPDFObjectHandle& merged) {
  std::vector<NewEntry> entries;
  for (QPDFObjectHandle field : read.Fields) {
    if (fonts.empty() || !field.getKey("/DA").isString()) continue;
    const std::string appearance = BytesOf(revision, field.getKey("/DA"));
    const std::string renamed = WithFonts(appearance, fonts);
    if (renamed != appearance) entries.push_back({field, "/DA", QPDFObjectHandle::newString(renamed)});
  }
  const std::optional<std::string> appearance = InheritedAppearance(revision, read.Form, fonts, merged);
  const long long quadding = QuaddingOf(read.Form);
  for (QPDFObjectHandle root : read.Roots) {
    if (appearance && !root.hasKey("/DA"))
      entries.push_back({root, "/DA", QPDFObjectHandle::newString(*appearance)});
    if (quadding != QuaddingOf(merged) && !root.hasKey("/Q"))
      entries.push_back({root, "/Q", QPDFObjectHandle::newInteger(quadding)});
  }
  return entries;
}

}  // namespace folioweld
