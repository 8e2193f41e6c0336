#include "prepare/carry/appended_check.h"

#include "prepare/carry/revision.h"
#include "prepare/engine_check.h"
#include "prepare/opened_file.h"

namespace folioweld {

namespace {

/// As it is written: references and not what they lead to.
std::string TextOf(QPDFObjectHandle object, const std::string& key) {
  return object.isDictionary() ? object.getKey(key).unparse() : std::string();
}

void CheckPlaces(const std::vector<ObjectPlace>& before, const std::vector<ObjectPlace>& now,
                 const std::set<int>& written) {
  for (std::size_t i = 0; i < before.size(); ++i) {
    const ObjectPlace& place = before[i];
    if (place.Offset < 0) continue;
    const bool mayMove = written.count(static_cast<int>(i)) != 0;
    const bool isThere =
        i < now.size() && now[i].Generation == place.Generation && (mayMove || now[i].Offset == place.Offset);
    if (!isThere) throw NotCarried("object " + std::to_string(i) + " would not be where it was");
  }
}

void CheckKids(const std::vector<ObjectPlace>& places, QPDF& before, QPDF& now,
               const std::set<int>& written) {
  for (const int number : written) {
    const auto index = static_cast<std::size_t>(number);
    if (index >= places.size() || places[index].Offset < 0) continue;
    const int generation = places[index].Generation;
    if (TextOf(now.getObjectByID(number, generation), "/Kids") !=
        TextOf(before.getObjectByID(number, generation), "/Kids")) {
      throw NotCarried("object " + std::to_string(number) + " would have other kids");
    }
  }
}

}  // namespace

JoinedFile::JoinedFile(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length)
    : input_(std::make_shared<SystemInput>(system, file, length)), file_(std::make_unique<QPDF>()) {
  file_->setSuppressWarnings(true);
  file_->setAttemptRecovery(false);
  file_->processInputSource(input_);
}

void CheckAppended(WindowsAPI& system, WindowsAPI::Handle file, const JoinedState& before,
                   std::int64_t length, const std::set<int>& written) {
  {
    const JoinedFile now(system, file, length);
    CheckPlaces(before.Places, PlacesOf(now.File()), written);
    if (TextOf(now.File().getRoot(), "/Pages") != before.Pages) {
      throw NotCarried("its pages would not be what they were");
    }
    // Where nothing is written anew, all is what it was.
    if (*written.begin() < static_cast<int>(before.Places.size())) {
      const JoinedFile joined(system, file, before.Length);
      CheckKids(before.Places, joined.File(), now.File(), written);
      joined.CheckReads();
    }
    now.CheckReads();
  }
  const std::string refusal = EngineRefusal(system, PathOf(file));
  if (!refusal.empty()) throw NotCarried("it could not be joined again: " + refusal);
}

JoinedState StateOf(QPDF& file, std::int64_t length) {
  return {length, PlacesOf(file), TextOf(file.getRoot(), "/Pages")};
}

}  // namespace folioweld
