// Output passes #1 and #2 of PdfBuilder: missing lengths and new object numbers.

#include <string>
#include <vector>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/lexer.h"
#include "engine/pass_guard.h"
#include "engine/pdf_builder.h"

namespace folioweld {

namespace {

/// Appends the line to `text`, with `offset` added to the object number of every reference and object header
/// in it. Returns the references to object 0.
std::vector<NumberPair> AppendShifted(std::string_view line, std::int32_t offset, std::string& text) {
  std::vector<NumberPair> zeros;
  std::size_t copied = 0;
  NumberPair found;
  while (FindReference(line, found.End, kObjectOrReference, found)) {
    text += line.substr(copied, found.Start - copied);
    text += std::to_string(CheckedAdd(found.Number, offset));
    copied = found.NumberEnd;
    if (found.Number == 0 && found.Keyword == kIsReference) zeros.push_back(found);
  }
  text += line.substr(copied);
  return zeros;
}

/// Number of the object in its own document.
std::int32_t OwnNumber(const MergeState& state, std::int32_t index, std::int16_t slot) {
  return slot == 2 ? index - state.ObjectsInDoc1 : index;
}

void ResolveLength(MergeState& state, const MissingLength& row) {
  ObjectEntry& stream = state.Objects[row.StreamObjIndex];
  const PassFailure failure{row.MissingDocNo, OwnNumber(state, row.StreamObjIndex, row.MissingDocNo), -1, {}};
  const auto fail = [&](const std::string& rule) {
    PassFailure broken = failure;
    broken.Rule = rule;
    throw RuleBroken(broken);
  };
  if (stream.ObjState != kWithStream) fail("a length is kept for an object without a stream");
  if (stream.StreamLength != -1) fail("the stream's length is given twice");
  if (row.LengthObjIndex < 0 || row.LengthObjIndex > state.Objects.UpperBound()) {
    fail("the stream's /Length refers to object " + std::to_string(row.LengthObjNumber) +
         ", which does not exist");
  }
  const ObjectEntry& length = state.Objects[row.LengthObjIndex];
  const std::int32_t value = NumberOf(length.ValueText);
  if (value < 0) {
    fail("the stream's /Length refers to object " + std::to_string(row.LengthObjNumber) +
         ", which is no number of 0 or more");
  }
  if (length.ObjNumber != row.LengthObjNumber || length.Generation != row.LengthObjGeneration) {
    fail("the stream's /Length refers to " + std::to_string(row.LengthObjNumber) + " " +
         std::to_string(row.LengthObjGeneration) + " R, which is another object");
  }
  stream.StreamLength = value;
}

/// Fails for a stream that is not in its file as a whole, and for streams that claim the same bytes again and
/// again: neither may be found out while the output is being written.
void CheckStreams(const MergeState& state, const FileModule& files, std::int16_t slot, std::int32_t first,
                  std::int32_t end) {
  const std::int32_t length = files.FileLength(state.DocFileNumber(slot));
  if (length < 0) return;
  std::int64_t left = ByteAllowance(length);
  for (std::int32_t i = first; i < end; ++i) {
    const ObjectEntry& entry = state.Objects[i];
    if (entry.ObjState != kWithStream) continue;
    if (std::int64_t{entry.StreamStart} + entry.StreamLength > length) {
      throw RuleBroken(
          {slot, i - first, entry.StreamStart,
           "the stream of " + std::to_string(entry.StreamLength) + " bytes goes beyond the end of the file"});
    }
    left -= entry.StreamLength;
    if (left < 0) throw RuleBroken({slot, i - first, -1, "the streams of the document run into each other"});
  }
}

}  // namespace

PdfBuilder::PdfBuilder(MergeState& state, FileModule& files, MergeShell& shell)
    : state_(state), files_(files), shell_(shell) {}

bool PdfBuilder::BuildOutputPasses1And2() {
  shell_.AppendStatusText(2, "Pass #1 of building output file:");
  shell_.AppendStatusText(2, " get missing lengths and relocate objects");
  const std::int32_t count = state_.MissingLengthCount;
  const bool resolved = RunGuarded(state_, 0, [&] {
    for (std::int32_t row = 0; row < count; ++row) ResolveLength(state_, state_.MissingLengths[row]);
    CheckStreams(state_, files_, 1, 0, state_.ObjectsInDoc1);
    CheckStreams(state_, files_, 2, state_.ObjectsInDoc1, state_.ObjectsTotal);
    FindAlterations(state_, files_, shell_);
    return true;
  });
  if (!resolved) return false;
  shell_.AppendStatusText(2, "   -> OK : the missing length of " + std::to_string(count) + "  object" +
                                 (count > 1 ? "s" : "") + " has been found\r\n" +
                                 "Pass #2 for output file: compute new object numbers");
  const bool renumbered = RunGuarded(state_, 2, [&] { return RenumberSecondInput(); });
  shell_.AppendStatusText(2, OutcomeText(renumbered) + "\r\n");
  return renumbered;
}

bool PdfBuilder::RenumberSecondInput() {
  std::string_view longest;  // of the lines, which objects may share
  for (std::int32_t i = state_.ObjectsInDoc1; i < state_.ObjectsTotal; ++i) {
    if (YieldAndCheckAbort(shell_, state_)) {
      state_.Failure = {2, i - state_.ObjectsInDoc1, -1, kCancelled};
      return false;
    }
    ObjectEntry& entry = state_.Objects[i];
    if (entry.ObjState != kNoObject && entry.ObjState != kListed && entry.FirstLine >= 0) {
      // The header is the reader's own writing, which need not be read.
      state_.ObjLines[entry.FirstLine] = state_.Texts.Keep(HeaderLine(i, entry.Generation));
      for (std::int32_t j = entry.FirstLine + 1; j <= entry.LastLine; ++j) {
        if (state_.AbortRequested) {
          state_.Failure = {2, i - state_.ObjectsInDoc1, -1, kCancelled};
          return false;
        }
        ShiftLine(i, state_.ObjLines[j], longest);
      }
    }
    entry.ObjNumber = i;
  }
  return true;
}

/// The old text stays where it is: the keys of its dictionary point into it.
void PdfBuilder::ShiftLine(std::int32_t index, std::string_view& line, std::string_view& longest) {
  shifted_.clear();
  const std::vector<NumberPair> zeros = AppendShifted(TrimBlanks(line), state_.ObjectsInDoc1, shifted_);
  shifted_ += '\r';
  line = state_.Texts.KeepOnce(shifted_, longest);
  for (const NumberPair& zero : zeros) {
    NoteAlteration(state_, 2, AlterationKind::ReferenceToFiller, index - state_.ObjectsInDoc1,
                   "0 " + std::to_string(zero.Generation) + " R");
  }
}

std::string PdfBuilder::ShiftObjectReferences(std::string_view line) const {
  std::string shifted;
  static_cast<void>(AppendShifted(line, state_.ObjectsInDoc1, shifted));
  return shifted;
}

}  // namespace folioweld
