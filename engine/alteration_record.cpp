#include "engine/alteration_record.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace folioweld {

namespace {

/// The document that the object is from; the first one also for what no object gives.
SourceDocument& SourceOf(std::vector<SourceDocument>& sources, std::int32_t objectNumber) {
  const auto after = std::upper_bound(
      std::next(sources.begin()), sources.end(), objectNumber,
      [](std::int32_t number, const SourceDocument& source) { return number < source.FirstObject; });
  return *std::prev(after);
}

std::int64_t InputOffset(const MergeState& state, std::int16_t slot, std::int32_t objectNumber) {
  const std::int32_t index = TableIndexOf(state, objectNumber, slot);
  return index <= state.Objects.UpperBound() ? state.Objects[index].OutOffset : -1;
}

bool WasTold(const Alteration& alteration) {
  return alteration.Told;
}

void MoveSources(std::vector<SourceDocument>& from, std::int32_t firstObject,
                 std::vector<SourceDocument>& to) {
  for (SourceDocument& source : from) {
    source.FirstObject += firstObject;
    source.Rewritten = true;
    to.push_back(std::move(source));
  }
  from.clear();
}

}  // namespace

std::vector<SourceDocument>& SourcesOf(MergeState& state, std::int16_t slot) {
  std::vector<SourceDocument>& sources = state.DocSources(slot);
  if (sources.empty()) sources.push_back({state.DocFileName(slot), 0, false, {}});
  return sources;
}

bool IsRewritten(MergeState& state, std::int16_t slot) {
  return SourcesOf(state, slot).front().Rewritten;
}

void NoteAlteration(MergeState& state, std::int16_t slot, AlterationKind kind, std::int32_t objectNumber,
                    std::string detail, std::int64_t fileOffset) {
  SourceDocument& source = SourceOf(SourcesOf(state, slot), objectNumber);
  const auto known = std::find_if(source.Alterations.begin(), source.Alterations.end(),
                                  [kind](const Alteration& alteration) { return alteration.Kind == kind; });
  if (known != source.Alterations.end()) {
    if (!known->Told) ++known->Count;
    return;
  }
  Alteration added{kind, -1, fileOffset, 1, std::move(detail), false};
  if (objectNumber >= 0) {
    added.ObjectNumber = objectNumber - source.FirstObject;
    if (!source.Rewritten) added.FileOffset = InputOffset(state, slot, objectNumber);
  }
  source.Alterations.push_back(std::move(added));
}

void TakeSources(MergeState& state) {
  std::vector<SourceDocument>& taken = state.DocSources(3);
  taken.clear();
  MoveSources(SourcesOf(state, 1), 0, taken);
  if (state.DocUsed(2)) MoveSources(SourcesOf(state, 2), state.ObjectsInDoc1, taken);
}

bool IsLostWithCatalog(AlterationKind kind) {
  return kind == AlterationKind::LayersShown || kind == AlterationKind::OutputIntentLost ||
         kind == AlterationKind::FieldsDrawnOtherwise;
}

std::vector<std::string> TellSources(MergeState& state) {
  std::vector<std::string> sentences;
  for (SourceDocument& source : state.DocSources(3)) {
    for (Alteration& alteration : source.Alterations) {
      if (state.CatalogsAreCarried && IsLostWithCatalog(alteration.Kind)) continue;
      if (!std::exchange(alteration.Told, true)) sentences.push_back(Sentence(alteration, source.Name));
    }
  }
  return sentences;
}

int WarningCount(const MergeState& state) {
  std::ptrdiff_t count = 0;
  for (const SourceDocument& source : state.DocSources(3)) {
    count += std::count_if(source.Alterations.begin(), source.Alterations.end(), WasTold);
  }
  return static_cast<int>(count);
}

std::string FirstWarning(const MergeState& state) {
  for (const SourceDocument& source : state.DocSources(3)) {
    const auto told = std::find_if(source.Alterations.begin(), source.Alterations.end(), WasTold);
    if (told != source.Alterations.end()) return Sentence(*told, source.Name);
  }
  return {};
}

}  // namespace folioweld
