#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/alteration.h"
#include "engine/merge_memory.h"
#include "engine/pass_failure.h"
#include "engine/table.h"
#include "engine/text_pool.h"

namespace folioweld {

/// Scanning state of an object slot.
enum ObjectState : std::int32_t {
  kNoObject = -1,      ///< no usable object; written as a free entry
  kPlainNumber = 0,    ///< located; its whole value is a number
  kWithoutStream = 1,  ///< located, no stream
  kWithStream = 2,     ///< located, has a stream
  kListed = 3          ///< listed by a cross-reference section, not located; written as a free entry
};

/// The generation that marks a free slot, in inputs and in the output.
inline constexpr std::int32_t kFreeGeneration = 65535;

/// One object slot of an input. Its index in `MergeState::Objects` is its number in the output.
struct ObjectEntry {
  std::int32_t ObjNumber = 0;    ///< number in the object header of the input
  std::int32_t OutOffset = -1;   ///< 0-based; the input offset until the writer sets the output offset
  std::int32_t Generation = -1;  ///< in the output `kFreeGeneration` for a free entry
  char EntryType = '\0';         ///< cross-reference keyword, "n" or "f"; '\0' = empty
  std::uint8_t DocNo = 1;        ///< slot (1 or 2) whose file holds the stream
  std::int32_t ObjState = kNoObject;
  /// Index in `NameEntries` of the dictionary's first entry; -1 = none, or the texts of the document's
  /// objects run into each other and this one is not parsed
  std::int32_t ObjAux = -1;
  std::int32_t FirstLine = -1;  ///< index in `ObjLines`; negative = none
  std::int32_t LastLine = -1;
  std::string_view ValueText;  ///< decimal text when the object is a plain number
  std::int32_t StreamStart =
      -1;  ///< 0-based offset of the first stream byte in the input; negative = unknown
  std::int32_t StreamLength = -1;     ///< bytes; -1 = not yet known
  std::int32_t LengthRefNumber = -1;  ///< object that holds /Length; -1 = /Length is direct
  std::int32_t LengthRefGeneration = 0;
};

/// A stream whose /Length is a reference.
struct MissingLength {
  std::int32_t StreamObjIndex = -1;  ///< index in `Objects` of the stream object
  std::int32_t LineIndex = -1;       ///< index in `ObjLines` of the line with /Length
  std::int32_t LengthObjIndex = -1;  ///< index in `Objects` of the length object
  std::int32_t LengthObjNumber = -1;
  std::int32_t LengthObjGeneration = -1;
  std::int16_t MissingDocNo = 0;
};

/// One key of a parsed dictionary.
struct NameEntry {
  std::string_view NameText;  ///< the key with its leading "/"
  std::string_view NameValue;
  std::int32_t NameId = -1;  ///< index of the next key of the same dictionary; -1 = last
  std::int32_t NameRef = -1;
  std::int16_t NameFlag = 0;  ///< 1 = the value is a dictionary and `NameRef` its first key
};

/// Everything the engine knows about one merge. Plain data: the reader fills it, the builder completes and
/// consumes it, and nothing in it outlives the next reset but the file names and the job's flags. Slots are
/// 1 = first input, 2 = second input, 3 = output. Text is bytes.
struct MergeState {
  // Documents.
  SlotArray<bool, 2> DocUsed;
  SlotArray<std::string> DocFileName;  ///< full paths; empty = not chosen
  /// The documents that a file holds. Those of the inputs are given for files that this run wrote, and gone
  /// after the job; those of the output are what a job that succeeded leaves.
  SlotArray<std::vector<SourceDocument>> DocSources;
  SlotArray<std::int16_t> DocFileNumber;  ///< open file of `FileModule`; below 1 = not open
  SlotArray<std::string> DocHeader;       ///< "%PDF-n.m" and one CR
  SlotArray<std::string> DocSecondLine;   ///< the binary marker comment and CR LF
  SlotArray<std::int32_t> DocXrefStart;   ///< 0-based offset of the next section to read; -1 = none
  /// 0-based offset of a last "startxref" that gives another number than the one that counts; -1 = none
  SlotArray<std::int32_t> DocOtherStartXref;
  SlotArray<std::int32_t> DocObjectCount;   ///< slots of the document, object 0 included
  SlotArray<std::int32_t> DocXrefCount;     ///< sections read so far
  SlotArray<std::int64_t> DocSectionBytes;  ///< of these sections, one in another counted twice
  SlotArray<std::int32_t> DocRootNumber;    ///< catalog; -1 = not known
  SlotArray<std::int32_t> DocInfoNumber;    ///< information dictionary; -1 = not known
  std::int32_t ObjectsInDoc1 = 0;
  std::int32_t ObjectsInDoc2 = 0;
  std::int32_t ObjectsTotal = 0;

  // Cross-reference sections, (slot, section). They are the record of every trailer that was read and belong
  // to the state's interface: the passes read `TrailerEntry` and `TrailerSize` only, the other cells are for
  // whoever asks.
  SectionTable<std::int32_t> TrailerEntry;
  SectionTable<std::int32_t> TrailerFirstLine;
  SectionTable<std::int32_t> TrailerLastLine;
  SectionTable<std::int32_t> TrailerSize;
  SectionTable<std::int32_t> TrailerRoot;
  SectionTable<std::int32_t> TrailerInfo;
  SectionTable<std::int32_t> TrailerPrev;
  SectionTable<std::int32_t> TrailerEncrypt;
  SectionTable<std::string> TrailerId;

  MergeMemory Memory;

  // Objects of both inputs: the first input's, then the second's.
  Table<ObjectEntry> Objects{&Memory};
  Table<std::string_view> ObjLines{&Memory};
  std::int32_t ObjLineCount = 0;
  std::int32_t ObjLineLast = -1;  ///< a record like the trailers' cells
  Table<MissingLength> MissingLengths{&Memory};
  std::int32_t MissingLengthCount = 0;
  Table<NameEntry> NameEntries{&Memory};
  std::int32_t NameEntryCount = 0;
  TextPool Texts{&Memory};           ///< what the texts of `Objects`, `ObjLines` and `NameEntries` point into
  Table<std::string> PageKids;       ///< the trailers' text lines
  Table<std::string> PageKidsExtra;  ///< always empty
  std::int32_t PageKidsCount = 0;
  std::int32_t PageKidsLast =
      -1;  ///< where the second document's lines begin; a record like the trailers' cells
  std::string OutputTrailerText;

  // The job.
  bool AbortRequested = false;
  bool JobRunning = false;
  bool SilentMode = false;  ///< no message box and no viewer
  bool ShowOutputAfterMerge = false;
  bool LogEnabled = true;
  /// What later documents lose with their catalogs is carried over once the output is finished, and until
  /// then nobody is warned of it.
  bool CatalogsAreCarried = false;
  std::int16_t DictDepth = 0;    ///< nesting of the dictionary parser, at most 100
  std::int16_t MergeStatus = 2;  ///< 2 after a reset, 1 when the user left, -1 once a job has failed
  /// A cancel that the job found or saw and cleared; whoever started the job acts on it.
  bool CancelSeen = false;
  PassFailure Failure;  ///< why the last pass or acceptance test failed

  MergeState();
};

/// Empties every table and derives the output's header lines from the inputs' ones; the start of a merge.
void ResetMergeState(MergeState& state);

/// The table index of an object: n in slot 1, and past the objects of the slots before it in 2 and 3; any
/// other slot gives 0. Raises `OverflowError`.
[[nodiscard]] std::int32_t TableIndexOf(const MergeState& state, std::int32_t objectNumber,
                                        std::int32_t slot);

/// The first line of an object: "12 0 obj" and a carriage return.
[[nodiscard]] std::string HeaderLine(std::int32_t number, std::int32_t generation);

/// Appends a copy of the line to `ObjLines` and returns its index; the second one takes a line that `Texts`
/// keeps already.
std::int32_t AppendObjLine(MergeState& state, std::string_view line);
std::int32_t AppendKeptObjLine(MergeState& state, std::string_view line);

}  // namespace folioweld
