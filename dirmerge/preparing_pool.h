#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dirmerge/preparing_child.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

/// Runs all tasks, as many side by side as there are processors. `begins` is told of every one. The results
/// come in the tasks' order; fewer than tasks, with every child ended, when the user cancelled.
[[nodiscard]] std::vector<PreparingResult> PrepareAll(WindowsAPI& system, MergeShell& shell,
                                                      const MergeState& state, const std::string& program,
                                                      const std::vector<PreparingTask>& tasks,
                                                      const std::function<void(std::size_t task)>& begins);

}  // namespace folioweld
