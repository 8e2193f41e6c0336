#include "prepare/carry/carry_run.h"

#include <cerrno>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "prepare/carry/appending.h"
#include "tests/prepare/address_sanitizer.h"
#include "tests/prepare/carry_fixture.h"
#include "tests/support/child_program.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

using ::testing::AllOf;
using testing::ChildProgram;
using testing::DocumentBuilder;
using testing::FaultingSystem;
using ::testing::HasSubstr;
using testing::PagesDocument;
using testing::ReadFile;
using ::testing::StartsWith;

class CarryRunTest : public testing::CarryFixture {
 protected:
  CarryRunTest() {
    list_ = Join({PagesDocument(1).Build(), PagesDocument(2).Build()});
    joined_ = ReadFile(ResultPath());
  }

  CarryStatus Run(const std::string& listBytes) {
    system_.Take();
    const std::size_t handles = testing::OpenHandles();
    const std::string list = folder_.Write("list", listBytes);
    CarryArguments arguments = ParseCarryArguments(
        {"--descriptors=" + std::to_string(::open(ResultPath().c_str(), O_RDWR | O_CLOEXEC)) + "," +
         std::to_string(::open(list.c_str(), O_RDONLY | O_CLOEXEC))});
    const CarryStatus status = RunCarry(system_, arguments);
    ::close(arguments.Joined);
    ::close(arguments.List);
    EXPECT_EQ(testing::OpenHandles(), handles);
    EXPECT_THAT(ReadFile(ResultPath()), StartsWith(joined_));
    return status;
  }
  CarryStatus Run() { return Run(WriteJoinedDocuments(list_)); }

  void ExpectNothing(const std::string& why) {
    EXPECT_EQ(Run(), kNothingCarried);
    EXPECT_THAT(system_.Take(), StartsWith("failed: " + why));
    EXPECT_EQ(ReadFile(ResultPath()), joined_);
  }

  std::vector<JoinedDocument> list_;
  std::string joined_;
};

TEST_F(CarryRunTest, AppendsARevision) {
  EXPECT_EQ(Run(), kCarried);
  EXPECT_THAT(system_.Take(), AllOf(StartsWith("did: "), HasSubstr(" objects added or changed\n")));
  EXPECT_THAT(Said("qpdf --check \"$file\""), HasSubstr("No syntax or stream encoding errors found"));
  EXPECT_THAT(Said("pdfinfo \"$file\""), HasSubstr("Pages:           3\n"));
}

TEST_F(CarryRunTest, ADocumentThatChangedSinceLosesWhatItsCatalogHolds) {
  folder_.Write("2.pdf", PagesDocument(2, "/Lang (en)").Build());
  EXPECT_EQ(Run(), kCarriedWithLosses);
  EXPECT_THAT(system_.Take(), HasSubstr("\nlost: 2: catalog: it was changed since it was joined\n"));
}

TEST_F(CarryRunTest, ADocumentThatIsGoneLosesWhatItsCatalogHolds) {
  ::unlink(list_[0].Path.c_str());
  EXPECT_EQ(Run(), kCarriedWithLosses);
  EXPECT_THAT(system_.Take(),
              HasSubstr("\nlost: 1: catalog: it cannot be opened: No such file or directory\n"));
}

TEST_F(CarryRunTest, ACatalogThatCannotBeReadIsLostAsAWhole) {
  const auto expectLoss = [&](const std::string& document, const std::string& why) {
    list_[0].Path = folder_.Write("1.pdf", document);
    list_[0].Known = system_.GetFileAttributes(list_[0].Path).Value();
    folder_.Write("joined.pdf", joined_);
    EXPECT_EQ(Run(), kCarriedWithLosses);
    EXPECT_THAT(system_.Take(), HasSubstr("\nlost: 1: catalog: " + why));
  };
  std::string broken = PagesDocument(1).Build();
  broken.replace(broken.find("/Root 1"), 7, "/Root 9");
  // The rest is in libqpdf's words from its version 12 on.
  expectLoss(broken, "");
  const std::string deep = "/Deep " + std::string(150, '[') + std::string(150, ']');
  expectLoss(PagesDocument(1, deep).Build(), "its catalog is too deep\n");
}

TEST_F(CarryRunTest, NothingIsWrittenWithoutTheListOfThisFile) {
  const std::string list = WriteJoinedDocuments(list_);
  for (const std::string& bytes : {std::string(), std::string("x"), list.substr(0, list.size() - 3)}) {
    EXPECT_EQ(Run(bytes), kNothingCarried);
    EXPECT_THAT(system_.Take(), HasSubstr("failed: the list of documents is broken\n"));
  }
  list_[1].FirstObject = 1000;
  ExpectNothing("the list of documents is not that of the joined file\n");
}

TEST_F(CarryRunTest, NothingIsWrittenToAFileThatLibqpdfDoesNotRead) {
  joined_ = folder_.Write("joined.pdf", "%PDF-1.4\nnothing");
  joined_ = ReadFile(joined_);
  ExpectNothing("");
}

TEST_F(CarryRunTest, NothingIsWrittenWhereTheNumbersDoNotSuffice) {
  auto document = PagesDocument(1);
  document.Free(349'999);
  list_ = Join({document.Build()});
  joined_ = ReadFile(ResultPath());
  ExpectNothing("the file would have more than 350000 object numbers\n");
}

TEST_F(CarryRunTest, NothingIsWrittenToAFileThatWouldGetTooLong) {
  Carry({PagesDocument(1).Build()}, [](Revision& revision) {
    EXPECT_THROW(static_cast<void>(RevisionBytes(revision, 2'147'483'600)), NotCarried);
  });
}

TEST_F(CarryRunTest, AFullDiskIsTold) {
  system_.Decide = FaultingSystem::Failing("WriteFile", ENOSPC);
  ExpectNothing("it cannot be written: No space left on device\n");
}

TEST_F(CarryRunTest, EveryCallThatFailsIsTold) {
  std::size_t calls = 0;
  system_.Decide = [&](const FaultingSystem::Call& /*call*/, std::size_t /*index*/) {
    ++calls;
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(Run(), kCarried);
  for (std::size_t failing = 0; failing < calls; ++failing) {
    folder_.Write("joined.pdf", joined_);
    std::size_t call = 0;
    std::string name;
    system_.Decide = [&](const FaultingSystem::Call& made, std::size_t /*index*/) {
      if (call++ != failing) return FaultingSystem::Fault{};
      name = made.Name;
      return FaultingSystem::Fault{EIO};
    };
    const CarryStatus status = Run();
    const bool told = status == kNothingCarried || status == kCarriedWithLosses;
    EXPECT_TRUE(told || name == "CloseHandle" || name == "PreferLargePages") << failing << name;
  }
}

TEST_F(CarryRunTest, TheRealProgramDoesItWithTheFilesThatItIsGiven) {
  ChildProgram::Setup setup;
  setup.Program = FOLIOWELD_CARRY_PROGRAM;
  setup.Folder = folder_.Path();
  setup.Arguments = {"--version"};
  ChildProgram version(setup);
  EXPECT_EQ(version.Wait(), 0);
  EXPECT_THAT(version.Output(), AllOf(StartsWith("folioweld-carry "), HasSubstr(" with libqpdf ")));
  setup.Arguments = {"--nothing"};
  ChildProgram nothing(setup);
  EXPECT_EQ(nothing.Wait(), 2);
  EXPECT_THAT(nothing.Errors(), HasSubstr("the option \"--nothing\" is unknown"));
  const std::string list = folder_.Write("list", WriteJoinedDocuments(list_));
  setup.BeforeStart = [joined = ResultPath(), list] {
    ::dup2(::open(joined.c_str(), O_RDWR), 8);
    ::dup2(::open(list.c_str(), O_RDONLY), 9);
  };
  setup.Arguments = {"--descriptors=8,9", "--limits=1000000000,60,1000000"};
  ChildProgram run(setup);
  EXPECT_EQ(run.Wait(), 0);
  EXPECT_THAT(run.Errors(), StartsWith("did: "));
  EXPECT_THAT(ReadFile(ResultPath()), StartsWith(joined_));
}

}  // namespace
}  // namespace folioweld
