#include "dirmerge/limited_child.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <utility>

#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr std::int64_t kMemoryLimit = 1024LL * 1024 * 1024;
constexpr int kProcessorSeconds = 60;
constexpr std::int64_t kMostMilliseconds = 120'000;
constexpr std::int64_t kEndMilliseconds = 100;
/// After so many answers that there is no such child, a millisecond after each other, there is none.
constexpr int kMostErrors = 20;
/// Nobody reads more lines than fit into this.
constexpr std::size_t kMostWords = 1024 * 1024;

constexpr int kSignalled = 128;

std::string Numbers(const std::vector<WindowsAPI::Handle>& files) {
  std::string text;
  for (const WindowsAPI::Handle file : files) text += (text.empty() ? "" : ",") + std::to_string(file);
  return text;
}

}  // namespace

LimitedChild::LimitedChild(WindowsAPI& system, std::string called)
    : system_(system), called_(std::move(called)) {}

LimitedChild::~LimitedChild() {
  Kill();
  static_cast<void>(WaitForEnd(kEndMilliseconds));
  // Nothing is written through it that a closing could lose.
  if (process_.Errors >= 0) static_cast<void>(system_.CloseHandle(process_.Errors));
}

void LimitedChild::Start(const ChildCall& call) {
  std::vector<std::string> arguments = {call.Program, "--descriptors=" + Numbers(call.Files),
                                        "--limits=" + std::to_string(kMemoryLimit) + "," +
                                            std::to_string(kProcessorSeconds) + "," +
                                            std::to_string(call.FileSize)};
  arguments.insert(arguments.end(), call.Options.begin(), call.Options.end());
  const auto started = system_.StartProcess(call.Program, arguments, call.Files);
  if (!started.Ok()) {
    failure_ = called_ + " cannot be started: " + started.Error().Words();
    return;
  }
  process_ = started.Value();
  started_ = system_.MillisecondsNow();
  running_ = true;
  gone_ = false;
}

void LimitedChild::Look() {
  if (!running_) return;
  ReadWords();
  const auto status = system_.ExitOfProcess(process_.Child);
  if (!status.Ok()) {
    Kill();
    running_ = false;
    failure_ = called_ + " was lost: " + status.Error().Words();
    return;
  }
  if (status.Value()) {
    running_ = false;
    gone_ = true;
    ReadWords();
    return TakeEnd(*status.Value());
  }
  if (system_.MillisecondsNow() - started_ < kMostMilliseconds) return;
  Kill();
  failure_ = "it took more than " + std::to_string(kMostMilliseconds / 1000) + " seconds";
}

/// What comes after the first lines is read and dropped, so that the program does not wait for a reader.
void LimitedChild::ReadWords() {
  std::array<char, 4096> bytes;
  while (process_.Errors >= 0) {
    const auto count =
        RetryInterrupted([&] { return system_.ReadNext(process_.Errors, bytes.data(), bytes.size()); });
    if (!count.Ok() && count.Error().Code == EAGAIN) return;
    if (!count.Ok() || count.Value() == 0) {
      static_cast<void>(system_.CloseHandle(std::exchange(process_.Errors, -1)));
    } else if (words_.size() < kMostWords) {
      words_.append(bytes.data(), count.Value());
    }
  }
}

void LimitedChild::TakeEnd(int status) {
  // Something else was the matter before.
  if (!failure_.empty()) return;
  status_ = status;
  if (status == kSignalled + SIGXCPU) {
    failure_ = "it took more than " + std::to_string(kProcessorSeconds) + " seconds of processor time";
  } else if (status > kSignalled) {
    failure_ = called_ + " was ended by signal " + std::to_string(status - kSignalled);
  }
}

std::string LimitedChild::WhyEnded() const {
  return called_ + " ended with status " + std::to_string(status_);
}

std::vector<ChildLine> LimitedChild::Lines() const {
  std::vector<ChildLine> lines;
  std::string_view rest = words_;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    const std::size_t colon = line.find(": ");
    if (colon == std::string_view::npos) continue;
    lines.push_back({std::string(line.substr(0, colon)), std::string(line.substr(colon + 2))});
  }
  return lines;
}

bool LimitedChild::SaidTooMuch() const {
  return words_.size() >= kMostWords;
}

void LimitedChild::Kill() {
  if (running_) static_cast<void>(system_.KillProcess(process_.Child));
}

bool LimitedChild::WaitForEnd(std::int64_t milliseconds) {
  const std::int64_t end = system_.MillisecondsNow() + milliseconds;
  for (int errors = 0; !gone_ && system_.MillisecondsNow() < end;) {
    const auto status = system_.ExitOfProcess(process_.Child);
    if (!status.Ok()) ++errors;
    gone_ = status.Ok() ? status.Value().has_value() : errors == kMostErrors;
    if (!gone_) system_.WaitForInput({}, 1);
  }
  if (gone_) running_ = false;
  return gone_;
}

}  // namespace folioweld
