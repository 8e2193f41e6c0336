#include "dirmerge/revised_output.h"

#include <cerrno>
#include <limits>
#include <utility>

#include "engine/document_check.h"
#include "engine/own_files.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr char kLost[] = "the output was changed, moved, removed or replaced by another program";

}  // namespace

RevisedOutput::RevisedOutput(FileModule& files, std::string path, const FileInformation& finished)
    : files_(files), system_(files.System()), path_(std::move(path)), finished_(finished) {}

RevisedOutput::~RevisedOutput() {
  // What could be lost was looked at before.
  static_cast<void>(Close());
}

std::string RevisedOutput::Open() {
  std::string why = OpenFile();
  if (why.empty() && before_.Size != finished_.Size) {
    lost_ = true;
    why = kLost;
  }
  opened_ = why.empty();
  return why;
}

std::string RevisedOutput::OpenFile() {
  const auto file = RetryInterrupted([&] { return system_.CreateFile(path_, OpenMode::ReadWriteExisting); });
  if (!file.Ok()) {
    lost_ = file.Error().Code == ENOENT || file.Error().Code == ELOOP;
    return "the output cannot be opened again: " + file.Error().Words();
  }
  file_ = file.Value();
  const SystemError taken = RetryInterrupted([&] { return system_.TryLockFile(file.Value()); });
  if (taken.Code == EWOULDBLOCK) return "another program is writing it";
  const auto now = system_.GetFileInformationByHandle(file_);
  if (!now.Ok()) return "the output cannot be opened again: " + now.Error().Words();
  before_ = now.Value();
  lost_ = !IsSameFile(finished_, before_);
  return lost_ ? kLost : "";
}

std::string RevisedOutput::Finish() {
  std::string why = Check();
  if (!why.empty()) return why;
  const SystemError error = Close();
  return error ? "the output cannot be finished: " + error.Words() : "";
}

std::string RevisedOutput::Check() {
  const auto now = system_.GetFileInformationByHandle(file_);
  if (!now.Ok()) return "the output cannot be looked at: " + now.Error().Words();
  if (now.Value().Size < finished_.Size) return "the output was cut short";
  if (now.Value().Size > std::numeric_limits<std::int32_t>::max()) return "the output is too long";
  if (now.Value().Size > finished_.Size && !EndsWithNewTable()) {
    return "what was appended to the output does not end with a cross-reference table";
  }
  return IsElsewhere() ? kLost : "";
}

bool RevisedOutput::EndsWithNewTable() {
  const std::int16_t file = files_.OpenForBinaryRead(path_);
  MergeState unused;
  PassFailure refusal;
  std::int32_t table = -1;
  if (file >= 1) CheckDocumentStructure(unused, files_, file, 3, table, refusal);
  // It was only read: closing it cannot lose anything.
  static_cast<void>(files_.Close(file));
  return table > finished_.Size;
}

/// Where that cannot be told, the file is where it was when the job finished it.
bool RevisedOutput::IsElsewhere() {
  const auto named = system_.GetLinkAttributes(path_);
  lost_ = named.Ok() ? named.Value().Identity != finished_.Identity : named.Error().Code == ENOENT;
  return lost_;
}

OutputSequel::Outcome RevisedOutput::Restore(std::string& why) {
  if (opened_) {
    // Its closing has failed.
    const std::string notOpen = file_ < 0 ? OpenFile() : "";
    const SystemError error = notOpen.empty() ? CutBack() : SystemError{EIO};
    if (error && !IsElsewhere()) {
      why = "the output could not be cut back to the joined file: " +
            (notOpen.empty() ? error.Words() : notOpen);
      return GiveUp();
    }
  }
  if (!lost_ && (!opened_ || !IsElsewhere())) return OutputSequel::Outcome::Kept;
  why = kLost;
  return OutputSequel::Outcome::NotThere;
}

OutputSequel::Outcome RevisedOutput::GiveUp() {
  if (file_ >= 0) static_cast<void>(RetryInterrupted([&] { return system_.SetEndOfFile(file_, 0); }));
  return OutputSequel::Outcome::Unusable;
}

/// Bytes that are gone cannot be brought back.
SystemError RevisedOutput::CutBack() {
  const auto now = system_.GetFileInformationByHandle(file_);
  if (now.Ok() && now.Value().Size < finished_.Size) return SystemError{EIO};
  if (now.Ok() && now.Value().Size == finished_.Size) return {};
  return RetryInterrupted([&] { return system_.SetEndOfFile(file_, finished_.Size); });
}

SystemError RevisedOutput::Close() {
  const WindowsAPI::Handle file = std::exchange(file_, -1);
  return file < 0 ? SystemError{} : system_.CloseHandle(file);
}

}  // namespace folioweld
