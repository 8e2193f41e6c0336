// Micro benchmarks of the paths that every merge runs most often. Each is measured for several sizes, and
// what Google Benchmark says about its complexity has to stay linear.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "engine/activity_log.h"
#include "engine/line_cursor.h"
#include "engine/merge_job.h"
#include "engine/pdf_builder.h"
#include "engine/pdf_reader.h"

namespace folioweld {
namespace {

constexpr int kFewest = 256;
constexpr int kMost = 4096;

std::string Digits(std::size_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - digits.size(), '0') + digits;
}

/// A document of one-line pages: catalog 1, page tree 2, then a page and its contents each.
std::string Document(int pages) {
  std::vector<std::string> objects{"<< /Type /Catalog /Pages 2 0 R >>"};
  std::string kids;
  for (int page = 0; page < pages; ++page) kids += std::to_string(3 + 2 * page) + " 0 R\n";
  objects.push_back("<< /Type /Pages /Count " + std::to_string(pages) + "\n/Kids [\n" + kids + "] >>");
  for (int page = 0; page < pages; ++page) {
    const std::string contents = "BT /F1 12 Tf 72 720 Td (Page " + std::to_string(page) + ") Tj ET";
    objects.push_back("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842]\n/Contents " +
                      std::to_string(4 + 2 * page) + " 0 R >>");
    objects.push_back("<< /Length " + std::to_string(contents.size()) + " >>\nstream\n" + contents +
                      "\nendstream");
  }
  std::string text = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";
  std::string table = "0000000000 65535 f \n";
  for (std::size_t i = 0; i < objects.size(); ++i) {
    table += Digits(text.size(), 10) + " 00000 n \n";
    text += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const std::string size = std::to_string(objects.size() + 1);
  return text + "xref\n0 " + size + "\n" + table + "trailer\n<< /Size " + size +
         " /Root 1 0 R >>\nstartxref\n" + std::to_string(text.size()) + "\n%%EOF\n";
}

/// A folder that goes with everything in it.
class Scratch {
 public:
  Scratch() {
    std::string name = (std::filesystem::temp_directory_path() / "folioweld-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { std::filesystem::remove_all(path_); }

  [[nodiscard]] std::string File(const std::string& name) const { return path_ + "/" + name; }

  [[nodiscard]] std::string Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(File(name), std::ios::binary) << bytes;
    return File(name);
  }

 private:
  std::string path_;
};

/// One document, opened and accepted as the first input of a merge.
class Input {
 public:
  explicit Input(const std::string& bytes) {
    State.DocFileName(1) = folder_.Write("input.pdf", bytes);
    State.DocFileNumber(1) = Files.OpenForBinaryRead(State.DocFileName(1));
    std::int32_t result = -1;
    PassFailure why;
    CheckDocumentStructure(State, Files, State.DocFileNumber(1), 1, result, why);
    start_ = State.DocXrefStart(1);
    State.DocUsed(1) = result > 0;
    if (!State.DocUsed(1)) std::abort();
  }

  /// As it was before anything was read.
  void Reset() {
    ResetMergeState(State);
    State.DocXrefStart(1) = start_;
  }

  void Read() {
    bool ok = false;
    State.DocXrefStart(1) = start_;
    MergeJob(State, Files, Shell, log_).ReadInputs(ok);
    if (!ok) std::abort();
  }

  void OpenOutput() { State.DocFileNumber(3) = Files.OpenForBinaryWrite(folder_.File("output.pdf")); }

  void CloseOutput() {
    static_cast<void>(Files.Close(State.DocFileNumber(3)));
    State.DocFileNumber(3) = -1;
  }

  [[nodiscard]] std::int32_t XrefStart() const { return start_; }

  MergeShell Shell;
  FileModule Files{RealSystem()};
  MergeState State;

 private:
  Scratch folder_;
  ActivityLog log_{Shell};
  std::int32_t start_ = -1;
};

void ReadingLines(benchmark::State& state) {
  Input input(Document(static_cast<int>(state.range(0))));
  std::int64_t lines = 0;
  for (auto _ : state) {
    LineCursor cursor(input.Files, input.State.DocFileNumber(1), 1);
    while (cursor.Next()) ++lines;
  }
  state.SetItemsProcessed(lines);
  state.SetComplexityN(state.range(0));
}

void ReadingACrossReferenceTable(benchmark::State& state) {
  Input input(Document(static_cast<int>(state.range(0))));
  PdfReader reader(input.State, input.Files, input.Shell);
  std::int64_t entries = 0;
  for (auto _ : state) {
    input.Reset();
    const XrefSectionInfo info = reader.ReadXrefSection(1, input.XrefStart());
    if (!info.SectionOk) state.SkipWithError("the section was not read");
    entries += info.EntryCount;
  }
  state.SetItemsProcessed(entries);
  state.SetComplexityN(state.range(0));
}

void ScanningObjects(benchmark::State& state) {
  Input input(Document(static_cast<int>(state.range(0))));
  PdfReader reader(input.State, input.Files, input.Shell);
  std::int64_t objects = 0;
  for (auto _ : state) {
    state.PauseTiming();
    input.Reset();
    objects += reader.ReadXrefSection(1, input.XrefStart()).EntryCount;
    state.ResumeTiming();
    if (!reader.ScanObjects(1)) state.SkipWithError("the objects were not read");
  }
  state.SetItemsProcessed(objects);
  state.SetComplexityN(state.range(0));
}

void ShiftingReferences(benchmark::State& state) {
  MergeState merge;
  MergeShell shell;
  FileModule files(RealSystem());
  merge.ObjectsInDoc1 = 6005;
  const PdfBuilder builder(merge, files, shell);
  std::string line = "<< /Type /Pages /Kids [";
  for (int i = 0; i < state.range(0); ++i) line += std::to_string(i + 3) + " 0 R ";
  line += "] >>\r";
  for (auto _ : state) benchmark::DoNotOptimize(builder.ShiftObjectReferences(line));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void WritingObjects(benchmark::State& state) {
  Input input(Document(static_cast<int>(state.range(0))));
  input.Read();
  PdfBuilder builder(input.State, input.Files, input.Shell);
  if (!builder.BuildOutputPasses1And2() || !builder.PastePageCatalogs())
    state.SkipWithError("nothing was built");
  // The writer notes where it put the objects over where they were read; it is the same work every time.
  for (auto _ : state) {
    input.OpenOutput();
    if (builder.WriteOutputFile() < 0) state.SkipWithError("the output was not written");
    input.CloseOutput();
  }
  state.SetItemsProcessed(state.iterations() * input.State.ObjectsTotal);
  state.SetComplexityN(state.range(0));
}

void CopyingStreams(benchmark::State& state) {
  const auto length = static_cast<std::int32_t>(state.range(0)) * 1024;
  Input input(Document(1) + std::string(static_cast<std::size_t>(length), 'x') + "\nstartxref\n" +
              std::to_string(Document(1).rfind("xref\n0")) + "\n%%EOF\n");
  const auto start = static_cast<std::int32_t>(Document(1).size());
  PdfBuilder builder(input.State, input.Files, input.Shell);
  for (auto _ : state) {
    input.OpenOutput();
    std::int32_t position = 1;
    if (builder.CopyStreamBytes(input.State.DocFileNumber(1), start, length, position) < 1) {
      state.SkipWithError("the stream was not copied");
    }
    input.CloseOutput();
  }
  state.SetBytesProcessed(state.iterations() * length);
  state.SetComplexityN(state.range(0));
}

void AddingLogLines(benchmark::State& state) {
  MergeShell shell;
  ActivityLog log(shell);
  const std::string line = "[Folioweld-cmdOK]=>The merge failed: \"a document.pdf\", object 17";
  for (auto _ : state) log.AddLogLine(line);
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(ReadingLines)->RangeMultiplier(2)->Range(kFewest, kMost)->Complexity();
BENCHMARK(ReadingACrossReferenceTable)->RangeMultiplier(2)->Range(kFewest, kMost)->Complexity();
BENCHMARK(ScanningObjects)->RangeMultiplier(2)->Range(kFewest, kMost)->Complexity();
BENCHMARK(ShiftingReferences)->RangeMultiplier(2)->Range(kFewest, kMost)->Complexity();
BENCHMARK(WritingObjects)->RangeMultiplier(2)->Range(kFewest, kMost)->Complexity();
BENCHMARK(CopyingStreams)->RangeMultiplier(4)->Range(1, kMost)->Complexity();
BENCHMARK(AddingLogLines);

}  // namespace
}  // namespace folioweld
