#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace folioweld {

/// Why a document was not accepted or a pass failed, as data: the pass leaves it behind, the job phrases it.
struct PassFailure {
  std::int16_t DocumentSlot = 0;   ///< 1, 2 or 3; 0 = no single document
  std::int32_t ObjectNumber = -1;  ///< as numbered in that document; -1 = none
  std::int64_t FileOffset = -1;    ///< 0-based, in that document; -1 = not known
  std::string Rule;                ///< what is wrong, in words; empty = nothing failed

  [[nodiscard]] bool Empty() const { return Rule.empty(); }

  /// One sentence: the document (by the given name), the object, the offset and the rule.
  [[nodiscard]] std::string Sentence(const std::string& documentName) const;
};

/// Raised where a rule is broken. It stays inside the engine: every pass catches it (`RunGuarded`).
class RuleBroken : public std::runtime_error {
 public:
  explicit RuleBroken(PassFailure failure);
  [[nodiscard]] const PassFailure& Failure() const { return failure_; }

 private:
  PassFailure failure_;
};

/// The words of a cancel, wherever it is seen.
inline constexpr char kCancelled[] = "cancelled";

/// The words where there is no more memory.
inline constexpr char kOutOfMemory[] = "out of memory";

/// How a status line tells that a pass failed.
inline constexpr char kFailedOrCancelled[] = "FAILED or cancelled";

/// What ends a pass on its status line, without a line end.
[[nodiscard]] std::string OutcomeText(bool ok);

}  // namespace folioweld
