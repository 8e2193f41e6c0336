#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/forms_names.h"

namespace folioweld {

/// What a document does with fields: by the names of those that are renamed, in actions that hide, reset or
/// send fields and in what signatures lock; and with all fields, in actions that name none.
class FieldMentions {
 public:
  /// Looks for them. Raises `NotCarried`.
  FieldMentions(Revision& revision, const CarriedDocument& document, const NewNames& renamed);

  /// Whether there are scripts, which may name fields in ways that only a reader finds out.
  [[nodiscard]] bool HasScripts() const { return hasScripts_; }
  /// Has the new names mentioned.
  void Rename();
  /// Actions that reset or send all fields of the form.
  [[nodiscard]] const std::vector<Place>& OnAllFields() const { return onAllFields_; }

 private:
  struct Mention {
    QPDFObjectHandle Holder;  ///< a dictionary or an array
    QPDFObjectHandle Owner;   ///< in which it is written
    std::string Key;          ///< of the dictionary
    int Item;                 ///< of the array
    std::string Name;         ///< the new one; UTF-8
  };

  void LookAt(const Place& place);
  void LookAtNames(const Place& place, const std::string& key);
  void LookAtName(const Mention& mention, QPDFObjectHandle name);

  Revision& revision_;
  const NewNames& renamed_;
  std::vector<Mention> mentions_;
  std::vector<Place> onAllFields_;
  bool hasScripts_ = false;
};

/// Has the actions reset or send `fields` alone, which is an array.
void Confine(Revision& revision, const std::vector<Place>& actions, const QPDFObjectHandle& fields);

}  // namespace folioweld
