#include "dirmerge/tmp_directory.h"

#include "dirmerge/folder_safety.h"
#include "dirmerge/paths.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

constexpr char kSetting[] = "MergeTmpDir";
constexpr char kPickerTitle[] = "Folioweld: Choose FOLDER FOR TEMPORARY FILES";

std::string Trimmed(const std::string& text) {
  return std::string(kSpaceSet.Trim(text));
}

}  // namespace

TmpDirectory::TmpDirectory(WindowsAPI& system, SettingsStore& settings, MergeShell& shell)
    : system_(system), settings_(settings), shell_(shell) {}

std::string TmpDirectory::GetTmpDirectory() {
  std::string folder;
  // What cannot be read counts as not stored.
  static_cast<void>(settings_.ReadSettingOrDefault(kSetting, folder, ""));
  folder = Trimmed(folder);
  return Store(folder.empty() ? SystemFolder() : Enterable(WithSeparator(folder)));
}

std::string TmpDirectory::ResetTmpDirectory() {
  const std::string folder = SystemFolder();
  return folder.empty() ? folder : Store(folder);
}

std::string TmpDirectory::ChooseTmpDirectory() {
  std::string start = GetTmpDirectory();
  if (start.empty()) start = Trimmed(GetSystemTempFolder(system_));
  std::string folder = Trimmed(shell_.BrowseForFolder(kPickerTitle, start));
  if (folder.empty()) folder = GetTmpDirectory();
  if (folder.empty()) folder = SystemFolder();
  return folder.empty() ? folder : Store(WithSeparator(folder));
}

std::string TmpDirectory::RequireTmpDirectory() {
  std::string folder = GetTmpDirectory();
  return folder.empty() ? ChooseTmpDirectory() : folder;
}

std::string TmpDirectory::SafeTmpDirectory(const std::function<void(const std::string&)>& tell,
                                           std::string& why) {
  std::string folder = RequireTmpDirectory();
  if (folder.empty()) {
    why = notEntered_.empty() ? "the system names no folder for temporary files" : notEntered_;
    return {};
  }
  why = WhyFolderIsUnsafe(system_, folder);
  if (why.empty()) return folder;
  std::string instead = SystemFolder();
  if (instead == folder || instead.empty()) {
    why += " (\"" + folder + "\")";
    return {};
  }
  tell("The folder for temporary files \"" + folder + "\" is not used: " + why);
  why = WhyFolderIsUnsafe(system_, instead);
  if (why.empty()) return instead;
  why += " (\"" + instead + "\")";
  return {};
}

std::string TmpDirectory::SystemFolder() {
  const std::string folder = Trimmed(GetSystemTempFolder(system_));
  return folder.empty() ? folder : Enterable(WithSeparator(folder));
}

std::string TmpDirectory::Enterable(const std::string& folder) {
  const CurrentDirectoryKeeper keeper(system_);
  const SystemError error = system_.SetCurrentDirectory(folder);
  if (error) notEntered_ = error.Words() + " (\"" + folder + "\")";
  return error ? std::string() : folder;
}

std::string TmpDirectory::Store(const std::string& folder) {
  // A setting that cannot be stored is asked for again at the next use.
  static_cast<void>(settings_.WriteSetting(kSetting, folder));
  return folder;
}

}  // namespace folioweld
