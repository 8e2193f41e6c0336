#include "prepare/prepare_report.h"

#include <utility>

#include "batch/error_output.h"

namespace folioweld {

PrepareReport::PrepareReport(WindowsAPI& system, std::string documentName)
    : system_(system), documentName_(std::move(documentName)), forProgram_(false) {}

PrepareReport::PrepareReport(WindowsAPI& system) : system_(system), forProgram_(true) {}

void PrepareReport::TellPrepared(const Preparation& done) {
  Tell(forProgram_ ? "reason" : "prepared", done.Reason);
  for (const std::string& line : done.Copy.Done) Tell("did", line);
  for (const std::string& line : done.Copy.Lost) Tell("lost", line);
  for (const std::string& line : done.Copy.Repaired) Tell("repaired", line);
}

void PrepareReport::TellFailure(const std::string& why) {
  Tell(forProgram_ ? "failed" : "not written", why);
}

void PrepareReport::Tell(const std::string& kind, const std::string& text) {
  const std::string beginning = forProgram_ ? std::string() : "folioweld-prepare: " + documentName_ + ": ";
  WriteError(system_, ShownOnTerminal(OnOneLine(beginning + kind + ": " + text)) + "\n");
}

}  // namespace folioweld
