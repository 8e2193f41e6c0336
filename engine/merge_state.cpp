#include "engine/merge_state.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "engine/lexer.h"

namespace folioweld {

namespace {

/// The number after "%PDF-", read as far as it is one, as whole and fractional digits: 1.10 is 1.1.
double VersionOf(const std::string& header) {
  if (header.size() <= 5) return 0;
  return LenientNumber(std::string_view(header).substr(5));
}

void ChooseOutputHeader(MergeState& state) {
  std::string header;
  std::string secondLine;
  if (state.DocUsed(2) && VersionOf(state.DocHeader(2)) > VersionOf(state.DocHeader(1))) {
    header = state.DocHeader(2);
    secondLine = state.DocSecondLine(2);
  } else if (state.DocUsed(1) || state.DocUsed(2)) {
    header = state.DocHeader(1);
    secondLine = state.DocSecondLine(1);
  }
  state.DocHeader(3) = TrimRightBlanks(header);
  state.DocHeader(3) += '\r';
  state.DocSecondLine(3) = TrimRightBlanks(secondLine);
  state.DocSecondLine(3) += "\r\n";
}

void ResetSectionTables(MergeState& state) {
  for (auto* table :
       {&state.TrailerEntry, &state.TrailerFirstLine, &state.TrailerLastLine, &state.TrailerSize,
        &state.TrailerRoot, &state.TrailerInfo, &state.TrailerPrev, &state.TrailerEncrypt}) {
    table->Reset();
  }
  state.TrailerId.Reset();
}

/// Memory is used again from its beginning, so everything that lies there lets go of it first.
void ResetMemory(MergeState& state) {
  state.Objects.Reset(0);
  state.ObjLines.Reset(0);
  state.MissingLengths.Reset(0);
  state.NameEntries.Reset(0);
  state.Texts.Reset();
  state.Memory.Rewind();
}

void ResetNames(MergeState& state) {
  state.NameEntries.Reset(1);
  state.NameEntryCount = 0;
}

void ResetObjects(MergeState& state) {
  state.ObjLines.Reset(1);
  state.ObjLineCount = 0;
  state.ObjLineLast = -1;
  state.Objects.Reset(1);
}

void ResetTrailerLines(MergeState& state) {
  state.PageKids.Reset(1);
  state.PageKidsExtra.Reset(1);
  state.PageKidsCount = 0;
  state.PageKidsLast = -1;
  state.OutputTrailerText.clear();
}

}  // namespace

MergeState::MergeState() {
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    DocFileNumber(slot) = -1;
    DocXrefStart(slot) = -1;
    DocOtherStartXref(slot) = -1;
    DocRootNumber(slot) = -1;
    DocInfoNumber(slot) = -1;
  }
}

void ResetMergeState(MergeState& state) {
  state.MergeStatus = 2;
  state.Failure = {};
  ChooseOutputHeader(state);
  ResetMemory(state);
  ResetNames(state);
  ResetSectionTables(state);
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    state.DocXrefCount(slot) = 0;
    state.DocSectionBytes(slot) = 0;
    state.DocObjectCount(slot) = 0;
    state.DocRootNumber(slot) = -1;
    state.DocInfoNumber(slot) = -1;
  }
  state.DocSources(3).clear();
  state.ObjectsInDoc1 = 0;
  state.ObjectsInDoc2 = 0;
  state.ObjectsTotal = 0;
  ResetObjects(state);
  ResetTrailerLines(state);
  state.MissingLengths.Reset(1);
  state.MissingLengthCount = 0;
  state.DictDepth = 0;
}

std::int32_t TableIndexOf(const MergeState& state, std::int32_t objectNumber, std::int32_t slot) {
  switch (slot) {
    case 1:
      return objectNumber;
    case 2:
      return CheckedAdd(objectNumber, state.DocObjectCount(1));
    case 3:
      return CheckedAdd(objectNumber, CheckedAdd(state.DocObjectCount(1), state.DocObjectCount(2)));
    default:
      return 0;
  }
}

std::string HeaderLine(std::int32_t number, std::int32_t generation) {
  // Put together in place: every object gets one, and those of the second input another one.
  constexpr std::ptrdiff_t kLongestNumber = 11;
  constexpr std::string_view kEnd = " obj\r";
  std::array<char, 2 * kLongestNumber + 1 + kEnd.size()> line;
  char* end = std::to_chars(line.begin(), line.begin() + kLongestNumber, number).ptr;
  *end++ = ' ';
  end = std::to_chars(end, end + kLongestNumber, generation).ptr;
  return {line.begin(), std::ranges::copy(kEnd, end).out};
}

std::int32_t AppendObjLine(MergeState& state, std::string_view line) {
  return AppendKeptObjLine(state, state.Texts.Keep(line));
}

std::int32_t AppendKeptObjLine(MergeState& state, std::string_view line) {
  const std::int32_t index = state.ObjLineCount;
  if (index > state.ObjLines.UpperBound()) state.ObjLines.Grow(CheckedAdd(index, 63));
  state.ObjLines[index] = line;
  state.ObjLineCount = index + 1;
  return index;
}

}  // namespace folioweld
