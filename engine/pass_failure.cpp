#include "engine/pass_failure.h"

#include <utility>

namespace folioweld {

std::string PassFailure::Sentence(const std::string& documentName) const {
  std::string sentence;
  if (DocumentSlot != 0) sentence += "\"" + documentName + "\"";
  if (ObjectNumber >= 0)
    sentence += (sentence.empty() ? "" : ", ") + ("object " + std::to_string(ObjectNumber));
  if (FileOffset >= 0)
    sentence += (sentence.empty() ? "" : ", ") + ("file offset " + std::to_string(FileOffset));
  if (!sentence.empty()) sentence += ": ";
  return sentence + Rule;
}

std::string OutcomeText(bool ok) {
  return std::string("   -> ") + (ok ? "OK" : kFailedOrCancelled);
}

RuleBroken::RuleBroken(PassFailure failure)
    : std::runtime_error(failure.Rule), failure_(std::move(failure)) {}

}  // namespace folioweld
