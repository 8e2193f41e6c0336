// What libqpdf makes of the bytes is written anew; the engine has to read the copy without a word, and to
// join it.

#include "engine/merge_job.h"
#include "fuzz/numbered_document.h"
#include "prepare/engine_check.h"
#include "prepare/libqpdf.h"
#include "prepare/prepared_copy.h"
#include "tests/support/memory_system.h"

namespace {

using namespace folioweld;

constexpr char kPlain[] =
    "1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n2 0 obj\n<< /Type /Pages /Kids [ 3 0 R ] /Count 1 "
    ">>\nendobj\n3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 9 9 ] >>\nendobj\n";

class TextSink : public ByteSink {
 public:
  void Write(std::string_view bytes) override { Text += bytes; }
  std::string Text;
};

/// Empty when there is none.
std::string CopyOf(std::string_view document) {
  try {
    QPDF parsed;
    parsed.setSuppressWarnings(true);
    parsed.processMemoryFile("document", document.data(), document.size());
    TextSink sink;
    static_cast<void>(WriteCopy(parsed, sink));
    return sink.Text;
  } catch (const std::exception&) {
    return {};
  }
}

bool Joins(testing::MemorySystem& system, const char* first, const char* second) {
  FileModule files(system);
  MergeState state;
  MergeShell shell;
  ActivityLog log(shell);
  MergeJob job(state, files, shell, log);
  state.DocFileName(1) = first;
  state.DocFileName(2) = second;
  state.DocFileName(3) = "/out.pdf";
  job.cmdOK_Click();
  return state.MergeStatus != -1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view document = fuzz::TextOf(data, size);
  const std::string copy = CopyOf(document);
  if (copy.empty()) return 0;
  testing::MemorySystem system;
  system.Put("/copy.pdf", copy);
  system.Put("/plain.pdf", fuzz::NumberedDocument(kPlain, "/Root 1 0 R"));
  fuzz::Require(EngineObjection(system, "/copy.pdf").empty(), "the engine reads every copy without a word");
  fuzz::Require(Joins(system, "/copy.pdf", "/plain.pdf"), "a copy is joined as the first document");
  fuzz::Require(Joins(system, "/plain.pdf", "/copy.pdf"), "a copy is joined as a later document");
  fuzz::Require(CopyOf(document) == copy, "the same document gives the same copy");
  fuzz::Require(!CopyOf(copy).empty(), "a copy can be prepared again");
  return 0;
}
