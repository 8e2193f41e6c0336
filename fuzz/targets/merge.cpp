// The whole merge of two documents. The first byte says how the two texts after it, parted by a line of "@",
// become documents: as they stand, or with a cross-reference section made for their objects.

#include "engine/merge_job.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

namespace {

using namespace folioweld;

bool Merge(testing::MemorySystem& system, const char* first, const char* second, const char* output) {
  FileModule files(system);
  MergeState state;
  MergeShell shell;
  ActivityLog log(shell);
  MergeJob job(state, files, shell, log);
  state.DocFileName(1) = first;
  state.DocFileName(2) = second;
  state.DocFileName(3) = output;
  job.cmdOK_Click();
  fuzz::Require(system.OpenFiles() == 0, "no file stays open");
  const bool good = state.MergeStatus != -1;
  fuzz::Require(good == system.Has(output), "there is an output after a success and none after a failure");
  return good;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::string_view text = fuzz::TextOf(data + 1, size - 1);
  const std::size_t border = text.find("\n@\n");
  std::string first(text.substr(0, border));
  std::string second(border == std::string_view::npos ? std::string_view() : text.substr(border + 3));
  if ((data[0] & 1U) != 0) first = fuzz::NumberedDocument(first, "/Root 1 0 R/Info 9 0 R");
  if ((data[0] & 2U) != 0) second = fuzz::NumberedDocument(second, "/Root 1 0 R");
  testing::MemorySystem system;
  system.Put("/a.pdf", first);
  system.Put("/b.pdf", second);
  if (!Merge(system, "/a.pdf", "/b.pdf", "/out.pdf")) return 0;
  const std::string once = system.Bytes("/out.pdf");
  fuzz::Require(once.size() <= 9 * size + 40U * 1024 * 1024, "an output is not much longer than its inputs");
  fuzz::Require(system.Bytes("/a.pdf") == first && system.Bytes("/b.pdf") == second,
                "inputs stay as they are");
  // Files in memory can always be deleted.
  static_cast<void>(system.DeleteFile("/out.pdf"));
  Merge(system, "/a.pdf", "/b.pdf", "/out.pdf");
  fuzz::Require(system.Bytes("/out.pdf") == once, "the same inputs give the same output");
  // Whatever the inputs were, what was written is read again without harm.
  Merge(system, "/out.pdf", "/a.pdf", "/again.pdf");
  return 0;
}
