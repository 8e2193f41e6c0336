// The acceptance test on any bytes.

#include "engine/document_check.h"
#include "fuzz/numbered_document.h"
#include "tests/support/memory_system.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  testing::MemorySystem system;
  system.Put("/a.pdf", std::string(fuzz::TextOf(data, size)));
  FileModule files(system);
  PassFailure why;
  const bool accepted = IsThisDocumentApdf(files, "/a.pdf", &why);
  fuzz::Require(accepted == why.Empty(), "a refusal has a reason and an acceptance has none");
  fuzz::Require(system.OpenFiles() == 0, "no file stays open");
  return 0;
}
