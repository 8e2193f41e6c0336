// The directory merge from the menu and from the command line.

#include <gmock/gmock.h>

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

class DirectoryMergeWindowTest : public WindowFixture {
 protected:
  DirectoryMergeWindowTest() : documents_(folder_.MakeFolder("documents")), output_(folder_.File("out.pdf")) {
    for (const char* name : {"a.pdf", "b.pdf", "c.pdf"}) Document(std::string("documents/") + name);
  }

  [[nodiscard]] bool Running() { return Caption("cmdCancel") == "CANCEL (abort)"; }

  const std::string documents_;
  const std::string output_;
};

TEST_F(DirectoryMergeWindowTest, TheMenuAsksForFolderAndOutputAndJoins) {
  Open();
  dialogs_.FolderAnswers = {documents_};
  dialogs_.SaveAnswers = {output_};
  Item("MenuPdfMergeDir")->trigger();
  ASSERT_EQ(dialogs_.FolderQuestions.size(), 1U);
  EXPECT_EQ(dialogs_.FolderQuestions[0].InitialFolder, startFolder_ + "/");
  ASSERT_EQ(dialogs_.SaveQuestions.size(), 1U);
  EXPECT_EQ(dialogs_.SaveQuestions[0].Title, "Folioweld: Choose the OUTPUT FILE");
  EXPECT_EQ(dialogs_.SaveQuestions[0].DefaultExtension, "pdf");
  EXPECT_EQ(dialogs_.SaveQuestions[0].Filter, "PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*");
  EXPECT_TRUE(Exists(output_));
  EXPECT_EQ(Stored("MergeCurDir"), documents_ + "/");
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(EnabledButtons(), "cmdInput1");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_TRUE(desktop_.Launched.empty());
}

TEST_F(DirectoryMergeWindowTest, WithoutAFolderItSaysThatItWasCancelled) {
  Open();
  Item("MenuPdfMergeDir")->trigger();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Plain);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "File Tallowby - Folioweld");
  EXPECT_EQ(dialogs_.Boxes[0].Text, "Merge of documents cancelled");
}

TEST_F(DirectoryMergeWindowTest, AFolderWithoutDocumentsIsTold) {
  Open();
  dialogs_.FolderAnswers = {folder_.MakeFolder("empty")};
  Item("MenuPdfMergeDir")->trigger();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Exclamation);
  EXPECT_EQ(dialogs_.Boxes[0].Text, "NO INPUT FILE!  I DIDN'T DO ANYTHING");
  EXPECT_EQ(EnabledButtons(), "cmdInput1");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
}

TEST_F(DirectoryMergeWindowTest, AFolderThatVanishedIsTold) {
  Open();
  dialogs_.FolderAnswers = {folder_.File("missing")};
  Item("MenuPdfMergeDir")->trigger();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Critical);
  EXPECT_EQ(dialogs_.Boxes[0].Text, "Merge of documents ABORTed\r(could not reach intput directory)");
}

TEST_F(DirectoryMergeWindowTest, AnOutputThatCannotBeCreatedIsTold) {
  Open();
  dialogs_.FolderAnswers = {documents_};
  dialogs_.SaveAnswers = {folder_.File("missing/out.pdf")};
  Item("MenuPdfMergeDir")->trigger();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Exclamation);
  EXPECT_THAT(dialogs_.Boxes[0].Text, ::testing::HasSubstr("\r\n cannot be created.\r\n"));
}

TEST_F(DirectoryMergeWindowTest, TheRunningLookStaysFromTheEnumerationOnAndIsLiftedForDialogsOnly) {
  Open();
  dialogs_.FolderAnswers = {documents_};
  dialogs_.SaveAnswers = {output_};
  int idleTurns = 0;
  int runningTurns = 0;
  dialogs_.WhileOpen = [&] {
    EXPECT_FALSE(Running());
    EXPECT_EQ(Window().cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(EnabledButtons(), dialogs_.SaveQuestions.empty() ? "cmdInput1" : "");
  };
  AtEveryTurn([&] {
    ++(Running() ? runningTurns : idleTurns);
    if (!Window().Busy()) return;
    EXPECT_EQ(EnabledButtons(), "");
    EXPECT_EQ(DefaultButton(), "cmdCancel");
    EXPECT_FALSE(Item("MenuPdfMergeDir")->isEnabled());
    Window().MenuPdfMergeDir_Click();
  });
  Item("MenuPdfMergeDir")->trigger();
  EXPECT_GT(runningTurns, 3);
  EXPECT_EQ(idleTurns, 0);
  EXPECT_EQ(dialogs_.FolderQuestions.size(), 1U);
}

TEST_F(DirectoryMergeWindowTest, TheCloseBoxStopsItBetweenTheRoundsToo) {
  Open();
  dialogs_.FolderAnswers = {documents_};
  dialogs_.SaveAnswers = {output_};
  bool closed = false;
  AtEveryTurn([&] {
    if (closed || !Running()) return;
    closed = true;
    EXPECT_FALSE(Window().close());
  });
  Item("MenuPdfMergeDir")->trigger();
  EXPECT_TRUE(closed);
  EXPECT_FALSE(Exists(output_));
  EXPECT_FALSE(ended_);
  EXPECT_FALSE(folder_.Names().empty());
  EXPECT_EQ(EnabledButtons(), "cmdInput1");
}

TEST_F(DirectoryMergeWindowTest, LeavesTheDisplayOptionOffUntilDisplayIsClickedAgain) {
  Open();
  dialogs_.FolderAnswers = {documents_};
  dialogs_.SaveAnswers = {output_};
  Item("MenuPdfMergeDir")->trigger();
  EXPECT_FALSE(Merge().ShowOutputAfterMerge);
  EXPECT_TRUE(Item("MenuOptViewYes")->isChecked());
  EXPECT_EQ(Stored("DisplayOutputAfterMerge"), "1");
  Item("MenuOptViewYes")->trigger();
  EXPECT_TRUE(Merge().ShowOutputAfterMerge);
  EXPECT_TRUE(Item("MenuOptViewYes")->isChecked());
  EXPECT_FALSE(Item("MenuOptViewNo")->isChecked());
}

TEST_F(DirectoryMergeWindowTest, AVanishedTemporaryFolderIsAskedForWithTheFolderPicker) {
  Open();
  EXPECT_EQ(Window().Settings().WriteSetting("MergeTmpDir", folder_.File("vanished")), 0);
  dialogs_.FolderAnswers = {documents_, folder_.MakeFolder("scratch")};
  dialogs_.SaveAnswers = {output_};
  Item("MenuPdfMergeDir")->trigger();
  ASSERT_EQ(dialogs_.FolderQuestions.size(), 2U);
  EXPECT_EQ(dialogs_.FolderQuestions[1].Title, "Folioweld: Choose FOLDER FOR TEMPORARY FILES");
  EXPECT_EQ(Stored("MergeTmpDir"), folder_.File("scratch/"));
  EXPECT_TRUE(Exists(output_));
}

TEST_F(DirectoryMergeWindowTest, ACommandLineJoinsAndEndsTheProgram) {
  Open(output_ + "|" + documents_);
  EXPECT_EQ(ended_, kEverythingJoined);
  EXPECT_TRUE(Exists(output_));
  EXPECT_TRUE(dialogs_.FolderQuestions.empty() && dialogs_.SaveQuestions.empty());
  EXPECT_EQ(Stored("MergeCurDir"), documents_ + "/");
  EXPECT_FALSE(Window().isVisible());
}

TEST_F(DirectoryMergeWindowTest, ACommandLineWithLossesEndsWithTheirStatus) {
  folder_.Write("documents/bad.pdf", "%PDF-1.4 broken");
  Open(output_ + "|" + documents_);
  EXPECT_EQ(ended_, kJoinedWithLosses);
}

TEST_F(DirectoryMergeWindowTest, ACommandLineWithAWarningEndsWithTheStatusOfLosses) {
  WarnedDocument("documents/d.pdf");
  Open(output_ + "|" + documents_);
  EXPECT_EQ(ended_, kJoinedWithLosses);
}

TEST_F(DirectoryMergeWindowTest, WarningsOfAllRoundsAreCountedAtTheEnd) {
  WarnedDocument("documents/a.pdf");
  WarnedDocument("documents/d.pdf");
  Open();
  dialogs_.FolderAnswers = {documents_};
  dialogs_.SaveAnswers = {output_};
  Item("MenuPdfMergeDir")->trigger();
  EXPECT_THAT(Label("txtDoing2"), ::testing::EndsWith("   -> OK\r\n2 warnings, see the log\r\n"));
}

TEST_F(DirectoryMergeWindowTest, ACommandLineWithoutAnOutputAsksForItAndEnds) {
  dialogs_.SaveAnswers = {folder_.File("asked")};
  Open("|" + documents_);
  EXPECT_EQ(dialogs_.SaveQuestions.size(), 1U);
  EXPECT_TRUE(Exists(folder_.File("asked.pdf")));
  EXPECT_EQ(ended_, kEverythingJoined);
}

TEST_F(DirectoryMergeWindowTest, ACommandLineWithoutAnAnswerEndsWithoutOutput) {
  Open("|" + documents_);
  EXPECT_EQ(ended_, kNoOutput);
}

TEST_F(DirectoryMergeWindowTest, ACommandLineFolderThatCannotBeEnteredLeavesTheWindowOpenWithItsText) {
  Open(output_ + "|" + folder_.File("missing"));
  EXPECT_FALSE(ended_);
  EXPECT_TRUE(Window().isVisible());
  EXPECT_EQ(FileName(1), folder_.File("missing"));
  EXPECT_EQ(Label("txtFileName0"), folder_.File("missing"));
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(DirectoryMergeWindowTest, ALoneFileNameOnTheCommandLineDoesNothing) {
  Open(folder_.File("documents/a.pdf"));
  EXPECT_FALSE(ended_);
  EXPECT_EQ(FileName(1), "");
  EXPECT_THAT(Window().Log().LogText(), ::testing::HasSubstr("[Folioweld-Form_Activate]=> Command line: " +
                                                             folder_.File("documents/a.pdf")));
}

TEST_F(DirectoryMergeWindowTest, SettingsLockedElsewhereAreToldInTheLog) {
  std::string opened;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("CreateFile")) opened = call.Path;
    const bool settingsLock = call.Is("TryLockFile") && opened.ends_with(".lock");
    return FaultingSystem::Fault{settingsLock ? EWOULDBLOCK : 0, 0};
  };
  Open();
  EXPECT_THAT(Window().Log().LogText(),
              ::testing::HasSubstr("The settings are not stored: another program holds"));
}

}  // namespace
}  // namespace folioweld::testing
