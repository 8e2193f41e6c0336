#include "prepare/carry/layers.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "prepare/carry/items.h"
#include "prepare/carry/layers_states.h"

namespace folioweld {

namespace {

using Handles = std::vector<QPDFObjectHandle>;

/// Of a default configuration: usage applications, the tree that readers show, groups that the user cannot
/// change, and sets of groups of which one is shown.
constexpr std::array<const char*, 4> kLists = {"/AS", "/Order", "/Locked", "/RBGroups"};

class MergedLayers {
 public:
  explicit MergedLayers(Revision& revision) : revision_(revision) {}

  /// Looks at all that can be wrong before it changes anything.
  void Add(CarriedDocument& document) {
    QPDFObjectHandle properties = document.Catalog.getKey("/OCProperties");
    if (properties.isNull()) return;
    if (!properties.isDictionary()) throw NotCarried("its layers are no dictionary");
    QPDFObjectHandle configuration = DictionaryOf(properties, "/D");
    const Handles groups = GroupsOf(document, properties);
    const Hidden hidden = HiddenOf(groups, configuration);
    std::map<std::string, Handles> lists;
    for (const char* key : kLists) lists[key] = ItemsOf(revision_, configuration.getKey(key));
    const Handles alternatives = AlternativesOf(groups, properties);

    // The first one has what there is one of.
    if (!merged_.isInitialized()) {
      merged_ = properties.shallowCopy();
      configuration_ = configuration.shallowCopy();
    }
    Append(groups_, groups);
    TellApart(document, groups);
    hidden_.push_back(hidden);
    for (const auto& [key, items] : lists) Append(lists_[key], items);
    Append(alternatives_, alternatives);
    QPDFObjectHandle mode = configuration.getKey("/ListMode");
    modes_.insert(mode.isNameAndEquals("/VisiblePages") ? "/VisiblePages" : "/AllPages");
    hasLaterLayers_ = hasLaterLayers_ || document.Index > 1;
  }

  void Finish() {
    if (!hasLaterLayers_) return;
    // All are shown but those that are listed: a base state would hold for all documents.
    configuration_.removeKey("/BaseState");
    configuration_.removeKey("/ON");
    SetIntentAndHidden();
    for (const auto& [key, items] : lists_) SetList(configuration_, key, items);
    if (modes_.size() > 1) configuration_.removeKey("/ListMode");
    merged_.replaceKey("/OCGs", QPDFObjectHandle::newArray(groups_));
    merged_.replaceKey("/D", configuration_);
    SetList(merged_, "/Configs", alternatives_);
    revision_.Catalog().replaceKey("/OCProperties", revision_.Add(merged_));
  }

 private:
  struct Hidden {
    Handles Groups;
    std::set<std::string> Intents;  ///< of the configuration
    Handles WithoutEffect;          ///< of the groups: shown nevertheless, for their intents are others
  };

  Handles GroupsOf(const CarriedDocument& document, QPDFObjectHandle properties) {
    QPDFObjectHandle list = properties.getKey("/OCGs");
    if (!list.isArray()) throw NotCarried("its layers are not listed");
    Handles groups;
    std::set<QPDFObjGen> seen;
    for (QPDFObjectHandle group : ItemsOf(revision_, list)) {
      const bool isGroup = group.isIndirect() && group.isDictionary() && document.Has(group);
      if (isGroup && seen.insert(group.getObjGen()).second) groups.push_back(group);
    }
    return groups;
  }

  /// MuPDF takes groups with the same entries for one, and would show and hide those of all documents
  /// together. Documents that were joined before have such numbers already.
  void TellApart(const CarriedDocument& document, const Handles& groups) {
    std::set<std::string> taken = entries_;
    for (QPDFObjectHandle group : groups) taken.insert(group.unparseResolved());
    int number = document.Index;
    for (QPDFObjectHandle group : groups) {
      if (entries_.count(group.unparseResolved()) == 0) continue;
      for (; taken.count(group.unparseResolved()) > 0; ++number) {
        group.replaceKey("/FolioweldNumber", QPDFObjectHandle::newInteger(number));
      }
      revision_.Change(group);
    }
    for (QPDFObjectHandle group : groups) taken.insert(group.unparseResolved());
    entries_.swap(taken);
  }

  Hidden HiddenOf(const Handles& groups, const QPDFObjectHandle& configuration) {
    Hidden hidden{StatesOf(revision_, groups, configuration).Off, IntentsOf(revision_, configuration), {}};
    if (hidden.Intents.count("/All") > 0) return hidden;
    for (const QPDFObjectHandle& group : hidden.Groups) {
      const std::set<std::string> intents = IntentsOf(revision_, group);
      const auto isHeeded = [&](const std::string& intent) { return hidden.Intents.count(intent) > 0; };
      if (std::none_of(intents.begin(), intents.end(), isHeeded)) hidden.WithoutEffect.push_back(group);
    }
    return hidden;
  }

  /// The other configurations a user may choose, which are not to change the groups of other documents.
  Handles AlternativesOf(const Handles& groups, QPDFObjectHandle properties) {
    Handles alternatives;
    for (QPDFObjectHandle item : ItemsOf(revision_, properties.getKey("/Configs"))) {
      if (!item.isDictionary()) continue;
      const LayerStates states = StatesOf(revision_, groups, item);
      QPDFObjectHandle copy = item.shallowCopy();
      copy.replaceKey("/BaseState", QPDFObjectHandle::newName("/Unchanged"));
      SetList(copy, "/ON", states.On);
      SetList(copy, "/OFF", states.Off);
      alternatives.push_back(copy);
    }
    return alternatives;
  }

  /// Where the configurations heed different intents, all are heeded.
  void SetIntentAndHidden() {
    std::set<std::string> intents;
    for (const Hidden& hidden : hidden_) intents.insert(hidden.Intents.begin(), hidden.Intents.end());
    Handles off;
    for (const Hidden& hidden : hidden_) {
      std::set<QPDFObjGen> shown;
      if (hidden.Intents != intents) {
        for (const QPDFObjectHandle& group : hidden.WithoutEffect) shown.insert(group.getObjGen());
      }
      for (const QPDFObjectHandle& group : hidden.Groups) {
        if (shown.count(group.getObjGen()) == 0) off.push_back(group);
      }
    }
    SetList(configuration_, "/OFF", off);
    if (intents == hidden_.front().Intents) return;
    Handles names;
    for (const std::string& intent : intents) names.push_back(QPDFObjectHandle::newName(intent));
    SetList(configuration_, "/Intent", names);
  }

  static void SetList(QPDFObjectHandle dictionary, const std::string& key, const Handles& items) {
    if (items.empty()) return dictionary.removeKey(key);
    dictionary.replaceKey(key, QPDFObjectHandle::newArray(items));
  }

  static void Append(Handles& all, const Handles& more) { all.insert(all.end(), more.begin(), more.end()); }

  Revision& revision_;
  QPDFObjectHandle merged_;  ///< not initialised before the first one
  QPDFObjectHandle configuration_;
  Handles groups_;
  std::set<std::string> entries_;  ///< of the groups, as they are written
  std::vector<Hidden> hidden_;
  std::map<std::string, Handles> lists_;
  Handles alternatives_;
  std::set<std::string> modes_;
  bool hasLaterLayers_ = false;
};

}  // namespace

void CarryLayers(Revision& revision) {
  MergedLayers merged(revision);
  revision.ForEach("layers", [&](CarriedDocument& document) { merged.Add(document); });
  merged.Finish();
}

}  // namespace folioweld
