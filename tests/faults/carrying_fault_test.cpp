// Every system call of a run that carries over fails, in every way that it can; the process dies at each.

#include "tests/faults/extra_program_run.h"
#include "tests/support/carrying_script.h"

namespace folioweld {
namespace {

class CarryingFault : public testing::ExtraProgramRun {
 protected:
  CarryingFault() : ExtraProgramRun("--carry") {
    for (const char* name : {"a", "b", "c"}) {
      documents[std::string(name) + ".pdf"] = testing::SimpleDocument(1, std::string("text of ") + name);
    }
    testing::WriteCarryingScript(folder, "bin/folioweld-carry", testing::AppendingCommands());
    Begin();
    joined = whole.substr(0, whole.rfind("xref\r\n%appended"));
    EXPECT_TRUE(whole == testing::WithAppended(joined));
  }

  /// What is there is as it was joined, or with all that belongs to it.
  void CheckWithLosses(const std::string& output, const std::string& said) const override {
    const std::size_t appended = output.rfind("xref\r\n%appended");
    const std::string first = output.substr(0, appended);
    ASSERT_FALSE(testing::Joined(first, "").empty());
    if (appended != std::string::npos) {
      ASSERT_TRUE(output == testing::WithAppended(first)) << "a part of what is appended remains";
    } else {
      ASSERT_NE(said.find("The output is the joined file without what --carry adds: "), std::string::npos)
          << said;
    }
    for (const auto& [name, bytes] : documents) {
      const bool isJoined = output.find("text of " + name.substr(0, 1)) != std::string::npos;
      ASSERT_TRUE(isJoined || said.find("\"" + name + "\"") != std::string::npos) << name << ": " << said;
    }
  }

  [[nodiscard]] bool MayPass(const std::string& output) const override {
    return output == whole || output == joined;
  }

  std::string joined;
};

TEST_F(CarryingFault, CutsBackWhatIsNotWholeAndTellsTheTruth) {
  std::set<std::string> calls = testing::CallsOfAnyRun();
  calls.insert("CreateMemoryFile");
  Sweep(calls);
}

TEST_F(CarryingFault, SuddenDeathLeavesTheJoinedFileOrNothingThatPassesForADocument) {
  DieEverywhere();
}

}  // namespace
}  // namespace folioweld
