#pragma once

#include <string>
#include <vector>

#include "prepare/carry/items.h"
#include "prepare/carry/revision.h"

namespace folioweld {

/// A field that begins the full name of what is below it.
struct NamedField {
  QPDFObjectHandle Field;
  std::string Name;  ///< UTF-8
};

struct DocumentForm {
  QPDFObjectHandle Form;                 ///< a dictionary
  std::vector<QPDFObjectHandle> Roots;   ///< what its list of fields has; indirect but for what is broken
  std::vector<QPDFObjectHandle> Fields;  ///< indirect objects: the roots and all that is below them
  std::vector<NamedField> Named;
  bool IsSigned = false;
};

/// The fields of a form, once each however often it leads to them, without what is no object of the document.
/// Raises `NotCarried`.
[[nodiscard]] DocumentForm ReadForm(Revision& revision, const CarriedDocument& document,
                                    const QPDFObjectHandle& form);

/// Counts as more steps the longer the bytes are.
void SpendOn(Revision& revision, const std::string& bytes);

/// The value of a string, which is spent on: many fields may share a long one.
[[nodiscard]] std::string BytesOf(Revision& revision, QPDFObjectHandle string);
/// The same in UTF-8.
[[nodiscard]] std::string TextOf(Revision& revision, QPDFObjectHandle string);

}  // namespace folioweld
