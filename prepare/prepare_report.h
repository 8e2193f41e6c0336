#pragma once

#include <string>

#include "platform/windows_api.h"
#include "prepare/preparation.h"

namespace folioweld {

/// Tells on standard error what came of a preparation, a line each.
class PrepareReport {
 public:
  /// For somebody who reads: every line begins with the program and the name of the document.
  PrepareReport(WindowsAPI& system, std::string documentName);
  /// For a program that reads: every line begins with "reason: ", "did: ", "lost: ", "repaired: " or "failed:
  /// ".
  explicit PrepareReport(WindowsAPI& system);

  void TellPrepared(const Preparation& done);
  void TellFailure(const std::string& why);

 private:
  void Tell(const std::string& kind, const std::string& text);

  WindowsAPI& system_;
  std::string documentName_;
  bool forProgram_;
};

}  // namespace folioweld
