#include "tests/support/temp_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <system_error>

namespace folioweld::testing {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
  // Others may read what a test makes and not write to it, whoever runs the test.
  ::umask(022);
  std::string pattern = (fs::temp_directory_path() / "folioweld-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::system_error(errno, std::generic_category(), pattern);
  path_ = fs::canonical(pattern).string();
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  for (auto entry =
           fs::recursive_directory_iterator(path_, fs::directory_options::skip_permission_denied, ignored);
       !ignored && entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
    if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
      fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
  }
  fs::remove_all(path_, ignored);
}

std::string TempFolder::Write(const std::string& name, std::string_view bytes) const {
  const std::string path = File(name);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  EXPECT_TRUE(file.good()) << path;
  return path;
}

std::string TempFolder::MakeFolder(const std::string& name) const {
  fs::create_directories(File(name));
  return File(name);
}

std::vector<std::string> TempFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  EXPECT_TRUE(file.is_open()) << path;
  if (!file.is_open()) return {};
  // In one go: byte by byte takes seconds for large files in builds that count or check every step.
  std::string bytes(static_cast<std::size_t>(file.tellg()), '\0');
  file.seekg(0).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_EQ(static_cast<std::size_t>(file.gcount()), bytes.size()) << path;
  return bytes;
}

bool Exists(const std::string& path) {
  return fs::exists(fs::symlink_status(path));
}

}  // namespace folioweld::testing
