// Where the reader yields, and that a cancel is seen after every yield and called by its name.

#include <gtest/gtest.h>

#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using testing::ReaderSetup;

/// A state of its own for every cancel.
class CancelledReading : public ReaderSetup {
 public:
  CancelledReading() {
    Builder.Object(1, "<</A <</B 1>>>>").Stream(2, "", "DATA").Object(3, "[\n1\n]").Object(4, "5");
    Bytes = Builder.Build();
    Open(1, Bytes);
  }

  XrefSectionInfo ReadSection() {
    return Reader.ReadXrefSection(1, static_cast<std::int32_t>(Builder.XrefOffset()));
  }

  void CancelAtYield(long number) {
    Shell.Yields = 0;
    Shell.OnYield = [this, number] { State.AbortRequested = State.AbortRequested || Shell.Yields == number; };
  }

  DocumentBuilder Builder;
  std::string Bytes;
};

TEST(YieldAndCheckAbort, YieldsTwiceAndTellsWhetherACancelCame) {
  testing::RecordingShell shell;
  MergeState state;
  EXPECT_FALSE(YieldAndCheckAbort(shell, state));
  EXPECT_EQ(shell.Yields, 2);
  shell.OnYield = [&] { state.AbortRequested = shell.Yields == 4; };
  EXPECT_TRUE(YieldAndCheckAbort(shell, state));
}

TEST(SectionYields, AroundEveryLineBeforeTheTableGrowsAndInTheDictionary) {
  CancelledReading reading;
  ASSERT_TRUE(reading.ReadSection().SectionOk);
  // "xref" and the header.
  constexpr long kFirstLines = 2;
  constexpr long kBeforeGrowth = 1;
  constexpr long kNewRows = 4;
  constexpr long kEntries = 5;
  // "trailer", "<</Size 5", "/Root 1 0 R", "", ">>" and "startxref"; the empty line is none.
  constexpr long kTrailerLines = 5;
  constexpr long kDictionaries = 1;
  EXPECT_EQ(reading.Shell.Yields,
            2 * (kFirstLines + kEntries + kTrailerLines) + kBeforeGrowth + kNewRows + kDictionaries);
}

TEST(SectionCancel, AtAnyYieldFailsTheSection) {
  CancelledReading whole;
  ASSERT_TRUE(whole.ReadSection().SectionOk);
  for (long number = 1; number <= whole.Shell.Yields; ++number) {
    CancelledReading reading;
    reading.CancelAtYield(number);
    const XrefSectionInfo info = reading.ReadSection();
    EXPECT_FALSE(info.SectionOk) << number;
    EXPECT_EQ(info.FirstObject, -1) << number;
    EXPECT_EQ(info.EntryCount, -1) << number;
    EXPECT_EQ(reading.State.Failure.Rule, kCancelled) << number;
    EXPECT_EQ(reading.State.Failure.DocumentSlot, 1) << number;
    EXPECT_EQ(reading.State.DictDepth, 0) << number;
  }
}

TEST(SectionCancel, BeforeTheEntriesLeavesTheTableAlone) {
  CancelledReading reading;
  // The fifth yield is the one after the header.
  reading.CancelAtYield(5);
  EXPECT_FALSE(reading.ReadSection().SectionOk);
  EXPECT_EQ(reading.Shell.Yields, 5);
  EXPECT_EQ(reading.State.DocObjectCount(1), 0);
  EXPECT_EQ(reading.State.Objects.UpperBound(), 0);
}

TEST(SectionCancel, IsSeenWhileTheHeaderIsLookedFor) {
  CancelledReading reading;
  const std::string lines = testing::Repeat("xref\n \n", 1000) + "0 1\n0000000000 65535 f \n";
  reading.Open(1, lines);
  reading.CancelAtYield(100);
  EXPECT_FALSE(reading.Reader.ReadXrefSection(1, 0).SectionOk);
  EXPECT_EQ(reading.Shell.Yields, 100);
  EXPECT_EQ(reading.State.Failure.Rule, kCancelled);
}

TEST(SectionCancel, WinsOverAReadThatFails) {
  CancelledReading reading;
  reading.CancelAtYield(1);
  EXPECT_FALSE(reading.Reader.ReadXrefSection(1, 2000000000).SectionOk);
  EXPECT_EQ(reading.State.Failure.Rule, kCancelled);
}

TEST(SectionCancel, AfterAnEntryWasReadDoesNotStoreIt) {
  CancelledReading reading;
  // Four for two lines, one before the table grows, four for its new rows, two around each entry.
  reading.CancelAtYield(4 + 1 + 4 + 2 + 2);
  EXPECT_FALSE(reading.ReadSection().SectionOk);
  EXPECT_EQ(reading.State.Objects[0].ObjState, kListed);
  EXPECT_EQ(reading.State.Objects[1].ObjState, kNoObject);
  EXPECT_EQ(reading.State.Failure.ObjectNumber, 1);
}

TEST(ScanYields, BeforeEveryObjectAroundEveryLineAndInEveryDictionary) {
  CancelledReading reading;
  ASSERT_TRUE(reading.ReadSection().SectionOk);
  reading.Shell.Yields = 0;
  ASSERT_TRUE(reading.Reader.ScanObjects(1)) << reading.State.Failure.Rule;
  constexpr long kObjects = 5;
  constexpr long kLines = 3 + 3 + 5 + 3;
  constexpr long kDictionaries = 2 + 1;
  EXPECT_EQ(reading.Shell.Yields, kObjects + 2 * kLines + kDictionaries);
}

TEST(ScanCancel, AtAnyYieldFailsTheScan) {
  CancelledReading whole;
  ASSERT_TRUE(whole.ReadSection().SectionOk);
  whole.Shell.Yields = 0;
  ASSERT_TRUE(whole.Reader.ScanObjects(1));
  for (long number = 1; number <= whole.Shell.Yields; ++number) {
    CancelledReading reading;
    ASSERT_TRUE(reading.ReadSection().SectionOk);
    reading.CancelAtYield(number);
    EXPECT_FALSE(reading.Reader.ScanObjects(1)) << number;
    EXPECT_EQ(reading.State.Failure.Rule, kCancelled) << number;
    EXPECT_EQ(reading.State.Failure.DocumentSlot, 1) << number;
    EXPECT_GE(reading.State.Failure.ObjectNumber, 0) << number;
    EXPECT_EQ(reading.State.DictDepth, 0) << number;
    EXPECT_LE(reading.Shell.Yields, number + 2) << "it goes on after the cancel";
  }
}

TEST(ScanCancel, TellsTheObjectAndWhereItStands) {
  CancelledReading reading;
  ASSERT_TRUE(reading.ReadSection().SectionOk);
  // Object 0 is free and takes one yield; object 1 one more, then its first line.
  reading.CancelAtYield(3);
  EXPECT_FALSE(reading.Reader.ScanObjects(1));
  EXPECT_EQ(reading.State.Failure.ObjectNumber, 1);
  EXPECT_EQ(reading.State.Failure.FileOffset, reading.Builder.OffsetOf(1));
}

TEST(ScanCancel, WinsOverAReadThatFails) {
  CancelledReading reading;
  ASSERT_TRUE(reading.ReadSection().SectionOk);
  reading.State.Objects[1].OutOffset = 2000000000;
  reading.CancelAtYield(3);
  EXPECT_FALSE(reading.Reader.ScanObjects(1));
  EXPECT_EQ(reading.State.Failure.Rule, kCancelled);
}

TEST(ScanCancel, BeforeItsStartIsSeenAtTheFirstObject) {
  CancelledReading reading;
  ASSERT_TRUE(reading.ReadSection().SectionOk);
  reading.State.AbortRequested = true;
  EXPECT_FALSE(reading.Reader.ScanObjects(1));
  EXPECT_EQ(reading.State.Failure.ObjectNumber, 0);
  EXPECT_EQ(reading.State.Failure.FileOffset, -1);
}

}  // namespace
}  // namespace folioweld
