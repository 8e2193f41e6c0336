#include "prepare/carry/forms_names.h"

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
  const auto isTaken = [&](const std::string& name) { return taken_.count(name) + own.count(name) > 0; };
  for (const std::string& name : own) {
    if (taken_.count(name) > 0) renamed[name] = Numbered(revision_, name, document, isTaken);
  }
  return renamed;
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
