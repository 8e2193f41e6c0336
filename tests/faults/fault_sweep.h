#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/support/faulting_system.h"

namespace folioweld::testing {

/// One fault at one place.
struct FaultTrial {
  enum class Reach {
    Once,           ///< the call alone fails
    SameCalls,      ///< it and all later calls of its kind fail
    EverythingElse  ///< it and every later call fail, as if the disk had been pulled out
  };

  // The site: by its kind, since the number of reads from another process differs from run to run.
  std::string CallName;  ///< empty = none
  std::size_t Site = 0;  ///< which of its kind, counted from 0
  std::size_t Fault = 0;
  Reach How = Reach::Once;

  // Known once the site was reached.
  bool Reached = false;
  std::vector<std::string> Calls;  ///< of the whole run, in order
  FaultingSystem::Fault Injected;

  /// The decision that makes the fault happen; the trial has to outlive it.
  std::function<FaultingSystem::Fault(const FaultingSystem::Call&, std::size_t)> Decide();

  /// A signal or a short transfer, which a program has to live through unnoticed.
  [[nodiscard]] bool HasToPassUnnoticed() const;
  /// Deleting failed for good, so that whatever was there has to stay.
  [[nodiscard]] bool NothingCanBeDeleted() const;

  /// Deleting failed for good, it cannot be found out what is there, or it is somebody else's.
  [[nodiscard]] bool MayLeaveAnEmptyFile() const;

  [[nodiscard]] std::string Description() const;
};

/// Calls `run` with every fault that every call can have, once and lasting, and before that without
/// any. `stride` leaves out sites, but not the first call of a kind. Every failure names its
/// trial. The test fails unless the calls that were made to fail are those that are named: a sweep that no
/// longer reaches one says so, and so does one that reaches another.
void SweepFaults(const std::set<std::string>& calls, const std::function<void(FaultTrial&)>& run,
                 std::size_t stride = 1);

/// FOLIOWELD_FAULTS_FULL=1 in the environment.
[[nodiscard]] bool FullRun();

/// Whether sanitizers slow the program down.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
#else
inline constexpr bool kSanitized = false;
#endif

}  // namespace folioweld::testing
