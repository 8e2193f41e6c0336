#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/file_module.h"
#include "engine/merge_shell.h"
#include "engine/merge_state.h"
#include "engine/pdf_reader.h"

namespace folioweld {

/// Completes what the reader left in `MergeState` and writes the output. Call the passes in their order. A
/// pass that fails leaves its reason in `MergeState::Failure`; no error leaves a pass. The progress label is
/// status line 2 of the shell.
class PdfBuilder {
 public:
  PdfBuilder(MergeState& state, FileModule& files, MergeShell& shell);

  /// Passes #1 and #2: resolves stream lengths given as references, renumbers the second input.
  [[nodiscard]] bool BuildOutputPasses1And2();

  /// Pass #2: false when cancelled.
  [[nodiscard]] bool RenumberSecondInput();

  /// The line with `ObjectsInDoc1` added to the object number of every "n g obj" and "n g R" in it. Raises
  /// `OverflowError`.
  [[nodiscard]] std::string ShiftObjectReferences(std::string_view line) const;

  /// Pass #3: joins the page trees and prepares the trailer.
  [[nodiscard]] bool PastePageCatalogs();

  /// Whether Pass #3 could join the first input's pages with another's, as the first or the second one. It
  /// changes both for a try, so that the state is no use for a merge afterwards.
  [[nodiscard]] bool TryPageCatalog();

  /// The reference under "/Pages" of the catalog in the slot; both numbers -1 when there is none.
  [[nodiscard]] bool FindPagesReference(std::int32_t catalogSlot, std::int32_t& number,
                                        std::int32_t& generation);

  /// The text as a number, or the value of the number object that it refers to; -1 when it is neither.
  [[nodiscard]] std::int32_t ResolveIntegerValue(std::string_view text) const;

  /// Writes parsed keys back as a dictionary's text; empty for a row outside the table and on a cancel.
  [[nodiscard]] std::string RebuildDictionaryText(std::int32_t firstRow);

  /// Whether the writer's 16-bit line indices suffice, so that the output is not opened in vain. When they do
  /// not, the caption of pass #4 is shown.
  [[nodiscard]] bool CheckLineLimit();

  /// Pass #4: writes the output to file number `DocFileNumber`(3), and adds a "+" to the progress label after
  /// every 64 MiB of it. Returns its length in bytes, -1 on failure.
  [[nodiscard]] std::int32_t WriteOutputFile();

  /// Writes a text at a 0-based offset, in chunks of at most 1000 bytes. Returns the offset after it, -1 on
  /// failure.
  [[nodiscard]] std::int32_t WriteTextAt(std::string_view text, std::int32_t position);

  /// Writes "stream" LF, `length` bytes of the input from the 0-based offset `streamStart`, "endstream" CR
  /// LF; the data goes in blocks of 1000 bytes. Returns the offset after it (also in `position`), a value
  /// below 1 on failure.
  [[nodiscard]] std::int32_t CopyStreamBytes(std::int16_t inputFile, std::int32_t streamStart,
                                             std::int32_t length, std::int32_t& position);

 private:
  void ShowCaption();
  /// What the output holds up to this offset is written.
  void ShowWritten(std::int32_t position);
  /// False on a cancel.
  [[nodiscard]] bool AppendDictionary(std::int32_t firstRow, std::string& text);
  void ShiftLine(std::int32_t index, std::string_view& line, std::string_view& longest);

  MergeState& state_;
  FileModule& files_;
  MergeShell& shell_;
  std::int32_t marks_ = 0;  ///< shown by pass #4
  std::string shifted_;     ///< the line that is being renumbered; used again for the next one
};

}  // namespace folioweld
