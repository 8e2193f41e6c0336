#include "dirmerge/preparing_pool.h"

#include <algorithm>
#include <memory>

namespace folioweld {

namespace {

struct Slot {
  std::size_t Task;
  std::unique_ptr<PreparingChild> Child;
};

class Pool {
 public:
  Pool(WindowsAPI& system, std::vector<PreparingResult>& results) : system_(system), results_(results) {}
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  /// All are told to end before the first is waited for.
  ~Pool() {
    for (const Slot& slot : slots_) slot.Child->Kill();
  }

  [[nodiscard]] bool IsFull() const {
    return slots_.size() >= static_cast<std::size_t>(system_.ProcessorCount());
  }
  [[nodiscard]] bool IsEmpty() const { return slots_.empty(); }

  void Start(std::size_t index, const std::string& program, const PreparingTask& task) {
    slots_.push_back({index, std::make_unique<PreparingChild>(system_, program, task)});
  }

  void Wait() {
    std::vector<WindowsAPI::Handle> handles;
    for (const Slot& slot : slots_) {
      if (!slot.Child->Running()) return;
      if (slot.Child->Errors() >= 0) handles.push_back(slot.Child->Errors());
    }
    // One that has said its last word ends in a moment.
    system_.WaitForInput(handles, handles.size() < slots_.size() ? 1 : kLongestWait);
  }

  void Look() {
    for (Slot& slot : slots_) {
      slot.Child->Look();
      if (slot.Child->Running()) continue;
      results_[slot.Task] = slot.Child->Result();
      slot.Child.reset();
    }
    std::erase_if(slots_, [](const Slot& slot) { return slot.Child == nullptr; });
  }

 private:
  WindowsAPI& system_;
  std::vector<PreparingResult>& results_;
  std::vector<Slot> slots_;
};

}  // namespace

std::vector<PreparingResult> PrepareAll(WindowsAPI& system, MergeShell& shell, const MergeState& state,
                                        const std::string& program, const std::vector<PreparingTask>& tasks,
                                        const std::function<void(std::size_t task)>& begins) {
  std::vector<PreparingResult> results(tasks.size());
  Pool pool(system, results);
  for (std::size_t next = 0; next < tasks.size() || !pool.IsEmpty();) {
    if (YieldAndCheckAbort(shell, state)) return {};
    while (next < tasks.size() && !pool.IsFull()) {
      begins(next);
      pool.Start(next, program, tasks[next]);
      ++next;
    }
    pool.Wait();
    // A signal that stops the run from the terminal ends the children as well: that says nothing of them.
    if (YieldAndCheckAbort(shell, state)) return {};
    pool.Look();
  }
  return results;
}

}  // namespace folioweld
