// Output pass #4 of PdfBuilder: the file, byte by byte at explicit positions.

#include <algorithm>
#include <limits>
#include <span>

#include "engine/lexer.h"
#include "engine/pass_guard.h"
#include "engine/pdf_builder.h"

namespace folioweld {

namespace {

constexpr std::int32_t kBlockSize = 1000;
/// Blocks copied between two looks at the user's wishes.
constexpr std::int32_t kBlocksPerYield = 1000;
constexpr std::int32_t kBytesPerMark = 64 * 1024 * 1024;

/// Puts the right-most digits of the number into `places`, which hold zeros.
void PutDigits(std::span<char> places, std::uint32_t value) {
  for (auto place = places.rbegin(); place != places.rend() && value != 0; ++place, value /= 10) {
    *place = static_cast<char>('0' + value % 10);
  }
}

bool IsWritten(const ObjectEntry& entry) {
  return entry.ObjState != kNoObject && entry.ObjState != kListed && entry.FirstLine >= 0 &&
         entry.LastLine >= 0;
}

/// Writes the parts of the file one after the other; a broken rule is raised.
class FileWriting {
 public:
  FileWriting(MergeState& state, FileModule& files, PdfBuilder& builder, MergeShell& shell)
      : state_(state), files_(files), builder_(builder), shell_(shell) {}

  std::int32_t Run() {
    Write(state_.DocHeader(3) + state_.DocSecondLine(3));
    // Slot 0 is never written, so an object that claims it becomes the head of the free entries.
    if (IsWritten(state_.Objects[0])) MakeFree(state_.Objects[0]);
    for (index_ = 1; index_ < state_.ObjectsTotal; ++index_) {
      CheckAbort();
      if (IsWritten(state_.Objects[index_])) {
        WriteObject(state_.Objects[index_]);
      } else {
        MakeFree(state_.Objects[index_]);
      }
    }
    index_ = -1;
    const std::int32_t xrefOffset = position_;
    WriteXref();
    Write(state_.OutputTrailerText);
    Write(std::to_string(xrefOffset) + "\r\n%%EOF\r\n");
    if (!files_.Flush(state_.DocFileNumber(3))) FailWrite();
    return position_;
  }

 private:
  [[noreturn]] void FailWrite() {
    throw RuleBroken({3, index_, position_, "the output cannot be written: " + files_.LastError().Words()});
  }

  void CheckAbort() {
    if (YieldAndCheckAbort(shell_, state_)) throw RuleBroken({3, index_, position_, kCancelled});
  }

  static void MakeFree(ObjectEntry& entry) {
    entry.OutOffset = 0;
    entry.Generation = kFreeGeneration;
    entry.EntryType = 'f';
  }

  void Write(std::string_view text) {
    const std::int32_t after = builder_.WriteTextAt(text, position_);
    if (after < 1) FailWrite();
    position_ = after;
  }

  void WriteObject(ObjectEntry& entry) {
    entry.OutOffset = position_;
    // Line indices are 16 bits wide here, which limits how many objects an output can hold; kept on purpose.
    const std::int32_t last = CheckedInt16(entry.LastLine);
    text_.clear();
    for (std::int32_t j = CheckedInt16(entry.FirstLine); j <= last; ++j) AddLine(state_.ObjLines[j]);
    if (entry.ObjState == kWithStream) {
      Write(text_);
      WriteStream(entry);
      text_.clear();
    }
    text_ += "endobj\r\n";
    Write(text_);
  }

  /// The line with one carriage return in place of whatever blanks and line ends it has.
  void AddLine(std::string_view line) {
    text_ += TrimRightBlanks(line);
    text_ += '\r';
  }

  void WriteStream(const ObjectEntry& entry) {
    const std::int16_t input = state_.DocFileNumber(entry.DocNo);
    if (builder_.CopyStreamBytes(input, entry.StreamStart, entry.StreamLength, position_) < 1) {
      if (state_.AbortRequested) throw RuleBroken({3, index_, position_, kCancelled});
      throw RuleBroken({entry.DocNo, OwnNumber(entry), entry.StreamStart,
                        "the stream of " + std::to_string(entry.StreamLength) +
                            " bytes cannot be copied: " + files_.LastError().Words()});
    }
  }

  [[nodiscard]] std::int32_t OwnNumber(const ObjectEntry& entry) const {
    return entry.DocNo == 2 ? index_ - state_.ObjectsInDoc1 : index_;
  }

  void WriteXref() {
    text_ = "xref\r\n0 " + std::to_string(state_.ObjectsTotal) + "\r\n";
    for (std::int32_t i = 0; i < state_.ObjectsTotal; ++i) {
      if (i % kBlockSize == 0) CheckAbort();
      const ObjectEntry& entry = state_.Objects[i];
      char line[] = "0000000000 00000 n\r\n";
      PutDigits(std::span(line).first<10>(), static_cast<std::uint32_t>(entry.OutOffset));
      PutDigits(std::span(line).subspan<11, 5>(), static_cast<std::uint32_t>(entry.Generation));
      line[17] = entry.EntryType;
      text_.append(line, sizeof line - 1);
      if (text_.size() < std::size_t{kBlockSize}) continue;
      Write(text_);
      text_.clear();
    }
    Write(text_);
  }

  MergeState& state_;
  FileModule& files_;
  PdfBuilder& builder_;
  MergeShell& shell_;
  std::int32_t position_ = 0;
  std::int32_t index_ = -1;
  std::string text_;  ///< of one object, or of some cross-reference entries: many short writes take longer
};

}  // namespace

bool PdfBuilder::CheckLineLimit() {
  std::int32_t last = -1;
  for (std::int32_t i = 1; i < state_.ObjectsTotal; ++i) {
    if (IsWritten(state_.Objects[i])) last = std::max(last, state_.Objects[i].LastLine);
  }
  if (last <= std::numeric_limits<std::int16_t>::max()) return true;
  ShowCaption();
  state_.Failure = {3, -1, -1,
                    "the output would have " + std::to_string(last + 1) +
                        " lines of objects, two for each, and its writer counts up to 32768: join documents "
                        "of fewer objects, or fewer documents at a time"};
  return false;
}

void PdfBuilder::ShowCaption() {
  shell_.AppendStatusText(2, "Pass #4 of building output file:");
  shell_.AppendStatusText(2, " Write the output file");
}

void PdfBuilder::ShowWritten(std::int32_t position) {
  for (; marks_ < position / kBytesPerMark; ++marks_) shell_.AppendStatusText(2, "+");
}

std::int32_t PdfBuilder::WriteOutputFile() {
  ShowCaption();
  std::int32_t length = -1;
  const bool written = RunGuarded(state_, 3, [&] {
    length = FileWriting(state_, files_, *this, shell_).Run();
    return true;
  });
  return written ? length : -1;
}

std::int32_t PdfBuilder::WriteTextAt(std::string_view text, std::int32_t position) {
  const std::int16_t file = state_.DocFileNumber(3);
  while (!text.empty()) {
    const std::string_view chunk = text.substr(0, kBlockSize);
    if (!files_.WriteAt(file, chunk, position)) return -1;
    position = CheckedAdd(position, static_cast<std::int32_t>(chunk.size()));
    text.remove_prefix(chunk.size());
  }
  ShowWritten(position);
  return position;
}

std::int32_t PdfBuilder::CopyStreamBytes(std::int16_t inputFile, std::int32_t streamStart,
                                         std::int32_t length, std::int32_t& position) {
  if (inputFile < 0 || streamStart < 0 || length < 0) return -1;
  const std::int32_t dataStart = WriteTextAt("stream\n", position);
  if (dataStart < 1) return -1;
  static_cast<void>(CheckedAdd(dataStart, length));
  std::int32_t blocks = 0;
  for (std::int32_t copied = 0; copied < length; ++blocks) {
    if (blocks % kBlocksPerYield == kBlocksPerYield - 1) {
      ShowWritten(dataStart + copied);
      if (YieldAndCheckAbort(shell_, state_)) return -1;
    }
    const std::int32_t count = std::min(kBlockSize, length - copied);
    if (!files_.CopyBlock(inputFile, streamStart + copied, state_.DocFileNumber(3), dataStart + copied,
                          count)) {
      return -1;
    }
    copied += count;
  }
  position = WriteTextAt("endstream\r\n", dataStart + length);
  return position;
}

}  // namespace folioweld
