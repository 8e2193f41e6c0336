#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace folioweld::testing {

/// A folder of the test's own, removed with everything in it at the end.
class TempFolder {
 public:
  TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder();

  /// The folder's full path, without a separator at its end.
  [[nodiscard]] const std::string& Path() const { return path_; }
  /// The full path of a name in the folder.
  [[nodiscard]] std::string File(const std::string& name) const { return path_ + "/" + name; }
  /// Writes a file and returns its full path.
  std::string Write(const std::string& name, std::string_view bytes) const;
  /// Makes a folder in the folder and returns its full path.
  std::string MakeFolder(const std::string& name) const;
  /// The names in the folder, sorted.
  [[nodiscard]] std::vector<std::string> Names() const;

 private:
  std::string path_;
};

/// The whole file; the test fails when it cannot be read.
[[nodiscard]] std::string ReadFile(const std::string& path);

[[nodiscard]] bool Exists(const std::string& path);

}  // namespace folioweld::testing
