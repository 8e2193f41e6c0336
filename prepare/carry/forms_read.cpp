#include "prepare/carry/forms_read.h"

#include <cstddef>
#include <set>
#include <utility>

namespace folioweld {

namespace {

/// No form is that deep, and going down has to end.
constexpr int kDeepestField = 100;
/// Bytes of a string that are looked at in one step.
constexpr std::size_t kBytesOfStep = 16;

class FieldWalk {
 public:
  FieldWalk(Revision& revision, const CarriedDocument& document) : revision_(revision), document_(document) {}

  DocumentForm Read(QPDFObjectHandle form) {
    read_.Form = form;
    QPDFObjectHandle fields = form.getKey("/Fields");
    if (!fields.isArray() && !fields.isNull()) throw NotCarried("the fields of its form are no array");
    for (const QPDFObjectHandle& root : ItemsOf(revision_, fields)) TakeRoot(root);
    return std::move(read_);
  }

 private:
  struct Inherited {
    bool IsNamed = false;
    bool IsSignature = false;
  };

  void TakeRoot(QPDFObjectHandle root) {
    if (!root.isDictionary()) return;
    // Against the rules, but readers show it; nothing can refer to it.
    if (!root.isIndirect()) return read_.Roots.push_back(root);
    if (Look(root, {}, 0)) read_.Roots.push_back(root);
  }

  /// Whether it is a field that was not seen before.
  bool Look(QPDFObjectHandle field, Inherited inherited, int depth) {
    if (!field.isIndirect() || !field.isDictionary() || !document_.Has(field)) return false;
    if (!seen_.insert(field.getObjGen()).second) return false;
    if (depth > kDeepestField) throw NotCarried("the fields of its form are too deep");
    read_.Fields.push_back(field);
    if (field.getKey("/T").isString() && !inherited.IsNamed) {
      read_.Named.push_back({field, TextOf(revision_, field.getKey("/T"))});
      inherited.IsNamed = true;
    }
    if (field.hasKey("/FT")) inherited.IsSignature = field.getKey("/FT").isNameAndEquals("/Sig");
    if (inherited.IsSignature && field.getKey("/V").isDictionary()) read_.IsSigned = true;
    for (const QPDFObjectHandle& kid : ItemsOf(revision_, field.getKey("/Kids"))) {
      Look(kid, inherited, depth + 1);
    }
    return true;
  }

  Revision& revision_;
  const CarriedDocument& document_;
  DocumentForm read_;
  std::set<QPDFObjGen> seen_;
};

}  // namespace

void SpendOn(Revision& revision, const std::string& bytes) {
  for (std::size_t i = 0; i <= bytes.size() / kBytesOfStep; ++i) revision.Spend();
}

DocumentForm ReadForm(Revision& revision, const CarriedDocument& document, const QPDFObjectHandle& form) {
  return FieldWalk(revision, document).Read(form);
}

std::string BytesOf(Revision& revision, QPDFObjectHandle string) {
  std::string bytes = string.getStringValue();
  SpendOn(revision, bytes);
  return bytes;
}

std::string TextOf(Revision& revision, QPDFObjectHandle string) {
  static_cast<void>(BytesOf(revision, string));
  return string.getUTF8Value();
}

}  // namespace folioweld
