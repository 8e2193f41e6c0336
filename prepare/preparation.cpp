#include "prepare/preparation.h"

#include <memory>

#include "engine/own_files.h"
#include "prepare/engine_check.h"
#include "prepare/file_sink.h"
#include "prepare/losses.h"
#include "prepare/memory_watch.h"
#include "prepare/not_prepared.h"
#include "prepare/opened_file.h"
#include "prepare/system_input.h"

namespace folioweld {

namespace {

/// What the engine does not read, in few words; empty when it is something else.
std::string UnreadForm(QPDF& document) {
  if (document.isEncrypted()) return "protected";
  if (document.getTrailer().getKey("/Type").isNameAndEquals("/XRef")) return "cross-reference stream";
  for (const auto& [object, entry] : document.getXRefTable()) {
    if (entry.getType() == 2) return "object streams";
  }
  return {};
}

std::string ReasonOf(WindowsAPI& system, QPDF& document, const std::string& path) {
  std::string reason = UnreadForm(document);
  if (reason.empty()) reason = EngineObjection(system, path);
  return reason.empty() ? "it could be joined as it is" : reason;
}

void Open(QPDF& document, const std::shared_ptr<SystemInput>& input, const std::string& password) {
  document.setSuppressWarnings(true);
  try {
    document.processInputSource(input, password.c_str());
  } catch (const QPDFExc& broken) {
    input->CheckReads();
    if (broken.getErrorCode() != qpdf_e_password) throw;
    throw NotPrepared(password.empty() ? "it needs a password" : "the password is not the one it needs");
  }
}

Preparation Copy(WindowsAPI& system, const OpenPair& files, const std::string& password) {
  const FileInformation was = LookAt(system, files.Input);
  const auto input = std::make_shared<SystemInput>(system, files.Input, was.Size);
  QPDF document;
  Open(document, input, password);
  Preparation done;
  done.Reason = ReasonOf(system, document, files.InputPath);
  FileSink sink(system, files.Output);
  done.Copy = WriteCopy(document, sink);
  sink.Flush();
  input->CheckReads();
  MemoryWatch::Check();
  if (!IsSameState(LookAt(system, files.Input), was)) throw NotPrepared("it was changed meanwhile");
  return done;
}

}  // namespace

Preparation Prepare(WindowsAPI& system, const OpenPair& files, const std::string& password) {
  const MemoryWatch watch;
  Preparation done;
  try {
    done = Copy(system, files, password);
  } catch (const NotPrepared&) {
    throw;
  } catch (const QPDFExc& broken) {
    MemoryWatch::Check();
    throw NotPrepared(Words(broken));
  } catch (const std::exception& broken) {
    MemoryWatch::Check();
    throw NotPrepared(broken.what());
  }
  // libqpdf's objects are gone by now.
  const std::string objection = EngineObjection(system, files.OutputPath);
  if (!objection.empty()) throw NotPrepared("its copy would not be joined: " + objection);
  return done;
}

}  // namespace folioweld
