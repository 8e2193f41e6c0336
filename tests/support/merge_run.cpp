#include "tests/support/merge_run.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace folioweld::testing {

namespace {

/// Offset of the "x" of "xref", as the document's last lines give it.
std::size_t XrefOffset(const std::string& document) {
  const std::size_t mark = document.rfind("startxref\r\n");
  EXPECT_NE(mark, std::string::npos);
  return mark == std::string::npos ? 0 : std::stoul(document.substr(mark + 11));
}

}  // namespace

MergeRun::MergeRun() : OutputPath(Folder.File("out.pdf")) {
  State.DocFileName(3) = OutputPath;
}

MergeRun::MergeRun(const std::string& first, const std::string& second) : MergeRun() {
  if (!first.empty()) FirstPath = Folder.Write("a.pdf", first);
  if (!second.empty()) SecondPath = Folder.Write("b.pdf", second);
  State.DocFileName(1) = FirstPath;
  State.DocFileName(2) = SecondPath;
}

bool MergeRun::Read() {
  for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
    State.DocUsed(slot) = false;
    if (State.DocFileName(slot).empty()) continue;
    State.DocFileNumber(slot) = Files.OpenForBinaryRead(State.DocFileName(slot));
    std::int32_t result = -1;
    PassFailure why;
    CheckDocumentStructure(State, Files, State.DocFileNumber(slot), slot, result, why);
    State.DocUsed(slot) = result > 0;
  }
  bool ok = false;
  Job.ReadInputs(ok);
  return ok;
}

std::vector<std::string> MergeRun::LogLines() const {
  std::vector<std::string> lines;
  for (std::int16_t i = 1; i <= Log.LogIndex(); ++i) lines.push_back(Log.LogLine(i));
  return lines;
}

std::size_t OpenHandles() {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    static_cast<void>(entry);
    ++count;
  }
  return count;
}

int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

std::string WrittenObject(const std::string& document, int number) {
  const std::size_t start = std::stoul(WrittenEntry(document, number).substr(0, 10));
  return document.substr(start, document.find("endobj\r\n", start) + 6 - start);
}

std::string WrittenEntry(const std::string& document, int number) {
  const std::size_t xref = XrefOffset(document);
  const std::size_t table = document.find("\r\n", document.find("\r\n", xref) + 2) + 2;
  return document.substr(table + static_cast<std::size_t>(number) * 20, 20);
}

}  // namespace folioweld::testing
