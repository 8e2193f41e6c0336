// Whatever the bytes, time and memory grow at most in proportion to them, and a cancel is seen at once.

#include <algorithm>
#include <cctype>
#include <cmath>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

#include "engine/merge_job.h"
#include "tests/faults/child.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/hostile_documents.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/processor_time.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::HostileDocument;
using testing::ProcessorSeconds;

/// Measures how long a cancel would have to wait, and makes one.
class WatchingShell : public MergeShell {
 public:
  explicit WatchingShell(MergeState& state) : state_(state) {}
  void HandleEvents() override {
    const double now = ProcessorSeconds();
    if (last > 0) Longest = std::max(Longest, now - last);
    last = now;
    if (++Yields == CancelAt) {
      state_.AbortRequested = true;
      Cancelled = now;
    }
  }
  long Yields = 0;
  long CancelAt = -1;
  double Longest = 0;
  double Cancelled = 0;
  double last = 0;

 private:
  MergeState& state_;
};

/// Counts what goes through the seam.
class CountingSystem : public PosixApi {
 public:
  SystemResult<std::size_t> ReadFile(Handle file, std::int64_t offset, char* bytes,
                                     std::size_t count) override {
    ++Calls;
    auto read = PosixApi::ReadFile(file, offset, bytes, count);
    if (read.Ok()) Bytes += read.Value();
    return read;
  }
  SystemResult<std::size_t> WriteFile(Handle file, std::int64_t offset, const char* bytes,
                                      std::size_t count) override {
    ++Calls;
    Bytes += count;
    return PosixApi::WriteFile(file, offset, bytes, count);
  }
  SystemResult<std::size_t> CopyFileBytes(Handle from, std::int64_t fromOffset, Handle to,
                                          std::int64_t toOffset, std::size_t count) override {
    ++Calls;
    Bytes += 2 * count;
    return PosixApi::CopyFileBytes(from, fromOffset, to, toOffset, count);
  }
  std::size_t Calls = 0;
  std::size_t Bytes = 0;
};

struct Cost {
  double Seconds = 0;
  double LongestWait = 0;  ///< between two looks at the user's wishes
  long Yields = 0;
  std::size_t Bytes = 0;  ///< through the seam
  std::size_t Calls = 0;
  long Kilobytes = 0;  ///< most memory
  double CancelWait = 0;
};

std::ostream& operator<<(std::ostream& out, const Cost& cost) {
  return out << cost.Seconds << " s, longest wait " << cost.LongestWait << " s, cancel " << cost.CancelWait
             << " s, " << cost.Bytes << " bytes in " << cost.Calls << " calls, " << cost.Kilobytes << " KiB";
}

long MostMemory() {
  struct rusage usage {};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

Cost Merge(const std::string& first, const std::string& second, const std::string& output, long cancelAt) {
  CountingSystem system;
  FileModule files(system);
  MergeState state;
  WatchingShell shell(state);
  ActivityLog log(shell);
  MergeJob job(state, files, shell, log);
  shell.CancelAt = cancelAt;
  state.DocFileName(1) = first;
  state.DocFileName(2) = second;
  state.DocFileName(3) = output;
  const double start = ProcessorSeconds();
  job.cmdOK_Click();
  const double end = ProcessorSeconds();
  Cost cost;
  cost.Seconds = end - start;
  cost.LongestWait = std::max(shell.Longest, end - shell.last);
  cost.Yields = shell.Yields;
  cost.Bytes = system.Bytes;
  cost.Calls = system.Calls;
  cost.CancelWait = shell.Cancelled > 0 ? end - shell.Cancelled : 0;
  return cost;
}

class BoundedWork : public ::testing::TestWithParam<HostileDocument> {
 protected:
  static constexpr double kBlink = testing::kSanitized ? 2.0 : 0.2;

  /// What joining the two costs, in a process of its own.
  Cost Measure(const std::string& firstBytes, const std::string& secondBytes, bool cancel) {
    const std::string first = folder_.Write("first.pdf", firstBytes);
    const std::string second = folder_.Write("second.pdf", secondBytes);
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    const testing::ChildEnd end = testing::InChild([&] {
      Cost cost = Merge(first, second, folder_.File("out.pdf"), -1);
      cost.Kilobytes = MostMemory();
      if (cancel) {
        // At a third, half and nine tenths of the way.
        for (const long at : {cost.Yields / 3, cost.Yields / 2, cost.Yields * 9 / 10}) {
          cost.CancelWait =
              std::max(cost.CancelWait, Merge(first, second, folder_.File("out.pdf"), at).CancelWait);
        }
      }
      return ::write(pipe[1], &cost, sizeof cost) == sizeof cost ? 0 : 1;
    });
    ::close(pipe[1]);
    Cost cost;
    EXPECT_EQ(end.Status, 0);
    EXPECT_EQ(::read(pipe[0], &cost, sizeof cost), static_cast<ssize_t>(sizeof cost));
    ::close(pipe[0]);
    return cost;
  }

  /// What joining the two costs, with a cancel, in at most so many seconds. Whatever else a machine does only
  /// adds to a time, also to the processor's; so where a time is too long, the least of three counts is
  /// taken.
  Cost MeasureWithin(const std::string& first, const std::string& second, double seconds) {
    Cost cost = Measure(first, second, true);
    for (int more = 0; more < 2 && !IsWatched(cost, seconds); ++more) {
      const Cost again = Measure(first, second, true);
      std::cout << "  too long: " << cost << '\n';
      cost.Seconds = std::min(cost.Seconds, again.Seconds);
      cost.LongestWait = std::min(cost.LongestWait, again.LongestWait);
      cost.CancelWait = std::min(cost.CancelWait, again.CancelWait);
    }
    return cost;
  }

  [[nodiscard]] static bool IsWatched(const Cost& cost, double seconds) {
    return cost.Seconds < seconds && cost.LongestWait < kBlink && cost.CancelWait < kBlink;
  }

  static void ExpectWatched(const Cost& cost) {
    EXPECT_LT(cost.LongestWait, kBlink);
    EXPECT_LT(cost.CancelWait, kBlink);
  }

  /// No more than 64 bytes for every byte of the inputs and as much as objects that run into each other may
  /// have of text, beside what every merge takes.
  void ExpectBounded(const Cost& cost, std::size_t bytes) {
    const double memory = 1024.0 * static_cast<double>(cost.Kilobytes - leastKilobytes_);
    // A sanitizer's memory says nothing.
    if (testing::kSanitized) return;
    EXPECT_LT(memory, 64.0 * 1024 * 1024 + 64.0 * static_cast<double>(bytes));
  }

 private:
  testing::TempFolder folder_;
  const long leastKilobytes_ =
      Measure(testing::SimpleDocument(1), testing::SimpleDocument(1), false).Kilobytes;
};

TEST_P(BoundedWork, GrowsWithTheBytesAndNotFaster) {
  const std::size_t small = testing::FullRun() ? 1000000 : testing::kSanitized ? 100000 : 300000;
  const std::size_t factor = testing::FullRun() ? 16 : 8;
  for (const int slot : {1, 2}) {
    const std::string lesser = GetParam().Build(small);
    const std::string greater = GetParam().Build(small * factor);
    const std::string plain = testing::SimpleDocument(1);
    const Cost few = slot == 1 ? Measure(lesser, plain, false) : Measure(plain, lesser, false);
    const double growth = static_cast<double>(greater.size()) / static_cast<double>(lesser.size());
    // Work that grows with the square of the bytes takes 64 times as long for 8 times as many, and fails in
    // either form. Only a sanitizer's time says nothing: it hands out new memory for every text.
    const double tolerance = testing::FullRun() ? 1.7 : 3;
    const double most = testing::kSanitized ? HUGE_VAL : few.Seconds * growth * tolerance + 0.1;
    const Cost many = slot == 1 ? MeasureWithin(greater, plain, most) : MeasureWithin(plain, greater, most);
    std::cout << "  " << lesser.size() << ": " << few << "\n  " << greater.size() << ": " << many << '\n';
    EXPECT_LT(many.Seconds, most);
    // A jump back reads a window of 1 KiB, and a section is some 80 bytes long.
    EXPECT_LT(many.Bytes, 60 * greater.size() + 40000000);
    EXPECT_LT(many.Calls, greater.size() / 60 + 1000);
    ExpectBounded(many, greater.size());
    ExpectWatched(many);
  }
}

using SharedText = BoundedWork;

TEST_P(SharedText, TakesLittleMemory) {
  const std::string document = GetParam().Build(testing::kSanitized ? 20000 : 60000);
  const Cost cost = MeasureWithin(document, document, HUGE_VAL);
  std::cout << "  twice " << document.size() << ": " << cost << '\n';
  ExpectBounded(cost, 2 * document.size());
  ExpectWatched(cost);
}

std::string NameOf(const ::testing::TestParamInfo<HostileDocument>& info) {
  std::string name;
  bool upper = true;
  for (const char c : info.param.Name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) {
      upper = true;
      continue;
    }
    name += upper ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
    upper = false;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Hostile, BoundedWork, ::testing::ValuesIn(testing::HostileDocuments()), NameOf);
INSTANTIATE_TEST_SUITE_P(Hostile, SharedText, ::testing::ValuesIn(testing::SharingDocuments()), NameOf);

}  // namespace
}  // namespace folioweld
