#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dirmerge/limited_child.h"
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

/// One document that `folioweld-prepare` prepares in a process of its own. That gets the document as it was
/// opened and looked at here, and the file for the copy. However it ends, nothing worse comes of it than that
/// there is no copy.
class PreparingChild {
 public:
  /// Starts the program, if the files are what they were.
  PreparingChild(WindowsAPI& system, const std::string& program, const PreparingTask& task);
  PreparingChild(const PreparingChild&) = delete;
  PreparingChild& operator=(const PreparingChild&) = delete;
  /// Ends it when it still runs, and stays until it is gone, but not for long.
  ~PreparingChild();

  void Look();
  [[nodiscard]] bool Running() const { return child_.Running(); }
  /// Once it no longer runs.
  [[nodiscard]] const PreparingResult& Result() const { return result_; }
  [[nodiscard]] WindowsAPI::Handle Errors() const { return child_.Errors(); }
  void Kill() { child_.Kill(); }

 private:
  void Start(const std::string& program);
  [[nodiscard]] WindowsAPI::Handle Open(const std::string& path, OpenMode mode, FileInformation& found);
  void Fail(std::string why);
  void TakeEnd();
  void TakeWords();
  void CheckFiles();
  void Close(WindowsAPI::Handle& file);

  WindowsAPI& system_;
  const PreparingTask& task_;
  PreparingResult result_;
  LimitedChild child_;
  WindowsAPI::Handle input_ = -1;
  WindowsAPI::Handle output_ = -1;
  FileInformation before_;  ///< of the document, when the program was started
  std::string lastWord_;    ///< what it says of its failure
};

}  // namespace folioweld
