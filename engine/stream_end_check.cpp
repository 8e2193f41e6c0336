// Whether every stream ends where its /Length says. Where one does not, other programs look for "endstream",
// and the output gets what /Length says.

#include <string>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

constexpr std::string_view kEndStream = "endstream";
/// Bytes looked at after the data: the keyword, and white space that others pass over before it. A string of
/// so many needs no memory of its own.
constexpr std::int16_t kLookedAt = 15;

bool EndsThere(FileModule& files, std::int16_t fileNumber, std::int16_t slot, const ObjectEntry& entry) {
  std::string bytes;
  const std::int32_t position = CheckedAdd(CheckedAdd(entry.StreamStart, entry.StreamLength), 1);
  const std::int16_t count = files.ReadBlock(fileNumber, position, kLookedAt, bytes);
  if (count < 0 && count != kBeyondEnd) {
    throw RuleBroken({slot, entry.ObjNumber, entry.StreamStart,
                      "the stream cannot be read: " + files.LastError().Words()});
  }
  const std::size_t start = kOtherWhiteSpaceSet.Skip(bytes, 0);
  return std::string_view(bytes).substr(start, kEndStream.size()) == kEndStream;
}

}  // namespace

void CheckStreamEnd(MergeState& state, FileModule& files, std::int16_t slot, const ObjectEntry& entry) {
  const std::int16_t file = state.DocFileNumber(slot);
  // A stream that goes beyond the end of its file is no alteration but a failure, later on.
  if (std::int64_t{entry.StreamStart} + entry.StreamLength > files.FileLength(file)) return;
  if (EndsThere(files, file, slot, entry)) return;
  NoteAlteration(state, slot, AlterationKind::StreamEndsElsewhere, entry.ObjNumber);
}

void CheckStreamEnds(const ReadInput& input, FileModule& files, MergeShell& shell) {
  MergeState& state = input.State;
  if (IsRewritten(state, input.Slot)) return;
  for (std::int32_t row = 0; row < state.MissingLengthCount; ++row) {
    const MissingLength& length = state.MissingLengths[row];
    if (length.MissingDocNo != input.Slot) continue;
    const ObjectEntry& entry = state.Objects[length.StreamObjIndex];
    if (YieldAndCheckAbort(shell, state)) throw RuleBroken({input.Slot, entry.ObjNumber, -1, kCancelled});
    CheckStreamEnd(state, files, input.Slot, entry);
  }
}

}  // namespace folioweld
