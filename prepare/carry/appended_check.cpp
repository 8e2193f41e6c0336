#include "prepare/carry/appended_check.h"

#include "prepare/engine_check.h"
#include "prepare/opened_file.h"

namespace folioweld {

JoinedFile::JoinedFile(WindowsAPI& system, WindowsAPI::Handle file, std::int64_t length)
    : input_(std::make_shared<SystemInput>(system, file, length)), file_(std::make_unique<QPDF>()) {
  file_->setSuppressWarnings(true);
  file_->setAttemptRecovery(false);
  file_->processInputSource(input_);
}

void JoinedState::Forget(int number) {
  const auto index = static_cast<std::size_t>(number);
  if (index < Places.size()) Places[index] = {};
}

JoinedState StateOf(QPDF& file, const std::vector<FoundPage>& pages) {
  JoinedState state{PlacesOf(file), {}};
  for (const FoundPage& page : pages) state.Pages.push_back(page.Number);
  return state;
}

void CheckAppended(WindowsAPI& system, WindowsAPI::Handle file, const JoinedState& before,
                   std::int64_t length) {
  {
    const JoinedFile appended(system, file, length);
    const JoinedState now = StateOf(appended.File(), WalkPages(appended.File()));
    appended.CheckReads();
    if (now.Pages != before.Pages) throw NotCarried("its pages would not be what they were");
    for (std::size_t i = 0; i < before.Places.size(); ++i) {
      const ObjectPlace& place = before.Places[i];
      if (place.Offset < 0) continue;
      const bool isThere = i < now.Places.size() && now.Places[i].Offset == place.Offset &&
                           now.Places[i].Generation == place.Generation;
      if (!isThere) throw NotCarried("object " + std::to_string(i) + " would not be where it was");
    }
  }
  const std::string refusal = EngineRefusal(system, PathOf(file));
  if (!refusal.empty()) throw NotCarried("it could not be joined again: " + refusal);
}

}  // namespace folioweld
