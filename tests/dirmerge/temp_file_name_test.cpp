#include <cerrno>
#include <cstdint>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "dirmerge/paths.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;
using testing::TempFolder;

/// A system whose random numbers are given.
class NumberedSystem : public FaultingSystem {
 public:
  SystemResult<std::uint32_t> RandomNumber() override {
    ++Asked;
    return Next++;
  }
  std::uint32_t Next = 0;
  int Asked = 0;
};

class TempFileName : public ::testing::Test {
 protected:
  [[nodiscard]] static bool Matches(const std::string& path, const std::string& pattern) {
    return std::regex_match(path, std::regex(pattern));
  }

  TempFolder folder_;
  FaultingSystem system_;
};

TEST_F(TempFileName, IsThePrefixFourHexadecimalDigitsAndTmp) {
  const std::string name = MakeTempFileName(system_, folder_.Path(), "Pdf", "");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/Pdf[0-9A-F]{4}\\.tmp")) << name;
}

TEST_F(TempFileName, NamesANewEmptyFileThatOnlyItsOwnerCanRead) {
  const std::string name = MakeTempFileName(system_, folder_.Path(), "Pdf", "");
  EXPECT_EQ(ReadFile(name), "");
  struct stat status {};
  ASSERT_EQ(::stat(name.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
  EXPECT_EQ(folder_.Names().size(), 1U);
}

TEST_F(TempFileName, GivesADifferentNameEveryTime) {
  const std::string first = MakeTempFileName(system_, folder_.Path(), "Pdf", "");
  const std::string second = MakeTempFileName(system_, folder_.Path(), "Pdf", "");
  EXPECT_NE(first, second);
  EXPECT_EQ(folder_.Names().size(), 2U);
}

TEST_F(TempFileName, EmptyPrefixMeansKem) {
  const std::string name = MakeTempFileName(system_, folder_.Path(), "", "");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/KEM[0-9A-F]{4}\\.tmp")) << name;
}

TEST_F(TempFileName, OnlyThreeCharactersOfThePrefixAreUsed) {
  EXPECT_TRUE(Matches(MakeTempFileName(system_, folder_.Path(), "Folio", ""), ".*/Fol[0-9A-F]{4}\\.tmp"));
  EXPECT_TRUE(Matches(MakeTempFileName(system_, folder_.Path(), "Fo", ""), ".*/Fo[0-9A-F]{4}\\.tmp"));
}

TEST_F(TempFileName, EmptyFolderMeansTheSystemsOne) {
  system_.Environment = {{"TMPDIR", folder_.Path()}};
  const std::string name = MakeTempFileName(system_, "", "Pdf", "");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/Pdf[0-9A-F]{4}\\.tmp")) << name;
}

TEST_F(TempFileName, RelativeFolderIsMadeFull) {
  folder_.MakeFolder("scratch");
  const CurrentDirectoryKeeper keeper(system_);
  ASSERT_FALSE(system_.SetCurrentDirectory(folder_.Path()));
  const std::string name = MakeTempFileName(system_, "scratch", "Pdf", "");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/scratch/Pdf[0-9A-F]{4}\\.tmp")) << name;
}

TEST_F(TempFileName, SeparatorAtTheFoldersEndIsNotDoubled) {
  const std::string name = MakeTempFileName(system_, folder_.Path() + "/", "Pdf", "");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/Pdf[0-9A-F]{4}\\.tmp")) << name;
}

TEST_F(TempFileName, IsEmptyWhenTheFolderCannotBeMadeFull) {
  system_.Decide = FaultingSystem::Failing("GetCurrentDirectory", ENOENT);
  EXPECT_EQ(MakeTempFileName(system_, "scratch", "Pdf", ""), "");
}

TEST_F(TempFileName, IsEmptyWhenTheFolderDoesNotExist) {
  EXPECT_EQ(MakeTempFileName(system_, folder_.File("missing"), "Pdf", ""), "");
}

TEST_F(TempFileName, IsEmptyWhenTheSystemCreatesNoFile) {
  system_.Decide = FaultingSystem::Failing("CreateFile", ENOSPC);
  EXPECT_EQ(MakeTempFileName(system_, folder_.Path(), "Pdf", ""), "");
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TempFileName, IsEmptyWithoutARandomNumber) {
  system_.Decide = FaultingSystem::Failing("RandomNumber", EIO);
  EXPECT_EQ(MakeTempFileName(system_, folder_.Path(), "Pdf", ""), "");
}

TEST_F(TempFileName, LeavesNoFileBehindWhenTheCloseFails) {
  system_.Decide = FaultingSystem::Failing("CloseHandle", EIO);
  EXPECT_EQ(MakeTempFileName(system_, folder_.Path(), "Pdf", ""), "");
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TempFileName, TriesAgainAfterAnInterruption) {
  bool interrupted = false;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Name != "CreateFile" || interrupted) return FaultingSystem::Fault{};
    interrupted = true;
    return FaultingSystem::Fault{EINTR, 0};
  };
  EXPECT_TRUE(Exists(MakeTempFileName(system_, folder_.Path(), "Pdf", "")));
}

TEST_F(TempFileName, NeverTakesOverAnExistingFile) {
  NumberedSystem system;
  system.Next = 0x12345;
  folder_.Write("Pdf2345.tmp", "somebody else's");
  EXPECT_EQ(MakeTempFileName(system, folder_.Path(), "Pdf", ""), folder_.File("Pdf2346.tmp"));
  EXPECT_EQ(ReadFile(folder_.File("Pdf2345.tmp")), "somebody else's");
}

TEST_F(TempFileName, IsNeverCreatedThroughALink) {
  NumberedSystem system;
  ASSERT_EQ(::symlink(folder_.File("victim").c_str(), folder_.File("Pdf0000.tmp").c_str()), 0);
  EXPECT_EQ(MakeTempFileName(system, folder_.Path(), "Pdf", ""), folder_.File("Pdf0001.tmp"));
  EXPECT_FALSE(Exists(folder_.File("victim")));
}

TEST_F(TempFileName, DigitsWrapAroundAfterTheLastNumber) {
  NumberedSystem system;
  system.Next = 0xFFFF;
  folder_.Write("PdfFFFF.tmp", "");
  EXPECT_EQ(MakeTempFileName(system, folder_.Path(), "Pdf", ""), folder_.File("Pdf0000.tmp"));
}

TEST_F(TempFileName, IsEmptyWhenEveryNameIsTaken) {
  system_.Decide = FaultingSystem::Failing("CreateFile", EEXIST);
  EXPECT_EQ(MakeTempFileName(system_, folder_.Path(), "Pdf", ""), "");
}

TEST_F(TempFileName, ExtensionReplacesTheUsualOne) {
  const std::string name = MakeTempFileName(system_, folder_.Path(), "Pdf", "pdf");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/Pdf[0-9A-F]{4}\\.pdf")) << name;
  EXPECT_EQ(ReadFile(name), "");
  EXPECT_EQ(folder_.Names().size(), 1U);
}

TEST_F(TempFileName, ExtensionMayBringItsOwnDot) {
  const std::string name = MakeTempFileName(system_, folder_.Path(), "Pdf", ".pdf");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/Pdf[0-9A-F]{4}\\.pdf")) << name;
}

TEST_F(TempFileName, ExtensionOfTheCreatedFileIsNoSecondFile) {
  const std::string name = MakeTempFileName(system_, folder_.Path(), "Pdf", "tmp");
  EXPECT_TRUE(Matches(name, folder_.Path() + "/Pdf[0-9A-F]{4}\\.tmp")) << name;
  EXPECT_TRUE(Exists(name));
}

TEST_F(TempFileName, NextAttemptFollowsWhenTheRenamedFileExists) {
  NumberedSystem system;
  folder_.Write("Pdf0000.pdf", "somebody else's");
  EXPECT_EQ(MakeTempFileName(system, folder_.Path(), "Pdf", "pdf"), folder_.File("Pdf0001.pdf"));
  EXPECT_EQ(ReadFile(folder_.File("Pdf0000.pdf")), "somebody else's");
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"Pdf0000.pdf", "Pdf0001.pdf"}));
}

TEST_F(TempFileName, IsEmptyAfterAThousandFailedAttempts) {
  NumberedSystem system;
  system.Decide = FaultingSystem::Failing("MoveFile", EEXIST);
  EXPECT_EQ(MakeTempFileName(system, folder_.Path(), "Pdf", "pdf"), "");
  EXPECT_EQ(system.Asked, 1000);
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TempFileName, ThousandthAttemptStillCounts) {
  NumberedSystem system;
  int moves = 0;
  system.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("MoveFile") && ++moves < 1000) return FaultingSystem::Fault{EEXIST, 0};
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(MakeTempFileName(system, folder_.Path(), "Pdf", "pdf"), folder_.File("Pdf03E7.pdf"));
}

}  // namespace
}  // namespace folioweld
