#include "dirmerge/preparing_child.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <utility>

#include "engine/own_files.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr std::int64_t kMemoryLimit = 1024LL * 1024 * 1024;
constexpr int kProcessorSeconds = 60;
constexpr std::int64_t kMostMilliseconds = 120'000;
constexpr std::int64_t kEndMilliseconds = 100;
/// Nobody reads more lines than fit into this.
constexpr std::size_t kMostWords = 64 * 1024;

/// The program's exit statuses.
enum PrepareStatus { kWritten = 0, kNotWritten = 1, kWrittenWithRepairs = 3 };

constexpr int kSignalled = 128;

std::int64_t OutputLimit(const FileInformation& document) {
  return std::int64_t{64} * 1024 * 1024 + 32 * document.Size;
}

std::string ReasonOfEnd(int status) {
  if (status == kSignalled + SIGXCPU) {
    return "it took more than " + std::to_string(kProcessorSeconds) + " seconds of processor time";
  }
  if (status > kSignalled) {
    return "the program that prepares was ended by signal " + std::to_string(status - kSignalled);
  }
  return "the program that prepares ended with status " + std::to_string(status);
}

}  // namespace

PreparingChild::PreparingChild(WindowsAPI& system, const std::string& program, const PreparingTask& task)
    : system_(system), task_(task) {
  Start(program);
}

PreparingChild::~PreparingChild() {
  Kill();
  const std::int64_t end = system_.MillisecondsNow() + kEndMilliseconds;
  while (running_ && system_.MillisecondsNow() < end) {
    const auto status = system_.ExitOfProcess(process_.Child);
    running_ = status.Ok() && !status.Value();
    if (running_) system_.WaitForInput({}, 1);
  }
  Close(process_.Errors);
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
  const auto started = system_.StartProcess(
      program,
      {program, "--descriptors=" + std::to_string(input_) + "," + std::to_string(output_),
       "--limits=" + std::to_string(kMemoryLimit) + "," + std::to_string(kProcessorSeconds) + "," +
           std::to_string(OutputLimit(before_))},
      {input_, output_});
  if (!started.Ok()) {
    return Fail("the program that prepares cannot be started: " + started.Error().Words());
  }
  process_ = started.Value();
  started_ = system_.MillisecondsNow();
  running_ = true;
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
  if (!running_) return;
  ReadWords();
  const auto status = system_.ExitOfProcess(process_.Child);
  if (!status.Ok()) {
    Kill();
    running_ = false;
    return Fail("the program that prepares was lost: " + status.Error().Words());
  }
  if (status.Value()) {
    running_ = false;
    ReadWords();
    return TakeEnd(*status.Value());
  }
  if (system_.MillisecondsNow() - started_ < kMostMilliseconds) return;
  Kill();
  Fail("it took more than " + std::to_string(kMostMilliseconds / 1000) + " seconds");
}

/// What comes after the first lines is read and dropped, so that the program does not wait for a reader.
void PreparingChild::ReadWords() {
  std::array<char, 4096> bytes;
  while (process_.Errors >= 0) {
    const auto count =
        RetryInterrupted([&] { return system_.ReadNext(process_.Errors, bytes.data(), bytes.size()); });
    if (!count.Ok() && count.Error().Code == EAGAIN) return;
    if (!count.Ok() || count.Value() == 0) return Close(process_.Errors);
    if (words_.size() < kMostWords) words_.append(bytes.data(), count.Value());
  }
}

void PreparingChild::TakeEnd(int status) {
  // Something else was the matter before.
  if (!result_.Failure.empty()) return;
  TakeWords();
  if (status == kNotWritten && !lastWord_.empty()) return Fail(lastWord_);
  if (status != kWritten && status != kWrittenWithRepairs) return Fail(ReasonOfEnd(status));
  result_.Repaired = status == kWrittenWithRepairs;
  CheckFiles();
}

void PreparingChild::TakeWords() {
  std::string_view rest = words_;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    const std::size_t colon = line.find(": ");
    if (colon == std::string_view::npos) continue;
    const std::string_view kind = line.substr(0, colon);
    std::string text(line.substr(colon + 2));
    if (kind == "reason")
      result_.Reasons.push_back(std::move(text));
    else if (kind == "lost")
      result_.Losses.push_back(std::move(text));
    else if (kind == "repaired")
      result_.Repairs.push_back(std::move(text));
    else if (kind == "failed")
      lastWord_ = std::move(text);
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

void PreparingChild::Kill() {
  if (running_) static_cast<void>(system_.KillProcess(process_.Child));
}

void PreparingChild::Close(WindowsAPI::Handle& file) {
  // Nothing is written through it that a closing could lose.
  if (file >= 0) static_cast<void>(system_.CloseHandle(file));
  file = -1;
}

}  // namespace folioweld
