#include "app/answers.h"

#include <string>

#include "batch/error_output.h"
#include "batch/printed_answer.h"
#include "dirmerge/extra_programs.h"

namespace folioweld {

namespace {

ExitStatus Print(WindowsAPI& system, const std::string& text) {
  return PrintAnswer(system, "folioweld", text) ? kEverythingJoined : kNoOutput;
}

/// The option and the program that it needs and that is not there; empty where nothing is missing.
std::string Missing(WindowsAPI& system, const Arguments& arguments) {
  if (arguments.Prepare && FindExtraProgram(system, kPrepareProgram).empty()) {
    return std::string("--prepare needs the program ") + kPrepareProgram;
  }
  if (arguments.CarryHere().Wanted && FindExtraProgram(system, kCarryProgram).empty()) {
    return std::string(arguments.Carry.Wanted ? "--carry" : "--prepare") + " needs the program " +
           kCarryProgram;
  }
  return {};
}

}  // namespace

std::optional<ExitStatus> Answer(WindowsAPI& system, const Arguments& arguments) {
  switch (arguments.Asked) {
    case Arguments::Wish::ShowHelp:
      return Print(system, HelpText());
    case Arguments::Wish::ShowVersion:
      return Print(system, VersionText());
    case Arguments::Wish::Refuse:
      WriteError(system, "folioweld: " + ShownOnTerminal(arguments.Problem) + " (see folioweld --help)\n");
      return kNotServed;
    default:
      break;
  }
  const std::string missing = Missing(system, arguments);
  if (missing.empty()) return std::nullopt;
  WriteError(system, "folioweld: " + missing + ", which is not installed (it is in the package " +
                         kExtrasPackage + ")\n");
  return kNotServed;
}

}  // namespace folioweld
