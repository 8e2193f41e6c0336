// The menu tree, the options and the ways out.

#include <QActionGroup>
#include <QLayout>
#include <QMenuBar>
#include <gmock/gmock.h>

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

class MenuTest : public WindowFixture {
 protected:
  /// "name=caption" of every item in the order shown, submenus in brackets.
  static std::string Tree(const QList<QAction*>& items) {
    std::string tree;
    for (const QAction* item : items) {
      tree +=
          (tree.empty() ? "" : "; ") + item->objectName().toStdString() + "=" + item->text().toStdString();
      if (item->menu() != nullptr) tree += " [" + Tree(item->menu()->actions()) + "]";
    }
    return tree;
  }

  [[nodiscard]] std::string Checked() {
    std::string names;
    for (const char* name : {"MenuSortLexical", "MenuSortLexicalRev", "MenuSortByDate", "MenuSortByDateRev",
                             "MnuLogShow", "MnuLogHide", "MenuOptViewYes", "MenuOptViewNo"}) {
      if (Item(name)->isChecked()) names += std::string(names.empty() ? "" : " ") + name;
    }
    return names;
  }

  void ExpectBox(BoxIcon icon, const std::string& text) {
    ASSERT_EQ(dialogs_.Boxes.size(), 1U);
    EXPECT_EQ(dialogs_.Boxes[0].Icon, icon);
    EXPECT_EQ(dialogs_.Boxes[0].Title, "Folioweld");
    EXPECT_EQ(dialogs_.Boxes[0].Text, text);
    EXPECT_FALSE(dialogs_.Boxes[0].YesNo);
  }
};

TEST_F(MenuTest, HasItsTree) {
  Open();
  EXPECT_EQ(Tree(Window().menuBar()->actions()),
            "MenuFile0=File [MenuPdfMergeDir=Merge all PDF in a Directory; MenuFilExit=Exit]; "
            "MenuOpt0=Options [MenuSortOpt0=Sorting order... [MenuSortLexical=Lexical ordering; "
            "MenuSortLexicalRev=Lexical ordering (reverse); MenuSortByDate=By Date; "
            "MenuSortByDateRev=By Date (reverse)]; ShowLogWindow=Log window... [MnuLogShow=Show; "
            "MnuLogHide=Hide]; MenuOptViewOutput=Display output document... [MenuOptViewYes=Display; "
            "MenuOptViewNo=Do not display]; MenuTmp0=Select TMP directory; "
            "MenuDefaultTmp0=Set default TMP directory]; "
            "MenuAbout0=About [MenuAboutFolioweld=Folioweld; MenuVarnel=Ambrose Varnel; "
            "MenuPdfReader=My portable document reader]");
}

TEST_F(MenuTest, ChoicesOfWhichOneAlwaysHoldsAreExclusiveMarks) {
  Open();
  for (const char* name : {"MenuSortLexical", "MenuSortLexicalRev", "MenuSortByDate", "MenuSortByDateRev",
                           "MnuLogShow", "MnuLogHide", "MenuOptViewYes", "MenuOptViewNo"}) {
    ASSERT_NE(Item(name)->actionGroup(), nullptr) << name;
    EXPECT_TRUE(Item(name)->actionGroup()->isExclusive()) << name;
  }
  EXPECT_EQ(Item("MenuSortLexical")->actionGroup(), Item("MenuSortByDateRev")->actionGroup());
  EXPECT_NE(Item("MnuLogShow")->actionGroup(), Item("MenuOptViewYes")->actionGroup());
}

TEST_F(MenuTest, AFirstStartStoresTheDefaultsAndChecksThem) {
  Open();
  EXPECT_EQ(Checked(), "MenuSortLexical MnuLogShow MenuOptViewYes");
  EXPECT_EQ(Stored("MenuSort"), "1");
  EXPECT_EQ(Stored("MenuShowLogWindow"), "1");
  EXPECT_EQ(Stored("DisplayOutputAfterMerge"), "1");
}

TEST_F(MenuTest, EachSortItemIsCheckedAloneAndStoredAtOnce) {
  Open();
  const std::vector<std::tuple<const char*, int, std::string>> items = {{"MenuSortLexicalRev", -1, "-1"},
                                                                        {"MenuSortByDate", 2, "2"},
                                                                        {"MenuSortByDateRev", -2, "-2"},
                                                                        {"MenuSortLexical", 1, "1"},
                                                                        {"MenuSortLexical", 1, "1"}};
  for (const auto& [name, order, text] : items) {
    Item(name)->trigger();
    EXPECT_EQ(Window().Program().SortOrder, order);
    EXPECT_EQ(Stored("MenuSort"), text);
    EXPECT_EQ(Checked(), std::string(name) + " MnuLogShow MenuOptViewYes");
  }
}

TEST_F(MenuTest, AnOrderOutsideTheFourMovesNoMarkAndIsStored) {
  Open();
  Window().Program().SortOrder = 7;
  Window().UpdateSortMenu();
  EXPECT_EQ(Checked(), "MenuSortLexical MnuLogShow MenuOptViewYes");
  EXPECT_EQ(Stored("MenuSort"), "7");
}

TEST_F(MenuTest, StoredOptionsAreReadAtStart) {
  SettingsStore settings(system_);
  EXPECT_EQ(settings.WriteSetting("MenuSort", "-2"), 0);
  EXPECT_EQ(settings.WriteSetting("MenuShowLogWindow", "0"), 0);
  EXPECT_EQ(settings.WriteSetting("DisplayOutputAfterMerge", "0"), 0);
  Open();
  EXPECT_EQ(Checked(), "MenuSortByDateRev MnuLogHide MenuOptViewNo");
  EXPECT_EQ(Window().Program().SortOrder, -2);
  EXPECT_FALSE(Merge().LogEnabled);
  EXPECT_FALSE(Merge().ShowOutputAfterMerge);
  EXPECT_FALSE(Window().TheLogWindow().isVisible());
  EXPECT_EQ(Window().Log().LogIndex(), 0) << "nothing is logged";
}

TEST_F(MenuTest, AStoredOrderThatIsNoneIsTheLexicalOne) {
  for (const char* text : {"0", "abc"}) {
    EXPECT_EQ(SettingsStore(system_).WriteSetting("MenuSort", text), 0);
    Open();
    EXPECT_EQ(Window().Program().SortOrder, 1) << text;
    EXPECT_TRUE(Item("MenuSortLexical")->isChecked());
    EXPECT_EQ(Stored("MenuSort"), "1");
    Close();
  }
}

TEST_F(MenuTest, TheLogIsHiddenAndShownEmptyAgain) {
  Open();
  LogWindow& log = Window().TheLogWindow();
  EXPECT_TRUE(log.isVisible());
  Item("MnuLogHide")->trigger();
  EXPECT_FALSE(log.isVisible());
  EXPECT_FALSE(Merge().LogEnabled);
  EXPECT_EQ(Stored("MenuShowLogWindow"), "0");
  EXPECT_EQ(Checked(), "MenuSortLexical MnuLogHide MenuOptViewYes");
  Window().Log().AddLogLine("meanwhile");
  Item("MnuLogShow")->trigger();
  EXPECT_TRUE(log.isVisible());
  EXPECT_TRUE(Merge().LogEnabled);
  EXPECT_EQ(Stored("MenuShowLogWindow"), "1");
  EXPECT_EQ(Window().Log().LogIndex(), 0);
}

TEST_F(MenuTest, ShowingAShownLogKeepsItsLines) {
  Open();
  Window().Log().AddLogLine("kept");
  Item("MnuLogShow")->trigger();
  EXPECT_THAT(Window().Log().LogText(), ::testing::HasSubstr("kept"));
}

TEST_F(MenuTest, TheCloseBoxOfTheLogActsAsHide) {
  Open();
  Window().TheLogWindow().close();
  EXPECT_FALSE(Window().TheLogWindow().isVisible());
  EXPECT_FALSE(Merge().LogEnabled);
  EXPECT_TRUE(Item("MnuLogHide")->isChecked());
  EXPECT_EQ(Stored("MenuShowLogWindow"), "0");
}

TEST_F(MenuTest, TheDisplayOptionIsStoredAtOnce) {
  Open();
  Item("MenuOptViewNo")->trigger();
  EXPECT_FALSE(Merge().ShowOutputAfterMerge);
  EXPECT_EQ(Stored("DisplayOutputAfterMerge"), "0");
  EXPECT_EQ(Checked(), "MenuSortLexical MnuLogShow MenuOptViewNo");
  Item("MenuOptViewYes")->trigger();
  EXPECT_TRUE(Merge().ShowOutputAfterMerge);
  EXPECT_EQ(Stored("DisplayOutputAfterMerge"), "1");
}

TEST_F(MenuTest, TheDefaultTemporaryFolderIsStoredWithASeparator) {
  Open();
  Item("MenuDefaultTmp0")->trigger();
  EXPECT_EQ(Stored("MergeTmpDir"), folder_.File("tmp/"));
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(MenuTest, APickedTemporaryFolderIsStoredAndCancellingKeepsIt) {
  Open();
  dialogs_.FolderAnswers = {folder_.MakeFolder("scratch")};
  Item("MenuTmp0")->trigger();
  EXPECT_EQ(dialogs_.FolderQuestions.at(0).Title, "Folioweld: Choose FOLDER FOR TEMPORARY FILES");
  EXPECT_EQ(dialogs_.FolderQuestions.at(0).InitialFolder, folder_.File("tmp/"));
  EXPECT_EQ(Stored("MergeTmpDir"), folder_.File("scratch/"));
  Item("MenuTmp0")->trigger();
  EXPECT_EQ(dialogs_.FolderQuestions.at(1).InitialFolder, folder_.File("scratch/"));
  EXPECT_EQ(Stored("MergeTmpDir"), folder_.File("scratch/"));
}

TEST_F(MenuTest, AboutFolioweldTellsTheVersionAndTheNotice) {
  Open();
  Item("MenuAboutFolioweld")->trigger();
  ExpectBox(BoxIcon::Information,
            "\rFolioweld\rversion # 1.1.9\r\rCopyright (c) 2026 The Folioweld developers. MIT License.\r\r");
}

TEST_F(MenuTest, AboutTheAuthorTellsTheAddress) {
  Open();
  Item("MenuVarnel")->trigger();
  ExpectBox(BoxIcon::Information,
            "\rAmbrose Varnel's e-mail address:\r\rambrose.varnel@folioweld.example\r\r");
}

TEST_F(MenuTest, AboutTheReaderTellsItsPath) {
  Open();
  Item("MenuPdfReader")->trigger();
  ExpectBox(BoxIcon::Information,
            "\rOn this computer, the reader for portable documents is:\r\r/usr/bin/some reader\r\r");
}

TEST_F(MenuTest, AboutTheReaderTellsThatThereIsNone) {
  desktop_.Reader.clear();
  Open();
  Item("MenuPdfReader")->trigger();
  ExpectBox(BoxIcon::Exclamation, "\rOn this computer, there is no reader for portable documents!");
}

TEST_F(MenuTest, ExitAsksOnceAndNoStays) {
  Open();
  Item("MenuFilExit")->trigger();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Question);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Folioweld");
  EXPECT_EQ(dialogs_.Boxes[0].Text, "Do you want to leave Folioweld?");
  EXPECT_TRUE(dialogs_.Boxes[0].YesNo);
  EXPECT_FALSE(ended_);
  EXPECT_TRUE(Window().isVisible());
}

TEST_F(MenuTest, ExitAsksOnceAndYesEndsWithTheLogWindow) {
  Open();
  dialogs_.BoxAnswers = {true};
  Item("MenuFilExit")->trigger();
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(ended_, 0);
  EXPECT_FALSE(Window().isVisible());
  EXPECT_FALSE(Window().TheLogWindow().isVisible());
  EXPECT_EQ(Stored("MenuShowLogWindow"), "1") << "the end of the program is no Hide";
}

TEST_F(MenuTest, TheCloseBoxAsksOnce) {
  Open();
  EXPECT_FALSE(Window().close());
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_FALSE(ended_);
  dialogs_.BoxAnswers = {true};
  Window().close();
  EXPECT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_EQ(ended_, 0);
}

TEST_F(MenuTest, TheExitButtonDoesNotAsk) {
  Open();
  Click("cmdCancel");
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(ended_, 0);
  EXPECT_EQ(Merge().MergeStatus, 1);
  EXPECT_FALSE(Window().TheLogWindow().isVisible());
}

TEST_F(MenuTest, AnyOtherUnloadIsAllowedWithoutAsking) {
  Open();
  EXPECT_TRUE(Window().Form_QueryUnload(false));
  Window().EndBySystem();
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(ended_, 0);
}

TEST_F(MenuTest, EveryControlSaysWhatItIsFor) {
  Open();
  std::vector<std::string> names;
  for (const char* name : {"cmdInput1", "CmdClr1", "cmdInput2", "CmdClr2", "cmdOutput", "CmdClrOut",
                           "PictToggle", "cmdOK", "cmdCancel"}) {
    const QAbstractButton* button = Button(name);
    names.push_back(
        (button->accessibleName().isEmpty() ? button->text() : button->accessibleName()).toStdString());
    EXPECT_NE(names.back(), "") << name;
  }
  for (const char* name :
       {"txtFileName0", "txtDoing0", "txtFileName1", "txtDoing1", "txtFileName2", "txtDoing2"}) {
    names.push_back(Find<QLabel>(name)->accessibleName().toStdString());
    EXPECT_NE(names.back(), "") << name;
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end()) << "two controls have one name";
  FileName(1) = "/a.pdf";
  Window().RefreshControls();
  EXPECT_THAT(Find<QLabel>("txtFileName0")->accessibleName().toStdString(), ::testing::EndsWith(": /a.pdf"));
}

}  // namespace
}  // namespace folioweld::testing
