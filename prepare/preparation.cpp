#include "prepare/preparation.h"

#include <memory>
#include <new>

#include "engine/own_files.h"
#include "prepare/engine_check.h"
#include "prepare/file_sink.h"
#include "prepare/losses.h"
#include "prepare/not_prepared.h"
#include "prepare/system_input.h"

namespace folioweld {

namespace {

FileInformation Look(WindowsAPI& system, WindowsAPI::Handle file) {
  const auto information = system.GetFileInformationByHandle(file);
  if (!information.Ok()) throw NotPrepared("it cannot be read: " + information.Error().Words());
  if (information.Value().Kind != FileKind::Regular) throw NotPrepared("it is no file");
  return information.Value();
}

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

bool memoryRanOut = false;

/// Notices that memory runs out: libqpdf takes an object that it has no room for for null.
class MemoryWatch {
 public:
  MemoryWatch() {
    memoryRanOut = false;
    std::set_new_handler([] {
      memoryRanOut = true;
      throw std::bad_alloc();
    });
  }
  MemoryWatch(const MemoryWatch&) = delete;
  MemoryWatch& operator=(const MemoryWatch&) = delete;
  ~MemoryWatch() { std::set_new_handler(nullptr); }

  static void Check() {
    if (memoryRanOut) throw NotPrepared("there is not enough memory for it");
  }
};

Preparation Copy(WindowsAPI& system, const OpenPair& files, const std::string& password) {
  const FileInformation was = Look(system, files.Input);
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
  if (!IsSameState(Look(system, files.Input), was)) throw NotPrepared("it was changed meanwhile");
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
