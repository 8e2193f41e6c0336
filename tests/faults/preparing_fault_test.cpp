// Every system call of a run that prepares documents fails, in every way that it can; the process dies at
// each.

#include "tests/faults/extra_program_run.h"
#include "tests/support/preparing_script.h"

namespace folioweld {
namespace {

class PreparingFault : public testing::ExtraProgramRun {
 protected:
  PreparingFault() : ExtraProgramRun("--prepare") {
    documents = {{"a.pdf", testing::SimpleDocument(1, "text of a")},
                 {"b.pdf", testing::kOtherDocument},
                 {"c.pdf", testing::kOtherDocument}};
    const std::string copy = folder.Write("copy", testing::SimpleDocument(1, "text of b, text of c"));
    testing::WritePreparingScript(folder, "bin/folioweld-prepare", testing::CopyingCommands(copy));
    Begin();
  }

  void CheckWithLosses(const std::string& output, const std::string& said) const override {
    for (const auto& [name, bytes] : documents) {
      const bool joined = output.find("text of " + name.substr(0, 1)) != std::string::npos;
      ASSERT_TRUE(joined || said.find("\"" + name + "\"") != std::string::npos) << name << ": " << said;
    }
    ASSERT_FALSE(testing::Joined(output, "").empty());
  }
};

TEST_F(PreparingFault, LosesNothingAndTellsTheTruth) {
  Sweep(testing::CallsOfAnyRun());
}

/// Where the run dies its children may go on for a moment; whatever they still write, nobody joins it.
TEST_F(PreparingFault, SuddenDeathLeavesTheDocumentsAsTheyWereAndNoHalfOutput) {
  DieEverywhere();
}

}  // namespace
}  // namespace folioweld
