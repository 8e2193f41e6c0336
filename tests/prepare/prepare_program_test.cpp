// The real program.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/prepare/address_sanitizer.h"
#include "tests/prepare/prepare_fixture.h"
#include "tests/support/child_program.h"

namespace folioweld {
namespace {

using ::testing::AllOf;
using testing::ChildProgram;
using ::testing::HasSubstr;
using testing::SimpleDocument;
using ::testing::StartsWith;

class PrepareProgram : public testing::PrepareFixture {
 protected:
  PrepareProgram() {
    setup_.Program = FOLIOWELD_PREPARE_PROGRAM;
    setup_.Folder = folder_.Path();
  }

  /// Its status and what it told; "in.pdf" is open as 8 and "out.pdf", empty, as 9.
  std::pair<int, std::string> RunWithDescriptors(std::vector<std::string> arguments) {
    folder_.Write("out.pdf", "");
    setup_.BeforeStart = [in = In(), out = Out()] {
      ::dup2(::open(in.c_str(), O_RDONLY), 8);
      ::dup2(::open(out.c_str(), O_RDWR), 9);
    };
    arguments.emplace_back("--descriptors=8,9");
    setup_.Arguments = std::move(arguments);
    ChildProgram program(setup_);
    const int status = program.Wait();
    return {status, program.Errors()};
  }

  ChildProgram::Setup setup_;
};

TEST_F(PrepareProgram, TellsItsVersionAndHowItIsUsed) {
  setup_.Arguments = {"--version"};
  ChildProgram version(setup_);
  EXPECT_EQ(version.Wait(), 0);
  EXPECT_THAT(version.Output(), AllOf(StartsWith("folioweld-prepare "), HasSubstr(" with libqpdf ")));
  setup_.Arguments = {"--help"};
  ChildProgram help(setup_);
  EXPECT_EQ(help.Wait(), 0);
  EXPECT_THAT(help.Output(), HasSubstr("folioweld-prepare [OPTION]... INPUT OUTPUT\n"));
}

TEST_F(PrepareProgram, EndsWith2WhenItIsNotUnderstood) {
  setup_.Arguments = {"alone.pdf"};
  ChildProgram program(setup_);
  EXPECT_EQ(program.Wait(), 2);
  EXPECT_EQ(program.Errors(),
            "folioweld-prepare: an INPUT and an OUTPUT are needed, and nothing else (see folioweld-prepare "
            "--help)\n");
}

TEST_F(PrepareProgram, WritesToAnOpenFileAndTellsAProgram) {
  folder_.Write("in.pdf", Compressed(SimpleDocument(1, "kept")));
  const auto [status, told] = RunWithDescriptors({"--limits=1073741824,60,67108864"});
  EXPECT_EQ(status, 0);
  EXPECT_THAT(told, StartsWith("reason: cross-reference stream\ndid: "));
  EXPECT_THAT(testing::ReadFile(Out()), HasSubstr("kept 1"));
}

TEST_F(PrepareProgram, TellsAProgramWhyThereIsNoCopy) {
  folder_.Write("in.pdf", Protected(SimpleDocument(1), "word"));
  const auto [status, told] = RunWithDescriptors({});
  EXPECT_EQ(status, 1);
  EXPECT_EQ(told, "failed: it needs a password\n");
}

TEST_F(PrepareProgram, WritesNoMoreThanItsLimit) {
  folder_.Write("in.pdf", Compressed(SimpleDocument(100)));
  const auto [status, told] = RunWithDescriptors({"--limits=1073741824,60,4096"});
  EXPECT_EQ(status, 1);
  EXPECT_EQ(told, "failed: its copy cannot be written: File too large\n");
}

#ifndef UNDER_ADDRESS_SANITIZER
TEST_F(PrepareProgram, TakesNoMoreMemoryThanItsLimit) {
  std::string text;
  text.resize(30'000'000, 'x');
  folder_.Write("in.pdf", SimpleDocument(1, text));
  const auto [status, told] = RunWithDescriptors({"--limits=41943040,60,67108864"});
  EXPECT_EQ(status, 1);
  EXPECT_EQ(told, "failed: there is not enough memory for it\n");
}
#endif

}  // namespace
}  // namespace folioweld
