// What the pages of a later document lose with its catalog: the output has the first document's.

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

std::size_t CountReferences(std::string_view array) {
  std::size_t count = 0;
  NumberPair found;
  while (FindReference(array, found.End, kReferenceKeyword, found)) ++count;
  return count;
}

/// A layer that the configuration hides is shown where there is none.
bool HidesLayers(const ReadInput& input, ReadObject& catalog) {
  SeenDictionary properties = DictionaryAt(input, catalog.Value("/OCProperties"));
  SeenDictionary usual = DictionaryAt(input, properties.Value("/D"));
  const auto count = [&](SeenDictionary& dictionary, const char* key) {
    return CountReferences(TextAt(input, dictionary.Value(key)));
  };
  if (count(usual, "/OFF") > 0) return true;
  const bool hidesOthers = usual.Value("/BaseState") == "/OFF";
  return hidesOthers && count(usual, "/ON") < count(properties, "/OCGs");
}

/// What the first output intent with a profile calls its printing condition; empty when there is none.
std::string PrintingCondition(const ReadInput& input, ReadObject& catalog) {
  const std::string_view intents = TextAt(input, catalog.Value("/OutputIntents"));
  const std::size_t start = intents.find("<<");
  NumberPair found;
  SeenDictionary intent(input);
  if (start != std::string_view::npos) {
    intent = SeenDictionary(input, intents.substr(start, intents.rfind(">>") + 2 - start));
  } else if (FindReference(intents, 0, kReferenceKeyword, found)) {
    intent = DictionaryAt(input, intents.substr(found.Start));
  }
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
