// Pass #2 of an input: PdfReader::ScanObjects.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/entry_walk.h"
#include "engine/lexer.h"
#include "engine/line_cursor.h"
#include "engine/object_text.h"
#include "engine/pass_guard.h"
#include "engine/pdf_reader.h"

namespace folioweld {

namespace {

constexpr std::string_view kStream = "stream";
constexpr std::string_view kEndObject = "endobj";
/// Objects between two changes of the status line.
constexpr std::int32_t kObjectsPerCaption = 100;
/// An arbitrary fixed number that marks the filler object in the second input's slot 0.
constexpr std::string_view kFillerLine = "19540716\r";

/// What ends the text of an object.
struct ObjectEnd {
  std::int32_t KeywordOffset = -1;  ///< 0-based file offset of the last "stream" of the last line; -1 = none
  bool HasStream = false;
};

/// Reads one object after the other; a broken rule is raised.
class ObjectScan {
 public:
  ObjectScan(MergeState& state, FileModule& files, MergeShell& shell, PdfReader& reader, std::int16_t slot)
      : state_(state),
        files_(files),
        shell_(shell),
        reader_(reader),
        slot_(slot),
        fileNumber_(state.DocFileNumber(slot)),
        start_(slot == 2 ? state.DocObjectCount(1) : 0),
        textLeft_(ByteAllowance(files.FileLength(fileNumber_))),
        parsedLeft_(files.FileLength(fileNumber_)),
        captionPrefix_(shell.StatusText(slot - 1)),
        lines_(files, fileNumber_, 1),
        rewritten_(IsRewritten(state, slot)) {}

  void Run() {
    if (slot_ == 2) state_.ObjLineLast = state_.ObjLineCount;
    const std::int32_t end = CheckedAdd(start_, state_.DocObjectCount(slot_)) - 1;
    std::int32_t countdown = 1;
    for (std::int32_t i = start_; i <= end; ++i) {
      if (--countdown == 0) {
        ShowProgress(i, end);
        countdown = kObjectsPerCaption;
      }
      shell_.Yield();
      number_ = i - start_;
      offset_ = -1;
      if (state_.AbortRequested) Fail(kCancelled);
      DescribeOrFail(i);
    }
    ShowProgress(end, end);
  }

 private:
  [[noreturn]] void Fail(std::string rule) { throw RuleBroken({slot_, number_, offset_, std::move(rule)}); }

  /// One "+" for every tenth that is done, the percentage, and the index.
  void ShowProgress(std::int32_t index, std::int32_t end) {
    const std::int64_t total = std::int64_t{end} - start_ + 1;
    const std::int64_t done = index == end ? total : index - start_;
    const std::int64_t percent = total > 0 ? done * 100 / total : 100;
    shell_.SetStatusText(slot_ - 1, captionPrefix_ +
                                        std::string(static_cast<std::size_t>(percent / 10), '+') + " " +
                                        std::to_string(percent) + "% (" + std::to_string(index) + ")");
  }

  /// Adds the object to what an overflow or an index outside a table tells.
  void DescribeOrFail(std::int32_t index) {
    try {
      DescribeSlot(index);
    } catch (const RuleBroken& broken) {
      if (broken.Failure().DocumentSlot != 0) throw;
      Fail(broken.Failure().Rule);
    }
  }

  void DescribeSlot(std::int32_t index) {
    const ObjectEntry& entry = state_.Objects[index];
    if (entry.ObjNumber != number_ || entry.ObjState != kListed) {
      Fail("no cross-reference section of the document lists the object");
    }
    if (entry.Generation != kFreeGeneration) {
      DescribeObject(index);
    } else if (slot_ == 2 && index == start_) {
      MakeFiller(index);
    } else {
      if (number_ > 0 && entry.EntryType == 'n' && !rewritten_) Note(AlterationKind::ObjectLeftOut);
      state_.Objects[index].ObjState = kNoObject;
    }
  }

  /// The second input's object 0 stands in the middle of the joined numbering, where a real object has to be.
  void MakeFiller(std::int32_t index) {
    const std::int32_t first = AppendObjLine(state_, "0 0 obj\r");
    const std::int32_t last = AppendKeptObjLine(state_, kFillerLine);
    ObjectEntry& entry = state_.Objects[index];
    entry.FirstLine = first;
    entry.LastLine = last;
    entry.ObjState = kWithoutStream;
    entry.ValueText = kFillerLine.substr(0, kFillerLine.size() - 1);
    entry.Generation = 0;
    entry.EntryType = 'n';
  }

  void DescribeObject(std::int32_t index) {
    offset_ = state_.Objects[index].OutOffset;
    const ObjectEnd objectEnd = GatherText(index);
    const std::string_view text = text_.View();
    std::int32_t generation = state_.Objects[index].Generation;
    const std::string header = HeaderLine(number_, generation);
    // Most headers are written as they will be in the output: those need not be read.
    const std::int32_t bodyPosition = text.starts_with(header)
                                          ? static_cast<std::int32_t>(header.size())
                                          : ParseObjectHeader(text, 1, number_, generation);
    if (bodyPosition < 1) {
      Fail("the object does not begin with its header \"" + std::to_string(number_) + " generation obj\"");
    }
    const std::size_t bodyStart = static_cast<std::size_t>(bodyPosition) - 1;
    const std::size_t keywordLength = objectEnd.HasStream ? kStream.size() : kEndObject.size();
    if (!rewritten_) CheckText(keywordLength, generation != state_.Objects[index].Generation);
    // The header's keyword and the closing one may not overlap, as in "1 0 obj" without a body.
    if (text.size() < bodyStart + keywordLength) Fail("the object has no value");
    const std::string_view body = TrimBlanks(text.substr(bodyStart, text.size() - bodyStart - keywordLength));
    // The body is kept with the end of its line, which goes where the closing keyword began.
    const auto bodyOffset = static_cast<std::size_t>(body.data() - text.data());
    text_.Put(bodyOffset + body.size(), objectEnd.HasStream ? '\n' : '\r');
    const std::string_view kept =
        state_.Texts.KeepOnce(text.substr(bodyOffset, body.size() + 1), longestKept_);
    StoreLines(index, header, kept, objectEnd.HasStream);
    if (objectEnd.HasStream) LocateStream(index, objectEnd.KeywordOffset);
    DescribeBody(index, kept.substr(0, body.size()));
    if (objectEnd.HasStream) TakeStreamLength(index);
  }

  /// What the text of the object will be otherwise in the output.
  void CheckText(std::size_t keywordLength, bool otherGeneration) {
    if (otherGeneration) Note(AlterationKind::GenerationChanged);
    if (text_.EndsWithin(keywordLength)) Note(AlterationKind::ObjectCutShort);
    if (text_.StringLosesBytes(files_, fileNumber_)) Note(AlterationKind::StringLosesBytes);
  }

  void Note(AlterationKind kind) { NoteAlteration(state_, slot_, kind, number_); }

  /// Gathers lines in `text_` until one ends with "stream" or "endobj".
  [[nodiscard]] ObjectEnd GatherText(std::int32_t index) {
    LineCursor& lines = lines_;
    lines.GoTo(CheckedAdd(state_.Objects[index].OutOffset, 1));
    std::int64_t readTo = state_.Objects[index].OutOffset;
    text_.Clear();
    for (;;) {
      shell_.Yield();
      const bool read = lines.Next();
      shell_.Yield();
      if (state_.AbortRequested) Fail(kCancelled);
      if (!read) {
        offset_ = lines.Offset();
        Fail(lines.Problem() + " before the object is complete");
      }
      // The bytes between the lines count, too: they have been read as well.
      const std::int64_t end = lines.Offset() + static_cast<std::int64_t>(lines.Line.size());
      textLeft_ -= end - std::exchange(readTo, end);
      if (textLeft_ < 0) FailForLength(lines.Line);
      const std::string_view line = text_.Empty() ? TrimBlanks(lines.Line) : TrimRightBlanks(lines.Line);
      if (line.empty()) continue;
      text_.Append(line, lines.Offset() + (line.data() - lines.Line.data()));
      if (line.ends_with(kEndObject)) return {};
      if (line.ends_with(kStream)) {
        const std::ptrdiff_t inLine = line.data() + line.size() - kStream.size() - lines.Line.data();
        return {lines.Offset() + static_cast<std::int32_t>(inLine), true};
      }
    }
  }

  /// Each object is read to the end of its line, so several on one line are read again and again.
  [[noreturn]] void FailForLength(std::string_view line) {
    const bool shared = line.find(kEndObject) < line.size() - kEndObject.size();
    Fail(shared
             ? "several objects stand on one line, which are read to its end one after the other; each has "
               "to end its line"
             : "the objects of the document run into each other");
  }

  /// `header` is the one made anew from its numbers, and `body` a text that is kept.
  void StoreLines(std::int32_t index, std::string_view header, std::string_view body, bool hasStream) {
    const std::int32_t first = AppendObjLine(state_, header);
    const std::int32_t last = AppendKeptObjLine(state_, body);
    ObjectEntry& entry = state_.Objects[index];
    entry.FirstLine = first;
    entry.LastLine = last;
    entry.ObjState = hasStream ? kWithStream : kWithoutStream;
  }

  void LocateStream(std::int32_t index, std::int32_t keywordOffset) {
    std::string bytes;
    const auto wanted = static_cast<std::int16_t>(kStream.size() + 2);
    offset_ = keywordOffset;
    const std::int16_t count = files_.ReadBlock(fileNumber_, CheckedAdd(keywordOffset, 1), wanted, bytes);
    if (count < 0) Fail("the stream cannot be read: " + files_.LastError().Words());
    const std::string_view lineEnd = std::string_view(bytes).substr(std::min(bytes.size(), kStream.size()));
    std::int32_t start = CheckedAdd(keywordOffset, static_cast<std::int32_t>(kStream.size()));
    if (lineEnd.substr(0, 1) == "\n") {
      start = CheckedAdd(start, 1);
    } else if (lineEnd == "\r\n") {
      start = CheckedAdd(start, 2);
    } else {
      Fail("\"stream\" is followed by neither a line feed nor a carriage return and a line feed");
    }
    state_.Objects[index].StreamStart = start;
  }

  void DescribeBody(std::int32_t index, std::string_view body) {
    ObjectEntry& entry = state_.Objects[index];
    if (body.substr(0, 2) == "<<") {
      // Rows take many times the memory of their text. All texts together are longer than the file only where
      // objects share theirs; those do without.
      parsedLeft_ -= static_cast<std::int64_t>(body.size());
      if (parsedLeft_ < 0) return;
      entry.ObjAux = reader_.JoinAndParseDictionary(state_.ObjLines, entry.LastLine, entry.LastLine);
      // The parser ends early on a cancel; what it left out would look like a broken dictionary.
      if (state_.AbortRequested) Fail(kCancelled);
    } else if (body.empty() || !kDelimiterSet.Has(body[0])) {
      const std::int32_t value = FirstNumberOf(body);
      if (value < 0)
        Fail("the object's value is neither a plain number, a dictionary, an array, a string nor a name");
      entry.ValueText = state_.Texts.Keep(std::to_string(value));
      entry.ObjState = kPlainNumber;
    } else {
      std::string_view& line = state_.ObjLines[entry.LastLine];
      line = TrimRightBlanks(line);
    }
  }

  /// The value of the first "/Length" of the dictionary.
  [[nodiscard]] std::optional<std::string> FindLength(std::int32_t index) const {
    const ObjectEntry& entry = state_.Objects[index];
    if (entry.ObjAux < 0) return FindValue(TrimBlanks(state_.ObjLines[entry.LastLine]), "/Length");
    for (std::int32_t row = entry.ObjAux; row >= 0; row = state_.NameEntries[row].NameId) {
      if (state_.NameEntries[row].NameText == "/Length")
        return std::string(state_.NameEntries[row].NameValue);
    }
    return {};
  }

  void TakeStreamLength(std::int32_t index) {
    const auto length = FindLength(index);
    if (!length) Fail("the stream's dictionary has no /Length");
    const std::string_view value = TrimBlanks(*length);
    const std::string_view word = FirstWord(value, kSpaceSet);
    const std::int32_t number = NumberOf(word);
    if (number < 0) Fail("the stream's /Length is no number");
    ObjectEntry& entry = state_.Objects[index];
    if (value.back() != 'R') {
      entry.StreamLength = number;
      entry.LengthRefNumber = -1;
      if (!rewritten_) CheckStreamEnd(state_, files_, slot_, entry);
      return;
    }
    entry.LengthRefNumber = number;
    // What is no number counts as generation 0.
    entry.LengthRefGeneration = std::max(NumberOf(FirstWord(value.substr(word.size()), kWhiteSpaceSet)), 0);
    entry.StreamLength = -1;
    AppendMissingLength(index);
  }

  void AppendMissingLength(std::int32_t index) {
    const std::int32_t row = state_.MissingLengthCount;
    if (row > state_.MissingLengths.UpperBound()) {
      state_.MissingLengths.Grow(CheckedAdd(row, std::max(row / 2, 15)));
    }
    const ObjectEntry& entry = state_.Objects[index];
    state_.MissingLengths[row] = {index,
                                  entry.LastLine,
                                  TableIndexOf(state_, entry.LengthRefNumber, slot_),
                                  entry.LengthRefNumber,
                                  entry.LengthRefGeneration,
                                  slot_};
    state_.MissingLengthCount = row + 1;
  }

  MergeState& state_;
  FileModule& files_;
  MergeShell& shell_;
  PdfReader& reader_;
  std::int16_t slot_;
  std::int16_t fileNumber_;
  std::int32_t start_;
  std::int64_t textLeft_;         ///< bytes that may still be read as texts of objects
  std::int64_t parsedLeft_;       ///< bytes of dictionaries that may still be kept as rows
  std::string_view longestKept_;  ///< the last text that was kept; that of a later object may be its end
  std::string captionPrefix_;
  LineCursor lines_;
  ObjectText text_;  ///< of the object that is being read; used again for the next one
  bool rewritten_;   ///< by an earlier merge of this run, so that there is nothing to warn of
  std::int32_t number_ = -1;
  std::int64_t offset_ = -1;
};

}  // namespace

std::int32_t ParseObjectHeader(std::string_view text, std::int32_t start, std::int32_t expectedNumber,
                               std::int32_t& generation) {
  if (start < 1) return 0;
  NumberPair header;
  const bool found = ReadNumberPair(text, static_cast<std::size_t>(start) - 1, kObjectKeyword, header);
  generation = found ? header.Generation : -1;
  return found && header.Number == expectedNumber ? static_cast<std::int32_t>(header.End) + 1 : 0;
}

bool PdfReader::ScanObjects(std::int16_t slot) {
  if (slot != 1 && slot != 2) return false;
  return RunGuarded(state_, slot, [&] {
    ObjectScan(state_, files_, shell_, *this, slot).Run();
    return true;
  });
}

}  // namespace folioweld
