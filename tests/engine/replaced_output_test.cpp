// An output that does not stay where the job made it.

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

class ReplacedOutputTest : public ::testing::Test {
 protected:
  /// Runs the job; `act` happens once, when the output begins to be written.
  void RunAndFail(const std::function<void()>& act) {
    run_.Shell.OnStatus = [this, act, done = false](int) mutable {
      if (done || run_.Status(2).find("Write the output file") == std::string::npos) return;
      done = true;
      act();
    };
    const std::size_t handles = OpenHandles();
    run_.Run();
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_TRUE(run_.Failed());
    EXPECT_EQ(run_.State.DocFileName(3), "");
    const std::string end = " Write the output file   -> FAILED or cancelled\r\n";
    ASSERT_GT(run_.Status(2).size(), end.size());
    EXPECT_EQ(run_.Status(2).substr(run_.Status(2).size() - end.size()), end);
    EXPECT_EQ(run_.LogLines(),
              (std::vector<std::string>{
                  "[Folioweld-cmdOK]=>The merge failed: \"" + run_.OutputPath +
                  "\": the output was moved, removed or replaced while it was being written"}));
  }

  MergeRun run_{SimpleDocument(1), SimpleDocument(1)};
};

TEST_F(ReplacedOutputTest, AFileThatTookItsPlaceIsNeitherCutNorDeleted) {
  const std::string other(100000, 'x');
  RunAndFail([&] {
    run_.Folder.Write("other", other);
    std::filesystem::rename(run_.Folder.File("other"), run_.OutputPath);
  });
  EXPECT_EQ(run_.Output(), other);
}

TEST_F(ReplacedOutputTest, ARemovedOutputIsNotTakenForASuccess) {
  RunAndFail([&] { std::filesystem::remove(run_.OutputPath); });
  EXPECT_FALSE(Exists(run_.OutputPath));
}

TEST_F(ReplacedOutputTest, AMovedOutputIsEmptied) {
  RunAndFail([&] { std::filesystem::rename(run_.OutputPath, run_.Folder.File("moved")); });
  EXPECT_EQ(ReadFile(run_.Folder.File("moved")), "");
}

TEST_F(ReplacedOutputTest, ALinkThatTookItsPlaceLeadsToNothingThatIsChanged) {
  const std::string other = run_.Folder.Write("other", "somebody else's");
  RunAndFail([&] {
    std::filesystem::remove(run_.OutputPath);
    std::filesystem::create_symlink(other, run_.OutputPath);
  });
  EXPECT_EQ(ReadFile(other), "somebody else's");
}

}  // namespace
}  // namespace folioweld::testing
