// References that lead elsewhere in the output: to an object of another document, or to one where there was
// none.

#include <string>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

/// Appends text that holds no string and no comment, with a space for all white space and without the leading
/// zeros that make a number too long.
void AppendPlain(std::string_view text, std::string& seen) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t end = kDigitSet.Skip(text, i);
    if (end > i) {
      while (end - i > kMostDigits && text[i] == '0') ++i;
      seen += text.substr(i, end - i);
      i = end;
    } else {
      seen += kOtherWhiteSpaceSet.Has(text[i]) ? ' ' : text[i];
      ++i;
    }
  }
}

/// The text as other programs see its references.
std::string AsOthersSee(std::string_view text) {
  std::string seen;
  std::size_t plain = 0;
  OpaquePiece piece;
  while (FindOpaque(text, plain, piece)) {
    AppendPlain(text.substr(plain, piece.Start - plain), seen);
    const bool isComment = text[piece.Start] == '%';
    seen += isComment ? std::string_view(" ") : text.substr(piece.Start, piece.End - piece.Start);
    plain = piece.End;
  }
  AppendPlain(text.substr(plain), seen);
  return seen;
}

/// Looks at the texts of one input.
class ReferenceCheck {
 public:
  ReferenceCheck(const ReadInput& input, ReferencePlace place)
      : input_(input),
        state_(input.State),
        isLater_(place != ReferencePlace::First),
        isFollowed_(place != ReferencePlace::Later),
        isTried_(place == ReferencePlace::Any) {}

  void Look(std::int32_t number, std::string_view text) {
    if (!IsWorthAWalk(text)) return;
    const std::string seen = AsOthersSee(text);
    NumberPair found;
    while (FindReference(seen, found.End, kReferenceKeyword, found)) {
      if (isTried_ && found.Number == 0) Note(AlterationKind::ReferenceToFiller, number, found);
      if (isFollowed_ && found.Number >= state_.ObjectsInDoc1) LookAtMissing(number, found);
    }
    if (isLater_ && CountReferences(seen) > CountReferences(text)) {
      NoteAlteration(state_, input_.Slot, AlterationKind::ReferenceNotSeen, number);
    }
  }

  /// The lowest number that a reference of a tried input names and that the input does not have; -1 = none.
  [[nodiscard]] std::int32_t LowestMissing() const { return lowestMissing_; }

 private:
  /// Most texts have no comment, no odd white space and no number that could be one to tell of.
  [[nodiscard]] bool IsWorthAWalk(std::string_view text) const {
    if (input_.MayHavePercent && text.find('%') != std::string_view::npos) return true;
    if (input_.MayHaveOtherWhiteSpace && HasOtherWhiteSpace(text)) return true;
    if (input_.MayHaveLongNumber && HasLongNumber(text)) return true;
    // Where nothing follows, a number alone leads nowhere else; those of 0 are told when they are renumbered.
    if (!isFollowed_) return false;
    bool worth = false;
    GuessReferences(text, [&](std::string_view digits) { worth = worth || MayLeadElsewhere(digits); });
    return worth;
  }

  /// A first look at the digits of a number, which few pass.
  [[nodiscard]] bool MayLeadElsewhere(std::string_view digits) const {
    return (isTried_ && digits[0] == '0') || NumberOf(digits) >= state_.ObjectsInDoc1;
  }

  /// Among the documents of a whole run only who knows them all can tell what such a number leads to.
  void LookAtMissing(std::int32_t number, const NumberPair& reference) {
    if (isTried_) {
      if (lowestMissing_ < 0 || reference.Number < lowestMissing_) lowestMissing_ = reference.Number;
    } else if (IsInOutput(reference.Number)) {
      Note(AlterationKind::ReferenceToLater, number, reference);
    }
  }

  [[nodiscard]] bool IsInOutput(std::int32_t number) const {
    if (number >= state_.ObjectsTotal) return false;
    const std::int32_t target = state_.Objects[number].ObjState;
    return target != kNoObject && target != kListed;
  }

  void Note(AlterationKind kind, std::int32_t number, const NumberPair& reference) {
    NoteAlteration(state_, input_.Slot, kind, number,
                   std::to_string(reference.Number) + " " + std::to_string(reference.Generation) + " R");
  }

  const ReadInput& input_;
  MergeState& state_;
  bool isLater_;
  bool isFollowed_;
  bool isTried_;
  std::int32_t lowestMissing_ = -1;
};

}  // namespace

std::int32_t CheckReferences(const ReadInput& input, MergeShell& shell, ReferencePlace place) {
  MergeState& state = input.State;
  const bool mayBeSeenOtherwise =
      input.MayHavePercent || input.MayHaveOtherWhiteSpace || input.MayHaveLongNumber;
  if (place == ReferencePlace::Later && !mayBeSeenOtherwise) return -1;
  ReferenceCheck check(input, place);
  for (std::int32_t number = 0; number < state.DocObjectCount(input.Slot); ++number) {
    if (YieldAndCheckAbort(shell, state)) throw RuleBroken({input.Slot, number, -1, kCancelled});
    const ObjectEntry& entry = state.Objects[TableIndexOf(state, number, input.Slot)];
    const bool isObject = entry.ObjState == kWithoutStream || entry.ObjState == kWithStream;
    if (isObject && entry.LastLine >= 0) check.Look(number, state.ObjLines[entry.LastLine]);
  }
  return check.LowestMissing();
}

}  // namespace folioweld
