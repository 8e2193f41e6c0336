#include "prepare/carry/forms_actions.h"

#include <algorithm>
#include <set>

namespace folioweld {

namespace {

/// Entries that lead to much, and to no action or lock.
const std::set<std::string> kWithoutActions = {"/AP",        "/Contents",  "/DR",   "/MK",
                                               "/Metadata",  "/OC",        "/P",    "/Parent",
                                               "/PieceInfo", "/Resources", "/Thumb"};

/// Of /Flags: the fields that are listed are those to leave out. Without a list it has no effect.
constexpr long long kLeaveOut = 1;

long long FlagsOf(const Place& action) {
  long long flags = 0;
  static_cast<void>(EntryOf(action.Dictionary, "/Flags").getValueAsInt(flags));
  return flags;
}

}  // namespace

FieldMentions::FieldMentions(Revision& revision, const CarriedDocument& document, const NewNames& renamed)
    : revision_(revision), renamed_(renamed) {
  ForEachDictionary(revision, document, kWithoutActions, [this](const Place& place) { LookAt(place); });
}

void FieldMentions::LookAt(const Place& place) {
  QPDFObjectHandle dictionary = place.Dictionary;
  hasScripts_ = hasScripts_ || dictionary.hasKey("/JS");
  QPDFObjectHandle action = dictionary.getKey("/S");
  if (action.isNameAndEquals("/Hide")) LookAtNames(place, "/T");
  const bool isSent = action.isNameAndEquals("/SubmitForm");
  hasExchange_ = hasExchange_ || isSent || action.isNameAndEquals("/ImportData");
  const bool isOnFields = isSent || action.isNameAndEquals("/ResetForm");
  if (isOnFields && dictionary.getKey("/Fields").isNull()) {
    onAllFields_.push_back(place);
  } else if (isOnFields && (FlagsOf(place) & kLeaveOut) != 0) {
    onAllBut_.push_back(place);
  }
  if (isOnFields || dictionary.getKey("/Type").isNameAndEquals("/SigFieldLock"))
    LookAtNames(place, "/Fields");
}

void FieldMentions::LookAtNames(const Place& place, const std::string& key) {
  QPDFObjectHandle names = EntryOf(place.Dictionary, key);
  if (names.isString()) return LookAtName({place.Dictionary, place.Owner, key, 0, {}}, names);
  const QPDFObjectHandle owner = names.isIndirect() ? names : place.Owner;
  const std::vector<QPDFObjectHandle> items = ItemsOf(revision_, names);
  for (std::size_t i = 0; i < items.size(); ++i) {
    LookAtName({names, owner, {}, static_cast<int>(i), {}}, items[i]);
  }
}

void FieldMentions::LookAtName(const Mention& mention, QPDFObjectHandle name) {
  if (!name.isString()) return;
  const std::string text = TextOf(revision_, name);
  // Names of fields have no dots by the rules, but in many files they do.
  for (std::size_t end = 0; end < text.size(); ++end) {
    revision_.Spend();
    end = std::min(text.find('.', end), text.size());
    const auto renamed = renamed_.find(text.substr(0, end));
    if (renamed == renamed_.end()) continue;
    mentions_.push_back(mention);
    mentions_.back().Name = renamed->second + text.substr(end);
    return;
  }
}

void FieldMentions::Rename() {
  for (Mention& mention : mentions_) {
    const QPDFObjectHandle name = QPDFObjectHandle::newUnicodeString(mention.Name);
    if (mention.Holder.isArray()) {
      mention.Holder.setArrayItem(mention.Item, name);
    } else {
      mention.Holder.replaceKey(mention.Key, name);
    }
    // What stands directly in the catalog of a later document is written with the new form.
    if (mention.Owner.isInitialized()) revision_.Change(mention.Owner);
  }
}

void Confine(Revision& revision, const std::vector<Place>& actions, const QPDFObjectHandle& fields,
             Listed listed) {
  for (const Place& action : actions) {
    SetEntry(revision, action, "/Fields", fields);
    const long long before = FlagsOf(action);
    const long long flags = listed == Listed::Alone ? before & ~kLeaveOut : before | kLeaveOut;
    if (flags != before) SetEntry(revision, action, "/Flags", QPDFObjectHandle::newInteger(flags));
  }
}

}  // namespace folioweld
