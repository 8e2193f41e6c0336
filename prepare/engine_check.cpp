#include "prepare/engine_check.h"

#include "engine/document_judge.h"

namespace folioweld {

namespace {

/// Ends the judging when a signal asks the program to end.
class WatchingShell : public MergeShell {
 public:
  WatchingShell(WindowsAPI& system, MergeState& state) : system_(system), state_(state) {}

 protected:
  void HandleEvents() override { state_.AbortRequested = system_.StopSignal() != 0; }

 private:
  WindowsAPI& system_;
  MergeState& state_;
};

/// Without the document, the object and the offset that stand before it.
std::string WordsOf(const Alteration& warning) {
  const std::string sentence = Sentence(warning, {});
  const std::size_t words = sentence.find(": ");
  return words == std::string::npos ? sentence : sentence.substr(words + 2);
}

DocumentJudgement Judge(WindowsAPI& system, const std::string& path) {
  FileModule files(system);
  MergeState watched;
  WatchingShell shell(system, watched);
  DocumentJudge judge(files, shell, watched);
  return judge.Judge(path);
}

}  // namespace

std::string EngineObjection(WindowsAPI& system, const std::string& path) {
  const DocumentJudgement judgement = Judge(system, path);
  if (judgement.IsPlain()) return {};
  if (!judgement.IsJoinable()) return judgement.Refusal.Rule;
  if (!judgement.Warnings.empty()) return WordsOf(judgement.Warnings.front());
  return "it refers to object " + std::to_string(judgement.LowestMissing) + ", which it does not have";
}

std::string EngineRefusal(WindowsAPI& system, const std::string& path) {
  return Judge(system, path).Refusal.Rule;
}

}  // namespace folioweld
