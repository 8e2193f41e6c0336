// The command line: arguments, one a line.

#include "dirmerge/command_line.h"

#include <vector>

#include "dirmerge/file_ordering.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  std::vector<std::string> arguments(1);
  for (const char c : fuzz::TextOf(data, size)) {
    if (c == '\n') {
      arguments.emplace_back();
    } else {
      arguments.back() += c;
    }
  }
  ProgramState program;
  const Arguments parsed = ParseArguments(arguments);
  fuzz::Require((parsed.Asked == Arguments::Wish::Refuse) == !parsed.Problem.empty(),
                "a refusal has its reason");
  testing::MemorySystem system;
  FileModule files(system);
  SettingsStore settings(system);
  MergeShell shell;
  ActivityLog log(shell);
  DirectoryMerge merge(program, files, settings, shell, log);
  // No folder can be entered here and no source exists, so that nothing is ever joined.
  const auto outcome = ProcessCommandLine(parsed, program, files, settings, merge);
  fuzz::Require(!merge.Report().OutputWritten, "nothing is joined");
  fuzz::Require(outcome == CommandLineOutcome::Done ||
                    (program.CommandLineOutput.empty() && program.CommandLineDirectory.empty()),
                "a folder that is not reached leaves nothing in the state");
  const std::int16_t order = SortOrderFromSetting(parsed.Text);
  fuzz::Require(order == 1 || order == -1 || order == 2 || order == -2, "an order is one of four");
  return 0;
}
