#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "prepare/carry/dictionaries.h"
#include "prepare/carry/forms_names.h"

namespace folioweld {

/// What a document does with fields: by the names of those that are renamed, in actions that hide, reset or
/// send fields and in what signatures lock; and with all fields, or all but some, in actions that reset or
/// send.
class FieldMentions {
 public:
  /// Looks for them. Raises `NotCarried`.
  FieldMentions(Revision& revision, const CarriedDocument& document, const NewNames& renamed);

  /// Whether there are scripts, which may name fields in ways that only a reader finds out.
  [[nodiscard]] bool HasScripts() const { return hasScripts_; }
  /// Whether values are sent or imported, which the names of the fields go with.
  [[nodiscard]] bool HasExchange() const { return hasExchange_; }
  /// Has the new names mentioned.
  void Rename();
  /// Actions that reset or send all fields of the form.
  [[nodiscard]] const std::vector<Place>& OnAllFields() const { return onAllFields_; }
  /// Those on all but the fields that they list.
  [[nodiscard]] const std::vector<Place>& OnAllBut() const { return onAllBut_; }

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
  std::vector<Place> onAllBut_;
  bool hasScripts_ = false;
  bool hasExchange_ = false;
};

/// Has the actions reset or send the fields that an array lists, or all others.
enum class Listed { Alone, LeftOut };
void Confine(Revision& revision, const std::vector<Place>& actions, const QPDFObjectHandle& fields,
             Listed listed);

}  // namespace folioweld
