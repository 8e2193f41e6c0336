#include "engine/merge_state.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "engine/merge_shell.h"
#include "engine/pdf_reader.h"
#include "platform/posix_api.h"

namespace folioweld {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

/// A state after a reset with these header lines, both inputs in use.
struct ResetState : MergeState {
  ResetState(const std::string& header1, const std::string& header2) {
    DocUsed(1) = true;
    DocUsed(2) = true;
    DocHeader(1) = header1;
    DocHeader(2) = header2;
    DocSecondLine(1) = "%first\r\n";
    DocSecondLine(2) = "%second\r\n";
    ResetMergeState(*this);
  }
};

TEST(MergeStateTest, ANewStateHasNoOpenFilesAndNoDocuments) {
  const MergeState state;
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    EXPECT_EQ(state.DocFileNumber(slot), -1);
    EXPECT_EQ(state.DocXrefStart(slot), -1);
    EXPECT_EQ(state.DocRootNumber(slot), -1);
    EXPECT_EQ(state.DocInfoNumber(slot), -1);
    EXPECT_EQ(state.DocFileName(slot), "");
  }
  EXPECT_FALSE(state.DocUsed(1));
  EXPECT_FALSE(state.DocUsed(2));
  EXPECT_FALSE(state.AbortRequested);
  EXPECT_FALSE(state.JobRunning);
}

TEST(MergeStateTest, ANewEntryHasDocumentOneItsIndexAsNumberAndMinusOneInEveryOtherNumber) {
  MergeState state;
  PosixApi system;
  FileModule files(system);
  MergeShell shell;
  PdfReader reader(state, files, shell);
  state.Objects.Grow(4);
  ObjectEntry& entry = state.Objects[4];
  entry = {7, 8, 9, 'n', 2, kWithStream, 1, 2, 3, "5", 10, 11, 12, 13};
  reader.InitObjectEntry(4);
  EXPECT_EQ(entry.ObjNumber, 4);
  EXPECT_EQ(entry.OutOffset, -1);
  EXPECT_EQ(entry.Generation, -1);
  EXPECT_EQ(entry.EntryType, '\0');
  EXPECT_EQ(entry.ObjState, -1);
  EXPECT_EQ(entry.DocNo, 1);
  EXPECT_EQ(entry.ObjAux, -1);
  EXPECT_EQ(entry.FirstLine, -1);
  EXPECT_EQ(entry.LastLine, -1);
  EXPECT_EQ(entry.ValueText, "");
  EXPECT_EQ(entry.StreamStart, -1);
  EXPECT_EQ(entry.StreamLength, -1);
  EXPECT_EQ(entry.LengthRefNumber, -1);
}

TEST(MergeStateTest, ANewNameEntryLinksToNothing) {
  const NameEntry entry;
  EXPECT_EQ(entry.NameId, -1);
  EXPECT_EQ(entry.NameText, "");
  EXPECT_EQ(entry.NameFlag, 0);
  EXPECT_EQ(entry.NameValue, "");
  EXPECT_EQ(entry.NameRef, -1);
}

TEST(ResetMergeStateTest, EqualVersionsTakeTheFirstInputsHeaderAndSecondLine) {
  const ResetState state("%PDF-1.4\r", "%PDF-1.4\r");
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.4\r");
  EXPECT_EQ(state.DocSecondLine(3), "%first\r\n");
}

TEST(ResetMergeStateTest, AFirstInputOfANewerVersionGivesTheHeaderWithOneCarriageReturn) {
  const ResetState state("%PDF-1.7\r", "%PDF-1.3\r");
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.7\r");
  EXPECT_EQ(state.DocSecondLine(3), "%first\r\n");
}

TEST(ResetMergeStateTest, ASecondInputOfANewerVersionGivesBothLines) {
  const ResetState state("%PDF-1.3\r", "%PDF-1.7\r");
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.7\r");
  EXPECT_EQ(state.DocSecondLine(3), "%second\r\n");
}

TEST(ResetMergeStateTest, VersionsAreComparedAsDecimalNumbers) {
  // 1.10 reads as 1.1 and is not newer than 1.4.
  EXPECT_EQ(ResetState("%PDF-1.4\r", "%PDF-1.10\r").DocSecondLine(3), "%first\r\n");
  EXPECT_EQ(ResetState("%PDF-1.10\r", "%PDF-1.4\r").DocSecondLine(3), "%second\r\n");
  EXPECT_EQ(ResetState("%PDF-1.4\r", "%PDF-2.0\r").DocSecondLine(3), "%second\r\n");
  EXPECT_EQ(ResetState("%PDF-9.9\r", "%PDF-10.0\r").DocSecondLine(3), "%second\r\n");
}

TEST(ResetMergeStateTest, VersionsAreReadAsFarAsTheyAreNumbers) {
  EXPECT_EQ(ResetState("%PDF-1.4 by a\r", "%PDF-1.5x\r").DocHeader(3), "%PDF-1.5x\r");
  EXPECT_EQ(ResetState("%PDF-abc\r", "%PDF-0.1\r").DocHeader(3), "%PDF-0.1\r");
  EXPECT_EQ(ResetState("%PDF-abc\r", "%PDF-xyz\r").DocHeader(3), "%PDF-abc\r");
  EXPECT_EQ(ResetState("%PDF-1.4.9\r", "%PDF-1.4\r").DocHeader(3), "%PDF-1.4.9\r");
}

TEST(ResetMergeStateTest, AMissingFirstHeaderCountsAsVersionZero) {
  MergeState state;
  state.DocUsed(2) = true;
  state.DocHeader(2) = "%PDF-1.2\r";
  state.DocSecondLine(2) = "%second\r\n";
  ResetMergeState(state);
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.2\r");
  EXPECT_EQ(state.DocSecondLine(3), "%second\r\n");
}

TEST(ResetMergeStateTest, ComparesWithTheFirstHeaderEvenWhenThatDocumentIsNotUsed) {
  MergeState state;
  state.DocUsed(2) = true;
  state.DocHeader(1) = "%PDF-1.6\r";
  state.DocSecondLine(1) = "%first\r\n";
  state.DocHeader(2) = "%PDF-1.2\r";
  ResetMergeState(state);
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.6\r");
  EXPECT_EQ(state.DocSecondLine(3), "%first\r\n");
}

TEST(ResetMergeStateTest, AFirstInputAloneGivesItsLines) {
  MergeState state;
  state.DocUsed(1) = true;
  state.DocHeader(1) = "%PDF-1.2\r";
  state.DocSecondLine(1) = "%first\r\n";
  state.DocHeader(2) = "%PDF-1.7\r";
  ResetMergeState(state);
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.2\r");
  EXPECT_EQ(state.DocSecondLine(3), "%first\r\n");
}

TEST(ResetMergeStateTest, WithoutInputsTheOutputsLinesAreTheirLineEndsOnly) {
  MergeState state;
  state.DocHeader(1) = "%PDF-1.2\r";
  state.DocHeader(2) = "%PDF-1.3\r";
  state.DocHeader(3) = "old";
  state.DocSecondLine(3) = "old";
  ResetMergeState(state);
  EXPECT_EQ(state.DocHeader(3), "\r");
  EXPECT_EQ(state.DocSecondLine(3), "\r\n");
}

TEST(ResetMergeStateTest, TrailingWhiteSpaceOfTheOutputsLinesIsReplacedByOneLineEnd) {
  MergeState state;
  state.DocUsed(1) = true;
  state.DocHeader(1) = "%PDF-1.4 \r\n \r";
  state.DocSecondLine(1) = "% \xE2\xE3\xCF\xD3\t \r\n\r\n";
  ResetMergeState(state);
  EXPECT_EQ(state.DocHeader(3), "%PDF-1.4\r");
  // A tab is no white space here.
  EXPECT_EQ(state.DocSecondLine(3), "% \xE2\xE3\xCF\xD3\t\r\n");
}

TEST(ResetMergeStateTest, EmptiesEveryTable) {
  MergeState state;
  state.NameEntries.Grow(9);
  state.NameEntries[0].NameText = state.Texts.Keep("/Size");
  state.NameEntryCount = 10;
  state.Objects.Grow(9);
  state.Objects[0].ObjNumber = 5;
  static_cast<void>(AppendObjLine(state, "line"));
  state.ObjLineLast = 3;
  state.MissingLengths.Grow(9);
  state.MissingLengthCount = 10;
  state.PageKids.Grow(9);
  state.PageKids[0] = "kid";
  state.PageKidsExtra.Grow(9);
  state.PageKidsCount = 10;
  state.PageKidsLast = 4;
  state.OutputTrailerText = "trailer";
  ResetMergeState(state);
  EXPECT_EQ(state.NameEntries.UpperBound(), 0);
  EXPECT_EQ(state.NameEntries[0].NameText, "");
  EXPECT_EQ(state.NameEntryCount, 0);
  EXPECT_EQ(state.Objects.UpperBound(), 0);
  EXPECT_EQ(state.Objects[0].ObjNumber, 0);
  EXPECT_EQ(state.ObjLines.UpperBound(), 0);
  EXPECT_EQ(state.ObjLines[0], "");
  EXPECT_EQ(state.ObjLineCount, 0);
  EXPECT_EQ(state.ObjLineLast, -1);
  EXPECT_EQ(state.MissingLengths.UpperBound(), 0);
  EXPECT_EQ(state.MissingLengthCount, 0);
  EXPECT_EQ(state.PageKids.UpperBound(), 0);
  EXPECT_EQ(state.PageKids[0], "");
  EXPECT_EQ(state.PageKidsExtra.UpperBound(), 0);
  EXPECT_EQ(state.PageKidsCount, 0);
  EXPECT_EQ(state.PageKidsLast, -1);
  EXPECT_EQ(state.OutputTrailerText, "");
}

TEST(ResetMergeStateTest, GivesTheSectionTablesOneSectionOfZerosForEverySlot) {
  MergeState state;
  const std::array<SectionTable<std::int32_t>*, 8> tables = {
      &state.TrailerEntry, &state.TrailerFirstLine, &state.TrailerLastLine, &state.TrailerSize,
      &state.TrailerRoot,  &state.TrailerInfo,      &state.TrailerPrev,     &state.TrailerEncrypt};
  for (auto* table : tables) {
    table->Grow(3);
    for (std::int32_t slot = 1; slot <= 3; ++slot) (*table)(slot, 0) = 5;
  }
  state.TrailerId.Grow(3);
  state.TrailerId(2, 0) = "id";
  ResetMergeState(state);
  for (auto* table : tables) {
    EXPECT_EQ(table->UpperBound(), 0);
    for (std::int32_t slot = 1; slot <= 3; ++slot) EXPECT_EQ((*table)(slot, 0), 0);
  }
  EXPECT_EQ(state.TrailerId.UpperBound(), 0);
  EXPECT_EQ(state.TrailerId(2, 0), "");
}

TEST(ResetMergeStateTest, ResetsTheCountsOfEverySlot) {
  MergeState state;
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    state.DocXrefCount(slot) = 2;
    state.DocObjectCount(slot) = 3;
    state.DocRootNumber(slot) = 4;
    state.DocInfoNumber(slot) = 5;
  }
  state.ObjectsInDoc1 = 3;
  state.ObjectsInDoc2 = 3;
  state.ObjectsTotal = 6;
  state.DictDepth = 7;
  state.MergeStatus = -1;
  state.DocSources(3).push_back({"an old output's", 0, true, {}});
  state.Failure.Rule = "an old reason";
  ResetMergeState(state);
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    EXPECT_EQ(state.DocXrefCount(slot), 0);
    EXPECT_EQ(state.DocObjectCount(slot), 0);
    EXPECT_EQ(state.DocRootNumber(slot), -1);
    EXPECT_EQ(state.DocInfoNumber(slot), -1);
  }
  EXPECT_EQ(state.ObjectsInDoc1, 0);
  EXPECT_EQ(state.ObjectsInDoc2, 0);
  EXPECT_EQ(state.ObjectsTotal, 0);
  EXPECT_EQ(state.DictDepth, 0);
  EXPECT_EQ(state.MergeStatus, 2);
  EXPECT_TRUE(state.DocSources(3).empty());
  EXPECT_TRUE(state.Failure.Empty());
}

TEST(ResetMergeStateTest, LeavesFileNamesOpenFilesAndTheJobsFlagsAlone) {
  MergeState state;
  state.DocUsed(1) = true;
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    state.DocFileName(slot) = "name " + std::to_string(slot);
    state.DocFileNumber(slot) = static_cast<std::int16_t>(slot);
    state.DocXrefStart(slot) = 100 + slot;
  }
  state.DocHeader(1) = "%PDF-1.4\r";
  state.DocSecondLine(1) = "%first\r\n";
  state.AbortRequested = true;
  state.JobRunning = true;
  state.SilentMode = true;
  state.ShowOutputAfterMerge = true;
  state.CancelSeen = true;
  ResetMergeState(state);
  for (std::int32_t slot = 1; slot <= 3; ++slot) {
    EXPECT_EQ(state.DocFileName(slot), "name " + std::to_string(slot));
    EXPECT_EQ(state.DocFileNumber(slot), slot);
    EXPECT_EQ(state.DocXrefStart(slot), 100 + slot);
  }
  EXPECT_TRUE(state.DocUsed(1));
  EXPECT_EQ(state.DocHeader(1), "%PDF-1.4\r");
  EXPECT_EQ(state.DocSecondLine(1), "%first\r\n");
  EXPECT_TRUE(state.AbortRequested);
  EXPECT_TRUE(state.JobRunning);
  EXPECT_TRUE(state.SilentMode);
  EXPECT_TRUE(state.ShowOutputAfterMerge);
  EXPECT_TRUE(state.CancelSeen);
}

TEST(TableIndexOfTest, CountsPastTheSlotsBefore) {
  MergeState state;
  state.DocObjectCount(1) = 10;
  state.DocObjectCount(2) = 20;
  EXPECT_EQ(TableIndexOf(state, 5, 1), 5);
  EXPECT_EQ(TableIndexOf(state, 5, 2), 15);
  EXPECT_EQ(TableIndexOf(state, 5, 3), 35);
  EXPECT_EQ(TableIndexOf(state, 5, 0), 0);
  EXPECT_EQ(TableIndexOf(state, 5, 4), 0);
}

TEST(TableIndexOfTest, RaisesWhenTheIndexDoesNotFit) {
  MergeState state;
  state.DocObjectCount(1) = 1;
  EXPECT_EQ(TableIndexOf(state, kMost - 1, 2), kMost);
  EXPECT_THROW(static_cast<void>(TableIndexOf(state, kMost, 2)), OverflowError);
  state.DocObjectCount(2) = kMost;
  EXPECT_THROW(static_cast<void>(TableIndexOf(state, 0, 3)), OverflowError);
}

TEST(AppendObjLineTest, AppendsBehindTheLinesInUse) {
  MergeState state;
  ResetMergeState(state);
  for (std::int32_t i = 0; i < 500; ++i) {
    EXPECT_EQ(AppendObjLine(state, "line " + std::to_string(i)), i);
    EXPECT_EQ(state.ObjLineCount, i + 1);
  }
  EXPECT_EQ(state.ObjLines[0], "line 0");
  EXPECT_EQ(state.ObjLines[499], "line 499");
}

}  // namespace
}  // namespace folioweld
