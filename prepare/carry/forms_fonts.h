#pragma once

#include <string>

#include "prepare/carry/forms_names.h"

namespace folioweld {

/// The default resources of all forms. Default appearances name fonts in them, and nothing else.
class DefaultResources {
 public:
  explicit DefaultResources(Revision& revision)
      : revision_(revision), merged_(QPDFObjectHandle::newDictionary()) {}

  /// For those names of a form's fonts that mean other fonts in the forms before it.
  [[nodiscard]] NewNames Plan(const QPDFObjectHandle& form, int document);
  /// Adds what the form has.
  void Take(const QPDFObjectHandle& form, const NewNames& renamed);

  [[nodiscard]] QPDFObjectHandle Merged() const { return merged_; }

 private:
  Revision& revision_;
  QPDFObjectHandle merged_;  ///< a dictionary of direct dictionaries
};

/// A default appearance that names the same fonts by their new names: what stands before "Tf" is changed.
[[nodiscard]] std::string WithFonts(const std::string& appearance, const NewNames& renamed);

}  // namespace folioweld
