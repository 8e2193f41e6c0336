#include "prepare/prepare_run.h"

#include <string>

#include "batch/error_output.h"
#include "platform/retry.h"
#include "prepare/new_output.h"
#include "prepare/not_prepared.h"
#include "prepare/opened_file.h"
#include "prepare/prepare_report.h"

namespace folioweld {

namespace {

constexpr std::size_t kLongestPassword = 4096;

/// The first line of the file.
std::string ReadPassword(WindowsAPI& system, const std::string& path) {
  const std::string name = "the file of the password, \"" + path + "\",";
  const OpenedFile file(system, path, OpenMode::ReadSequence, name);
  std::string text(kLongestPassword, '\0');
  std::size_t size = 0;
  while (size < text.size()) {
    const auto part = RetryInterrupted(
        [&] { return system.ReadNext(file.Handle(), text.data() + size, text.size() - size); });
    if (!part.Ok()) throw NotPrepared(name + " cannot be read: " + part.Error().Words());
    if (part.Value() == 0) break;
    size += part.Value();
  }
  return text.substr(0, std::min(text.find_first_of("\r\n"), size));
}

std::string PasswordOf(WindowsAPI& system, const PrepareArguments& arguments) {
  return arguments.PasswordFile ? ReadPassword(system, *arguments.PasswordFile) : std::string();
}

Preparation CopyHandles(WindowsAPI& system, const PrepareArguments& arguments) {
  const OpenPair files{arguments.InputHandle, arguments.OutputHandle, PathOf(arguments.InputHandle),
                       PathOf(arguments.OutputHandle)};
  return Prepare(system, files, PasswordOf(system, arguments));
}

Preparation CopyPaths(WindowsAPI& system, const PrepareArguments& arguments) {
  const std::string password = PasswordOf(system, arguments);
  const OpenedFile input(system, arguments.Input, OpenMode::ReadExisting, "it");
  const auto information = system.GetFileInformationByHandle(input.Handle());
  if (!information.Ok()) throw NotPrepared("it cannot be read: " + information.Error().Words());
  NewOutput output(system, arguments.Output, information.Value().Identity);
  const OpenPair files{input.Handle(), output.File(), PathOf(input.Handle()), output.TemporaryPath()};
  Preparation done = Prepare(system, files, password);
  output.Publish();
  return done;
}

}  // namespace

PrepareStatus RunPrepare(WindowsAPI& system, const PrepareArguments& arguments) {
  const bool byHandles = arguments.Asked == PrepareArguments::Wish::CopyHandles;
  PrepareReport report = byHandles ? PrepareReport(system) : PrepareReport(system, arguments.Input);
  try {
    if (arguments.Limits) {
      const SystemError error = system.LimitProcess(*arguments.Limits);
      if (error) throw NotPrepared("the limits cannot be set: " + error.Words());
    }
    const Preparation done = byHandles ? CopyHandles(system, arguments) : CopyPaths(system, arguments);
    report.TellPrepared(done);
    return done.Copy.Repaired.empty() ? kCopyWritten : kCopyRepaired;
  } catch (const NotPrepared& why) {
    report.TellFailure(why.what());
    return kNoCopy;
  }
}

}  // namespace folioweld
