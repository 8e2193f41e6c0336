// Pass #1: the chain of cross-reference sections of any bytes. The first two bytes say where it begins.

#include "engine/merge_job.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  if (size < 2) return 0;
  testing::MemorySystem system;
  system.Put("/a.pdf", std::string(fuzz::TextOf(data + 2, size - 2)));
  FileModule files(system);
  MergeState state;
  MergeShell shell;
  ActivityLog log(shell);
  MergeJob job(state, files, shell, log);
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    ResetMergeState(state);
    state.DocUsed(slot) = true;
    state.DocFileNumber(slot) = files.OpenForBinaryRead("/a.pdf");
    state.DocXrefStart(slot) = 1 + data[0] + 256 * data[1];
    bool ok = false;
    job.ReadXrefChain(slot, ok);
    fuzz::Require(ok || !state.Failure.Empty(), "a failure has a reason");
    fuzz::Require(state.Objects.UpperBound() <= 2 * kMostObjects, "the object table keeps within its bounds");
    fuzz::Require(state.DictDepth == 0, "the nesting is counted back");
    static_cast<void>(files.Close(state.DocFileNumber(slot)));
  }
  return 0;
}
