// What the pages of a later document lose with its catalog: the output has the first document's.

#include <set>
#include <string>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/array_walk.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

/// What layers say of their use on the screen or on paper, which counts where a rule of the configuration has
/// it count. Everything is looked at once, however often it is referred to.
class UsageLook {
 public:
  UsageLook(const ReadInput& input, const char* category, const char* state)
      : input_(input), category_(category), state_(state) {}

  /// Whether one of the rules hides a layer.
  [[nodiscard]] bool Hides(std::string_view rules) {
    ArrayWalk walk(Once(rules));
    while (walk.Next()) {
      SeenDictionary rule(input_, Once(walk.Element()));
      const bool applies = TextAt(input_, rule.Value("/Category")).find(category_) != std::string_view::npos;
      if (applies && HidesOneOf(Once(rule.Value("/OCGs")))) return true;
    }
    return false;
  }

 private:
  [[nodiscard]] bool HidesOneOf(std::string_view layers) {
    ArrayWalk walk(layers);
    while (walk.Next()) {
      if (YieldAndCheckAbort(input_.Shell, input_.State)) {
        throw RuleBroken({input_.Slot, walk.Number(), -1, kCancelled});
      }
      SeenDictionary layer(input_, Once(walk.Element()));
      SeenDictionary usage(input_, Once(layer.Value("/Usage")));
      SeenDictionary part(input_, Once(usage.Value(category_)));
      if (part.Value(state_) == "/OFF") return true;
    }
    return false;
  }

  /// What the value is or refers to; nothing where that was looked at before.
  [[nodiscard]] std::string_view Once(std::string_view value) {
    const std::int32_t number = ReferencedNumber(value);
    if (number >= 0 && !seen_.insert(number).second) return {};
    return TrimBlanks(TextAt(input_, value));
  }

  const ReadInput& input_;
  const char* category_;
  const char* state_;
  std::set<std::int32_t> seen_;
};

/// A layer that the configuration hides is shown where there is none.
bool HidesLayers(const ReadInput& input, ReadObject& catalog) {
  SeenDictionary properties = DictionaryAt(input, catalog.Value("/OCProperties"));
  SeenDictionary usual = DictionaryAt(input, properties.Value("/D"));
  const auto count = [&](SeenDictionary& dictionary, const char* key) {
    return CountReferences(TextAt(input, dictionary.Value(key)));
  };
  if (count(usual, "/OFF") > 0) return true;
  const std::string_view rules = usual.Value("/AS");
  if (UsageLook(input, "/View", "/ViewState").Hides(rules)) return true;
  if (UsageLook(input, "/Print", "/PrintState").Hides(rules)) return true;
  const bool hidesOthers = usual.Value("/BaseState") == "/OFF";
  return hidesOthers && count(usual, "/ON") < count(properties, "/OCGs");
}

/// What the first output intent calls its printing condition; empty when it has no profile.
std::string PrintingCondition(const ReadInput& input, ReadObject& catalog) {
  ArrayWalk intents(TextAt(input, catalog.Value("/OutputIntents")));
  if (!intents.Next()) return {};
  SeenDictionary intent = DictionaryAt(input, intents.Element());
  if (intent.Value("/DestOutputProfile").empty()) return {};
  const std::string_view identifier = intent.Value("/OutputConditionIdentifier");
  return std::string(identifier.empty() ? "()" : identifier);
}

}  // namespace

void CheckCatalog(const ReadInput& input, const ReadInput& first, MergeShell& shell) {
  const std::int32_t number = input.State.DocRootNumber(input.Slot);
  ReadObject catalog(input, number);
  ReadObject firstCatalog(first, first.State.DocRootNumber(first.Slot));
  if (HidesLayers(input, catalog)) {
    NoteAlteration(input.State, input.Slot, AlterationKind::LayersShown, number);
  }
  // Where there is none, readers take colours as a screen has them.
  const std::string condition = PrintingCondition(input, catalog);
  const bool isScreen = condition.empty() || condition.find("sRGB") != std::string_view::npos;
  if (!isScreen && condition != PrintingCondition(first, firstCatalog)) {
    NoteAlteration(input.State, input.Slot, AlterationKind::OutputIntentLost, number, ShownPiece(condition));
  }
  CheckForm(input, catalog.Value("/AcroForm"), first, firstCatalog.Value("/AcroForm"), shell);
}

}  // namespace folioweld
