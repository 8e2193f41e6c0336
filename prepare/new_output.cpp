#include "prepare/new_output.h"

#include <cerrno>
#include <utility>

#include "engine/output_refusal.h"
#include "platform/retry.h"
#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

constexpr int kMostNames = 100;

/// What may stand under the path is a file other than the input, or nothing.
void CheckPath(WindowsAPI& system, const std::string& path, const FileIdentity& input) {
  const auto there = system.GetLinkAttributes(path);
  if (!there.Ok() && there.Error().Code == ENOENT) return;
  const bool mayGo = there.Ok() && there.Value().Kind == FileKind::Regular && there.Value().Identity != input;
  if (mayGo) return;
  throw NotPrepared(
      "\"" + path + "\" cannot be written: " +
      WhyNoOutput(system, path, there.Ok() ? SystemError{EEXIST} : there.Error(), {{input, "INPUT"}}));
}

}  // namespace

NewOutput::NewOutput(WindowsAPI& system, std::string path, const FileIdentity& input)
    : system_(system), path_(std::move(path)), input_(input) {
  CheckPath(system_, path_, input_);
  Create();
}

void NewOutput::Create() {
  const std::string folder = path_.substr(0, path_.rfind('/') + 1);
  SystemError error{EEXIST};
  for (int i = 0; i < kMostNames && error.Code == EEXIST; ++i) {
    const auto number = RetryInterrupted([&] { return system_.RandomNumber(); });
    if (!number.Ok()) error = number.Error();
    if (!number.Ok()) break;
    const std::string name = folder + ".folioweld-prepare-" + std::to_string(number.Value()) + ".tmp";
    const auto file = RetryInterrupted([&] { return system_.CreateFile(name, OpenMode::CreateNew); });
    if (file.Ok()) {
      temporary_ = name;
      file_ = file.Value();
      return;
    }
    error = file.Error();
  }
  throw NotPrepared("\"" + path_ + "\" cannot be written: " + error.Words());
}

NewOutput::~NewOutput() {
  if (file_ >= 0) static_cast<void>(system_.CloseHandle(file_));
  if (!temporary_.empty()) static_cast<void>(system_.DeleteFile(temporary_));
}

void NewOutput::Publish() {
  CheckPath(system_, path_, input_);
  SystemError error = RetryInterrupted([&] { return system_.FlushFileBuffers(file_); });
  const SystemError closed = system_.CloseHandle(std::exchange(file_, -1));
  if (!error) error = closed;
  if (!error) error = system_.MoveFile(temporary_, path_, WindowsAPI::Replace::Yes);
  if (error) throw NotPrepared("\"" + path_ + "\" cannot be written: " + error.Words());
  temporary_.clear();
}

}  // namespace folioweld
