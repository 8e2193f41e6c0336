// What the program ends with and what it says, as a script sees it.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <utility>

#include "tests/batch/program_fixture.h"
#include "tests/support/carrying_script.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::ReadFile;

constexpr char kNoScreen[] =
    "folioweld: there is no screen to open a window on; to join without one: "
    "folioweld [OPTION]... [--] OUTPUT SOURCE... (see folioweld --help)\n";

class ProgramStatus : public testing::ProgramFixture {
 protected:
  void AddEncrypted(const std::string& name) const {
    testing::DocumentBuilder builder;
    builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
    builder.TrailerExtra("/Encrypt<</Filter/Standard>>");
    folder_.Write("docs/" + name, builder.Build());
  }
};

TEST_F(ProgramStatus, IsZeroWhenEverythingIsJoined) {
  for (const char* name : {"a.pdf", "b.pdf", "c.pdf"}) AddDocument(name);
  ExpectRun({folder_.File("out.pdf") + "|" + folder_.File("docs")}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 3);
}

TEST_F(ProgramStatus, TwoArgumentsMeanTheSame) {
  for (const char* name : {"a.pdf", "b.pdf", "c.pdf"}) AddDocument(name);
  ExpectRun({folder_.File("one.pdf") + "|" + folder_.File("docs")}, 0, "");
  ExpectRun({folder_.File("two.pdf"), folder_.File("docs")}, 0, "");
  EXPECT_EQ(ReadFile(folder_.File("two.pdf")), ReadFile(folder_.File("one.pdf")));
}

TEST_F(ProgramStatus, IsZeroWhenFilesThatAreNoDocumentsStandBeside) {
  AddDocument("a.pdf");
  folder_.Write("docs/notes.txt", "text");
  folder_.Write("docs/empty", "");
  ExpectRun({"out.pdf", "docs"}, 0, "");
}

TEST_F(ProgramStatus, IsThreeWhenAFileNamedLikeADocumentIsNone) {
  AddDocument("a.pdf");
  folder_.Write("docs/page.pdf", "<!DOCTYPE html>\n");
  ExpectRun({"out.pdf", "docs"}, 3,
            "[Folioweld-MergeDirectory]=>File: \"page.pdf\"  is not acceptable for merging\n"
            "[Folioweld-MergeDirectory]=>  because of file offset 0: the file does not begin with \"%PDF-\" "
            "(\"page.pdf\")\n" +
                Advice());
}

TEST_F(ProgramStatus, IsZeroWhenTheOldOutputIsEmpty) {
  AddDocument("a.pdf");
  folder_.Write("docs/joined.pdf", "");
  ExpectRun({"docs/joined.pdf", "docs"}, 0, "");
}

TEST_F(ProgramStatus, IsThreeWhenADocumentIsRefused) {
  AddDocument("a.pdf");
  folder_.Write("docs/half.pdf", "%PDF-1.4\nno comment");
  ExpectRun(
      {"out.pdf", "docs"}, 3,
      "[Folioweld-MergeDirectory]=>File: \"half.pdf\"  is not acceptable for merging\n"
      "[Folioweld-MergeDirectory]=>  because of file offset 8: the second line is no comment of at least 5 "
      "characters (\"half.pdf\")\n" +
          Advice());
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 1);
}

TEST_F(ProgramStatus, IsThreeWhenAMergeOnTheWayFails) {
  for (const char* name : {"a", "b", "d"}) AddDocument(name);
  AddBrokenDocument("c");
  const Outcome outcome = Run({"out.pdf", "docs"});
  EXPECT_EQ(outcome.Status, 3);
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 2);
  EXPECT_EQ(outcome.Errors.find("[Folioweld-cmdOK]=>The merge failed: \"" + Doc("c") + "\""), 0U);
  EXPECT_NE(outcome.Errors.find("[Folioweld-MergeDirectory]=>File: \"c\"  is missing in the output\n"
                                "[Folioweld-MergeDirectory]=>File: \"d\"  is missing in the output\n"),
            std::string::npos)
      << outcome.Errors;
}

TEST_F(ProgramStatus, IsThreeWhenADocumentIsEncrypted) {
  AddDocument("a");
  AddEncrypted("b");
  ExpectRun(
      {"out.pdf", "docs"}, 3,
      "[Folioweld-cmdOK]=>\"" + Doc("b") + "\" is encrypted: its pages will not be readable in the output\n");
}

TEST_F(ProgramStatus, LossesAreToldWhenTheLogIsHiddenToo) {
  AddDocument("a");
  AddEncrypted("b");
  StoreSetting("MenuShowLogWindow", "0");
  ExpectRun(
      {"out.pdf", "docs"}, 3,
      "[Folioweld-cmdOK]=>\"" + Doc("b") + "\" is encrypted: its pages will not be readable in the output\n");
}

TEST_F(ProgramStatus, IsOneWhenThereIsNoDocument) {
  ExpectRun({"out.pdf", "docs"}, 1, "folioweld: NO INPUT FILE!  I DIDN'T DO ANYTHING\n");
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
}

TEST_F(ProgramStatus, IsOneWhenTheFolderCannotBeEntered) {
  const std::string reason = "[Folioweld-ProcessCommandLine]=>  because of No such file or directory\n";
  ExpectRun({"out.pdf|missing"}, 1, "folioweld: the folder \"missing\" cannot be entered\n" + reason);
  ExpectRun({"out.pdf|"}, 1, "folioweld: the folder \"\" cannot be entered\n" + reason);
  ExpectRun({"out.pdf", "missing"}, 1,
            "folioweld: the source \"missing\" cannot be joined: No such file or directory\n");
  ExpectRun({"out.pdf", ""}, 1, "folioweld: the source \"\" cannot be joined: No such file or directory\n");
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
}

TEST_F(ProgramStatus, IsOneWhenTheOutputCannotBeCreated) {
  AddDocument("a");
  const std::string refused =
      " cannot be created. I cannot do this operation!\n[Folioweld-MergeDirectory]=>  because of ";
  ExpectRun({"missing/out.pdf", "docs"}, 1,
            "folioweld: The output file " + folder_.File("missing/out.pdf") + refused +
                "No such file or directory\n");
  ExpectRun({"docs", "docs"}, 1,
            "folioweld: The output file " + folder_.File("docs") + refused + "it is a folder\n");
  ExpectRun({"/dev/null", "docs"}, 1,
            "folioweld: The output file /dev/null" + refused + "it is a device, a pipe or a socket\n");
}

TEST_F(ProgramStatus, IsOneWhenTheOutputIsADocumentOfTheFolder) {
  AddDocument("a");
  AddDocument("b");
  std::filesystem::create_hard_link(Doc("a"), folder_.File("out.pdf"));
  const std::string before = ReadFile(Doc("a"));
  ExpectRun({"out.pdf", "docs"}, 1,
            "folioweld: The output file " + folder_.File("out.pdf") +
                " cannot be created. I cannot do this operation!\n"
                "[Folioweld-MergeDirectory]=>  because of it is the document \"a\"\n");
  EXPECT_EQ(ReadFile(Doc("a")), before);
}

TEST_F(ProgramStatus, IsOneWhenTheOnlyMergeFails) {
  AddBrokenDocument("a");
  AddDocument("b");
  const Outcome outcome = Run({"out.pdf", "docs"});
  EXPECT_EQ(outcome.Status, 1);
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
  const std::string last =
      "\nfolioweld: Unable to Merge and Create " + folder_.File("out.pdf") + "\n" + Advice();
  ASSERT_GT(outcome.Errors.size(), last.size());
  EXPECT_EQ(outcome.Errors.substr(outcome.Errors.size() - last.size()), last);
}

/// The program by itself, without what else is installed with it.
class ProgramAlone : public testing::ProgramFixture {
 protected:
  ProgramAlone() {
    folder_.MakeFolder("alone");
    setup_.Program = folder_.File("alone/folioweld");
    std::filesystem::copy_file(FOLIOWELD_PROGRAM, setup_.Program);
  }
};

TEST_F(ProgramAlone, IsTwoWhenDocumentsAreToBePreparedAndTheProgramForItIsMissing) {
  AddDocument("a.pdf");
  ExpectRun({"--prepare", "out.pdf", "docs"}, 2,
            "folioweld: --prepare needs the program folioweld-prepare, which is not installed (it is in the "
            "package folioweld-extras)\n");
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
}

TEST_F(ProgramAlone, IsTwoWhenSomethingIsToBeCarriedOverAndTheProgramForItIsMissing) {
  AddDocument("a.pdf");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--carry", "out.pdf", "docs"}, {"--carry", "out.pdf|docs"}, {"--carry"}}) {
    ExpectRun(arguments, 2,
              "folioweld: --carry needs the program folioweld-carry, which is not installed (it is in the "
              "package folioweld-extras)\n");
  }
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
}

TEST_F(ProgramAlone, CarriesOverWithTheProgramBesideIt) {
  AddDocument("a.pdf");
  testing::WriteCarryingScript(folder_, "alone/folioweld-carry", testing::AppendingCommands());
  ExpectRun({"plain.pdf", "docs"}, 0, "");
  ExpectRun({"--carry", "out.pdf|docs"}, 0, "");
  const std::string plain = ReadFile(folder_.File("plain.pdf"));
  EXPECT_TRUE(ReadFile(folder_.File("out.pdf")) == testing::WithAppended(plain));
}

TEST_F(ProgramAlone, EndsByTheSignalThatComesWhileItCarriesOverAndKeepsTheJoinedFile) {
  AddDocument("a.pdf");
  ExpectRun({"plain.pdf", "docs"}, 0, "");
  testing::WriteCarryingScript(
      folder_, "alone/folioweld-carry",
      "echo half >> $joined; touch '" + folder_.File("begun") + "'; exec sleep 1000");
  setup_.Arguments = {"--carry", "out.pdf", "docs"};
  testing::ChildProgram program(setup_);
  ASSERT_TRUE(testing::WaitUntil([&] { return Exists(folder_.File("begun")); }));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 128 + SIGTERM);
  EXPECT_EQ(program.Errors(),
            "[Folioweld-cmdOK]=>The output is the joined file without what --carry adds: cancelled\n"
            "folioweld: ended by SIGTERM; the output was written before\n");
  EXPECT_TRUE(ReadFile(folder_.File("out.pdf")) == ReadFile(folder_.File("plain.pdf")));
}

TEST_F(ProgramAlone, AdvisesThePackageThatIsMissing) {
  AddDocument("a.pdf");
  folder_.Write("docs/b.pdf", "no document");
  const Outcome outcome = Run({"-q", "out.pdf", "docs"});
  EXPECT_EQ(outcome.Status, 3);
  const std::string last = ")\nfolioweld --prepare joins many of these (package folioweld-extras)\n";
  EXPECT_TRUE(outcome.Errors.ends_with(last)) << outcome.Errors;
}

TEST_F(ProgramAlone, AdvisesNothingWhereEveryDocumentIsJoined) {
  AddDocument("a.pdf");
  ExpectRun({"out.pdf", "docs"}, 0, "");
}

TEST_F(ProgramStatus, IsTwoWithoutTheFormOfACommandLineAndWithoutAScreen) {
  AddDocument("a.pdf");
  ExpectRun({}, 2, kNoScreen);
  ExpectRun({"docs/a.pdf"}, 2, kNoScreen);
}

TEST_F(ProgramStatus, IsTwoWithAnEmptyOutputPartAndWithoutAScreen) {
  AddDocument("a.pdf");
  ExpectRun({"|docs"}, 2, kNoScreen);
  ExpectRun({"", "docs"}, 2, kNoScreen);
  ExpectRun({"|"}, 2, kNoScreen);
}

TEST_F(ProgramStatus, EmptyVariableOfAScreenIsNoScreen) {
  setup_.Environment.emplace_back("DISPLAY", "");
  setup_.Environment.emplace_back("WAYLAND_DISPLAY", "");
  ExpectRun({}, 2, kNoScreen);
}

TEST_F(ProgramStatus, JoiningNeedsNoScreenEvenWhereThereIsOne) {
  AddDocument("a.pdf");
  setup_.Environment.emplace_back("DISPLAY", ":4711");
  ExpectRun({"out.pdf", "docs"}, 0, "");
}

TEST_F(ProgramStatus, RelativeOutputIsTakenFromTheStartFolderAndNotFromTheMergedOne) {
  AddDocument("a.pdf");
  folder_.MakeFolder("start");
  setup_.Folder = folder_.File("start");
  ExpectRun({"out.pdf", "../docs"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("start/out.pdf")), 1);
  EXPECT_FALSE(Exists(Doc("out.pdf")));
}

TEST_F(ProgramStatus, OutputInTheMergedFolderIsNoInputAtTheFirstRunAndRefusedAtTheSecond) {
  AddDocument("a.pdf");
  ExpectRun({"docs/out.pdf", "docs"}, 0, "");
  const std::string before = ReadFile(Doc("out.pdf"));
  ExpectRun({"docs/out.pdf", "docs"}, 1,
            "folioweld: The output file " + folder_.File("docs/out.pdf") +
                " cannot be created. I cannot do this operation!\n"
                "[Folioweld-MergeDirectory]=>  because of it is the document \"out.pdf\"\n");
  EXPECT_EQ(ReadFile(Doc("out.pdf")), before);
}

TEST_F(ProgramStatus, AllFiveSettingsAreWrittenAtTheFirstRun) {
  AddDocument("a.pdf");
  ExpectRun({"out.pdf", "docs"}, 0, "");
  EXPECT_EQ(ReadFile(folder_.File("config/folioweld/settings.ini")),
            "[Settings]\nMenuSort=1\nMenuShowLogWindow=1\nDisplayOutputAfterMerge=1\nMergeCurDir=" +
                folder_.File("docs/") + "\nMergeTmpDir=" + folder_.File("tmp/") + "\n");
}

TEST_F(ProgramStatus, OrderIsTheOneKeptInTheSettings) {
  AddDocument("a");
  AddDocument("b");
  for (const auto& [order, first] : {std::pair{"1", "(a 1)"}, std::pair{"-1", "(b 1)"}}) {
    StoreSetting("MenuSort", order);
    ExpectRun({"out.pdf", "docs"}, 0, "");
    const std::string bytes = ReadFile(folder_.File("out.pdf"));
    EXPECT_LT(bytes.find(first), bytes.find(first == std::string("(a 1)") ? "(b 1)" : "(a 1)"));
    EXPECT_EQ(Setting("MenuSort"), order);
  }
}

TEST_F(ProgramStatus, RunWhoseFolderWasRemovedSaysSo) {
  AddDocument("a.pdf");
  folder_.MakeFolder("gone");
  setup_.Folder = folder_.File("gone");
  setup_.BeforeStart = [path = folder_.File("gone")] { ::rmdir(path.c_str()); };
  ExpectRun({"out.pdf", folder_.File("docs")}, 1,
            "folioweld: the folder in which the program was started cannot be had\n"
            "[Folioweld-ProcessCommandLine]=>  because of No such file or directory\n");
}

TEST_F(ProgramStatus, WorksWithClosedStandardStreams) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  AddEncrypted("d");
  ExpectRun(
      {"out.pdf", "docs"}, 3,
      "[Folioweld-cmdOK]=>\"" + Doc("d") + "\" is encrypted: its pages will not be readable in the output\n");
  setup_.ClosedStreams = {0, 1, 2};
  ExpectRun({"closed.pdf", "docs"}, 3, "");
  EXPECT_EQ(ReadFile(folder_.File("closed.pdf")), ReadFile(folder_.File("out.pdf")));
}

}  // namespace
}  // namespace folioweld
