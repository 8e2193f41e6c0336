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
  const std::int32_t properties = DictionaryAt(input, catalog.Value("/OCProperties"));
  const std::int32_t usual = DictionaryAt(input, ValueOf(input.State, properties, "/D"));
  const auto count = [&](std::int32_t row, const char* key) {
    return CountReferences(TextAt(input, ValueOf(input.State, row, key)));
  };
  if (count(usual, "/OFF") > 0) return true;
  const bool hidesOthers = ValueOf(input.State, usual, "/BaseState") == "/OFF";
  return hidesOthers && count(usual, "/ON") < count(properties, "/OCGs");
}

/// What the first output intent with a profile calls its printing condition; empty when there is none.
std::string_view PrintingCondition(const ReadInput& input, ReadObject& catalog) {
  const std::string_view intents = TextAt(input, catalog.Value("/OutputIntents"));
  const std::size_t start = intents.find("<<");
  NumberPair found;
  std::int32_t row = -1;
  if (start != std::string_view::npos) {
    row = ParseAsOthersDo(input, intents.substr(start, intents.rfind(">>") + 2 - start));
  } else if (FindReference(intents, 0, kReferenceKeyword, found)) {
    row = ReadObject(input, found.Number).FirstRow();
  }
  if (ValueOf(input.State, row, "/DestOutputProfile").empty()) return {};
  const std::string_view identifier = ValueOf(input.State, row, "/OutputConditionIdentifier");
  return identifier.empty() ? std::string_view("()") : identifier;
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
  const std::string_view condition = PrintingCondition(input, catalog);
  const bool isScreen = condition.empty() || condition.find("sRGB") != std::string_view::npos;
  if (!isScreen && condition != PrintingCondition(first, firstCatalog)) {
    NoteAlteration(input.State, input.Slot, AlterationKind::OutputIntentLost, number, ShownPiece(condition));
  }
  CheckForm(input, catalog.Value("/AcroForm"), first, firstCatalog.Value("/AcroForm"), shell);
}

}  // namespace folioweld
