#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "platform/posix_api.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

TEST(StandardStreams, ClosedOneIsFilledSoThatNoFileTakesItsNumber) {
  const testing::TempFolder folder;
  const int kept = ::dup(STDIN_FILENO);
  ASSERT_GT(kept, STDERR_FILENO);
  ::close(STDIN_FILENO);
  PosixApi system;
  const bool filled = ::fcntl(STDIN_FILENO, F_GETFD) >= 0;
  const auto file = system.CreateFile(folder.Write("a", "text"), OpenMode::ReadExisting);
  char byte = 0;
  EXPECT_EQ(::read(STDIN_FILENO, &byte, 1), 0) << "the null device";
  ::dup2(kept, STDIN_FILENO);
  ::close(kept);
  EXPECT_TRUE(filled);
  ASSERT_TRUE(file.Ok());
  EXPECT_GT(file.Value(), STDERR_FILENO);
  EXPECT_FALSE(system.CloseHandle(file.Value()));
}

TEST(StandardStreams, OpenOneStaysAsItIs) {
  const testing::TempFolder folder;
  const int kept = ::dup(STDIN_FILENO);
  const int own = ::open(folder.Write("a", "text").c_str(), O_RDONLY | O_CLOEXEC);
  ::dup2(own, STDIN_FILENO);
  { const PosixApi system; }
  char byte = 0;
  EXPECT_EQ(::read(STDIN_FILENO, &byte, 1), 1);
  EXPECT_EQ(byte, 't');
  ::dup2(kept, STDIN_FILENO);
  ::close(kept);
  ::close(own);
}

}  // namespace
}  // namespace folioweld
