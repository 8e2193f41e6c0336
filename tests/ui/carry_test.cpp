// A window that carries over what the catalogs of both documents hold.

#include <gmock/gmock.h>

#include "tests/support/carrying_script.h"
#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class CarryTest : public WindowFixture {
 protected:
  void SetUp() override {
    // By the fast one the program that carries over would take minutes.
    system_.FastClock = false;
    folder_.MakeFolder("bin");
    system_.ModulePath = folder_.File("bin/folioweld-window");
    Script(AppendingCommands());
    desktop_.EndsAtOnce = true;
    Open("--carry");
  }

  void Script(const std::string& commands) const {
    WriteCarryingScript(folder_, "bin/folioweld-carry", commands);
  }

  void ExpectIdle() {
    EXPECT_EQ(Caption("cmdCancel"), "Exit");
    EXPECT_FALSE(Window().Busy());
    EXPECT_NE(FileName(3), "");
  }

  [[nodiscard]] std::string Joined() const { return ReadFile(folder_.File("joined.pdf")); }
  [[nodiscard]] std::string Logged() {
    std::string logged;
    for (std::int16_t i = 1; i <= Window().Log().LogIndex(); ++i) logged += Window().Log().LogLine(i) + "\n";
    return logged;
  }
};

TEST_F(CarryTest, GoCarriesOverBeforeTheOutputIsShown) {
  ChooseAll();
  Click("cmdOK");
  EXPECT_THAT(Joined(), HasSubstr("%appended after byte "));
  EXPECT_THAT(Label("txtDoing2"), EndsWith("   -> OK\r\n"));
  EXPECT_EQ(desktop_.Launched.size(), 1U);
  EXPECT_THAT(dialogs_.Boxes, IsEmpty());
  ExpectIdle();
}

TEST_F(CarryTest, ALossIsAWarningInTheLogAndOnTheStatusLine) {
  ChooseAll();
  Script("echo 'lost: 2: form: why' >&2; " + AppendingCommands("3"));
  Click("cmdOK");
  EXPECT_THAT(Label("txtDoing2"), EndsWith("   -> OK\r\n1 warning, see the log\r\n"));
  EXPECT_THAT(Logged(), HasSubstr("\"" + FileName(2) + "\": not wholly carried over (form: why)"));
  EXPECT_THAT(dialogs_.Boxes, IsEmpty());
  ExpectIdle();
}

TEST_F(CarryTest, CancelEndsTheCarryingAndKeepsTheJoinedFile) {
  ChooseAll();
  Script("echo half >> $joined; touch '" + folder_.File("begun") + "'; exec sleep 1000");
  AtEveryTurn([&] {
    if (Exists(folder_.File("begun")) && Caption("cmdCancel") == "CANCEL (abort)") Click("cmdCancel");
  });
  Click("cmdOK");
  EXPECT_THAT(Joined(), EndsWith("%%EOF\r\n"));
  EXPECT_THAT(Label("txtDoing2"), EndsWith("   -> OK\r\n1 warning, see the log\r\n"));
  EXPECT_THAT(Logged(), HasSubstr("The output is the joined file without what --carry adds: cancelled"));
  EXPECT_THAT(desktop_.Launched, IsEmpty());
  ExpectIdle();
}

TEST_F(CarryTest, ADroppedFolderIsCarriedOverToo) {
  folder_.MakeFolder("docs");
  for (const char* name : {"docs/a.pdf", "docs/b.pdf", "docs/c.pdf"}) {
    folder_.Write(name, SimpleDocument(1, name));
  }
  dialogs_.SaveAnswers = {folder_.File("joined.pdf")};
  DraggedFiles dragged;
  dragged.Paths = {folder_.File("docs")};
  dragged.Entries = 1;
  Window().ProcessOLEDragDrop(-1, dragged, true);
  EXPECT_THAT(Joined(), HasSubstr("%appended after byte "));
}

TEST_F(CarryTest, AWindowThatPreparesCarriesOverAsWell) {
  Open("--prepare");
  ChooseAll();
  Click("cmdOK");
  EXPECT_THAT(Joined(), HasSubstr("%appended after byte "));
}

TEST_F(CarryTest, WithoutTheWishNothingIsAppended) {
  Open();
  ChooseAll();
  Click("cmdOK");
  EXPECT_THAT(Joined(), Not(HasSubstr("%appended")));
}

}  // namespace
}  // namespace folioweld::testing
