// A run without a window in which each request for memory fails in turn.

#include <algorithm>
#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <string>

#include "batch/batch_run.h"
#include "platform/posix_api.h"
#include "tests/support/document_builder.h"
#include "tests/support/failing_memory.h"
#include "tests/support/merge_run.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;

/// The real system with an environment of the test's own. What it keeps of standard error needs no memory, so
/// that all requests are the program's.
class BareSystem : public PosixApi {
 public:
  explicit BareSystem(std::string folder) : folder_(std::move(folder)) {}

  std::optional<std::string> GetEnvironmentVariable(const std::string& name) override {
    if (name == "HOME" || name == "XDG_CONFIG_HOME" || name == "TMPDIR") return folder_;
    return std::nullopt;
  }
  bool ErrorOutputIsTerminal() override { return false; }
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override {
    const std::size_t kept = std::min(count, said_.size() - size_);
    std::copy_n(bytes, kept, said_.begin() + static_cast<std::ptrdiff_t>(size_));
    size_ += kept;
    return count;
  }
  SystemError FlushFileBuffers(Handle /*file*/) override { return {}; }

  [[nodiscard]] std::string Said() const { return {said_.data(), size_}; }
  void Forget() { size_ = 0; }

 private:
  std::string folder_;
  std::array<char, 20000> said_{};
  std::size_t size_ = 0;
};

class ExhaustedRun : public ::testing::Test {
 protected:
  ExhaustedRun() {
    for (const char* name : {"docs", "own"}) folder_.MakeFolder(name);
    for (const char* name : {"a.pdf", "b.pdf", "c.pdf"}) folder_.Write(std::string("docs/") + name, input_);
  }
  ~ExhaustedRun() override { fs::current_path(startFolder_); }

  ExitStatus Run() {
    fs::remove_all(folder_.File("own/folioweld"));
    system_.Forget();
    return RunBatch(system_, arguments_);
  }

  /// As the program ends. False when the run makes fewer requests.
  bool RunWithout(long n, ExitStatus& status) {
    fs::remove_all(folder_.File("own/folioweld"));
    system_.Forget();
    const Arguments arguments = arguments_;
    const testing::FailingRequest failing(n);
    try {
      status = RunBatch(system_, arguments);
    } catch (const std::bad_alloc&) {
      status = kNoOutput;
      static_cast<void>(system_.WriteErrorOutput("out of memory", 13));
    }
    return testing::FailingRequest::Reached();
  }

  void ExpectDocumentsUntouched() const {
    for (const char* name : {"a.pdf", "b.pdf", "c.pdf"}) {
      ASSERT_EQ(testing::ReadFile(folder_.File(std::string("docs/") + name)), input_);
    }
  }

  static constexpr char kOlder[] = "an older output";
  const std::string input_ = testing::SimpleDocument(1);
  testing::TempFolder folder_;
  const std::string output_ = folder_.File("joined.pdf");
  const std::string startFolder_ = fs::current_path().string();
  const Arguments arguments_ = ParseArguments({output_, folder_.File("docs")});
  BareSystem system_{folder_.File("own")};
};

TEST_F(ExhaustedRun, EveryRequestForMemoryThatFailsIsToldAndLeavesNothingBehind) {
  ASSERT_EQ(Run(), kEverythingJoined) << system_.Said();
  const std::string joined = testing::ReadFile(output_);
  const std::size_t handles = testing::OpenHandles();
  ExitStatus status = kEverythingJoined;
  long failed = 0;
  folder_.Write("joined.pdf", kOlder);
  for (long n = 1; RunWithout(n, status); ++n) {
    ++failed;
    const bool exists = fs::exists(output_);
    const std::string output = exists ? testing::ReadFile(output_) : std::string();
    ASSERT_TRUE(status != kEverythingJoined || output == joined) << n << system_.Said();
    ASSERT_TRUE(status == kEverythingJoined || system_.Said().find("emory") != std::string::npos)
        << n << system_.Said();
    ASSERT_TRUE(!exists || output == kOlder || output == joined || status == kJoinedWithLosses) << n;
    ASSERT_EQ(testing::OpenHandles(), handles) << n;
    for (const auto& entry : fs::directory_iterator(folder_.File("own"))) {
      ASSERT_EQ(entry.path().filename(), "folioweld") << n << ": a temporary file";
    }
    ASSERT_NO_FATAL_FAILURE(ExpectDocumentsUntouched()) << n;
    if (n % 7 == 0) {
      ASSERT_EQ(Run(), kEverythingJoined) << n << system_.Said();
      ASSERT_EQ(testing::ReadFile(output_), joined) << n;
    }
    folder_.Write("joined.pdf", kOlder);
  }
  EXPECT_GT(failed, 100);
}

}  // namespace
}  // namespace folioweld
