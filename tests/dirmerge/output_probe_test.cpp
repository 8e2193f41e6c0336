#include "dirmerge/output_probe.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;
using testing::TempFolder;

class OutputProbeTest : public ::testing::Test {
 protected:
  [[nodiscard]] FileIdentity IdentityOf(const std::string& path) {
    return system_.GetFileAttributes(path).Value().Identity;
  }

  TempFolder folder_;
  FaultingSystem system_;
  FileModule files_{system_};
};

TEST_F(OutputProbeTest, MissingFileIsCreatedAndRemovedAgain) {
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    EXPECT_TRUE(probe.Open({}));
    EXPECT_TRUE(Exists(folder_.File("out.pdf")));
  }
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(OutputProbeTest, ExistingFileIsNotTouched) {
  folder_.Write("out.pdf", "what was there");
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    EXPECT_TRUE(probe.Open({}));
  }
  EXPECT_EQ(ReadFile(folder_.File("out.pdf")), "what was there");
}

TEST_F(OutputProbeTest, ExistingEmptyFileStays) {
  folder_.Write("out.pdf", "");
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    EXPECT_TRUE(probe.Open({}));
  }
  EXPECT_TRUE(Exists(folder_.File("out.pdf")));
}

TEST_F(OutputProbeTest, CreatedFileStaysOnceSomethingIsInIt) {
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    ASSERT_TRUE(probe.Open({}));
    folder_.Write("out.pdf", "%PDF-");
  }
  EXPECT_EQ(ReadFile(folder_.File("out.pdf")), "%PDF-");
}

TEST_F(OutputProbeTest, CreatedFileIsRemovedOnlyOnce) {
  OutputProbe probe(files_, folder_.File("out.pdf"));
  ASSERT_TRUE(probe.Open({}));
  probe.RemoveEmpty();
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
  folder_.Write("out.pdf", "");
  probe.RemoveEmpty();
  EXPECT_TRUE(Exists(folder_.File("out.pdf"))) << "made by somebody else";
}

TEST_F(OutputProbeTest, FileThatTookTheCreatedOnesPlaceStays) {
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    ASSERT_TRUE(probe.Open({}));
    folder_.Write("other", "");
    std::filesystem::rename(folder_.File("other"), folder_.File("out.pdf"));
  }
  EXPECT_TRUE(Exists(folder_.File("out.pdf")));
}

TEST_F(OutputProbeTest, NothingIsRemovedWithoutAProbe) {
  folder_.Write("out.pdf", "");
  { const OutputProbe probe(files_, folder_.File("out.pdf")); }
  EXPECT_TRUE(Exists(folder_.File("out.pdf")));
}

TEST_F(OutputProbeTest, InputUnderItsOwnNameIsRefused) {
  folder_.Write("in.pdf", "input");
  OutputProbe probe(files_, folder_.File("in.pdf"));
  EXPECT_FALSE(probe.Open({IdentityOf(folder_.File("in.pdf"))}));
  EXPECT_EQ(ReadFile(folder_.File("in.pdf")), "input");
}

TEST_F(OutputProbeTest, InputUnderTheNameOfAHardLinkIsRefused) {
  folder_.Write("in.pdf", "input");
  folder_.Write("other.pdf", "other");
  std::filesystem::create_hard_link(folder_.File("in.pdf"), folder_.File("out.pdf"));
  OutputProbe probe(files_, folder_.File("out.pdf"));
  EXPECT_FALSE(probe.Open({IdentityOf(folder_.File("other.pdf")), IdentityOf(folder_.File("in.pdf"))}));
  EXPECT_EQ(ReadFile(folder_.File("in.pdf")), "input");
}

TEST_F(OutputProbeTest, LinkIsRefusedAndWhatItLeadsToStays) {
  folder_.Write("target", "target");
  std::filesystem::create_symlink("target", folder_.File("out.pdf"));
  std::filesystem::create_symlink("missing", folder_.File("dangling.pdf"));
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    EXPECT_FALSE(probe.Open({}));
    OutputProbe dangling(files_, folder_.File("dangling.pdf"));
    EXPECT_FALSE(dangling.Open({}));
  }
  EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"dangling.pdf", "out.pdf", "target"}));
  EXPECT_EQ(ReadFile(folder_.File("target")), "target");
}

TEST_F(OutputProbeTest, FolderAndPipeAreRefused) {
  folder_.MakeFolder("folder");
  ASSERT_EQ(::mkfifo(folder_.File("pipe").c_str(), 0600), 0);
  const auto reader = system_.CreateFile(folder_.File("pipe"), OpenMode::ReadExisting);
  ASSERT_TRUE(reader.Ok());
  for (const char* name : {"folder", "pipe"}) {
    OutputProbe probe(files_, folder_.File(name));
    EXPECT_FALSE(probe.Open({})) << name;
  }
  EXPECT_FALSE(system_.CloseHandle(reader.Value()));
  EXPECT_TRUE(Exists(folder_.File("pipe")));
}

TEST_F(OutputProbeTest, PathThatLeadsNowhereIsRefused) {
  OutputProbe probe(files_, folder_.File("missing/out.pdf"));
  EXPECT_FALSE(probe.Open({}));
  OutputProbe separator(files_, folder_.File("out.pdf/"));
  EXPECT_FALSE(separator.Open({}));
}

TEST_F(OutputProbeTest, LeavesNothingWhenTheCreatedFileCannotBeExamined) {
  system_.Decide = FaultingSystem::Failing("GetFileInformationByHandle", EIO);
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    EXPECT_FALSE(probe.Open({}));
  }
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(OutputProbeTest, LeavesAnExistingFileThatCannotBeExamined) {
  folder_.Write("out.pdf", "what was there");
  system_.Decide = FaultingSystem::Failing("GetFileInformationByHandle", EIO);
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    EXPECT_FALSE(probe.Open({}));
  }
  EXPECT_EQ(ReadFile(folder_.File("out.pdf")), "what was there");
}

TEST_F(OutputProbeTest, LeavesTheCreatedFileWhenItCannotBeExaminedAgain) {
  {
    OutputProbe probe(files_, folder_.File("out.pdf"));
    ASSERT_TRUE(probe.Open({}));
    system_.Decide = FaultingSystem::Failing("GetLinkAttributes", EIO);
  }
  EXPECT_TRUE(Exists(folder_.File("out.pdf")));
}

}  // namespace
}  // namespace folioweld
