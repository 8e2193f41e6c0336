#include "prepare/carry/forms_names.h"

#include <algorithm>
#include <cstddef>

namespace folioweld {

std::string Numbered(Revision& revision, const std::string& name, int number,
                     const std::function<bool(const std::string&)>& isTaken) {
  for (;; ++number) {
    revision.Spend();
    std::string numbered = name + "-" + std::to_string(number);
    if (!isTaken(numbered)) return numbered;
  }
}

NewNames FieldNames::Plan(const std::vector<NamedField>& fields, int document) const {
  std::set<std::string> own;
  for (const NamedField& field : fields) own.insert(field.Name);
  NewNames renamed;
  for (const std::string& name : own) {
    if (!IsTaken(name)) continue;
    // The number goes to the first part of a name with dots: a field above may have the same one.
    const std::size_t dot = std::min(name.find('.'), name.size());
    const std::string rest = name.substr(dot);
    const auto isTaken = [&](const std::string& free) {
      return IsTaken(free + rest) || own.count(free + rest) > 0;
    };
    renamed[name] = Numbered(revision_, name.substr(0, dot), document, isTaken) + rest;
  }
  return renamed;
}

bool FieldNames::IsTaken(const std::string& name) const {
  const auto below = taken_.lower_bound(name + ".");
  if (taken_.count(name) > 0 || (below != taken_.end() && below->starts_with(name + "."))) return true;
  for (std::size_t dot = name.find('.'); dot != std::string::npos; dot = name.find('.', dot + 1)) {
    revision_.Spend();
    if (taken_.count(name.substr(0, dot)) > 0) return true;
  }
  return false;
}

void FieldNames::Take(const std::vector<NamedField>& fields, const NewNames& renamed) {
  for (const auto& [object, name] : fields) {
    const auto found = renamed.find(name);
    taken_.insert(found == renamed.end() ? name : found->second);
    if (found == renamed.end()) continue;
    QPDFObjectHandle field = object;
    field.replaceKey("/T", QPDFObjectHandle::newUnicodeString(found->second));
    revision_.Change(field);
  }
}

}  // namespace folioweld
