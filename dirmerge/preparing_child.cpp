#include "dirmerge/preparing_child.h"

#include <cerrno>
#include <utility>

#include "engine/own_files.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

/// The program's exit statuses.
enum PrepareStatus { kWritten = 0, kNotWritten = 1, kWrittenWithRepairs = 3 };

std::int64_t OutputLimit(const FileInformation& document) {
  return std::int64_t{64} * 1024 * 1024 + 32 * document.Size;
}

}  // namespace

PreparingChild::PreparingChild(WindowsAPI& system, const std::string& program, const PreparingTask& task)
    : system_(system), task_(task), child_(system, "the program that prepares") {
  Start(program);
}

PreparingChild::~PreparingChild() {
  Close(input_);
  Close(output_);
}

void PreparingChild::Start(const std::string& program) {
  input_ = Open(task_.Document, OpenMode::ReadExisting, before_);
  if (input_ < 0) return;
  if (!IsSameState(before_, task_.Known)) return Fail("it was changed while it was being looked at");
  FileInformation found;
  output_ = Open(task_.Copy, OpenMode::ReadWriteExisting, found);
  if (output_ < 0) return;
  if (!IsUntouched(task_.Made, found)) return Fail("another file has taken the place of its copy");
  child_.Start({program, {input_, output_}, OutputLimit(before_), {}});
  if (!child_.Running()) Fail(child_.Failure());
}

WindowsAPI::Handle PreparingChild::Open(const std::string& path, OpenMode mode, FileInformation& found) {
  auto file = RetryInterrupted([&] { return system_.CreateFile(path, mode); });
  SystemError error = file.Error();
  if (file.Ok()) {
    const auto information = system_.GetFileInformationByHandle(file.Value());
    error = information.Error();
    if (information.Ok()) found = information.Value();
    if (!error && found.Kind != FileKind::Regular) error = SystemError{EINVAL};
    if (error) Close(file.Value());
  }
  if (!error) return file.Value();
  Fail((&path == &task_.Copy ? "the file for its copy cannot be opened: " : "it cannot be opened: ") +
       error.Words());
  return -1;
}

void PreparingChild::Fail(std::string why) {
  result_.Failure = std::move(why);
  // Room for the copies of others; the file itself goes with all of them.
  if (output_ >= 0) static_cast<void>(system_.SetEndOfFile(output_, 0));
}

void PreparingChild::Look() {
  if (!child_.Running()) return;
  child_.Look();
  if (!child_.Running()) TakeEnd();
}

void PreparingChild::TakeEnd() {
  if (!child_.Failure().empty()) return Fail(child_.Failure());
  TakeWords();
  const int status = child_.Status();
  if (status == kNotWritten && !lastWord_.empty()) return Fail(lastWord_);
  if (status != kWritten && status != kWrittenWithRepairs) return Fail(child_.WhyEnded());
  result_.Repaired = status == kWrittenWithRepairs;
  CheckFiles();
}

void PreparingChild::TakeWords() {
  for (ChildLine& line : child_.Lines()) {
    if (line.Kind == "reason")
      result_.Reasons.push_back(std::move(line.Text));
    else if (line.Kind == "lost")
      result_.Losses.push_back(std::move(line.Text));
    else if (line.Kind == "repaired")
      result_.Repairs.push_back(std::move(line.Text));
    else if (line.Kind == "failed")
      lastWord_ = std::move(line.Text);
  }
}

void PreparingChild::CheckFiles() {
  const auto now = system_.GetFileInformationByHandle(input_);
  if (!now.Ok() || !IsSameState(now.Value(), before_)) {
    return Fail("it was changed, or its name, links or permissions were, while it was being prepared");
  }
  const auto copy = system_.GetFileInformationByHandle(output_);
  if (!copy.Ok() || !IsUntouched(task_.Made, copy.Value())) {
    return Fail("another file has taken the place of its copy");
  }
  if (copy.Value().Size > OutputLimit(before_)) Fail("its copy is too long");
}

void PreparingChild::Close(WindowsAPI::Handle& file) {
  // Nothing is written through it that a closing could lose.
  if (file >= 0) static_cast<void>(system_.CloseHandle(file));
  file = -1;
}

}  // namespace folioweld
