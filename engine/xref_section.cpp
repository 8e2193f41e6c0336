// Cross-reference sections: PdfReader::ReadXrefSection and the object table's growth.

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/conversions.h"
#include "engine/line_cursor.h"
#include "engine/pass_guard.h"
#include "engine/pdf_reader.h"

namespace folioweld {

using namespace Conversions;

namespace {

/// Entries between two changes of the status line.
constexpr std::int32_t kEntriesPerCaption = 7738;

struct XrefEntry {
  std::int32_t Offset = 0;
  std::int32_t Generation = 0;
  char Type = '\0';
};

bool StartsWithDigit(std::string_view text) {
  return !text.empty() && text[0] >= '0' && text[0] <= '9';
}

/// The value of a field of digits only; -1 for any other, and for one whose value is no offset.
std::int32_t ParseField(std::string_view field) {
  std::int64_t value = 0;
  for (const char c : field) {
    if (c < '0' || c > '9') return -1;
    value = value * 10 + (c - '0');
  }
  return value < std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(value) : -1;
}

/// An entry with one blank between its fields, as nearly every one is. False says nothing about the line.
bool ParseUsualEntryLine(std::string_view line, XrefEntry& entry) {
  if (line.size() < 18 || line[10] != ' ' || line[16] != ' ' || line[17] == ' ') return false;
  entry.Offset = ParseField(line.substr(0, 10));
  entry.Generation = ParseField(line.substr(11, 5));
  entry.Type = line[17];
  return entry.Offset >= 0 && entry.Generation >= 0;
}

/// "0000000016 00000 n", any keyword character; false for any other line.
bool ParseEntryLine(std::string_view line, XrefEntry& entry) {
  std::int16_t digits = 0;
  if (line.size() < 18 || !StartsWithDigit(line)) return false;
  entry.Offset = ParseDecimalToken(line, digits);
  if (digits != 10) return false;
  const std::string_view rest = TrimSpaces(line.substr(10));
  if (rest.size() < 7 || !StartsWithDigit(rest)) return false;
  entry.Generation = ParseDecimalToken(rest, digits);
  if (digits != 5) return false;
  const std::string_view keyword = TrimSpaces(rest.substr(5));
  if (keyword.empty()) return false;
  entry.Type = keyword[0];
  return true;
}

/// Reads one section; a broken rule is raised.
class SectionReading {
 public:
  SectionReading(MergeState& state, FileModule& files, MergeShell& shell, PdfReader& reader,
                 std::int16_t slot, std::int32_t sectionPosition, XrefSectionInfo& info)
      : state_(state),
        shell_(shell),
        reader_(reader),
        slot_(slot),
        lines_(files, state.DocFileNumber(slot), CheckedAdd(sectionPosition, 1)),
        info_(info) {}

  void Run() {
    FindHeader();
    ParseHeader();
    MakeRoom();
    ReadEntries();
    CollectTrailer();
  }

 private:
  [[noreturn]] void Fail(std::string rule, std::int32_t objectNumber = -1) {
    throw RuleBroken({slot_, objectNumber, lines_.Offset(), std::move(rule)});
  }

  void ReadLine(const char* what, std::int32_t objectNumber = -1) {
    shell_.Yield();
    const bool read = lines_.Next();
    shell_.Yield();
    CheckAbort(objectNumber);
    if (!read) Fail(lines_.Problem() + " instead of " + what, objectNumber);
  }

  void CheckAbort(std::int32_t objectNumber = -1) {
    if (state_.AbortRequested) Fail(kCancelled, objectNumber);
  }

  void FindHeader() {
    for (;;) {
      ReadLine("the header of a cross-reference subsection");
      const std::string_view line = TrimBlanks(lines_.Line);
      if (line.empty() || LeftUntilFirstOf(line, kWhiteSpace, 1) == "xref") continue;
      info_.FirstByte = lines_.Offset();
      return;
    }
  }

  void ParseHeader() {
    const std::string_view line = lines_.Line;
    std::int16_t firstDigits = 0;
    std::int16_t countDigits = 0;
    std::int32_t first = -1;
    std::int32_t count = -1;
    if (line.size() >= 3 && StartsWithDigit(line)) {
      first = ParseDecimalToken(line, firstDigits);
      const std::string_view rest = TrimSpaces(line.substr(static_cast<std::size_t>(firstDigits)));
      if (firstDigits > 0 && IsAllDigits(rest)) count = ParseDecimalToken(rest, countDigits);
    }
    if (countDigits == 0) {
      Fail(
          "no cross-reference table stands here (two numbers expected; cross-reference streams are not "
          "handled)");
    }
    if (std::int64_t{first} + count > kMostObjects) {
      Fail("the cross-reference table goes beyond object number " + std::to_string(kMostObjects));
    }
    info_.FirstObject = first;
    info_.EntryCount = count;
  }

  void MakeRoom() {
    shell_.Yield();
    CheckAbort();
    std::int32_t& objectCount = state_.DocObjectCount(slot_);
    objectCount = std::max(objectCount, info_.FirstObject + info_.EntryCount);
    if (!reader_.GrowObjectTable(slot_)) Fail("the object table cannot grow");
  }

  void ReadEntries() {
    const int statusLine = slot_ - 1;
    const std::string prefix = shell_.StatusText(statusLine) + std::to_string(info_.FirstObject) + "-";
    const std::int32_t end = info_.FirstObject + info_.EntryCount;
    std::int32_t countdown = 1;
    for (std::int32_t number = info_.FirstObject; number < end; ++number) {
      if (--countdown == 0) {
        shell_.SetStatusText(statusLine, prefix + std::to_string(number));
        countdown = kEntriesPerCaption;
      }
      ReadEntry(number);
    }
    if (info_.EntryCount > 0) shell_.SetStatusText(statusLine, prefix + std::to_string(end - 1));
  }

  void ReadEntry(std::int32_t number) {
    ReadLine("a cross-reference entry", number);
    XrefEntry parsed;
    if (!ParseUsualEntryLine(lines_.Line, parsed) && !ParseEntryLine(lines_.Line, parsed)) {
      Fail("the cross-reference entry is malformed", number);
    }
    Register(number, parsed);
  }

  void Register(std::int32_t number, const XrefEntry& parsed) {
    ObjectEntry& entry = state_.Objects[TableIndexOf(state_, number, slot_)];
    if (entry.ObjState != kNoObject) {
      // A newer section has listed the object, and the newest one wins, also when it frees the object.
      if (entry.ObjNumber != number) Fail("two objects claim one place in the object table", number);
      return;
    }
    entry.ObjState = kListed;
    entry.ObjNumber = number;
    entry.Generation = parsed.Generation;
    entry.EntryType = parsed.Type;
    entry.DocNo = static_cast<std::uint8_t>(slot_);
    entry.OutOffset = parsed.Offset;
  }

  /// Everything up to "startxref" is trailer text but lines that begin with "trailer", which are dropped
  /// whole, and so is the header of a second subsection. Both are kept on purpose.
  void CollectTrailer() {
    for (;;) {
      ReadLine("the end of the trailer (\"startxref\")");
      const std::string_view line = lines_.Line;
      if (line.substr(0, 9) == "startxref") break;
      if (line.substr(0, 7) != "trailer") AppendTrailerLine();
    }
    info_.LastByte = lines_.Offset();
    if (info_.TrailerFirstLine < 0) {
      Fail("the trailer holds no line of its own (a dictionary on the line \"trailer\" is not read)");
    }
    info_.TrailerLastLine = state_.PageKidsCount - 1;
    reader_.ReadTrailerDictionary(slot_, info_);
    // The parser ends early on a cancel; what it left out would look like a broken trailer.
    CheckAbort();
    info_.SectionOk = true;
  }

  void AppendTrailerLine() {
    const std::int32_t index = state_.PageKidsCount;
    if (index > state_.PageKids.UpperBound())
      state_.PageKids.Grow(CheckedAdd(index, std::max(index / 2, 15)));
    state_.PageKids[index] = lines_.Line;
    state_.PageKidsCount = index + 1;
    if (info_.TrailerFirstLine < 0) info_.TrailerFirstLine = index;
  }

  MergeState& state_;
  MergeShell& shell_;
  PdfReader& reader_;
  std::int16_t slot_;
  LineCursor lines_;
  XrefSectionInfo& info_;
};

}  // namespace

PdfReader::PdfReader(MergeState& state, FileModule& files, MergeShell& shell)
    : state_(state), files_(files), shell_(shell) {}

XrefSectionInfo PdfReader::ReadXrefSection(std::int16_t slot, std::int32_t sectionPosition) {
  XrefSectionInfo info;
  const bool ok = RunGuarded(state_, slot, [&] {
    SectionReading(state_, files_, shell_, *this, slot, sectionPosition, info).Run();
    return true;
  });
  if (!ok) {
    info.SectionOk = false;
    info.FirstObject = -1;
    info.EntryCount = -1;
  }
  return info;
}

bool PdfReader::GrowObjectTable(std::int16_t slot) {
  return RunGuarded(state_, slot, [&] {
    const std::int32_t needed =
        CheckedAdd(CheckedAdd(state_.DocObjectCount(1), state_.DocObjectCount(2)), state_.DocObjectCount(3)) -
        1;
    const std::int32_t old = state_.Objects.UpperBound();
    if (old < 0) return false;
    if (old >= needed) return true;
    state_.Objects.Grow(needed);
    for (std::int32_t i = old + 1; i <= needed; ++i) {
      shell_.Yield();
      InitObjectEntry(i);
      state_.Objects[i].DocNo = static_cast<std::uint8_t>(slot);
    }
    return true;
  });
}

void PdfReader::InitObjectEntry(std::int32_t tableIndex) {
  ObjectEntry& entry = state_.Objects[tableIndex];
  const std::int32_t lengthRefGeneration = entry.LengthRefGeneration;
  entry = {};
  entry.ObjNumber = tableIndex;
  entry.LengthRefGeneration = lengthRefGeneration;
}

}  // namespace folioweld
