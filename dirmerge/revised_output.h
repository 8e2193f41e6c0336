#pragma once

#include <string>

#include "engine/file_module.h"
#include "engine/output_sequel.h"

namespace folioweld {

/// A finished output that is opened again for something to be appended to it. It ends with all of that, or as
/// it was.
class RevisedOutput {
 public:
  /// `finished` is what is known of the file that was written to `path`.
  RevisedOutput(FileModule& files, std::string path, const FileInformation& finished);
  RevisedOutput(const RevisedOutput&) = delete;
  RevisedOutput& operator=(const RevisedOutput&) = delete;
  ~RevisedOutput();

  /// Opens the file for reading and writing, if it is what it was. Why not, or empty.
  [[nodiscard]] std::string Open();
  [[nodiscard]] WindowsAPI::Handle File() const { return file_; }

  /// Whether what was appended leaves a document that can be joined, and closes the file. Why not, or empty.
  [[nodiscard]] std::string Finish();

  /// Makes it what it was. `why` is replaced where there is more to say than the reason for this.
  [[nodiscard]] OutputSequel::Outcome Restore(std::string& why);
  /// Empties it, as far as that can be done.
  OutputSequel::Outcome GiveUp();

 private:
  [[nodiscard]] std::string OpenFile();
  [[nodiscard]] std::string Check();
  [[nodiscard]] bool EndsWithNewTable();
  [[nodiscard]] bool IsElsewhere();
  [[nodiscard]] SystemError CutBack();
  [[nodiscard]] SystemError Close();

  FileModule& files_;
  WindowsAPI& system_;
  const std::string path_;
  const FileInformation finished_;
  WindowsAPI::Handle file_ = -1;
  FileInformation before_;  ///< of it when it was opened again
  bool lost_ = false;       ///< the path leads to something else
  bool opened_ = false;     ///< and perhaps written to
};

}  // namespace folioweld
