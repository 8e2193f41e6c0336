// The program is told to stop at any moment of a run: before it has begun, while it joins, when it is done.

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

using testing::ChildProgram;
using testing::Exists;
using testing::ReadFile;

class SignalsAtRandom : public testing::ProgramFixture {};

TEST_F(SignalsAtRandom, LeaveAWholeOutputOrNoneAndNoTemporaries) {
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
    folder_.Write(std::string("docs/") + name, testing::SimpleDocument(300, name));
  }
  const std::string output = folder_.File("out.pdf");
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(Run({"out.pdf", "docs"}).Status, 0);
  auto whole = std::chrono::steady_clock::now() - start;
  const std::string joined = ReadFile(output);
  std::minstd_rand random(1);
  int stopped = 0;
  for (int i = 0; i < 100; ++i) {
    std::filesystem::remove(output);
    setup_.Arguments = {"out.pdf", "docs"};
    const int signal = std::array{SIGINT, SIGTERM, SIGHUP}[random() % 3];
    ChildProgram program(setup_);
    // Not a wait for something: the moment is what is tried.
    std::this_thread::sleep_for(whole * static_cast<int>(random() % 1200) / 1000);
    program.Signal(signal);
    const int status = program.Wait();
    ASSERT_TRUE(status == 0 || status == 128 + signal) << status << ", run " << i;
    ASSERT_TRUE(Temporaries().empty()) << "run " << i;
    ASSERT_TRUE(!Exists(output) || ReadFile(output) == joined) << "run " << i;
    ASSERT_TRUE(status != 0 || Exists(output)) << "run " << i;
    stopped += status == 0 ? 0 : 1;
    // Runs take longer and shorter as the machine is busy, and the first one may have waited for the disk for
    // long.
    whole = whole * (status == 0 ? 75 : 120) / 100;
  }
  EXPECT_GT(stopped, 10) << "hardly a signal came while the program ran";
}

}  // namespace
}  // namespace folioweld
