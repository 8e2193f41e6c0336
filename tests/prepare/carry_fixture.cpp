#include "tests/prepare/carry_fixture.h"

#include <cstdio>

#include "dirmerge/directory_merge.h"
#include "engine/document_judge.h"
#include "prepare/carry/appending.h"
#include "prepare/carry/carried_documents.h"
#include "prepare/carry/page_walk.h"
#include "tests/support/recording_shell.h"

namespace folioweld::testing {

namespace {

void Open(QPDF& file, const std::string& path) {
  file.setSuppressWarnings(true);
  file.setAttemptRecovery(false);
  file.processFile(path.c_str());
}

std::vector<int> NumbersOf(const std::vector<FoundPage>& pages) {
  std::vector<int> numbers;
  for (const FoundPage& page : pages) numbers.push_back(page.Number);
  return numbers;
}

}  // namespace

QPDF& CarryFixture::Carry(const std::vector<std::string>& documents,
                          const std::function<void(Revision&)>& feature) {
  const std::vector<JoinedDocument> list = Join(documents);
  joined_ = ReadFile(ResultPath());
  losses_.clear();
  std::vector<int> pages;
  {
    QPDF file;
    Open(file, ResultPath());
    Revision revision(file, Model(list, file));
    pages = NumbersOf(WalkPages(file));
    feature(revision);
    bytes_ = joined_ + RevisionBytes(revision, static_cast<std::int64_t>(joined_.size()));
    for (const CarryLoss& loss : revision.Losses()) {
      losses_.push_back(std::to_string(loss.Document) + ": " + loss.Part + ": " + loss.Words);
    }
  }
  folder_.Write("joined.pdf", bytes_);
  RecordingShell shell;
  MergeState watched;
  FileModule files(system_);
  const DocumentJudgement judgement = DocumentJudge(files, shell, watched).Judge(ResultPath());
  EXPECT_EQ(judgement.Refusal.Rule, "");
  EXPECT_EQ(judgement.LowestMissing, -1);
  for (const Alteration& warning : judgement.Warnings) ADD_FAILURE() << Sentence(warning, "the result");
  result_ = std::make_unique<QPDF>();
  Open(*result_, ResultPath());
  EXPECT_EQ(NumbersOf(WalkPages(*result_)), pages);
  return *result_;
}

std::vector<std::string> CarryFixture::WriteDocuments(const std::vector<std::string>& documents) {
  std::vector<std::string> paths;
  for (std::size_t i = 0; i < documents.size(); ++i) {
    if (names_.size() <= i) names_.push_back(std::to_string(i + 1) + ".pdf");
    paths.push_back(folder_.Write(names_[i], documents[i]));
  }
  return paths;
}

void CarryFixture::Number(const std::vector<std::string>& paths) {
  RecordingShell shell;
  MergeState watched;
  FileModule files(system_);
  DocumentJudge judge(files, shell, watched);
  firstObjects_ = {0};
  for (const std::string& path : paths) {
    firstObjects_.push_back(firstObjects_.back() + judge.Judge(path).ObjectNumbers);
  }
}

void CarryFixture::JoinFiles(const std::vector<std::string>& paths) {
  system_.Environment = {{"XDG_CONFIG_HOME", folder_.Path()}, {"TMPDIR", folder_.Path()}};
  ProgramState program;
  program.CommandLineOutput = ResultPath();
  RecordingShell shell;
  ActivityLog log(shell);
  FileModule files(system_);
  SettingsStore settings(system_);
  DirectoryMerge merge(program, files, settings, shell, log);
  std::vector<Source> sources;
  for (const std::string& path : paths) sources.push_back({path, path, false});
  merge.MergeSources(sources, {});
  ASSERT_TRUE(merge.Report().OutputWritten);
  ASSERT_EQ(merge.Report().JoinedDocuments, paths.size());
}

std::vector<JoinedDocument> CarryFixture::Join(const std::vector<std::string>& documents) {
  const std::vector<std::string> paths = WriteDocuments(documents);
  Number(paths);
  JoinFiles(paths);
  std::vector<JoinedDocument> list;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    list.push_back({paths[i], system_.GetFileAttributes(paths[i]).Value(), names_[i], firstObjects_[i]});
  }
  return list;
}

std::vector<CarriedDocument> CarryFixture::Model(const std::vector<JoinedDocument>& list, QPDF& file) {
  std::vector<CarryLoss> losses;
  std::vector<CarriedDocument> documents = ReadDocuments(system_, file, list, losses);
  EXPECT_TRUE(losses.empty());
  GivePages(WalkPages(file), documents);
  return documents;
}

std::string CarryFixture::Said(const std::string& command) const {
  const std::string line = "file='" + ResultPath() + "'; " + command;
  const auto close = [](std::FILE* pipe) { EXPECT_EQ(pclose(pipe), 0); };
  const std::unique_ptr<std::FILE, decltype(close)> pipe(popen(line.c_str(), "r"), close);
  std::string said;
  for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) said += static_cast<char>(c);
  return said;
}

DocumentBuilder PagesDocument(int pages, const std::string& ofCatalog, const std::string& ofPages) {
  DocumentBuilder document;
  document.Object(1, "<< /Type /Catalog /Pages 2 0 R " + ofCatalog + " >>");
  std::string kids;
  for (int i = 0; i < pages; ++i) kids += std::to_string(3 + i) + " 0 R ";
  document.Object(2, "<< /Type /Pages /Kids [ " + kids + "] /Count " + std::to_string(pages) + " >>");
  for (int i = 0; i < pages; ++i) {
    document.Object(3 + i, "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 99 99 ] " + ofPages + " >>");
  }
  return document;
}

}  // namespace folioweld::testing
