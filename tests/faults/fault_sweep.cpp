#include "tests/faults/fault_sweep.h"

#include <cerrno>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "platform/system_result.h"

namespace folioweld::testing {

namespace {

using Fault = FaultingSystem::Fault;

/// All but one byte is left out.
constexpr std::size_t kAlmostAll = std::numeric_limits<std::size_t>::max();

const std::vector<Fault>& FaultsOf(const std::string& call) {
  static const std::map<std::string, std::vector<Fault>> faults = {
      {"CreateFile", {{EACCES, 0}, {EMFILE, 0}, {ENOSPC, 0}, {EIO, 0}, {EINTR, 0}}},
      {"CreateMemoryFile", {{EMFILE, 0}, {ENOMEM, 0}, {EINTR, 0}}},
      {"ReadFile", {{EIO, 0}, {EINTR, 0}, {0, kAlmostAll}}},
      {"WriteFile", {{ENOSPC, 0}, {EIO, 0}, {EINTR, 0}, {0, kAlmostAll}}},
      {"CopyFileBytes", {{ENODEV, 0}, {EIO, 0}, {ENOSPC, 0}, {EINTR, 0}, {0, kAlmostAll}}},
      {"GetFileInformationByHandle", {{EIO, 0}}},
      {"SetEndOfFile", {{EIO, 0}, {EFBIG, 0}, {EINTR, 0}}},
      {"FlushFileBuffers", {{EIO, 0}, {ENOSPC, 0}, {EINTR, 0}}},
      {"TryLockFile", {{ENOLCK, 0}, {EWOULDBLOCK, 0}, {EINTR, 0}}},
      {"CloseHandle", {{EIO, 0}, {ENOSPC, 0}}},
      {"GetFileAttributes", {{EIO, 0}, {EACCES, 0}}},
      {"GetLinkAttributes", {{EIO, 0}, {EACCES, 0}}},
      {"SetFileAttributesNormal", {{EPERM, 0}}},
      {"DeleteFile", {{EIO, 0}, {EACCES, 0}}},
      {"MoveFile", {{EIO, 0}, {EACCES, 0}, {ENOSPC, 0}}},
      {"CreateDirectory", {{EACCES, 0}, {ENOSPC, 0}}},
      {"FindFirstFile", {{EACCES, 0}, {EMFILE, 0}, {EIO, 0}}},
      {"FindNextFile", {{EIO, 0}}},
      {"GetCurrentDirectory", {{ENOENT, 0}, {EACCES, 0}}},
      {"SetCurrentDirectory", {{EACCES, 0}, {ENOENT, 0}}},
      {"RandomNumber", {{EIO, 0}, {EINTR, 0}}},
      {"FileTimeToLocalTime", {{EOVERFLOW, 0}}},
      {"PollProcess", {{ECHILD, 0}, {EINTR, 0}}},
      {"StartProcess", {{ENOMEM, 0}, {EMFILE, 0}}},
      {"ExitOfProcess", {{ECHILD, 0}}},
      {"KillProcess", {{ESRCH, 0}}},
      {"ReadNext", {{EIO, 0}, {EINTR, 0}, {0, kAlmostAll}}},
      {"TerminateProcess", {{ESRCH, 0}, {EPERM, 0}}},
  };
  static const std::vector<Fault> unknown = {{EIO, 0}};
  const auto found = faults.find(call);
  return found == faults.end() ? unknown : found->second;
}

const char* Word(FaultTrial::Reach how) {
  switch (how) {
    case FaultTrial::Reach::Once:
      return "once";
    case FaultTrial::Reach::SameCalls:
      return "and all later ones";
    default:
      return "and everything after it";
  }
}

}  // namespace

std::function<FaultingSystem::Fault(const FaultingSystem::Call&, std::size_t)> FaultTrial::Decide() {
  return [this, ofKind = std::size_t{0}](const FaultingSystem::Call& call, std::size_t) mutable {
    Calls.push_back(call.Name);
    if (!Reached) {
      if (call.Name != CallName || ofKind++ != Site) return FaultingSystem::Fault{};
      Reached = true;
      const auto& faults = FaultsOf(call.Name);
      Injected = How == Reach::EverythingElse ? FaultingSystem::Fault{EIO, 0}
                 : Fault < faults.size()      ? faults[Fault]
                                              : FaultingSystem::Fault{};
      return Injected;
    }
    const bool hit = How == Reach::EverythingElse || (How == Reach::SameCalls && call.Name == CallName);
    return hit ? Injected : FaultingSystem::Fault{};
  };
}

bool FaultTrial::HasToPassUnnoticed() const {
  if (!Reached) return true;
  // What cannot be copied from file to file is read and written.
  if (CallName == "CopyFileBytes" && How != Reach::EverythingElse) return true;
  return Injected.Error == 0 || (Injected.Error == EINTR && How == Reach::Once);
}

bool FaultTrial::NothingCanBeDeleted() const {
  return How == Reach::EverythingElse || (How == Reach::SameCalls && CallName == "DeleteFile");
}

bool FaultTrial::MayLeaveAnEmptyFile() const {
  // A file that somebody else has locked is theirs, empty or not.
  if (Injected.Error == EWOULDBLOCK) return true;
  return NothingCanBeDeleted() || (How == Reach::SameCalls && CallName == "GetLinkAttributes");
}

std::string FaultTrial::Description() const {
  return CallName + " number " + std::to_string(Site) + " " + Word(How) + ": " +
         (Injected.Error != 0 ? SystemError{Injected.Error}.Words() : "cut short");
}

namespace {

/// A call by its kind, and which of that kind.
using Site = std::pair<std::string, std::size_t>;

/// Which calls are to fail: every stride-th, and the first of each kind.
std::vector<Site> SitesOf(const std::function<void(FaultTrial&)>& run, std::size_t stride) {
  FaultTrial untouched;
  run(untouched);
  std::vector<Site> sites;
  std::map<std::string, std::size_t> seen;
  for (std::size_t i = 0; i < untouched.Calls.size(); ++i) {
    const std::size_t ofKind = seen[untouched.Calls[i]]++;
    if (ofKind == 0 || i % stride == 0) sites.emplace_back(untouched.Calls[i], ofKind);
  }
  return sites;
}

/// Every fault that the call at the site can have, as far as a run reaches it.
void TryFaultsAt(const Site& site, const std::function<void(FaultTrial&)>& run,
                 std::map<std::string, int>& tried) {
  bool reached = false;
  for (const auto how :
       {FaultTrial::Reach::Once, FaultTrial::Reach::SameCalls, FaultTrial::Reach::EverythingElse}) {
    for (std::size_t fault = 0;; ++fault) {
      FaultTrial trial;
      trial.CallName = site.first;
      trial.Site = site.second;
      trial.Fault = fault;
      trial.How = how;
      run(trial);
      if (::testing::Test::HasFailure()) {
        ADD_FAILURE() << "with this fault: " << trial.Description();
        return;
      }
      if (!trial.Reached) break;
      reached = true;
      ++tried[trial.CallName];
      if (how == FaultTrial::Reach::EverythingElse || fault + 1 >= FaultsOf(trial.CallName).size()) break;
    }
    if (!reached) return;
  }
}

}  // namespace

void SweepFaults(const std::set<std::string>& calls, const std::function<void(FaultTrial&)>& run,
                 std::size_t stride) {
  std::map<std::string, int> tried;
  for (const Site& site : SitesOf(run, stride)) {
    TryFaultsAt(site, run, tried);
    if (::testing::Test::HasFailure()) return;
  }
  std::set<std::string> reached;
  for (const auto& [name, faults] : tried) {
    std::cout << "  " << name << ": " << faults << " faults\n";
    reached.insert(name);
  }
  EXPECT_EQ(reached, calls) << "the calls that were made to fail";
}

bool FullRun() {
  const char* const full = std::getenv("FOLIOWELD_FAULTS_FULL");
  return full != nullptr && std::string(full) == "1";
}

}  // namespace folioweld::testing
