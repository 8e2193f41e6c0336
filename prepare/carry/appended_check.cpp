#include "prepare/carry/appended_check.h"

#include <string>
#include <vector>

#include "prepare/carry/appending.h"
#include "prepare/carry/revision.h"
#include "prepare/engine_check.h"
#include "prepare/opened_file.h"

namespace folioweld {

namespace {

/// As it is written: references and not what they lead to.
std::string Written(QPDFObjectHandle object, const std::string& key) {
  return object.isDictionary() ? object.getKey(key).unparse() : std::string();
}

void CheckObjects(QPDF& before, QPDF& now, const std::set<int>& written) {
  const std::vector<ObjectPlace> places = PlacesOf(now);
  const std::vector<ObjectPlace> placesBefore = PlacesOf(before);
  for (std::size_t i = 0; i < placesBefore.size(); ++i) {
    const ObjectPlace& place = placesBefore[i];
    if (place.Offset < 0) continue;
    const std::string name = "object " + std::to_string(i);
    const auto number = static_cast<int>(i);
    const bool isWritten = written.count(number) != 0;
    const bool isThere = i < places.size() && places[i].Generation == place.Generation &&
                         (isWritten || places[i].Offset == place.Offset);
    if (!isThere) throw NotCarried(name + " would not be where it was");
    if (isWritten && Written(now.getObjectByID(number, place.Generation), "/Kids") !=
                         Written(before.getObjectByID(number, place.Generation), "/Kids")) {
      throw NotCarried(name + " would have other kids");
    }
  }
  if (Written(now.getRoot(), "/Pages") != Written(before.getRoot(), "/Pages")) {
    throw NotCarried("its pages would not be what they were");
  }
}

}  // namespace

JoinedFile::JoinedFile(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length)
    : input_(std::make_shared<SystemInput>(system, file, length)), file_(std::make_unique<QPDF>()) {
  file_->setSuppressWarnings(true);
  file_->setAttemptRecovery(false);
  file_->processInputSource(input_);
}

void CheckAppended(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t joined, std::int64_t length,
                   const std::set<int>& written) {
  {
    const JoinedFile before(system, file, joined);
    const JoinedFile now(system, file, length);
    CheckObjects(before.File(), now.File(), written);
    before.CheckReads();
    now.CheckReads();
  }
  const std::string refusal = EngineRefusal(system, PathOf(file));
  if (!refusal.empty()) throw NotCarried("it could not be joined again: " + refusal);
}

}  // namespace folioweld
