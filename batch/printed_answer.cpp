#include "batch/printed_answer.h"

#include "batch/error_output.h"
#include "platform/retry.h"

namespace folioweld {

bool PrintAnswer(WindowsAPI& system, const std::string& program, const std::string& text) {
  const SystemError error = TransferAll(text.size(), [&](std::size_t done) {
    return system.WriteStandardOutput(text.data() + done, text.size() - done);
  });
  if (error) WriteError(system, program + ": standard output cannot be written: " + error.Words() + "\n");
  return !error;
}

}  // namespace folioweld
