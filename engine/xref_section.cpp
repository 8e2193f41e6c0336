// Cross-reference sections: PdfReader::ReadXrefSection and the object table's growth.

#include <algorithm>
#include <utility>

#include "engine/lexer.h"
#include "engine/line_cursor.h"
#include "engine/pass_guard.h"
#include "engine/pdf_reader.h"

namespace folioweld {

namespace {

/// Entries between two changes of the status line.
constexpr std::int32_t kEntriesPerCaption = 7738;

struct XrefEntry {
  std::int32_t Offset = 0;
  std::int32_t Generation = 0;
  char Type = '\0';
};

/// Takes a number of exactly `size` digits and the spaces after it off the front; -1 when none stands there.
std::int32_t TakeField(std::string_view& line, std::size_t size) {
  std::size_t end = 0;
  const std::int32_t value = ReadNumber(line, 0, end);
  const std::size_t next = kSpaceSet.Skip(line, end);
  if (end != size || next == end || next == line.size()) return -1;
  line.remove_prefix(next);
  return value;
}

/// "0000000016 00000 n", any keyword character; false for any other line.
bool ParseEntryLine(std::string_view line, XrefEntry& entry) {
  entry.Offset = TakeField(line, 10);
  if (entry.Offset < 0) return false;
  entry.Generation = TakeField(line, 5);
  if (entry.Generation < 0) return false;
  entry.Type = line[0];
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
      if (line.empty() || FirstWord(line, kWhiteSpaceSet) == "xref") continue;
      info_.FirstByte = lines_.Offset();
      return;
    }
  }

  void ParseHeader() {
    const std::string_view line = lines_.Line;
    const std::size_t firstEnd = kSpaceSet.Find(line, 0);
    const std::int32_t first = NumberOf(line.substr(0, firstEnd));
    const std::int32_t count = NumberOf(kSpaceSet.Trim(line.substr(firstEnd)));
    if (first < 0 || count < 0) {
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
    if (!ParseEntryLine(lines_.Line, parsed)) {
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
    state_.DocSectionBytes(slot_) += info_.LastByte - info_.FirstByte;
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
