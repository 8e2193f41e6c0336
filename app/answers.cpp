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
  if (!arguments.Prepare || !FindExtraProgram(system, kPrepareProgram).empty()) return std::nullopt;
  WriteError(system, std::string("folioweld: --prepare needs the program folioweld-prepare, which is not "
                                 "installed (it is in the package ") +
                         kExtrasPackage + ")\n");
  return kNotServed;
}

}  // namespace folioweld
