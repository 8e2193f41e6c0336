// The options of the real program, and sources other than one folder.

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "dirmerge/arguments.h"
#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

using testing::Exists;
using ::testing::HasSubstr;
using testing::ReadFile;
using ::testing::StartsWith;

class ProgramOptions : public testing::ProgramFixture {
 protected:
  void ExpectRefused(const std::vector<std::string>& arguments, const std::string& word) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.Status, 2);
    EXPECT_EQ(outcome.Output, "");
    EXPECT_THAT(outcome.Errors, HasSubstr(word));
    EXPECT_EQ(outcome.Errors.find('\n'), outcome.Errors.size() - 1) << "one line: " << outcome.Errors;
    EXPECT_FALSE(Exists(folder_.File("config/folioweld"))) << "nothing is written";
  }
};

TEST_F(ProgramOptions, HelpAndVersionGoToStandardOutputWithAndWithoutAScreen) {
  for (const bool screen : {false, true}) {
    if (screen) setup_.Environment.emplace_back("DISPLAY", ":4711");
    for (const char* option : {"-h", "--help"}) {
      const Outcome outcome = Run({option});
      EXPECT_EQ(outcome.Status, 0);
      EXPECT_EQ(outcome.Output, HelpText());
      EXPECT_EQ(outcome.Errors, "");
    }
    EXPECT_EQ(Run({"-V"}).Output, VersionText());
    EXPECT_THAT(Run({"--version"}).Output, StartsWith("folioweld 1."));
  }
  EXPECT_FALSE(Exists(folder_.File("config/folioweld")));
}

TEST_F(ProgramOptions, HelpThatCannotBeWrittenIsAFailure) {
  setup_.BeforeStart = [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  const Outcome outcome = Run({"--help"});
  EXPECT_EQ(outcome.Status, 1);
  EXPECT_THAT(outcome.Errors, HasSubstr("No space left on device"));
}

TEST_F(ProgramOptions, ThatAreUnknownOrLackTheirOperandsAreOneLine) {
  ExpectRefused({"--frobnicate", "out.pdf", "docs"}, "--frobnicate");
  ExpectRefused({"-x"}, "-x");
  ExpectRefused({"--order=size", "out.pdf", "docs"}, "--order");
  for (const char* alone : {"-v", "-q", "--order=date", "--progress=never"}) ExpectRefused({alone}, "SOURCE");
}

TEST_F(ProgramOptions, OrderHoldsForThisRunOnly) {
  AddDocument("a");
  AddDocument("b");
  ExpectRun({"out.pdf", "docs"}, 0, "");
  const std::string byName = ReadFile(folder_.File("out.pdf"));
  ExpectRun({"--order=name-reversed", "out.pdf", "docs"}, 0, "");
  EXPECT_NE(ReadFile(folder_.File("out.pdf")), byName);
  EXPECT_EQ(Setting("MenuSort"), "1");
  ExpectRun({"--order=name-reversed", "out2.pdf|docs"}, 0, "");
  EXPECT_EQ(ReadFile(folder_.File("out2.pdf")), ReadFile(folder_.File("out.pdf")));
}

TEST_F(ProgramOptions, VerboseRunPrintsTheLogAndEveryLineOnce) {
  AddDocument("a");
  folder_.Write("docs/bad.pdf", "%PDF-1.4 broken");
  StoreSetting("MenuShowLogWindow", "0");
  const Outcome outcome = Run({"-v", "out.pdf", "docs"});
  EXPECT_EQ(outcome.Status, 3);
  EXPECT_THAT(outcome.Errors, StartsWith("[Folioweld-Form_Activate]=> Command line: -v out.pdf docs\n"));
  const std::string refused = "File: \"bad.pdf\"  is not acceptable for merging\n";
  EXPECT_THAT(outcome.Errors, HasSubstr(refused));
  EXPECT_EQ(outcome.Errors.find(refused), outcome.Errors.rfind(refused));
  EXPECT_THAT(outcome.Errors, HasSubstr("=>File name(0) = \"a\"\n"));
  EXPECT_EQ(Setting("MenuShowLogWindow"), "0");
}

TEST_F(ProgramOptions, QuietRunStillTellsEveryReason) {
  AddDocument("a");
  ExpectRun({"-q", "out.pdf", "docs"}, 0, "");
  folder_.Write("docs/bad.pdf", "%PDF-1.4 broken");
  const Outcome loud = Run({"out.pdf", "docs"});
  const Outcome quiet = Run({"--quiet", "out.pdf", "docs"});
  EXPECT_EQ(quiet.Status, 3);
  EXPECT_EQ(quiet.Errors, loud.Errors);
}

TEST_F(ProgramOptions, SourcesAreJoinedInTheOrderGiven) {
  AddDocument("b");
  AddDocument("a");
  std::filesystem::rename(folder_.File("docs/b"), folder_.File("cover.pdf"));
  ExpectRun({"out.pdf", "cover.pdf", "docs/", "cover.pdf"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 3);
}

TEST_F(ProgramOptions, SourceThatDoesNotExistIsOneLineAndLeavesAnOlderOutput) {
  AddDocument("a");
  folder_.Write("out.pdf", "older");
  ExpectRun({"out.pdf", "docs", "missing"}, 1,
            "folioweld: the source \"missing\" cannot be joined: No such file or directory\n");
  EXPECT_EQ(ReadFile(folder_.File("out.pdf")), "older");
}

TEST_F(ProgramOptions, SourcesComeFromStandardInputOrAFile) {
  for (const char* name : {"a", "b"}) AddDocument(name);
  const std::string list = folder_.Write("list", std::string("docs/b\0docs/a\0", 14));
  setup_.BeforeStart = [list] { ::dup2(::open(list.c_str(), O_RDONLY), STDIN_FILENO); };
  ExpectRun({"--files0-from=-", "out.pdf"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 2);
  setup_.BeforeStart = nullptr;
  ExpectRun({"--files0-from=list", "out2.pdf"}, 0, "");
  EXPECT_EQ(ReadFile(folder_.File("out2.pdf")), ReadFile(folder_.File("out.pdf")));
  ExpectRun({"--files0-from=missing", "out3.pdf"}, 1,
            "folioweld: the list of sources \"missing\" cannot be read: No such file or directory\n");
  folder_.Write("empty", "");
  ExpectRun({"--files0-from=empty", "out3.pdf"}, 1, "folioweld: NO INPUT FILE!  I DIDN'T DO ANYTHING\n");
}

}  // namespace
}  // namespace folioweld
