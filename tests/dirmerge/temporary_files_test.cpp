#include "dirmerge/temporary_files.h"

#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "tests/dirmerge/failing_memory.h"
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
  std::function<void(const std::string&)> killer_ = [this](const std::string& name) {
    EXPECT_TRUE(Exists(name)) << "told before the deletion";
    killed_.push_back(name);
  };
};

TEST_F(TemporaryFilesTest, HighestIndexIsMinusOneAtFirst) {
  const TemporaryFiles temporaries(files_, killer_);
  EXPECT_EQ(temporaries.Highest(), -1);
}

TEST_F(TemporaryFilesTest, GrowMakesTheIndexTheHighestOne) {
  TemporaryFiles temporaries(files_, killer_);
  EXPECT_TRUE(temporaries.Grow(4));
  EXPECT_EQ(temporaries.Highest(), 4);
  EXPECT_EQ(temporaries.Name(4), "");
}

TEST_F(TemporaryFilesTest, GrowEndsAtSixteenBits) {
  TemporaryFiles temporaries(files_, killer_);
  EXPECT_TRUE(temporaries.Grow(std::numeric_limits<std::int16_t>::max()));
  EXPECT_FALSE(temporaries.Grow(std::numeric_limits<std::int16_t>::max() + 1));
  EXPECT_EQ(temporaries.Highest(), std::numeric_limits<std::int16_t>::max());
}

TEST_F(TemporaryFilesTest, GrowFailsWhenMemoryRunsOutAndKeepsWhatIsThere) {
  TemporaryFiles temporaries(files_, killer_);
  ASSERT_TRUE(temporaries.Grow(0));
  temporaries.SetCreated(0, folder_.Write("a", ""));
  {
    const testing::FailingMemory failing(32768, 100'000'000);
    EXPECT_FALSE(temporaries.Grow(20000));
  }
  EXPECT_EQ(temporaries.Highest(), 0);
  EXPECT_EQ(temporaries.Name(0), folder_.File("a"));
}

TEST_F(TemporaryFilesTest, AFileIsTakenOverWithoutAskingForMemory) {
  {
    TemporaryFiles temporaries(files_, killer_);
    ASSERT_TRUE(temporaries.Grow(0));
    std::string name = folder_.Write("a", "");
    const testing::FailingMemory failing(name.size(), 1000);
    temporaries.SetCreated(0, std::move(name));
  }
  EXPECT_FALSE(Exists(folder_.File("a")));
}

TEST_F(TemporaryFilesTest, CreatedFilesAreDeletedInTheOrderOfTheirIndexAtTheEnd) {
  const std::string a = folder_.Write("a", "1");
  const std::string b = folder_.Write("b", "2");
  {
    TemporaryFiles temporaries(files_, killer_);
    ASSERT_TRUE(temporaries.Grow(1));
    temporaries.SetCreated(1, a);
    temporaries.SetCreated(0, b);
    EXPECT_EQ(temporaries.Name(1), a);
  }
  EXPECT_EQ(killed_, (std::vector<std::string>{b, a}));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(TemporaryFilesTest, EachFileIsDeletedOnce) {
  folder_.Write("a", "");
  {
    TemporaryFiles temporaries(files_, killer_);
    ASSERT_TRUE(temporaries.Grow(0));
    temporaries.SetCreated(0, folder_.File("a"));
    temporaries.DeleteAll();
    EXPECT_FALSE(Exists(folder_.File("a")));
    folder_.Write("a", "somebody else's");
  }
  EXPECT_EQ(killed_.size(), 1U);
  EXPECT_TRUE(Exists(folder_.File("a")));
}

TEST_F(TemporaryFilesTest, FileIsDeletedEvenWhenItsDeletionCannotBeTold) {
  {
    TemporaryFiles temporaries(files_, [](const std::string&) { throw std::bad_alloc(); });
    ASSERT_TRUE(temporaries.Grow(0));
    temporaries.SetCreated(0, folder_.Write("a", ""));
  }
  EXPECT_FALSE(Exists(folder_.File("a")));
}

TEST_F(TemporaryFilesTest, DeletionGoesOnAfterAFileThatCannotBeDeleted) {
  folder_.Write("a", "text");
  folder_.Write("b", "text");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{call.Name == "DeleteFile" && call.Path == folder_.File("a") ? EACCES : 0, 0};
  };
  {
    TemporaryFiles temporaries(files_, killer_);
    ASSERT_TRUE(temporaries.Grow(1));
    temporaries.SetCreated(0, folder_.File("a"));
    temporaries.SetCreated(1, folder_.File("b"));
  }
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"a"});
  EXPECT_EQ(ReadFile(folder_.File("a")), "") << "what cannot be deleted is emptied";
}

}  // namespace
}  // namespace folioweld
