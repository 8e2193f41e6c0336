#pragma once

#include <cstdint>
#include <new>
#include <utility>

#include "engine/merge_state.h"
#include "engine/pass_failure.h"

namespace folioweld {

/// Runs a step that may raise a broken rule or run out of memory, and turns either into false with the reason
/// in `failure`, told of the document in `slot` when the rule names none. A step that returns false leaves
/// its reason itself.
template <typename Step>
[[nodiscard]] bool RunGuarded(PassFailure& failure, std::int16_t slot, Step step) {
  try {
    return std::forward<Step>(step)();
  } catch (const RuleBroken& broken) {
    failure = broken.Failure();
    if (failure.DocumentSlot == 0) failure.DocumentSlot = slot;
  } catch (const std::bad_alloc&) {
    failure = {slot, -1, -1, kOutOfMemory};
  }
  return false;
}

/// The same with the reason in the merge's state.
template <typename Step>
[[nodiscard]] bool RunGuarded(MergeState& state, std::int16_t slot, Step step) {
  return RunGuarded(state.Failure, slot, std::forward<Step>(step));
}

}  // namespace folioweld
