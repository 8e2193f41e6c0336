#include "dirmerge/folder_safety.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "tests/support/faulting_system.h"

namespace folioweld {
namespace {

constexpr std::uint32_t kUser = 1000;
constexpr std::uint32_t kGroup = 100;
constexpr std::uint32_t kOverflow = 65534;

/// One folder, as the test wants it, and a user.
class OwnedFolder : public testing::FaultingSystem {
 public:
  OwnedFolder(std::uint32_t owner, std::uint32_t group, std::uint32_t mode) {
    folder_.Kind = FileKind::Directory;
    folder_.Owner = owner;
    folder_.Group = group;
    folder_.Mode = mode;
  }
  SystemResult<FileInformation> GetFileAttributes(const std::string& /*path*/) override { return folder_; }
  UserIds GetUserIds() override { return {kUser, kGroup, kOverflow}; }

 private:
  FileInformation folder_;
};

std::string WhyNot(std::uint32_t owner, std::uint32_t group, std::uint32_t mode) {
  OwnedFolder system(owner, group, mode);
  return WhyFolderIsUnsafe(system, "/");
}

TEST(WhyFolderIsUnsafe, SaysNothingOfAFolderOfTheUsersOwn) {
  for (const std::uint32_t mode : {0700U, 0755U, 0775U, 01777U, 02770U})
    EXPECT_EQ(WhyNot(kUser, kGroup, mode), "");
  EXPECT_EQ(WhyNot(kUser, 7, 0755), "");
}

TEST(WhyFolderIsUnsafe, SaysNothingOfTheSystemsUsualFolderInAContainerToo) {
  EXPECT_EQ(WhyNot(0, 0, 01777), "");
  EXPECT_EQ(WhyNot(kOverflow, kOverflow, 01777), "");
  EXPECT_EQ(WhyNot(0, 0, 0755), "");
}

TEST(WhyFolderIsUnsafe, NamesAnOwnerWhoCouldTakeAnyName) {
  for (const std::uint32_t mode : {0700U, 0777U, 01777U}) {
    EXPECT_EQ(WhyNot(1001, kGroup, mode), "the folder belongs to another user");
  }
}

TEST(WhyFolderIsUnsafe, NamesWriteAccessOfEverybodyWithoutTheStickyBit) {
  for (const std::uint32_t owner : {kUser, 0U, kOverflow}) {
    EXPECT_EQ(WhyNot(owner, kGroup, 0777), "everybody may write to the folder and it has no sticky bit");
    EXPECT_EQ(WhyNot(owner, kGroup, 0702), "everybody may write to the folder and it has no sticky bit");
  }
}

TEST(WhyFolderIsUnsafe, NamesWriteAccessOfAGroupThatIsNotTheUsersPrimaryOne) {
  EXPECT_EQ(WhyNot(kUser, 7, 0770), "another group may write to the folder and it has no sticky bit");
  EXPECT_EQ(WhyNot(kUser, kGroup, 0770), "");
  EXPECT_EQ(WhyNot(kUser, 7, 01770), "");
}

TEST(WhyFolderIsUnsafe, NamesTheSystemsErrorOfOneThatCannotBeSeenOrEntered) {
  testing::FaultingSystem system;
  EXPECT_EQ(WhyFolderIsUnsafe(system, "/no such folder/"), "No such file or directory");
  system.Decide = testing::FaultingSystem::Failing("SetCurrentDirectory", EACCES);
  EXPECT_EQ(WhyFolderIsUnsafe(system, "/"), "Permission denied");
}

TEST(WhyFolderIsUnsafe, KnowsTheRealUser) {
  const UserIds ids = testing::FaultingSystem().GetUserIds();
  EXPECT_EQ(ids.User, ::geteuid());
  EXPECT_EQ(ids.Group, ::getegid());
  EXPECT_NE(ids.OverflowUser, 0U);
}

}  // namespace
}  // namespace folioweld
