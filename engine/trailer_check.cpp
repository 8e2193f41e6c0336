// What the trailers and the two dictionaries that the joining rests on say to other programs.

#include <set>
#include <string>
#include <string_view>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

/// The dictionary's text with the line ends that the reading of trailers leaves out, so that a key ends with
/// its line and a comment with its own.
std::string TrailerText(const MergeState& state, const XrefSectionInfo& section) {
  std::string text;
  for (std::int32_t i = section.TrailerFirstLine; i <= section.TrailerLastLine; ++i) {
    text.append(state.PageKids[i]).append("\n");
  }
  return text;
}

void Note(const ReadInput& input, const XrefSectionInfo& section, AlterationKind kind, const char* detail) {
  NoteAlteration(input.State, input.Slot, kind, -1, detail, section.FirstByte);
}

/// What the chain of sections takes from the trailer, beside what other programs read there.
void Compare(const ReadInput& input, const XrefSectionInfo& section, SeenDictionary& dictionary) {
  const MergeState& state = input.State;
  const auto compare = [&](const char* key, std::int32_t taken, std::int32_t seen) {
    if (taken != seen) Note(input, section, AlterationKind::TrailerReadOtherwise, key);
  };
  const auto value = [&](const char* key) { return dictionary.Value(key); };
  const bool isNewest = state.DocXrefCount(input.Slot) == 0;
  const std::int32_t information = section.TrailerInfo;
  // Without one nothing is replaced.
  const bool isReplaced = information > 0 && information < state.DocObjectCount(input.Slot);
  if (isNewest) compare("/Size", section.TrailerSize, FirstNumberOf(value("/Size")));
  if (state.DocRootNumber(input.Slot) == -1) {
    compare("/Root", section.TrailerRoot, ReferencedNumber(value("/Root")));
  }
  if (state.DocInfoNumber(input.Slot) == -1 && isReplaced) {
    compare("/Info", information, ReferencedNumber(value("/Info")));
  }
  compare("/Prev", section.TrailerPrev, FirstNumberOf(value("/Prev")));
}

}  // namespace

bool CheckRepeatedKeys(const ReadInput& input, MergeShell& shell, SeenDictionary& dictionary,
                       std::int32_t number, std::int64_t fileOffset) {
  std::set<std::string> keys;
  bool repeated = false;
  dictionary.ForEachKey([&](std::string_view written) {
    if (YieldAndCheckAbort(shell, input.State)) throw RuleBroken({input.Slot, number, -1, kCancelled});
    if (keys.insert(PlainName(written)).second) return;
    NoteAlteration(input.State, input.Slot, AlterationKind::KeyRepeated, number, ShownPiece(written),
                   fileOffset);
    repeated = true;
  });
  return repeated;
}

void CheckTrailer(const ReadInput& input, MergeShell& shell, const XrefSectionInfo& section) {
  if (IsRewritten(input.State, input.Slot)) return;
  const std::string text = TrailerText(input.State, section);
  SeenDictionary dictionary(input, TrimBlanks(text));
  const bool isNewest = input.State.DocXrefCount(input.Slot) == 0;
  if (isNewest && !dictionary.Value("/Encrypt").empty()) {
    Note(input, section, AlterationKind::Encrypted, "");
  }
  if (!dictionary.Value("/XRefStm").empty()) {
    Note(input, section, AlterationKind::HybridPartLost, "/XRefStm");
  }
  if (!CheckRepeatedKeys(input, shell, dictionary, -1, section.FirstByte)) {
    Compare(input, section, dictionary);
  }
}

}  // namespace folioweld
