#include "prepare/carry/carry_run.h"

#include "batch/error_output.h"
#include "prepare/carry/carrying.h"
#include "prepare/losses.h"
#include "prepare/not_prepared.h"

namespace folioweld {

namespace {

/// A name in a document may have a million bytes.
constexpr std::size_t kLongestError = 500;

void Tell(WindowsAPI& system, const std::string& text) {
  WriteError(system, ShownOnTerminal(OnOneLine(text.substr(0, kLongestError))) + "\n");
}

}  // namespace

CarryStatus RunCarry(WindowsAPI& system, const CarryArguments& arguments) {
  try {
    if (arguments.Limits) {
      const SystemError error = system.LimitProcess(*arguments.Limits);
      if (error) throw NotPrepared("the limits cannot be set: " + error.Words());
    }
    const CarryReport report = Carry(system, arguments);
    Tell(system, "did: " + report.Done);
    for (const CarryLoss& loss : report.Lost) {
      Tell(system, "lost: " + std::to_string(loss.Document) + ": " + loss.Part + ": " + loss.Words);
    }
    return report.Lost.empty() ? kCarried : kCarriedWithLosses;
  } catch (const std::exception& why) {
    Tell(system, "failed: " + WordsOf(why));
    return kNothingCarried;
  }
}

}  // namespace folioweld
