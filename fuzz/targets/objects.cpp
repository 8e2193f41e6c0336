// Pass #2: the scanner on any objects.

#include "engine/merge_job.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  testing::MemorySystem system;
  const std::string document = fuzz::NumberedDocument(fuzz::TextOf(data, size), "/Root 1 0 R");
  system.Put("/a.pdf", document);
  FileModule files(system);
  MergeState state;
  MergeShell shell;
  ActivityLog log(shell);
  MergeJob job(state, files, shell, log);
  state.DocUsed(1) = true;
  state.DocFileNumber(1) = files.OpenForBinaryRead("/a.pdf");
  state.DocXrefStart(1) = static_cast<std::int32_t>(document.rfind("\nxref\n")) + 6;
  // The reset of the reading phase keeps the start of the chain.
  bool ok = false;
  job.ReadInputs(ok);
  fuzz::Require(ok || !state.Failure.Empty(), "a failure has a reason");
  for (std::int32_t i = 0; ok && i <= state.Objects.UpperBound(); ++i) {
    const ObjectEntry& entry = state.Objects[i];
    fuzz::Require(entry.LastLine < state.ObjLineCount, "the lines of an object are there");
    fuzz::Require(entry.ObjState != kWithStream || entry.StreamStart > 0, "a stream begins somewhere");
  }
  return 0;
}
