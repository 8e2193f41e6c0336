// Runs of folioweld --carry with the real program, which is hindered, cut or killed.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "batch/batch_run.h"
#include "tests/support/carrying_script.h"
#include "tests/support/child_program.h"
#include "tests/support/document_builder.h"
#include "tests/support/faulting_system.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class TellingSystem : public FaultingSystem {
 public:
  bool ErrorOutputIsTerminal() override { return false; }
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override {
    Said.append(bytes, count);
    return count;
  }
  std::string Said;
};

class CarriedRunTest : public ::testing::Test {
 protected:
  CarriedRunTest() {
    // The pipe for signals stays open from the first run on.
    static_cast<void>(system_.CatchStopSignals(StopRule::EndByIt));
    for (const char* name : {"docs", "tmp", "config", "bin"}) folder_.MakeFolder(name);
    for (const char* name : {"a", "b", "c"}) {
      folder_.Write(std::string("docs/") + name + ".pdf", SimpleDocument(2, name));
    }
    EXPECT_EQ(Run({}), kEverythingJoined) << system_.Said;
    joined_ = ReadFile(Output());
  }

  /// The script, if any, runs in the real program's place and may start it as "$real".
  ExitStatus Join(const std::string& commands = {}) {
    const fs::path real = FOLIOWELD_CARRY_PROGRAM;
    system_.ModulePath = (real.parent_path() / "folioweld").string();
    if (!commands.empty()) {
      WriteCarryingScript(folder_, "bin/folioweld-carry", "real='" + real.string() + "'\n" + commands);
      system_.ModulePath = folder_.File("bin/folioweld");
    }
    return Run({"--carry"});
  }

  /// Either all of it is there, or the joined file as it was, and that is told.
  void ExpectWholeOrJoined(ExitStatus status) {
    const std::string output = ReadFile(Output());
    EXPECT_TRUE(output.starts_with(joined_));
    if (status == kEverythingJoined) {
      EXPECT_THAT(output.substr(joined_.size()), HasSubstr("/Outlines"));
      EXPECT_TRUE(output.ends_with("%%EOF\r\n") || output.ends_with("%%EOF\n"))
          << output.substr(output.size() - 20);
    } else {
      EXPECT_EQ(status, kJoinedWithLosses) << system_.Said;
      EXPECT_THAT(system_.Said, HasSubstr("The output is the joined file without what --carry adds: "));
      EXPECT_TRUE(output == joined_);
    }
  }

  [[nodiscard]] std::string Output() const { return folder_.File("joined.pdf"); }

  [[nodiscard]] bool OutputIsFree() {
    const auto file = system_.CreateFile(Output(), OpenMode::ReadExisting);
    if (!file.Ok()) return false;
    const bool isFree = !system_.TryLockFile(file.Value());
    return !system_.CloseHandle(file.Value()) && isFree;
  }

  TempFolder folder_;
  TellingSystem system_;
  std::string joined_;

 private:
  ExitStatus Run(std::vector<std::string> arguments) {
    system_.Said.clear();
    system_.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
    arguments.insert(arguments.end(), {Output(), folder_.File("docs")});
    const std::size_t handles = OpenHandles();
    const ExitStatus status = RunBatch(system_, ParseArguments(arguments));
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_TRUE(fs::is_empty(folder_.File("tmp")));
    return status;
  }
};

TEST_F(CarriedRunTest, TheJoinedFileIsTheBeginningOfTheOutput) {
  EXPECT_EQ(Join(), kEverythingJoined) << system_.Said;
  ExpectWholeOrJoined(kEverythingJoined);
  EXPECT_EQ(system_.Said, "");
}

TEST_F(CarriedRunTest, TheSameDocumentsGiveTheSameBytes) {
  EXPECT_EQ(Join(), kEverythingJoined);
  const std::string first = ReadFile(Output());
  EXPECT_EQ(Join(), kEverythingJoined);
  EXPECT_TRUE(ReadFile(Output()) == first);
}

TEST_F(CarriedRunTest, ADocumentThatChangesBeforeItIsReadAgainIsTold) {
  EXPECT_EQ(Join("echo more >> '" + folder_.File("docs/b.pdf") + "'; exec \"$real\" \"$@\""),
            kJoinedWithLosses);
  EXPECT_TRUE(ReadFile(Output()).starts_with(joined_));
  EXPECT_GT(ReadFile(Output()).size(), joined_.size()) << "the others are carried over";
  EXPECT_THAT(system_.Said, HasSubstr("b.pdf\": not wholly carried over ("));
}

TEST_F(CarriedRunTest, WithoutRoomForTheRevisionTheJoinedFileStays) {
  // In blocks of 512 bytes.
  const std::size_t blocks = joined_.size() / 512 + 1;
  ExpectWholeOrJoined(Join("ulimit -f " + std::to_string(blocks) + "; exec \"$real\" \"$@\""));
  EXPECT_TRUE(ReadFile(Output()) == joined_);
}

TEST_F(CarriedRunTest, AProgramThatIsKilledAtAnyMomentLeavesNoHalfRevision) {
  for (const char* seconds : {"0", "0.002", "0.004", "0.008", "0.016", "0.03"}) {
    ExpectWholeOrJoined(
        Join("\"$real\" \"$@\" & sleep " + std::string(seconds) + "; kill -KILL $! 2>/dev/null; wait $!"));
    // What a sanitizer starts to look for leaks holds the files of a killed program a moment longer.
    EXPECT_TRUE(WaitUntil([this] { return OutputIsFree(); }));
  }
}

TEST_F(CarriedRunTest, ARevisionThatIsCutAfterItsCheckIsCutBack) {
  for (const char* bytes : {"1", "9", "100"}) {
    const std::string size = std::to_string(joined_.size() + std::stoul(bytes));
    ExpectWholeOrJoined(Join("\"$real\" \"$@\" && truncate -s " + size + " $joined"));
    EXPECT_TRUE(ReadFile(Output()) == joined_);
  }
}

}  // namespace
}  // namespace folioweld::testing
