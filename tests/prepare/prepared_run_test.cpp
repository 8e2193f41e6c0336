// Runs of folioweld --prepare with the real program, which is hindered, cut or killed.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "batch/batch_run.h"
#include "tests/prepare/prepare_fixture.h"
#include "tests/support/faulting_system.h"
#include "tests/support/merge_run.h"
#include "tests/support/preparing_script.h"

namespace folioweld::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

class SaidSystem : public FaultingSystem {
 public:
  bool ErrorOutputIsTerminal() override { return false; }
  SystemResult<std::size_t> WriteErrorOutput(const char* bytes, std::size_t count) override {
    Said.append(bytes, count);
    return count;
  }
  std::string Said;
};

class PreparedRunTest : public PrepareFixture {
 protected:
  PreparedRunTest() {
    // The pipe for signals stays open from the first run on.
    static_cast<void>(system_.CatchStopSignals(StopRule::EndByIt));
    for (const char* name : {"docs", "tmp", "config", "bin"}) folder_.MakeFolder(name);
    folder_.Write("docs/a.pdf", SimpleDocument(1, "text of a"));
    folder_.Write("docs/b.pdf", Compressed(SimpleDocument(2, "text of b")));
    folder_.Write("docs/c.pdf", SimpleDocument(1, "text of c"));
  }

  /// The script, if any, runs in the real program's place and may start it as "$real".
  ExitStatus Join(const std::string& commands = {}) {
    const fs::path real = FOLIOWELD_PREPARE_PROGRAM;
    system_.ModulePath = (real.parent_path() / "folioweld").string();
    if (!commands.empty()) {
      WritePreparingScript(folder_, "bin/folioweld-prepare", "real='" + real.string() + "'\n" + commands);
      system_.ModulePath = folder_.File("bin/folioweld");
    }
    system_.Said.clear();
    system_.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
    const std::size_t handles = OpenHandles();
    const ExitStatus status =
        RunBatch(system_, ParseArguments({"--prepare", Output(), folder_.File("docs")}));
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_TRUE(fs::is_empty(folder_.File("tmp")));
    return status;
  }

  /// Either the document is in the output, or it is named and the others are there.
  void ExpectWholeOrTold(ExitStatus status) {
    const std::string output = ReadFile(Output());
    EXPECT_THAT(output, HasSubstr("text of a"));
    EXPECT_THAT(output, HasSubstr("text of c"));
    if (status == kEverythingJoined) {
      EXPECT_THAT(output, HasSubstr("text of b 2"));
    } else {
      EXPECT_EQ(status, kJoinedWithLosses);
      EXPECT_THAT(system_.Said, HasSubstr("File: \"b.pdf\"  is not acceptable for merging"));
      EXPECT_THAT(output, Not(HasSubstr("text of b")));
    }
  }

  [[nodiscard]] std::string Output() const { return folder_.File("joined.pdf"); }

  SaidSystem system_;
};

TEST_F(PreparedRunTest, ACompressedDocumentIsJoinedInItsPlace) {
  EXPECT_EQ(Join(), kEverythingJoined) << system_.Said;
  ExpectWholeOrTold(kEverythingJoined);
  EXPECT_EQ(system_.Said, "[Folioweld-MergeDirectory]=>b.pdf: prepared (cross-reference stream)\n");
}

TEST_F(PreparedRunTest, TheSameDocumentsGiveTheSameBytes) {
  EXPECT_EQ(Join(), kEverythingJoined);
  const std::string first = ReadFile(Output());
  EXPECT_EQ(Join(), kEverythingJoined);
  EXPECT_EQ(ReadFile(Output()), first);
}

TEST_F(PreparedRunTest, AProtectedDocumentIsJoinedAndItsLossTold) {
  folder_.Write("docs/b.pdf", Protected(SimpleDocument(2, "text of b"), ""));
  EXPECT_EQ(Join(), kEverythingJoined) << system_.Said;
  EXPECT_THAT(system_.Said, HasSubstr("b.pdf: lost: its protection\n"));
}

TEST_F(PreparedRunTest, ADocumentThatAsksForAPasswordIsNamed) {
  folder_.Write("docs/b.pdf", Protected(SimpleDocument(2, "text of b"), "secret"));
  EXPECT_EQ(Join(), kJoinedWithLosses);
  ExpectWholeOrTold(kJoinedWithLosses);
  EXPECT_THAT(system_.Said, HasSubstr("password"));
}

TEST_F(PreparedRunTest, ACopyForWhichThereIsNoRoomCostsItsDocumentOnly) {
  for (int blocks = 0; blocks < 4; ++blocks) {
    ExpectWholeOrTold(Join("ulimit -f " + std::to_string(blocks) + "; exec \"$real\" \"$@\""));
  }
}

TEST_F(PreparedRunTest, AProgramThatIsKilledAtAnyMomentCostsItsDocumentOnly) {
  for (const char* seconds : {"0", "0.002", "0.004", "0.008", "0.016", "0.03"}) {
    ExpectWholeOrTold(
        Join("\"$real\" \"$@\" & sleep " + std::string(seconds) + "; kill -KILL $! 2>/dev/null; wait $!"));
  }
}

TEST_F(PreparedRunTest, ACopyThatIsCutAfterItsCheckCostsItsDocumentOnly) {
  for (const char* size : {"0", "10", "500", "900"}) {
    ExpectWholeOrTold(Join("\"$real\" \"$@\" && truncate -s " + std::string(size) + " $out"));
    EXPECT_THAT(system_.Said, HasSubstr("its copy cannot be joined either: "));
  }
}

}  // namespace
}  // namespace folioweld::testing
