#include "dirmerge/temporary_files.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "tests/support/failing_memory.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::ReadFile;
using testing::TempFolder;

class TemporaryFilesTest : public ::testing::Test {
 protected:
  TempFolder folder_;
  FaultingSystem system_;
  FileModule files_{system_};
  std::vector<std::string> killed_;
  std::vector<std::string> noticed_;
  const Logging logging_{[this](const std::string& line) {
                           ASSERT_GT(line.size(), 8U);
                           EXPECT_EQ(line.substr(0, 7) + line.back(), " Kill \"\"");
                           killed_.push_back(line.substr(7, line.size() - 8));
                           EXPECT_TRUE(Exists(killed_.back())) << "told before the deletion";
                         },
                         [this](const std::string& line) { noticed_.push_back(line); }};

  /// Hands a file over as it is now.
  void Create(TemporaryFiles& temporaries, int index, const std::string& path) {
    temporaries.SetCreated(index, path, system_.GetLinkAttributes(path).Value());
  }
};

TEST_F(TemporaryFilesTest, HighestIndexIsMinusOneAtFirst) {
  const TemporaryFiles temporaries(files_, logging_);
  EXPECT_EQ(temporaries.Highest(), -1);
}

TEST_F(TemporaryFilesTest, GrowMakesTheIndexTheHighestOne) {
  TemporaryFiles temporaries(files_, logging_);
  EXPECT_TRUE(temporaries.Grow(4));
  EXPECT_EQ(temporaries.Highest(), 4);
  EXPECT_EQ(temporaries.Name(4), "");
}

TEST_F(TemporaryFilesTest, GrowEndsAtSixteenBits) {
  TemporaryFiles temporaries(files_, logging_);
  EXPECT_TRUE(temporaries.Grow(std::numeric_limits<std::int16_t>::max()));
  EXPECT_FALSE(temporaries.Grow(std::numeric_limits<std::int16_t>::max() + 1));
  EXPECT_EQ(temporaries.Highest(), std::numeric_limits<std::int16_t>::max());
}

TEST_F(TemporaryFilesTest, GrowFailsWhenMemoryRunsOutAndKeepsWhatIsThere) {
  TemporaryFiles temporaries(files_, logging_);
  ASSERT_TRUE(temporaries.Grow(0));
  Create(temporaries, 0, folder_.Write("a", ""));
  {
    const testing::FailingMemory failing(32768, 100'000'000);
    EXPECT_FALSE(temporaries.Grow(20000));
  }
  EXPECT_EQ(temporaries.Highest(), 0);
  EXPECT_EQ(temporaries.Name(0), folder_.File("a"));
}

TEST_F(TemporaryFilesTest, AFileIsTakenOverEvenWhenTheMemoryRunsOutThere) {
  {
    TemporaryFiles temporaries(files_, logging_);
    ASSERT_TRUE(temporaries.Grow(0));
    std::string name = folder_.Write("a", "");
    const FileInformation made = system_.GetLinkAttributes(name).Value();
    const testing::FailingMemory failing(name.size(), 1000);
    EXPECT_THROW(temporaries.SetCreated(0, std::move(name), made), std::bad_alloc);
  }
  EXPECT_FALSE(Exists(folder_.File("a")));
}

TEST_F(TemporaryFilesTest, CreatedFilesAreDeletedInTheOrderOfTheirIndexAtTheEnd) {
  const std::string a = folder_.Write("a", "1");
  const std::string b = folder_.Write("b", "2");
  {
    TemporaryFiles temporaries(files_, logging_);
    ASSERT_TRUE(temporaries.Grow(1));
    Create(temporaries, 1, a);
    Create(temporaries, 0, b);
    EXPECT_EQ(temporaries.Name(1), a);
  }
  EXPECT_EQ(killed_, (std::vector<std::string>{b, a}));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TemporaryFilesTest, EachFileIsDeletedOnce) {
  folder_.Write("a", "");
  {
    TemporaryFiles temporaries(files_, logging_);
    ASSERT_TRUE(temporaries.Grow(0));
    Create(temporaries, 0, folder_.File("a"));
    temporaries.DeleteAll();
    EXPECT_FALSE(Exists(folder_.File("a")));
    folder_.Write("a", "somebody else's");
  }
  EXPECT_EQ(killed_.size(), 1U);
  EXPECT_TRUE(Exists(folder_.File("a")));
}

TEST_F(TemporaryFilesTest, FileIsDeletedEvenWhenItsDeletionCannotBeTold) {
  {
    const Logging failing{[](const std::string&) { throw std::bad_alloc(); }, {}};
    TemporaryFiles temporaries(files_, failing);
    ASSERT_TRUE(temporaries.Grow(0));
    Create(temporaries, 0, folder_.Write("a", ""));
  }
  EXPECT_FALSE(Exists(folder_.File("a")));
}

TEST_F(TemporaryFilesTest, DeletionGoesOnAfterAFileThatCannotBeDeleted) {
  folder_.Write("a", "text");
  folder_.Write("b", "text");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{call.Is("DeleteFile") && call.Path == folder_.File("a") ? EACCES : 0, 0};
  };
  {
    TemporaryFiles temporaries(files_, logging_);
    ASSERT_TRUE(temporaries.Grow(1));
    Create(temporaries, 0, folder_.File("a"));
    Create(temporaries, 1, folder_.File("b"));
  }
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a"});
  EXPECT_EQ(ReadFile(folder_.File("a")), "") << "what cannot be deleted is emptied";
}

TEST_F(TemporaryFilesTest, AnotherFileInThePlaceOfOneIsLeftAloneAndNoticed) {
  {
    TemporaryFiles temporaries(files_, logging_);
    ASSERT_TRUE(temporaries.Grow(0));
    Create(temporaries, 0, folder_.Write("a", "made"));
    folder_.Write("b", "somebody else's");
    std::filesystem::rename(folder_.File("b"), folder_.File("a"));
  }
  EXPECT_EQ(ReadFile(folder_.File("a")), "somebody else's");
  EXPECT_EQ(noticed_, std::vector<std::string>{" Another file has taken the place of \"" + folder_.File("a") +
                                               "\" and is left alone"});
}

TEST_F(TemporaryFilesTest, AFileThatSomebodyGaveAFurtherNameIsNoLongerOpenedButItsNameGoes) {
  {
    TemporaryFiles temporaries(files_, logging_);
    ASSERT_TRUE(temporaries.Grow(0));
    Create(temporaries, 0, folder_.Write("a", "made"));
    std::filesystem::create_hard_link(folder_.File("a"), folder_.File("b"));
    EXPECT_EQ(files_.OpenForBinaryRead(folder_.File("a")), -1);
    EXPECT_EQ(files_.LastReason(), "another file has taken its place");
    EXPECT_EQ(files_.OpenForBinaryWrite(folder_.File("a")), -1);
  }
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"b"});
  EXPECT_TRUE(noticed_.empty());
}

TEST_F(TemporaryFilesTest, AFileWhoseModeIsAnotherNowIsNoLongerOpened) {
  TemporaryFiles temporaries(files_, logging_);
  ASSERT_TRUE(temporaries.Grow(0));
  Create(temporaries, 0, folder_.Write("a", "made"));
  ASSERT_EQ(::chmod(folder_.File("a").c_str(), 0666), 0);
  EXPECT_EQ(files_.OpenForBinaryRead(folder_.File("a")), -1);
  EXPECT_EQ(files_.OpenForBinaryWrite(folder_.File("a")), -1);
  EXPECT_EQ(ReadFile(folder_.File("a")), "made");
}

TEST_F(TemporaryFilesTest, AFileThatWasTakenAwayIsNotMadeAnew) {
  TemporaryFiles temporaries(files_, logging_);
  ASSERT_TRUE(temporaries.Grow(0));
  Create(temporaries, 0, folder_.Write("a", "made"));
  std::filesystem::remove(folder_.File("a"));
  EXPECT_EQ(files_.OpenForBinaryWrite(folder_.File("a")), -1);
  EXPECT_EQ(files_.LastReason(), "No such file or directory");
  EXPECT_TRUE(folder_.Names().empty());
  folder_.Write("a", "another");
}

TEST_F(TemporaryFilesTest, AfterItsDeletionItsNameIsLikeAnyOther) {
  TemporaryFiles temporaries(files_, logging_);
  ASSERT_TRUE(temporaries.Grow(0));
  Create(temporaries, 0, folder_.Write("a", "made"));
  temporaries.DeleteAll();
  folder_.Write("a", "another");
  const std::int16_t file = files_.OpenForBinaryRead(folder_.File("a"));
  EXPECT_GE(file, 1);
  EXPECT_TRUE(files_.Close(file));
}

}  // namespace
}  // namespace folioweld
