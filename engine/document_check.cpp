#include "engine/document_check.h"

#include <algorithm>
#include <utility>

#include "engine/lexer.h"
#include "engine/pass_guard.h"

namespace folioweld {

namespace {

constexpr std::string_view kHeaderStart = "%PDF-";
constexpr std::string_view kStartXref = "startxref";
constexpr std::string_view kEndOfFile = "%%EOF";
constexpr std::string_view kXref = "xref";
constexpr std::int16_t kLineBuffer = 16;
constexpr std::int16_t kLineTries = 1;
constexpr std::int16_t kTailSize = 40;
constexpr std::int32_t kShortestHeader = 8;
constexpr std::int32_t kShortestSecondLine = 5;

/// What the test found.
struct Outline {
  std::string Header;
  std::string SecondLine;
  std::int32_t XrefStart = -1;
  std::int32_t OtherStartXref = -1;  ///< as `MergeState::DocOtherStartXref`
};

/// Checks one file; a broken rule is raised.
class OutlineCheck {
 public:
  OutlineCheck(FileModule& files, std::int16_t fileNumber, Outline& outline)
      : files_(files), fileNumber_(fileNumber), outline_(outline) {}

  void Run() {
    CheckHeader();
    CheckSecondLine();
    CheckTail();
    CheckXref();
  }

 private:
  [[noreturn]] static void Refuse(std::int64_t offset, std::string rule) {
    throw RuleBroken({0, -1, offset, std::move(rule)});
  }

  /// Reads a line, or the first 16 bytes of a longer one: as much as is judged.
  [[nodiscard]] std::string ReadLine(std::int32_t position, const char* what) {
    std::string line;
    const std::int32_t code =
        files_.ReadLineFromRandomFile(fileNumber_, position, kLineBuffer, kLineTries, line, false);
    if (code == kNoLength) Refuse(-1, "the file is longer than 2,147,483,647 bytes");
    if (code == kBeyondEnd && position == 1) Refuse(0, "the file is empty");
    if (code < 0 && code != kNoLineEnd) Refuse(position - 1, std::string(what) + " cannot be read");
    return line;
  }

  void CheckHeader() {
    outline_.Header = ReadLine(1, "the header line");
    if (outline_.Header.substr(0, kHeaderStart.size()) != kHeaderStart) {
      Refuse(0, "the file does not begin with \"%PDF-\"");
    }
    if (static_cast<std::int32_t>(outline_.Header.size()) < kShortestHeader) {
      Refuse(0, "the header line is shorter than 8 characters");
    }
  }

  void CheckSecondLine() {
    const auto position = static_cast<std::int32_t>(outline_.Header.size()) + 1;
    outline_.SecondLine = ReadLine(position, "the second line");
    if (outline_.SecondLine.substr(0, 1) != "%" ||
        static_cast<std::int32_t>(outline_.SecondLine.size()) < kShortestSecondLine) {
      RefuseLineEndBeforeHeader();
      Refuse(position - 1, "the second line is no comment of at least 5 characters");
    }
  }

  /// The header is found after line ends, too, but the second line is looked for where it would stand without
  /// them. Then they are the reason, and not the second line.
  void RefuseLineEndBeforeHeader() {
    std::string first;
    const bool isRead = files_.ReadBlock(fileNumber_, 1, 1, first) == 1;
    if (isRead && kLineEndSet.Has(first[0])) Refuse(0, "a line end stands before \"%PDF-\"");
  }

  void CheckTail() {
    const std::int32_t length = files_.FileLength(fileNumber_);
    if (length < kTailSize) Refuse(length, "the file is shorter than 40 bytes");
    const std::int32_t tailOffset = length - kTailSize;
    std::string tail;
    if (files_.ReadBlock(fileNumber_, tailOffset + 1, kTailSize, tail) != kTailSize) {
      Refuse(tailOffset, "the last 40 bytes cannot be read");
    }
    const std::size_t endOfFile = tail.find(kEndOfFile);
    if (endOfFile == std::string::npos) Refuse(tailOffset, "no \"%%EOF\" stands in the last 40 bytes");
    const std::size_t startXref = tail.find(kStartXref);
    if (startXref == std::string::npos) Refuse(tailOffset, "no \"startxref\" stands in the last 40 bytes");
    const std::size_t numberStart = startXref + kStartXref.size();
    // The first of each counts. Where "%%EOF" stands first, nothing is between them.
    const std::string between =
        endOfFile < numberStart ? "" : tail.substr(numberStart, endOfFile - numberStart);
    xrefOffset_ = NumberOf(FirstWord(between, kWhiteSpaceSet));
    if (xrefOffset_ < 0) {
      Refuse(tailOffset + static_cast<std::int64_t>(startXref),
             "no number stands between \"startxref\" and \"%%EOF\"");
    }
    NoteOtherStartXref(tail, tailOffset, startXref);
  }

  /// Other programs take the last "startxref", which may lead elsewhere.
  void NoteOtherStartXref(const std::string& tail, std::int32_t tailOffset, std::size_t first) {
    const std::size_t last = tail.rfind(kStartXref);
    if (last == first) return;
    const std::size_t numberStart = last + kStartXref.size();
    const std::string_view rest = std::string_view(tail).substr(numberStart);
    if (NumberOf(FirstWord(rest.substr(0, rest.find(kEndOfFile)), kWhiteSpaceSet)) == xrefOffset_) return;
    outline_.OtherStartXref = tailOffset + static_cast<std::int32_t>(last);
  }

  void CheckXref() {
    std::string bytes;
    const auto wanted = static_cast<std::int16_t>(kXref.size() + 2);
    const std::int16_t count = files_.ReadBlock(fileNumber_, CheckedAdd(xrefOffset_, 1), wanted, bytes);
    if (count < 0) Refuse(xrefOffset_, "\"startxref\" leads beyond the end of the file");
    if (bytes.substr(0, kXref.size()) != kXref) {
      Refuse(xrefOffset_,
             "\"startxref\" does not lead to a cross-reference table (\"xref\"); cross-reference "
             "streams are not handled");
    }
    std::int32_t start = xrefOffset_ + static_cast<std::int32_t>(kXref.size());
    // Each of the next two bytes may be a carriage return or a line feed, in any order.
    for (std::size_t i = kXref.size(); i < bytes.size(); ++i) {
      if (kLineEndSet.Has(bytes[i])) start = CheckedAdd(start, 1);
    }
    outline_.XrefStart = start;
  }

  FileModule& files_;
  std::int16_t fileNumber_;
  Outline& outline_;
  std::int32_t xrefOffset_ = -1;
};

}  // namespace

void CheckDocumentStructure(MergeState& state, FileModule& files, std::int16_t fileNumber, std::int16_t slot,
                            std::int32_t& result, PassFailure& why) {
  const bool recorded = slot == 1 || slot == 2;
  result = -1;
  why = {};
  Outline outline;
  const bool accepted = RunGuarded(why, recorded ? slot : std::int16_t{0}, [&] {
    OutlineCheck(files, fileNumber, outline).Run();
    return true;
  });
  if (accepted) result = outline.XrefStart;
  if (recorded) {
    state.DocXrefStart(slot) = result;
    state.DocOtherStartXref(slot) = outline.OtherStartXref;
    state.DocHeader(slot) = accepted ? outline.Header + "\r" : std::string();
    state.DocSecondLine(slot) = accepted ? outline.SecondLine + "\r\n" : std::string();
  }
}

bool IsThisDocumentApdf(FileModule& files, const std::string& sFileSpecif, PassFailure* why) {
  PassFailure reason;
  std::int32_t result = -1;
  const std::int16_t fileNumber =
      sFileSpecif.empty() ? std::int16_t{-1} : files.OpenForBinaryRead(sFileSpecif);
  if (sFileSpecif.empty()) {
    reason.Rule = "no file is named";
  } else if (fileNumber < 1) {
    reason.Rule = "the file cannot be opened: " + files.LastReason();
  } else {
    MergeState untouched;
    CheckDocumentStructure(untouched, files, fileNumber, -1, result, reason);
    static_cast<void>(files.Close(fileNumber));
  }
  if (why != nullptr) *why = reason;
  return result > 0;
}

}  // namespace folioweld
