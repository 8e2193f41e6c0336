// The controls as a function of the three file names.

#include <QTextDocument>

#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using WindowTest = WindowFixture;

struct Row {
  const char* State;
  bool First, Second, Output;
  const char* Enabled;
  const char* Default;
  const char* Marks;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.State;
}

class StateTableTest : public WindowFixture, public ::testing::WithParamInterface<Row> {};

TEST_P(StateTableTest, FollowsTheFileNames) {
  Open();
  FileName(1) = GetParam().First ? "/a" : "";
  FileName(2) = GetParam().Second ? "/b" : "";
  FileName(3) = GetParam().Output ? "/c" : "";
  Window().RefreshControls();
  EXPECT_EQ(EnabledButtons(), GetParam().Enabled);
  EXPECT_EQ(DefaultButton(), GetParam().Default);
  EXPECT_EQ(Marks(), GetParam().Marks);
  EXPECT_TRUE(Enabled("cmdCancel"));
  EXPECT_TRUE(Button("PictToggle")->isVisible());
  EXPECT_EQ(Label("txtFileName0"), GetParam().First ? "/a" : "");
  EXPECT_EQ(Label("txtFileName1"), GetParam().Second ? "/b" : "");
  EXPECT_EQ(Label("txtFileName2"), GetParam().Output ? "/c" : "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StateTableTest,
    ::testing::Values(
        Row{"Nothing", false, false, false, "cmdInput1", "cmdCancel", ",,"},
        Row{"First", true, false, false, "cmdInput1 CmdClr1 cmdInput2 cmdOutput", "cmdCancel", "1<,,"},
        Row{"BothInputs", true, true, false, "cmdInput1 CmdClr1 cmdInput2 CmdClr2 PictToggle cmdOutput",
            "cmdCancel", "1<,2<,"},
        Row{"FirstAndOutput", true, false, true, "cmdInput1 CmdClr1 cmdInput2 cmdOutput CmdClrOut cmdOK",
            "cmdOK", "1<,,>"},
        Row{"All", true, true, true,
            "cmdInput1 CmdClr1 cmdInput2 CmdClr2 PictToggle cmdOutput CmdClrOut cmdOK", "cmdOK", "1<,2<,>"},
        Row{"OutputOnly", false, false, true, "cmdInput1 CmdClrOut cmdOK", "cmdOK", ",,>"}),
    [](const auto& row) { return std::string(row.param.State); });

TEST_F(WindowTest, ASecondInputNeverSurvivesWithoutAFirst) {
  Open();
  FileName(2) = "/b";
  Window().RefreshControls();
  EXPECT_EQ(FileName(2), "");
  EXPECT_EQ(Label("txtFileName1"), "");
}

TEST_F(WindowTest, WhileExternalWorkGoesOnOnlyThePathsAreRefreshed) {
  Open();
  Window().Program().ExternalBusy = true;
  FileName(1) = "/a";
  FileName(3) = "/c";
  Window().RefreshControls();
  EXPECT_EQ(EnabledButtons(), "cmdInput1");
  EXPECT_EQ(DefaultButton(), "cmdCancel");
  EXPECT_EQ(Marks(), ",,");
  EXPECT_EQ(Label("txtFileName0"), "/a");
  EXPECT_EQ(Label("txtFileName2"), "/c");
  Window().Program().ExternalBusy = false;
}

TEST_F(WindowTest, WhileAJobRunsOnlyThePathsAreRefreshed) {
  Open();
  Merge().JobRunning = true;
  FileName(1) = "/a";
  Window().RefreshControls();
  EXPECT_EQ(EnabledButtons(), "cmdInput1");
  EXPECT_EQ(Label("txtFileName0"), "/a");
  Merge().JobRunning = false;
}

TEST_F(WindowTest, APathOf116CharactersIsShownWhole) {
  Open();
  FileName(1) = "/" + std::string(115, 'x');
  Window().RefreshControls();
  EXPECT_EQ(Label("txtFileName0"), FileName(1));
}

TEST_F(WindowTest, APathOf117CharactersIsShownAsItsFirstAndLast55) {
  Open();
  FileName(1) = "/begin" + std::string(107, 'x') + "/end";
  ASSERT_EQ(FileName(1).size(), 117U);
  Window().RefreshControls();
  EXPECT_EQ(Label("txtFileName0"), FileName(1).substr(0, 55) + " ... " + FileName(1).substr(62));
}

TEST_F(WindowTest, ALongPathIsNeverCutInsideACharacter) {
  Open();
  FileName(1) = "/";
  for (int i = 0; i < 100; ++i) FileName(1) += "\xC3\xA9";
  Window().RefreshControls();
  EXPECT_EQ(Label("txtFileName0"), FileName(1).substr(0, 55) + " ... " + FileName(1).substr(201 - 54));
}

TEST_F(WindowTest, TheToolTipOfALongPathIsThePathAsItIs) {
  Open();
  FileName(1) = "/A & B " + std::string(120, 'x') + ".pdf";
  Window().RefreshControls();
  EXPECT_EQ(Find<QLabel>("txtFileName0")->toolTip().toStdString(), FileName(1));
  EXPECT_EQ(Find<QLabel>("txtFileName0")->accessibleDescription().toStdString(), FileName(1));
}

TEST_F(WindowTest, TheToolTipOfAPathThatLooksLikeMarkupShowsItsLetters) {
  Open();
  FileName(1) = "/<b>bold</b> " + std::string(120, 'x') + ".pdf";
  Window().RefreshControls();
  QTextDocument shown;
  shown.setHtml(Find<QLabel>("txtFileName0")->toolTip());
  EXPECT_EQ(shown.toPlainText().toStdString(), FileName(1));
  EXPECT_EQ(Find<QLabel>("txtFileName0")->accessibleDescription().toStdString(), FileName(1));
}

TEST_F(WindowTest, APathThatCanBeReadHasNoToolTip) {
  Open();
  FileName(1) = "/a.pdf";
  Window().RefreshControls();
  EXPECT_EQ(Find<QLabel>("txtFileName0")->toolTip(), QString());
}

TEST_F(WindowTest, AStatusThatDoesNotFitKeepsItsEndAndStandsInTheToolTip) {
  Open();
  auto* status = Find<FittingLabel>("txtDoing0");
  const auto picture = [&](const QString& text) {
    status->SetCaption(text);
    return status->grab().toImage();
  };
  QString lines;
  for (int i = 0; i < 12; ++i) lines += QStringLiteral("line %1\r\n").arg(i);
  const QImage all = picture(lines);
  EXPECT_EQ(status->toolTip(), QString(lines).remove(u'\r').trimmed());
  // The size of the letters does not depend on what stands above.
  const QImage last = picture(QStringLiteral("line 11"));
  EXPECT_EQ(status->toolTip(), QString());
  const int line = status->fontMetrics().lineSpacing();
  const int lowest = (status->height() / line - 1) * line;
  EXPECT_EQ(all.copy(0, lowest, all.width(), line), last.copy(0, 0, last.width(), line));
}

TEST_F(WindowTest, ANameThatIsNoUtf8IsShownAndKeepsItsBytes) {
  Open();
  const std::string name = folder_.File("caf\xE9.pdf");
  FileName(1) = name;
  Window().RefreshControls();
  EXPECT_EQ(Label("txtFileName0"), folder_.File("caf\xC3\xA9.pdf"));
  EXPECT_EQ(FileName(1), name);
}

TEST_F(WindowTest, ResetSlotsBlanksThePlacesAndKeepsTheNames) {
  Open();
  ChooseAll();
  Merge().MergeStatus = -1;
  Merge().AbortRequested = true;
  Merge().DocUsed(1) = false;
  Merge().DocFileNumber(3) = 7;
  Merge().DocHeader(1) = "x";
  Merge().DocSecondLine(2) = "y";
  Merge().DocXrefStart(1) = 3;
  Window().ResetSlots();
  EXPECT_EQ(Merge().MergeStatus, 2);
  EXPECT_FALSE(Merge().JobRunning);
  EXPECT_FALSE(Merge().AbortRequested);
  EXPECT_TRUE(Merge().DocUsed(1));
  EXPECT_EQ(Merge().DocFileNumber(3), 0);
  EXPECT_EQ(Merge().DocHeader(1) + Merge().DocSecondLine(2), "");
  EXPECT_EQ(Merge().DocXrefStart(1), -1);
  EXPECT_EQ(Label("txtFileName0") + Label("txtFileName1") + Label("txtFileName2") + Marks(), ",,");
  EXPECT_NE(FileName(1), "");
}

TEST_F(WindowTest, CaptionsAreTheDesignsOnes) {
  Open();
  EXPECT_EQ(Find<QGroupBox>("frameFileIn1")->title().toStdString(), "1st input file ");
  EXPECT_EQ(Find<QGroupBox>("frameFileIn2")->title().toStdString(), "2nd input file");
  EXPECT_EQ(Find<QGroupBox>("frameFileOut")->title().toStdString(), "Output (result) file");
  for (const char* name : {"cmdInput1", "cmdInput2", "cmdOutput"}) EXPECT_EQ(Caption(name), "Select...");
  for (const char* name : {"CmdClr1", "CmdClr2", "CmdClrOut"}) EXPECT_EQ(Caption(name), "Clear");
  EXPECT_EQ(Caption("cmdOK"), "Go! (launch PDF merge)");
  EXPECT_EQ(Caption("cmdCancel"), "Exit");
  EXPECT_EQ(Window().windowTitle().toStdString(), "Folioweld (version 1.1.9)");
}

TEST_F(WindowTest, TheClientAreaIsTheDesignsAndCannotBeResized) {
  Open();
  const QSize client = Window().centralWidget()->size();
  EXPECT_GE(client.width(), 754);
  EXPECT_GE(client.height(), 456);
  EXPECT_NEAR(client.width() * 456.0 / 754, client.height(), 1);
  EXPECT_EQ(Window().minimumSize(), Window().maximumSize());
  EXPECT_EQ(Window().DesignWidth, Window().frameGeometry().width() * 15);
}

TEST_F(WindowTest, ALargerFontMakesTheWindowGrowSoThatEveryCaptionFits) {
  Open();
  QFont font = Window().font();
  font.setPixelSize(40);
  Window().setFont(font);
  EXPECT_GT(Window().centralWidget()->width(), 754);
  const auto* cancel = Find<CaptionButton>("cmdCancel");
  EXPECT_TRUE(cancel->Fits(QStringLiteral("Close display window"), cancel->size()));
}

TEST_F(WindowTest, MaximisingTheWindowRestoresIt) {
  Open();
  const QSize size = Window().size();
  Window().setWindowState(Qt::WindowMaximized);
  EXPECT_TRUE(WaitFor([this] { return Window().windowState() == Qt::WindowNoState; }));
  EXPECT_TRUE(WaitFor([&] { return Window().size() == size; }));
}

TEST_F(WindowTest, AMinimisedWindowIsLeftMinimised) {
  Open();
  Window().setWindowState(Qt::WindowMinimized);
  Window().Form_Resize();
  EXPECT_EQ(Window().windowState(), Qt::WindowMinimized);
}

}  // namespace
}  // namespace folioweld::testing
