#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <utility>

#include "engine/merge_state.h"
#include "engine/pass_failure.h"

namespace folioweld {

/// Runs a step that may raise a broken rule, an index outside a table, an overflow or exhausted memory, and
/// turns each into false with the reason in `MergeState::Failure`. A reason already left by the step stays.
template <typename Step>
[[nodiscard]] bool RunGuarded(MergeState& state, std::int16_t slot, Step step) {
  try {
    return std::forward<Step>(step)();
  } catch (const RuleBroken& broken) {
    state.Failure = broken.Failure();
    if (state.Failure.DocumentSlot == 0) state.Failure.DocumentSlot = slot;
  } catch (const std::bad_alloc&) {
    state.Failure = {slot, -1, -1, "out of memory"};
  } catch (const std::exception& error) {
    state.Failure = {slot, -1, -1, error.what()};
  }
  return false;
}

}  // namespace folioweld
