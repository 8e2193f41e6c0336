#include "prepare/carry/layers_states.h"

#include "prepare/carry/items.h"

namespace folioweld {

namespace {

std::set<QPDFObjGen> ListedLayers(Revision& revision, const QPDFObjectHandle& list) {
  std::set<QPDFObjGen> listed;
  for (const QPDFObjectHandle& item : ItemsOf(revision, list)) listed.insert(item.getObjGen());
  return listed;
}

}  // namespace

LayerStates StatesOf(Revision& revision, const std::vector<QPDFObjectHandle>& groups,
                     QPDFObjectHandle configuration) {
  const std::set<QPDFObjGen> on = ListedLayers(revision, configuration.getKey("/ON"));
  const std::set<QPDFObjGen> off = ListedLayers(revision, configuration.getKey("/OFF"));
  QPDFObjectHandle base = configuration.getKey("/BaseState");
  const bool isBaseOff = base.isNameAndEquals("/OFF");
  const bool isUnchanged = base.isNameAndEquals("/Unchanged");
  LayerStates states;
  for (const QPDFObjectHandle& group : groups) {
    revision.Spend();
    // In the order of readers: all get the base state, then those of /ON theirs, then those of /OFF.
    const bool isOn = on.count(group.getObjGen()) > 0;
    if (off.count(group.getObjGen()) > 0 || (isBaseOff && !isOn)) {
      states.Off.push_back(group);
    } else if (isOn || !isUnchanged) {
      states.On.push_back(group);
    }
  }
  return states;
}

std::set<std::string> IntentsOf(Revision& revision, QPDFObjectHandle owner) {
  QPDFObjectHandle value = owner.getKey("/Intent");
  std::set<std::string> intents;
  if (value.isName()) intents.insert(value.getName());
  for (QPDFObjectHandle item : ItemsOf(revision, value)) {
    if (item.isName()) intents.insert(item.getName());
  }
  if (intents.empty()) intents.insert("/View");
  return intents;
}

}  // namespace folioweld
