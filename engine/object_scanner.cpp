// Pass #2 of an input: PdfReader::ScanObjects.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "engine/character_set.h"
#include "engine/conversions.h"
#include "engine/line_cursor.h"
#include "engine/pass_guard.h"
#include "engine/pdf_reader.h"
#include "engine/pdf_scanner.h"

namespace folioweld {

using namespace Conversions;

namespace {

constexpr std::string_view kStream = "stream";
constexpr std::string_view kEndObject = "endobj";
/// The generation that marks a free slot.
constexpr std::int32_t kFreeGeneration = 65535;
/// Objects between two changes of the status line.
constexpr std::int32_t kObjectsPerCaption = 100;
/// An arbitrary fixed number that marks the filler object in the second input's slot 0.
constexpr std::string_view kFillerLine = "19540716\r";
/// Objects stand beside each other in a file, so their texts cannot be much longer than the file; only
/// objects that run into each other again and again can, and those would cost the square of its length.
constexpr std::int64_t kTextAllowance = 16 * 1024 * 1024;
constexpr std::int64_t kTextPerByte = 4;

/// The last character is compared first: of most lines it is another one.
bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.back() == end.back() &&
         text.substr(text.size() - end.size()) == end;
}

/// "12 0 obj" and a carriage return.
std::string HeaderLine(std::int32_t number, std::int32_t generation) {
  std::string line(DecimalDigits(number).View());
  line += ' ';
  line += DecimalDigits(generation).View();
  line += " obj\r";
  return line;
}

/// Index behind the number's digits at `index`, written without anything in front; 0 when others stand there.
std::size_t SkipNumber(std::string_view text, std::size_t index, std::int32_t number) {
  const std::size_t start = index;
  std::int64_t value = 0;
  // A digit more than the longest number has settles the matter.
  while (index < text.size() && kDigitSet.Has(text[index]) && index - start < 11) {
    value = value * 10 + (text[index] - '0');
    ++index;
  }
  const bool leadingZero = index - start > 1 && text[start] == '0';
  return index > start && value == number && !leadingZero ? index : 0;
}

/// Length of the header with which the text begins when it is written as `HeaderLine` writes it, as nearly
/// every one is; 0 when it is not.
std::size_t UsualHeaderLength(std::string_view text, std::int32_t number, std::int32_t generation) {
  constexpr std::string_view kKeyword = " obj";
  const std::size_t behindNumber = SkipNumber(text, 0, number);
  if (behindNumber == 0 || behindNumber == text.size() || text[behindNumber] != ' ') return 0;
  const std::size_t behindGeneration = SkipNumber(text, behindNumber + 1, generation);
  const std::size_t end = behindGeneration + kKeyword.size();
  if (behindGeneration == 0 || end >= text.size() || !kDelimiterSet.Has(text[end])) return 0;
  return std::memcmp(text.data() + behindGeneration, kKeyword.data(), kKeyword.size()) == 0 ? end : 0;
}

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
        textLeft_(kTextAllowance + kTextPerByte * files.FileLength(fileNumber_)),
        captionPrefix_(shell.StatusText(slot - 1)),
        lines_(files, fileNumber_, 1) {}

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

  /// An overflow or an index outside a table is told with the object that it was met in, too.
  void DescribeOrFail(std::int32_t index) {
    try {
      DescribeSlot(index);
    } catch (const IndexError& error) {
      Fail(error.what());
    } catch (const OverflowError& error) {
      Fail(error.what());
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
    const std::string_view text = std::string_view(text_).substr(0, text_.size() - 1);
    std::size_t bodyStart = UsualHeaderLength(text, number_, state_.Objects[index].Generation);
    // Alone on its line the header is kept as it stands.
    const bool headerIsLine = bodyStart > 0 && text[bodyStart] == '\r';
    if (headerIsLine) {
      ++bodyStart;
    } else if (bodyStart == 0) {
      bodyStart = OtherHeaderLength(text);
    }
    const std::size_t keywordLength = objectEnd.HasStream ? kStream.size() : kEndObject.size();
    // The header's keyword and the closing one may not overlap, as in "1 0 obj" without a body.
    if (text.size() < bodyStart + keywordLength) Fail("the object has no value");
    const std::string_view body = TrimBlanks(text.substr(bodyStart, text.size() - bodyStart - keywordLength));
    const auto bodyOffset = static_cast<std::size_t>(body.data() - text.data());
    // At least "endobj" or "stream" follows the body and makes room for its end.
    text_[bodyOffset + body.size()] = objectEnd.HasStream ? '\n' : '\r';
    const std::string_view kept = state_.Texts.Keep(text.substr(0, bodyOffset + body.size() + 1));
    const std::string_view header = kept.substr(0, headerIsLine ? bodyStart : 0);
    StoreLines(index, header, kept.substr(bodyOffset), objectEnd.HasStream);
    if (objectEnd.HasStream) LocateStream(index, objectEnd.KeywordOffset);
    DescribeBody(index, kept.substr(bodyOffset, body.size()));
    if (objectEnd.HasStream) TakeStreamLength(index);
  }

  [[nodiscard]] std::size_t OtherHeaderLength(std::string_view text) {
    std::int32_t generation = -1;
    const std::int32_t behind = ParseObjectHeader(text, 1, number_, generation);
    if (behind < 1) {
      Fail("the object does not begin with its header \"" + std::to_string(number_) + " generation obj\"");
    }
    return static_cast<std::size_t>(behind) - 1;
  }

  /// Gathers lines in `text_`, each with a carriage return after it, until one ends with "stream" or
  /// "endobj".
  [[nodiscard]] ObjectEnd GatherText(std::int32_t index) {
    LineCursor& lines = lines_;
    lines.GoTo(CheckedAdd(state_.Objects[index].OutOffset, 1));
    std::int64_t behind = state_.Objects[index].OutOffset;
    bool begun = false;
    text_.clear();
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
      textLeft_ -= end - std::exchange(behind, end);
      if (textLeft_ < 0) Fail("the objects of the document run into each other");
      const std::string_view line = begun ? TrimRightBlanks(lines.Line) : TrimBlanks(lines.Line);
      if (line.empty()) continue;
      begun = true;
      text_ += line;
      text_ += '\r';
      if (EndsWith(line, kEndObject)) return {};
      if (EndsWith(line, kStream)) {
        const std::ptrdiff_t inLine = line.data() + line.size() - kStream.size() - lines.Line.data();
        return {lines.Offset() + static_cast<std::int32_t>(inLine), true};
      }
    }
  }

  /// Both are texts that are kept; an empty header has to be made.
  void StoreLines(std::int32_t index, std::string_view header, std::string_view body, bool hasStream) {
    const std::int32_t generation = state_.Objects[index].Generation;
    const std::int32_t first = header.empty() ? AppendObjLine(state_, HeaderLine(number_, generation))
                                              : AppendKeptObjLine(state_, header);
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
      entry.ObjAux = reader_.JoinAndParseDictionary(state_.ObjLines, entry.LastLine, entry.LastLine);
      // The parser ends early on a cancel; what it left out would look like a broken dictionary.
      if (state_.AbortRequested) Fail(kCancelled);
    } else if (!IsCharInSet(body, 1, kDelimiters)) {
      std::int16_t digits = 0;
      const std::int32_t value = ParseDecimalToken(body, digits);
      if (digits == 0)
        Fail("the object's value is neither a plain number, a dictionary, an array, a string nor a name");
      entry.ValueText = state_.Texts.Keep(std::to_string(value));
      entry.ObjState = kPlainNumber;
    } else {
      std::string_view& line = state_.ObjLines[entry.LastLine];
      line = TrimRightBlanks(line);
    }
  }

  /// The first "/Length" of the dictionary counts.
  void TakeStreamLength(std::int32_t index) {
    std::int32_t row = state_.Objects[index].ObjAux;
    while (row >= 0 && state_.NameEntries[row].NameText != "/Length") row = state_.NameEntries[row].NameId;
    if (row < 0) Fail("the stream's dictionary has no /Length");
    const std::string_view value = TrimBlanks(state_.NameEntries[row].NameValue);
    std::int16_t digits = 0;
    const std::int32_t number = ParseDecimalToken(value, digits);
    if (digits == 0) Fail("the stream's /Length is no number");
    ObjectEntry& entry = state_.Objects[index];
    if (value.back() != 'R') {
      entry.StreamLength = number;
      entry.LengthRefNumber = -1;
      return;
    }
    std::int16_t generationDigits = 0;
    entry.LengthRefNumber = number;
    entry.LengthRefGeneration =
        ParseLeadingNumber(value.substr(static_cast<std::size_t>(digits)), generationDigits);
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
  std::int64_t textLeft_;
  std::string captionPrefix_;
  LineCursor lines_;
  std::string text_;  ///< of the object that is being read; used again for the next one
  std::int32_t number_ = -1;
  std::int64_t offset_ = -1;
};

}  // namespace

std::int32_t ParseObjectHeader(std::string_view text, std::int32_t start, std::int32_t expectedNumber,
                               std::int32_t& generation) {
  NumberPairKeyword found;
  const std::int32_t behind = ParseNumberPairKeyword(text, start, kObjectKeyword, found);
  generation = found.SecondNumber;
  if (found.KeywordIndex < 0 || found.FirstNumber != expectedNumber) return 0;
  // The keyword may be the last thing in the text.
  return behind == 0 ? static_cast<std::int32_t>(text.size()) + 1 : behind;
}

bool PdfReader::ScanObjects(std::int16_t slot) {
  if (slot != 1 && slot != 2) return false;
  return RunGuarded(state_, slot, [&] {
    ObjectScan(state_, files_, shell_, *this, slot).Run();
    return true;
  });
}

}  // namespace folioweld
