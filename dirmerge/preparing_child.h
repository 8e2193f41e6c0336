#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/windows_api.h"

namespace folioweld {

/// A document to be prepared, and the temporary file for its copy.
struct PreparingTask {
  std::string Document;
  FileInformation Known;  ///< of the document when it was judged
  std::string Copy;
  FileInformation Made;  ///< of the copy when it was created, empty
};

/// What came of it.
struct PreparingResult {
  std::string Failure;  ///< why there is no copy; empty = there is one
  bool Repaired = false;
  // What the program tells of its work.
  std::vector<std::string> Reasons;
  std::vector<std::string> Losses;
  std::vector<std::string> Repairs;
};

/// One document that `folioweld-prepare` prepares in a process of its own. That gets open files and no names:
/// the document as it was opened and looked at here, and the file for the copy. It sets itself limits of
/// memory, processor time and size, and is ended here when it takes too long. However it ends, nothing worse
/// comes of it than that there is no copy.
class PreparingChild {
 public:
  /// Starts the program, if the files are what they were.
  PreparingChild(WindowsAPI& system, const std::string& program, const PreparingTask& task);
  PreparingChild(const PreparingChild&) = delete;
  PreparingChild& operator=(const PreparingChild&) = delete;
  /// Ends it when it still runs, and stays until it is gone, but not for long.
  ~PreparingChild();

  /// Takes what it has written, and whether it has ended or taken too long.
  void Look();
  [[nodiscard]] bool Running() const { return running_; }
  /// Once it no longer runs.
  [[nodiscard]] const PreparingResult& Result() const { return result_; }
  /// Can be read when `Look` has something to do; -1 when it has said its last word.
  [[nodiscard]] WindowsAPI::Handle Errors() const { return process_.Errors; }
  /// Ends it; several are ended quickest when each is told so before the first is waited for.
  void Kill();

 private:
  void Start(const std::string& program);
  [[nodiscard]] WindowsAPI::Handle Open(const std::string& path, OpenMode mode, FileInformation& found);
  void Fail(std::string why);
  void ReadWords();
  void TakeEnd(int status);
  void TakeWords();
  void CheckFiles();
  void Close(WindowsAPI::Handle& file);

  WindowsAPI& system_;
  const PreparingTask& task_;
  PreparingResult result_;
  StartedProcess process_;
  WindowsAPI::Handle input_ = -1;
  WindowsAPI::Handle output_ = -1;
  FileInformation before_;  ///< of the document, when the program was started
  std::int64_t started_ = 0;
  std::string words_;
  std::string lastWord_;  ///< what it says of its failure
  bool running_ = false;
};

}  // namespace folioweld
