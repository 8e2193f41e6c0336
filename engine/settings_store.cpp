#include "engine/settings_store.h"

#include <cerrno>
#include <utility>

#include "engine/conversions.h"
#include "engine/input_buffer.h"
#include "engine/settings_lock.h"
#include "engine/settings_text.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr int kCreated = 1;
constexpr int kExisting = 2;
constexpr int kFailure = 3;
constexpr int kMostNameTries = 100;
/// A settings file is a few hundred bytes; anything far beyond that is not one.
constexpr std::int64_t kLongestFile = 1024 * 1024;
constexpr std::int64_t kMillisecondsForLock = 2000;

constexpr char kLockHeld[] =
    "[Folioweld-WriteSetting]=>The settings are not stored: another program holds the lock \"";

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

}  // namespace

SettingsStore::SettingsStore(WindowsAPI& system) : system_(system) {}

SettingsStore::~SettingsStore() {
  CloseSettingsKey();
}

std::string SettingsStore::FilePath() {
  const auto config = system_.GetEnvironmentVariable("XDG_CONFIG_HOME");
  // A relative path there is to be ignored.
  if (config && config->substr(0, 1) == "/") return *config + "/folioweld/settings.ini";
  const auto home = system_.GetEnvironmentVariable("HOME");
  if (home && !home->empty()) return *home + "/.config/folioweld/settings.ini";
  return {};
}

bool SettingsStore::OpenSettingsKey() {
  CloseSettingsKey();
  const std::string path = FilePath();
  if (path.empty()) return false;
  const auto file = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::ReadExisting); });
  if (file.Ok()) SettingsKey = file.Value();
  return file.Ok();
}

int SettingsStore::CreateSettingsKey() {
  CloseSettingsKey();
  const std::string path = FilePath();
  if (path.empty() || MakeFolder()) return kFailure;
  const auto file = RetryInterrupted([&] { return system_.CreateFile(path, OpenMode::CreateNewPrivate); });
  if (!file.Ok()) return kFailure;
  static_cast<void>(system_.CloseHandle(file.Value()));
  return OpenSettingsKey() ? kCreated : kFailure;
}

int SettingsStore::EnsureSettingsKey() {
  if (OpenSettingsKey()) return kExisting;
  if (CreateSettingsKey() == kCreated) return kCreated;
  // Somebody else may have created it in between.
  return OpenSettingsKey() ? kExisting : kFailure;
}

void SettingsStore::CloseSettingsKey() {
  if (SettingsKey >= 0) static_cast<void>(system_.CloseHandle(SettingsKey));
  SettingsKey = -1;
}

std::string SettingsStore::ReadSetting(const std::string& name) {
  const int key = EnsureSettingsKey();
  if (key != kExisting) {
    lastError_ = key == kCreated ? kSettingsNoSuchValue : kSettingsKeyFailure;
    CloseSettingsKey();
    return {};
  }
  std::string text;
  const Outcome outcome = ReadAndClose(text);
  if (outcome) {
    lastError_ = outcome.System ? kSettingsReadFailure : outcome.Own;
    return {};
  }
  const auto value = FindSetting(text, name);
  lastError_ = value ? kSettingsOk : kSettingsNoSuchValue;
  return value ? std::string(Conversions::StripAtNull(*value)) : std::string();
}

int SettingsStore::WriteSetting(const std::string& name, const std::string& text) {
  return Store(name, text, Stored::Replace).Code();
}

SettingsStore::Outcome SettingsStore::Store(const std::string& name, const std::string& text, Stored stored) {
  if (EnsureSettingsKey() == kFailure) return kSettingsKeyFailure;
  std::string present;
  const Outcome read = ReadAndClose(present);
  // What is stored already needs no writing: a start then touches no file.
  if (!read && FindSetting(present, name) == text) return {};
  return ReplaceUnderLock(name, text, stored);
}

int SettingsStore::ReadSettingOrDefault(const std::string& name, std::string& text,
                                        const std::string& defaultText) {
  text = ReadSetting(name);
  if (lastError_ == kSettingsOk) return kSettingsOk;
  text = defaultText;
  if (lastError_ != kSettingsNoSuchValue) return lastError_;
  return Store(name, defaultText, Stored::Keep).Code();
}

SystemError SettingsStore::MakeFolder() {
  const std::string folder = FolderOf(FilePath());
  for (std::size_t end = folder.find('/', 1); end != std::string::npos; end = folder.find('/', end + 1)) {
    // Folders on the way usually exist; what is really missing shows at the last one.
    static_cast<void>(system_.CreateDirectory(folder.substr(0, end)));
  }
  const SystemError error = system_.CreateDirectory(folder);
  return error.Code == EEXIST ? SystemError{} : error;
}

SettingsStore::Outcome SettingsStore::ReadAndClose(std::string& text) {
  // Also where the memory for the text is not to be had.
  struct Closing {
    SettingsStore& Store;
    ~Closing() { Store.CloseSettingsKey(); }
  } const closing{*this};
  const auto information = system_.GetFileInformationByHandle(SettingsKey);
  if (!information.Ok()) return information.Error();
  const std::int64_t size = information.Value().Size;
  if (information.Value().Kind != FileKind::Regular || size > kLongestFile) return kSettingsOtherFailure;
  text.resize(static_cast<std::size_t>(size));
  return ReadFully(system_, SettingsKey, 0, text.data(), size);
}

SettingsStore::Outcome SettingsStore::ReplaceUnderLock(const std::string& name, const std::string& text,
                                                       Stored stored) {
  const SettingsLock lock(system_, FilePath() + ".lock", waitedInVain_ ? 0 : kMillisecondsForLock);
  NoteLock(lock.Error());
  if (lock.Error()) return lock.Error();
  // Read again: another process may have changed other settings before the lock was given.
  if (!OpenSettingsKey()) return kSettingsKeyFailure;
  std::string present;
  const Outcome read = ReadAndClose(present);
  if (read) return read;
  if (stored == Stored::Keep && FindSetting(present, name)) return {};
  const std::string changed = ReplaceSetting(present, name, text);
  // Nothing would ever read or replace such a file again.
  if (static_cast<std::int64_t>(changed.size()) > kLongestFile) return SystemError{EFBIG};
  return ReplaceFile(changed);
}

/// One wait is enough: a program that keeps the lock would hold up every option and every start else.
void SettingsStore::NoteLock(SystemError error) {
  const bool held = error.Code == EWOULDBLOCK && system_.StopSignal() == 0;
  if (held && !waitedInVain_) untold_ = kLockHeld + FilePath() + ".lock\"";
  waitedInVain_ = held;
  TellUntold();
}

void SettingsStore::TellTo(std::function<void(const std::string&)> tell) {
  tell_ = std::move(tell);
  TellUntold();
}

void SettingsStore::TellUntold() {
  if (tell_ && !untold_.empty()) tell_(std::exchange(untold_, {}));
}

SystemError SettingsStore::ReplaceFile(std::string_view text) {
  const std::string path = FilePath();
  for (int i = 0; i < kMostNameTries; ++i) {
    const auto number = RetryInterrupted([&] { return system_.RandomNumber(); });
    if (!number.Ok()) return number.Error();
    const std::string temporary = path + "." + std::to_string(number.Value()) + ".tmp";
    const auto file =
        RetryInterrupted([&] { return system_.CreateFile(temporary, OpenMode::CreateNewPrivate); });
    if (!file.Ok() && file.Error().Code == EEXIST) continue;
    if (!file.Ok()) return file.Error();
    SystemError error = WriteWhole(file.Value(), text);
    const SystemError closeError = system_.CloseHandle(file.Value());
    if (!error) error = closeError;
    if (!error) error = system_.MoveFile(temporary, path, WindowsAPI::Replace::Yes);
    if (error) static_cast<void>(system_.DeleteFile(temporary));
    return error;
  }
  return SystemError{EEXIST};
}

SystemError SettingsStore::WriteWhole(WindowsAPI::Handle file, std::string_view text) {
  const SystemError error = TransferAll(text.size(), [&](std::size_t done) {
    return system_.WriteFile(file, static_cast<std::int64_t>(done), text.data() + done, text.size() - done);
  });
  return error ? error : RetryInterrupted([&] { return system_.FlushFileBuffers(file); });
}

}  // namespace folioweld
