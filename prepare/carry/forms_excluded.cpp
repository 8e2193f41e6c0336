#include "prepare/carry/forms_excluded.h"

#include <cstddef>
#include <set>
#include <string>

#include "prepare/carry/dictionaries.h"

namespace folioweld {

namespace {

class FieldSelection {
 public:
  FieldSelection(Revision& revision, const QPDFObjectHandle& excluded) : revision_(revision) {
    for (QPDFObjectHandle item : ItemsOf(revision, excluded)) {
      if (item.isString()) names_.insert(TextOf(revision, item));
      if (item.isIndirect()) objects_.insert(item.getObjGen());
    }
  }

  std::vector<QPDFObjectHandle> Run(const DocumentForm& form) {
    for (const QPDFObjectHandle& field : form.Fields) isOpen_.insert(field.getObjGen());
    for (const QPDFObjectHandle& root : form.Roots) static_cast<void>(Take(root, {}));
    return selected_;
  }

 private:
  /// Whether all of it is selected.
  bool Take(QPDFObjectHandle field, std::string name) {
    // What the form does not lead to, or was taken already, is none of its fields.
    if (!field.isIndirect() || isOpen_.erase(field.getObjGen()) == 0) return true;
    const bool isNamed = field.getKey("/T").isString();
    if (isNamed) name += (name.empty() ? "" : ".") + TextOf(revision_, field.getKey("/T"));
    SpendOn(revision_, name);
    if (objects_.count(field.getObjGen()) > 0 || (isNamed && names_.count(name) > 0)) return false;
    const std::size_t before = selected_.size();
    bool isWhole = true;
    bool hasFields = false;
    for (const QPDFObjectHandle& kid : ItemsOf(revision_, field.getKey("/Kids"))) {
      isWhole = Take(kid, name) && isWhole;
      hasFields = hasFields || EntryOf(kid, "/T").isString() || EntryOf(kid, "/Kids").isArray();
    }
    // Of a field whose widgets are its kids, all or none is selected.
    if (isWhole || !hasFields) selected_.resize(before);
    if (isWhole) selected_.push_back(field);
    return isWhole;
  }

  Revision& revision_;
  std::set<std::string> names_;
  std::set<QPDFObjGen> objects_;
  std::set<QPDFObjGen> isOpen_;
  std::vector<QPDFObjectHandle> selected_;
};

}  // namespace

std::vector<QPDFObjectHandle> FieldsBut(Revision& revision, const DocumentForm& form,
                                        const QPDFObjectHandle& excluded) {
  return FieldSelection(revision, excluded).Run(form);
}

}  // namespace folioweld
