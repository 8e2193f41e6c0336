// A window that was started with "--prepare".

#include <gmock/gmock.h>

#include "tests/support/carrying_script.h"
#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

class PrepareTest : public WindowFixture {
 protected:
  void SetUp() override {
    // By the fast one the program that prepares would take minutes.
    system_.FastClock = false;
    folder_.MakeFolder("bin");
    system_.ModulePath = folder_.File("bin/folioweld-window");
    copy_ = folder_.Write("good-copy", SimpleDocument(2, "copy"));
    Script(CopyingCommands(copy_));
    WriteCarryingScript(folder_, "bin/folioweld-carry", AppendingCommands());
    other_ = folder_.Write("other.pdf", kOtherDocument);
    desktop_.Starts = false;
    Open("--prepare");
  }

  void Script(const std::string& commands) const {
    WritePreparingScript(folder_, "bin/folioweld-prepare", commands);
  }

  void ExpectFailed() {
    EXPECT_EQ(Merge().MergeStatus, -1);
    EXPECT_EQ(FileName(3), "");
    EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
    EXPECT_EQ(Caption("cmdCancel"), "Exit");
    EXPECT_FALSE(Window().Busy());
    EXPECT_TRUE(std::filesystem::is_empty(folder_.File("tmp")));
  }

  std::string copy_;
  std::string other_;
};

TEST_F(PrepareTest, ADocumentThatCannotBeJoinedAsItIsCanBeChosen) {
  dialogs_.OpenAnswers = {other_};
  Click("cmdInput1");
  EXPECT_EQ(FileName(1), other_);
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(PrepareTest, AFileThatIsNoDocumentIsRefused) {
  const std::string text = folder_.Write("text", "words\n");
  dialogs_.OpenAnswers = {text};
  Click("cmdInput1");
  EXPECT_EQ(FileName(1), "");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
}

TEST_F(PrepareTest, GoPreparesInsideTheRunningLookAndJoinsTheCopy) {
  ChooseAll();
  FileName(2) = other_;
  std::string during;
  AtEveryTurn([&] {
    if (Caption("cmdCancel") == "CANCEL (abort)" && Label("txtDoing1").starts_with("Preparing ... ")) {
      during = Label("txtDoing1");
      folder_.Write("seen", "");
    }
  });
  Script("while ! test -e '" + folder_.File("seen") + "'; do sleep 0.01; done; " + CopyingCommands(copy_));
  Click("cmdOK");
  EXPECT_EQ(during, "Preparing ... " + other_);
  EXPECT_THAT(ReadFile(folder_.File("joined.pdf")), HasSubstr("copy 2"));
  EXPECT_THAT(Label("txtDoing1"), HasSubstr("Parsing file #2: " + other_));
  EXPECT_THAT(Label("txtDoing2"), EndsWith("   -> OK\r\n"));
  EXPECT_EQ(FileName(2), other_);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.File("tmp")));
}

TEST_F(PrepareTest, ASecondInputThatCannotBePreparedFailsTheJobWithTheBox) {
  ChooseAll();
  FileName(2) = other_;
  Script("echo 'failed: a password is needed' >&2; exit 1");
  Click("cmdOK");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Text, "\"" + other_ + "\"\r\n is not a suitable PDF document for this program");
  EXPECT_THAT(Label("txtDoing1"), EndsWith("   -> FAILED or cancelled"));
  std::string logged;
  for (std::int16_t i = 1; i <= Window().Log().LogIndex(); ++i) logged += Window().Log().LogLine(i) + "\n";
  EXPECT_THAT(logged, HasSubstr("it cannot be prepared: a password is needed"));
  ExpectFailed();
}

TEST_F(PrepareTest, CancelEndsThePreparing) {
  ChooseAll();
  FileName(1) = other_;
  Script("touch '" + folder_.File("begun") + "'; exec sleep 1000");
  AtEveryTurn([&] {
    if (Exists(folder_.File("begun")) && Caption("cmdCancel") == "CANCEL (abort)") Click("cmdCancel");
  });
  Click("cmdOK");
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_THAT(Label("txtDoing0"), EndsWith("   -> FAILED or cancelled"));
  ExpectFailed();
}

TEST_F(PrepareTest, ADroppedFolderIsPreparedToo) {
  folder_.MakeFolder("docs");
  folder_.Write("docs/a.pdf", SimpleDocument(1, "a"));
  folder_.Write("docs/b.pdf", kOtherDocument);
  dialogs_.SaveAnswers = {folder_.File("joined.pdf")};
  DraggedFiles dragged;
  dragged.Paths = {folder_.File("docs")};
  dragged.Entries = 1;
  Window().ProcessOLEDragDrop(-1, dragged, true);
  EXPECT_THAT(ReadFile(folder_.File("joined.pdf")), HasSubstr("copy 2"));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.File("tmp")));
}

TEST_F(PrepareTest, WithoutTheWishNothingChanges) {
  Open();
  dialogs_.OpenAnswers = {other_};
  Click("cmdInput1");
  EXPECT_EQ(FileName(1), "");
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
}

}  // namespace
}  // namespace folioweld::testing
