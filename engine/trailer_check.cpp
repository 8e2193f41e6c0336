// What the trailers and the two dictionaries that the joining rests on say to other programs.

#include <set>
#include <string>

#include "engine/alteration.h"
#include "engine/alteration_checks.h"
#include "engine/conversions.h"

namespace folioweld {

using namespace Conversions;

namespace {

/// The dictionary's text with the line ends that the reading of trailers leaves out, so that a key ends with
/// its line and a comment with its own.
std::string TrailerText(const MergeState& state, std::int16_t slot, std::int32_t section) {
  std::string text;
  for (std::int32_t i = state.TrailerFirstLine(slot, section); i <= state.TrailerLastLine(slot, section);
       ++i) {
    text.append(state.PageKids[i]).append("\n");
  }
  return text;
}

std::int32_t NumberAt(std::string_view value) {
  std::int16_t digits = 0;
  const std::int32_t number = ParseDecimalToken(value, digits);
  return digits > 0 ? number : -1;
}

/// One section's trailer, as the chain of sections took it and as other programs read it.
class TrailerCheck {
 public:
  TrailerCheck(const ReadInput& input, MergeShell& shell, std::int32_t section)
      : input_(input), shell_(shell), section_(section) {}

  /// `rootKnown` and `informationKnown`: a newer trailer names them, so this one's do not count.
  void Run(bool& rootKnown, bool& informationKnown) {
    const MergeState& state = input_.State;
    const std::int16_t slot = input_.Slot;
    const std::string text = TrailerText(state, slot, section_);
    firstRow_ = ParseAsOthersDo(input_, input_.State.Texts.Keep(TrimBlanks(text)));
    if (section_ == 0 && !Value("/Encrypt").empty()) Note(AlterationKind::Encrypted, "");
    if (!CheckRepeatedKeys(input_, shell_, firstRow_, -1)) CompareAll(!rootKnown, !informationKnown);
    rootKnown = rootKnown || state.TrailerRoot(slot, section_) != -1;
    informationKnown = informationKnown || state.TrailerInfo(slot, section_) != -1;
  }

 private:
  [[nodiscard]] std::string_view Value(std::string_view key) const {
    return ValueOf(input_.State, firstRow_, key);
  }

  void CompareAll(bool rootCounts, bool informationCounts) const {
    const MergeState& state = input_.State;
    const std::int16_t slot = input_.Slot;
    const std::int32_t root = state.TrailerRoot(slot, section_);
    const std::int32_t information = state.TrailerInfo(slot, section_);
    if (rootCounts) Compare("/Root", root, ReferencedNumber(Value("/Root")));
    // Without one nothing is replaced.
    const bool isReplaced = information > 0 && information < state.DocObjectCount(slot);
    if (informationCounts && isReplaced) Compare("/Info", information, ReferencedNumber(Value("/Info")));
    if (section_ == 0) Compare("/Size", state.TrailerSize(slot, section_), NumberAt(Value("/Size")));
    Compare("/Prev", state.TrailerPrev(slot, section_), NumberAt(Value("/Prev")));
  }

  void Compare(const char* key, std::int32_t taken, std::int32_t seen) const {
    if (taken != seen) Note(AlterationKind::TrailerReadOtherwise, key);
  }

  void Note(AlterationKind kind, const char* detail) const {
    NoteAlteration(input_.State, input_.Slot, kind, -1, detail);
  }

  const ReadInput& input_;
  MergeShell& shell_;
  std::int32_t section_;
  std::int32_t firstRow_ = -1;
};

}  // namespace

bool CheckRepeatedKeys(const ReadInput& input, MergeShell& shell, std::int32_t firstRow,
                       std::int32_t number) {
  std::set<std::string> keys;
  bool repeated = false;
  for (std::int32_t row = firstRow; row >= 0; row = input.State.NameEntries[row].NameId) {
    if (YieldAndCheckAbort(shell, input.State)) throw RuleBroken({input.Slot, number, -1, kCancelled});
    const std::string_view written = input.State.NameEntries[row].NameText;
    if (keys.insert(PlainName(written)).second) continue;
    NoteAlteration(input.State, input.Slot, AlterationKind::KeyRepeated, number, ShownPiece(written));
    repeated = true;
  }
  return repeated;
}

void CheckTrailers(const ReadInput& input, MergeShell& shell) {
  if (IsRewritten(input.State, input.Slot)) return;
  bool rootKnown = false;
  bool informationKnown = false;
  for (std::int32_t section = 0; section < input.State.DocXrefCount(input.Slot); ++section) {
    TrailerCheck(input, shell, section).Run(rootKnown, informationKnown);
  }
}

}  // namespace folioweld
