#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "prepare/carry/forms_read.h"

namespace folioweld {

/// New names by the old ones.
using NewNames = std::map<std::string, std::string>;

/// The name with the number of its document, or the next number with which it is free. Different names get
/// different ones.
[[nodiscard]] std::string Numbered(Revision& revision, const std::string& name, int number,
                                   const std::function<bool(const std::string&)>& isTaken);

/// The names with which the full names of a form's fields begin.
class FieldNames {
 public:
  explicit FieldNames(Revision& revision) : revision_(revision) {}

  /// For those names of a document's fields that documents before it have.
  [[nodiscard]] NewNames Plan(const std::vector<NamedField>& fields, int document) const;
  /// Gives the fields their new names, and holds all of them as taken.
  void Take(const std::vector<NamedField>& fields, const NewNames& renamed);

 private:
  /// By a field with this full name, or one above or below it: some names have dots, against the rules.
  [[nodiscard]] bool IsTaken(const std::string& name) const;

  Revision& revision_;
  std::set<std::string> taken_;
};

}  // namespace folioweld
