// Choosing, clearing and swapping.

#include <filesystem>
#include <gmock/gmock.h>

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using FileSelectionTest = WindowFixture;

constexpr char kFilter[] = "PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*";

void ExpectBox(const BoxRequest& box, BoxIcon icon, const std::string& text) {
  EXPECT_EQ(box.Icon, icon);
  EXPECT_EQ(box.Title, "Folioweld");
  EXPECT_EQ(box.Text, text);
  EXPECT_FALSE(box.YesNo);
}

TEST_F(FileSelectionTest, TheFirstInputIsAskedForWithItsTitleAndFilter) {
  Open();
  FileName(1) = "/old.pdf";
  Click("cmdInput1");
  ASSERT_EQ(dialogs_.OpenQuestions.size(), 1U);
  EXPECT_EQ(dialogs_.OpenQuestions[0].Title, "Folioweld - Please choose 1st input file");
  EXPECT_EQ(dialogs_.OpenQuestions[0].DefaultExtension, "pdf");
  EXPECT_EQ(dialogs_.OpenQuestions[0].Filter, kFilter);
  EXPECT_EQ(dialogs_.OpenQuestions[0].InitialName, "/old.pdf");
}

TEST_F(FileSelectionTest, TheSecondInputIsAskedForWithItsTitle) {
  Open();
  ChooseAll();
  Click("cmdInput2");
  ASSERT_EQ(dialogs_.OpenQuestions.size(), 1U);
  EXPECT_EQ(dialogs_.OpenQuestions[0].Title, "Folioweld - Please choose 2nd input file");
  EXPECT_EQ(dialogs_.OpenQuestions[0].InitialName, FileName(2));
}

TEST_F(FileSelectionTest, AnAcceptedDocumentIsTaken) {
  Open();
  dialogs_.OpenAnswers = {Document("a.pdf"), Document("b.pdf")};
  Click("cmdInput1");
  Click("cmdInput2");
  EXPECT_EQ(FileName(1), folder_.File("a.pdf"));
  EXPECT_EQ(FileName(2), folder_.File("b.pdf"));
  EXPECT_EQ(Marks(), "1<,2<,");
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(FileSelectionTest, ARefusedDocumentIsToldAndTheOldOneStays) {
  Open();
  ChooseAll();
  const std::string bad = folder_.Write("bad.pdf", "no document");
  dialogs_.OpenAnswers = {bad};
  Click("cmdInput1");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  ExpectBox(dialogs_.Boxes[0], BoxIcon::Exclamation,
            "\"" + bad + "\"\r\n is not a suitable PDF document for this program");
  EXPECT_EQ(FileName(1), folder_.File("first.pdf"));
  EXPECT_EQ(Merge().MergeStatus, -1);
}

TEST_F(FileSelectionTest, TheLogSaysWhyADocumentIsRefused) {
  Open();
  ChooseAll();
  const std::string bad = folder_.Write("bad.pdf", "no document");
  for (const int slot : {1, 2}) {
    const std::string place = std::to_string(slot);
    dialogs_.OpenAnswers = {bad};
    Click(("cmdInput" + place).c_str());
    const std::string prefix = "[Folioweld-cmdInput" + place + "_Click]=>";
    EXPECT_THAT(Window().Log().LogText(),
                ::testing::HasSubstr(prefix + "File: \"" + bad + "\"  is not acceptable for merging\r\n" +
                                     prefix + "  because of "));
  }
  EXPECT_THAT(Window().Log().LogText(), ::testing::EndsWith(" (\"" + bad + "\")\r\n"));
}

TEST_F(FileSelectionTest, TheLogSaysWhyAnOutputIsRefused) {
  Open();
  ChooseAll();
  dialogs_.SaveAnswers = {FileName(2), folder_.File("missing/out.pdf")};
  Click("cmdOutput");
  Click("cmdOutput");
  const std::string prefix = "[Folioweld-cmdOutput_Click]=>";
  EXPECT_THAT(Window().Log().LogText(), ::testing::HasSubstr(prefix + "The output file \"" + FileName(2) +
                                                             "\" is also an input file."));
  EXPECT_THAT(
      Window().Log().LogText(),
      ::testing::HasSubstr(prefix + "The output file \"" + folder_.File("missing/out.pdf") +
                           "\" cannot be created.\r\n" + prefix +
                           "  because of No such file or directory (\"" + folder_.File("missing") + "\")"));
}

TEST_F(FileSelectionTest, ARefusalIsNotLoggedWhileTheLogIsOff) {
  Open();
  Item("MnuLogHide")->trigger();
  const int before = Window().Log().LogIndex();
  dialogs_.OpenAnswers = {folder_.Write("bad.pdf", "no")};
  Click("cmdInput1");
  EXPECT_EQ(Window().Log().LogIndex(), before);
}

TEST_F(FileSelectionTest, CancellingADialogChangesNothing) {
  Open();
  ChooseAll();
  Merge().MergeStatus = 2;
  for (const char* button : {"cmdInput1", "cmdInput2", "cmdOutput"}) Click(button);
  EXPECT_EQ(FileName(1), folder_.File("first.pdf"));
  EXPECT_EQ(FileName(2), folder_.File("second.pdf"));
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
  EXPECT_EQ(Merge().MergeStatus, 2);
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(FileSelectionTest, InSilentModeARefusalShowsNoBox) {
  Open();
  Merge().SilentMode = true;
  dialogs_.OpenAnswers = {folder_.Write("bad.pdf", "no")};
  Click("cmdInput1");
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(Merge().MergeStatus, -1);
}

TEST_F(FileSelectionTest, TheOutputIsAskedForWithItsTitle) {
  Open();
  ChooseAll();
  Click("cmdOutput");
  ASSERT_EQ(dialogs_.SaveQuestions.size(), 1U);
  EXPECT_EQ(dialogs_.SaveQuestions[0].Title, "Folioweld - Please choose output file");
  EXPECT_EQ(dialogs_.SaveQuestions[0].DefaultExtension, "pdf");
  EXPECT_EQ(dialogs_.SaveQuestions[0].Filter, kFilter);
  EXPECT_EQ(dialogs_.SaveQuestions[0].InitialName, FileName(3));
}

TEST_F(FileSelectionTest, AnExistingOutputIsDeletedAtOnce) {
  Open();
  ChooseAll();
  const std::string old = folder_.Write("old.pdf", "old");
  dialogs_.SaveAnswers = {old};
  dialogs_.BoxAnswers = {true};
  Click("cmdOutput");
  EXPECT_EQ(FileName(3), old);
  EXPECT_FALSE(Exists(old));
  EXPECT_EQ(dialogs_.Boxes.size(), 1U) << "asked once";
}

TEST_F(FileSelectionTest, AnOutputThatIsAnInputIsRefused) {
  Open();
  ChooseAll();
  for (const char* name : {"first.pdf", "second.pdf"}) {
    dialogs_.Boxes.clear();
    Merge().MergeStatus = 2;
    dialogs_.SaveAnswers = {folder_.File(name)};
    Click("cmdOutput");
    ASSERT_EQ(dialogs_.Boxes.size(), 1U);
    ExpectBox(dialogs_.Boxes[0], BoxIcon::Exclamation,
              "The output file\r\n\"" + folder_.File(name) +
                  "\"\r\n is also an input file.\r\nI cannot do this operation!");
    EXPECT_EQ(Merge().MergeStatus, -1);
    EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
    EXPECT_TRUE(Exists(folder_.File(name)));
  }
}

TEST_F(FileSelectionTest, AnInputUnderAnotherNameIsRefusedBeforeAnythingIsDeleted) {
  Open();
  ChooseAll();
  std::filesystem::create_hard_link(folder_.File("first.pdf"), folder_.File("hard.pdf"));
  std::filesystem::create_symlink(folder_.File("second.pdf"), folder_.File("soft.pdf"));
  for (const char* name : {"hard.pdf", "soft.pdf"}) {
    dialogs_.Boxes.clear();
    dialogs_.SaveAnswers = {folder_.File(name)};
    Click("cmdOutput");
    ASSERT_EQ(dialogs_.Boxes.size(), 1U) << name;
    EXPECT_THAT(dialogs_.Boxes[0].Text, ::testing::HasSubstr(" is also an input file."));
    EXPECT_TRUE(Exists(folder_.File(name)));
  }
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
}

TEST_F(FileSelectionTest, AnOutputThatDiffersFromAnInputInLetterCaseIsAccepted) {
  Open();
  ChooseAll();
  dialogs_.SaveAnswers = {folder_.File("FIRST.PDF")};
  Click("cmdOutput");
  EXPECT_EQ(FileName(3), folder_.File("FIRST.PDF"));
}

TEST_F(FileSelectionTest, AnOutputInAFolderThatCannotBeEnteredIsRefused) {
  Open();
  ChooseAll();
  const std::string name = folder_.File("missing/out.pdf");
  dialogs_.SaveAnswers = {name};
  Click("cmdOutput");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  ExpectBox(dialogs_.Boxes[0], BoxIcon::Exclamation,
            "The output file\r\n\"" + name + "\"\r\n cannot be created.\r\nI cannot do this operation!");
  EXPECT_EQ(Merge().MergeStatus, -1);
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
}

TEST_F(FileSelectionTest, AnOutputInTheRootFolderIsAccepted) {
  Open();
  ChooseAll();
  dialogs_.SaveAnswers = {"/folioweld-test-that-does-not-exist.pdf"};
  Click("cmdOutput");
  EXPECT_EQ(FileName(3), "/folioweld-test-that-does-not-exist.pdf");
}

TEST_F(FileSelectionTest, InSilentModeARefusedOutputShowsNoBox) {
  Open();
  ChooseAll();
  Merge().SilentMode = true;
  dialogs_.SaveAnswers = {FileName(1), folder_.File("missing/out.pdf")};
  Click("cmdOutput");
  Click("cmdOutput");
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(Merge().MergeStatus, -1);
}

TEST_F(FileSelectionTest, AnOutputWithoutAnExtensionGetsOne) {
  Open();
  ChooseAll();
  dialogs_.SaveAnswers = {folder_.File("typed")};
  Click("cmdOutput");
  EXPECT_EQ(FileName(3), folder_.File("typed.pdf"));
}

TEST_F(FileSelectionTest, AFolderWithADotIsNoExtension) {
  Open();
  ChooseAll();
  dialogs_.SaveAnswers = {folder_.MakeFolder("with.dot") + "/typed"};
  Click("cmdOutput");
  EXPECT_EQ(FileName(3), folder_.File("with.dot/typed.pdf"));
}

TEST_F(FileSelectionTest, ANameThatOnlyTheExtensionMadeIsAskedAboutBeforeItIsDeleted) {
  Open();
  ChooseAll();
  const std::string old = folder_.Write("typed.pdf", "old");
  dialogs_.SaveAnswers = {folder_.File("typed"), ""};
  dialogs_.WhileOpen = [&] { EXPECT_TRUE(Exists(old)); };
  Click("cmdOutput");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_TRUE(dialogs_.Boxes[0].YesNo);
  EXPECT_THAT(dialogs_.Boxes[0].Text, ::testing::HasSubstr("\"" + old + "\""));
  EXPECT_TRUE(Exists(old)) << "No is the default";
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
  // The dialog comes back with the name that was asked about.
  ASSERT_EQ(dialogs_.SaveQuestions.size(), 2U);
  EXPECT_EQ(dialogs_.SaveQuestions[1].InitialName, old);
}

TEST_F(FileSelectionTest, ANameThatOnlyTheExtensionMadeIsReplacedAfterYes) {
  Open();
  ChooseAll();
  const std::string old = folder_.Write("typed.pdf", "old");
  dialogs_.SaveAnswers = {folder_.File("typed")};
  dialogs_.BoxAnswers = {true};
  Click("cmdOutput");
  EXPECT_FALSE(Exists(old));
  EXPECT_EQ(FileName(3), old);
}

TEST_F(FileSelectionTest, ClearingTheFirstInputMovesTheSecondUp) {
  Open();
  ChooseAll();
  Click("CmdClr1");
  EXPECT_EQ(FileName(1), folder_.File("second.pdf"));
  EXPECT_EQ(FileName(2), "");
  EXPECT_EQ(Marks(), "1<,,>");
}

TEST_F(FileSelectionTest, ClearingTheOnlyInputKeepsTheOutputAndTheMergeButton) {
  Open();
  ChooseAll();
  Click("CmdClr2");
  Click("CmdClr1");
  EXPECT_EQ(FileName(1) + FileName(2), "");
  EXPECT_FALSE(Enabled("cmdInput2"));
  EXPECT_FALSE(Enabled("cmdOutput"));
  EXPECT_TRUE(Enabled("cmdOK"));
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
}

TEST_F(FileSelectionTest, ClearingTheOutputLocksTheMergeButton) {
  Open();
  ChooseAll();
  Click("CmdClrOut");
  EXPECT_EQ(FileName(3), "");
  EXPECT_FALSE(Enabled("cmdOK"));
}

TEST_F(FileSelectionTest, SwappingExchangesTheInputs) {
  Open();
  ChooseAll();
  Click("PictToggle");
  EXPECT_EQ(FileName(1), folder_.File("second.pdf"));
  EXPECT_EQ(FileName(2), folder_.File("first.pdf"));
  EXPECT_EQ(Label("txtFileName0"), folder_.File("second.pdf"));
}

TEST_F(FileSelectionTest, SwappingWithOnlyOneInputDoesNothing) {
  Open();
  FileName(1) = Document("first.pdf");
  Window().PictToggle_Click();
  EXPECT_EQ(FileName(1), folder_.File("first.pdf"));
  EXPECT_EQ(FileName(2), "");
}

TEST_F(FileSelectionTest, NoHandlerChangesAFileNameWhileBusy) {
  Open();
  ChooseAll();
  Window().Program().ExternalBusy = true;
  Window().cmdInput1_Click();
  Window().cmdInput2_Click();
  Window().cmdOutput_Click();
  Window().CmdClr1_Click();
  Window().CmdClr2_Click();
  Window().CmdClrOut_Click();
  Window().PictToggle_Click();
  Window().cmdOK_Click();
  Window().MenuPdfMergeDir_Click();
  Window().ProcessOLEDragDrop(0, {1, {folder_.File("second.pdf")}}, true);
  EXPECT_EQ(FileName(1), folder_.File("first.pdf"));
  EXPECT_EQ(FileName(2), folder_.File("second.pdf"));
  EXPECT_EQ(FileName(3), folder_.File("joined.pdf"));
  EXPECT_TRUE(dialogs_.OpenQuestions.empty() && dialogs_.SaveQuestions.empty() &&
              dialogs_.FolderQuestions.empty());
  EXPECT_FALSE(Exists(folder_.File("joined.pdf")));
  Window().Program().ExternalBusy = false;
}

}  // namespace
}  // namespace folioweld::testing
