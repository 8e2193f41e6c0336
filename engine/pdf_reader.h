#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"

namespace folioweld {

class EntryWalk;

/// The program's own ceiling on object numbers per document.
inline constexpr std::int32_t kMostObjects = 350000;

/// How many bytes the objects, the streams or the cross-reference sections of a document may have together.
/// They stand beside each other in the file, so only such as claim the same bytes again and again have much
/// more than it, and those would cost the square of its length or fill the disk out of a few bytes.
[[nodiscard]] constexpr std::int64_t ByteAllowance(std::int32_t fileLength) {
  return std::int64_t{16} * 1024 * 1024 + std::int64_t{4} * fileLength;
}

/// Summary of one cross-reference section and its trailer.
struct XrefSectionInfo {
  std::int32_t FirstObject = -1;
  std::int32_t EntryCount = -1;
  std::int32_t TrailerEntry = -1;      ///< index in `NameEntries`; -1 = none
  std::int32_t TrailerFirstLine = -1;  ///< index in `PageKids`
  std::int32_t TrailerLastLine = -1;
  std::int32_t TrailerSize = -1;
  std::int32_t TrailerPrev = -1;  ///< 0-based offset of the previous section
  std::int32_t TrailerRoot = -1;
  std::int32_t TrailerInfo = -1;
  std::int32_t TrailerEncrypt = -1;
  std::string TrailerId;
  bool SectionOk = false;
  std::int32_t FirstByte = -1;  ///< 0-based offset of the subsection header
  std::int32_t LastByte = -1;   ///< 0-based offset of the "startxref" that ends the section
};

/// Fills `MergeState` from one input: cross-reference sections, trailers, objects. Needs the document's file
/// open in `DocFileNumber`. Nothing is shown and nothing is logged; a failed call leaves its reason in
/// `MergeState::Failure` and raises no error. `AbortRequested` ends every call as failed.
class PdfReader {
 public:
  PdfReader(MergeState& state, FileModule& files, MergeShell& shell);

  /// Reads the section at a 0-based offset (of the "xref" keyword or of what follows it) and registers its
  /// entries. Entries of sections read before are never overwritten. Only a single subsection is read; the
  /// lines of further ones count as trailer text.
  [[nodiscard]] XrefSectionInfo ReadXrefSection(std::int16_t slot, std::int32_t sectionPosition);

  /// Whether the sections of the document that were read so far are no longer than its file. Once they are
  /// not, they share bytes, and the dictionary and the /ID of the last one are not kept.
  [[nodiscard]] bool KeepsSections(std::int16_t slot) const;

  /// Interprets the trailer lines of the summary.
  void ReadTrailerDictionary(std::int16_t slot, XrefSectionInfo& info);

  /// Joins the lines with nothing between them and parses them as one dictionary. Index in `NameEntries` of
  /// the first key, -1 when there is none.
  [[nodiscard]] std::int32_t JoinAndParseDictionary(const Table<std::string>& lines, std::int32_t first,
                                                    std::int32_t last);
  [[nodiscard]] std::int32_t JoinAndParseDictionary(const Table<std::string_view>& lines, std::int32_t first,
                                                    std::int32_t last);

  /// Parses the dictionary text from a 1-based position on. Returns 0 when the text was used up, another
  /// value on failure; `firstEntry` is -1 when no key was found. Nesting deeper than 100 is refused.
  std::int32_t ParseDictionary(std::string_view text, std::int32_t start, std::int32_t& firstEntry);

  /// Makes `Objects` cover every slot's `DocObjectCount`, new rows stamped with the slot.
  [[nodiscard]] bool GrowObjectTable(std::int16_t slot);

  void InitObjectEntry(std::int32_t tableIndex);

  /// Describes every object of the slot (1 or 2); false when one of them breaks a rule.
  [[nodiscard]] bool ScanObjects(std::int16_t slot);

 private:
  template <typename Line>
  std::int32_t JoinAndParse(const Table<Line>& lines, std::int32_t first, std::int32_t last);
  /// `own` is the parser's own text that the other one is a part of; empty while it is somebody else's.
  std::int32_t ParseDictionary(std::string_view text, std::span<char> own, std::int32_t start,
                               std::int32_t& firstEntry);
  std::int32_t ParseDictionaryEntries(std::string_view inner, std::span<char> own, std::int32_t& firstEntry);
  [[nodiscard]] std::string_view KeepWithoutComments(const EntryWalk& walk, std::span<char> own);
  std::int32_t AppendEntry(std::string_view key, std::string_view value);
  void ParseNested(std::int32_t entry, std::string_view value, std::span<char> own);

  MergeState& state_;
  FileModule& files_;
  MergeShell& shell_;
};

/// Checks that the text begins with the expected object number, a generation and "obj". Returns the position
/// just after "obj"; below 1 when it does not.
[[nodiscard]] std::int32_t ParseObjectHeader(std::string_view text, std::int32_t start,
                                             std::int32_t expectedNumber, std::int32_t& generation);

}  // namespace folioweld
