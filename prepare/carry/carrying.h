#pragma once

#include <string>
#include <vector>

#include "platform/windows_api.h"
#include "prepare/carry/carry_arguments.h"
#include "prepare/carry/revision.h"

namespace folioweld {

struct CarryReport {
  std::string Done;
  std::vector<CarryLoss> Lost;
};

/// Appends a revision to the joined file, and reads the result again. Nothing is written before all of it is
/// known. Raises `NotCarried`, `NotPrepared` and what libqpdf raises, with the reason in words that follow
/// the file's name.
[[nodiscard]] CarryReport Carry(WindowsAPI& system, const CarryArguments& arguments);

}  // namespace folioweld
