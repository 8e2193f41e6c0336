// Cross-reference sections: the way to the header, the header, the entries.

#include <cerrno>
#include <gtest/gtest.h>
#include <set>
#include <vector>

#include "tests/support/processor_time.h"
#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ProcessorSeconds;
using testing::ReaderSetup;
using testing::Repeat;

const std::string kTrailer = "trailer\n<</Size 2>>\nstartxref\n0\n%%EOF\n";
const std::string kFree = "0000000000 65535 f \n";
const std::string kUsed = "0000000017 00000 n \n";

class XrefSectionTest : public ::testing::Test, public ReaderSetup {
 protected:
  XrefSectionInfo Read(const std::string& bytes, std::int16_t slot = 1) { return ReadSection(slot, bytes); }

  /// A section of one entry after an entry for object 0.
  XrefSectionInfo ReadEntry(const std::string& line) { return Read("xref\n0 2\n" + kFree + line + kTrailer); }

  void ExpectHeaderRefused(const std::string& line) {
    ResetMergeState(State);
    const XrefSectionInfo info = Read("xref\n" + line + "\n" + kFree + kUsed + kTrailer);
    EXPECT_FALSE(info.SectionOk) << line;
    EXPECT_EQ(info.FirstObject, -1) << line;
    EXPECT_EQ(info.EntryCount, -1) << line;
    EXPECT_EQ(State.Failure.DocumentSlot, 1) << line;
    EXPECT_EQ(State.Failure.FileOffset, 5) << line;
    EXPECT_EQ(State.DocObjectCount(1), 0) << line;
  }

  void ExpectEntryRefused(const std::string& line) {
    ResetMergeState(State);
    const XrefSectionInfo info = ReadEntry(line + "\n");
    EXPECT_FALSE(info.SectionOk) << line;
    EXPECT_EQ(info.FirstObject, -1) << line;
    EXPECT_EQ(info.EntryCount, -1) << line;
    EXPECT_EQ(State.Failure.Rule, "the cross-reference entry is malformed") << line;
    EXPECT_EQ(State.Failure.DocumentSlot, 1) << line;
    EXPECT_EQ(State.Failure.ObjectNumber, 1) << line;
    EXPECT_EQ(State.Failure.FileOffset, 29) << line;
  }
};

TEST_F(XrefSectionTest, ASummaryBeginsWithNothingKnown) {
  const XrefSectionInfo info;
  for (const std::int32_t field :
       {info.FirstObject, info.EntryCount, info.TrailerEntry, info.TrailerFirstLine, info.TrailerLastLine,
        info.TrailerSize, info.TrailerPrev, info.TrailerRoot, info.TrailerInfo, info.TrailerEncrypt}) {
    EXPECT_EQ(field, -1);
  }
  EXPECT_EQ(info.TrailerId, "");
  EXPECT_FALSE(info.SectionOk);
}

TEST_F(XrefSectionTest, SixEntriesRegisterObjects0To5) {
  const XrefSectionInfo info = Read("xref\n0 6\n" + kFree + Repeat(kUsed, 5) + kTrailer);
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.FirstObject, 0);
  EXPECT_EQ(info.EntryCount, 6);
  EXPECT_EQ(State.DocObjectCount(1), 6);
  EXPECT_EQ(State.Objects.UpperBound(), 5);
  for (std::int32_t i = 0; i <= 5; ++i) {
    EXPECT_EQ(State.Objects[i].ObjState, kListed);
    EXPECT_EQ(State.Objects[i].ObjNumber, i);
  }
  EXPECT_TRUE(State.Failure.Empty());
}

TEST_F(XrefSectionTest, AnEntryGetsOffsetGenerationTypeAndDocument) {
  ASSERT_TRUE(ReadEntry("0000001234 00007 n \n").SectionOk);
  const ObjectEntry& entry = State.Objects[1];
  EXPECT_EQ(entry.OutOffset, 1234);
  EXPECT_EQ(entry.Generation, 7);
  EXPECT_EQ(entry.EntryType, 'n');
  EXPECT_EQ(entry.DocNo, 1);
  EXPECT_EQ(State.Objects[0].Generation, 65535);
  EXPECT_EQ(State.Objects[0].EntryType, 'f');
}

TEST_F(XrefSectionTest, TellsWhereTheSectionBeginsAndEnds) {
  const XrefSectionInfo info = Read("xref\n0 1\n" + kFree + "trailer\n<<>>\nstartxref\n0\n");
  EXPECT_EQ(info.FirstByte, 5);
  EXPECT_EQ(info.LastByte, 5 + 4 + 20 + 8 + 5);
}

// The way to the header.

TEST_F(XrefSectionTest, TheKeywordLineMayBeMissing) {
  EXPECT_TRUE(Read("0 1\n" + kFree + kTrailer).SectionOk);
}

TEST_F(XrefSectionTest, ReadsFromTheOffsetGiven) {
  const std::string before = "9 9 garbage ";
  const XrefSectionInfo info = ReadSection(1, before + "0 1\n" + kFree + kTrailer, 12);
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.FirstByte, 12);
}

TEST_F(XrefSectionTest, BlankLinesAndKeywordLinesBeforeTheHeaderAreSkipped) {
  EXPECT_TRUE(Read("\r\n\n   \r  xref  \n \nxref\n0 1\n" + kFree + kTrailer).SectionOk);
}

TEST_F(XrefSectionTest, WhateverFollowsTheKeywordOnItsLineIsLost) {
  // The numbers of the first line do not count.
  const XrefSectionInfo info = Read("xref 0 9\n0 1\n" + kFree + kTrailer);
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.EntryCount, 1);
}

TEST_F(XrefSectionTest, ALineThatOnlyBeginsLikeTheKeywordIsTheHeader) {
  EXPECT_FALSE(Read("xrefs\n0 1\n" + kFree + kTrailer).SectionOk);
  EXPECT_FALSE(Read("XREF\n0 1\n" + kFree + kTrailer).SectionOk);
  EXPECT_FALSE(Read("xref\t\n0 1\n" + kFree + kTrailer).SectionOk);
}

TEST_F(XrefSectionTest, AnObjectHeaderFails) {
  EXPECT_FALSE(Read("12 0 obj\n<</Type/XRef>>\nstream\n").SectionOk);
  EXPECT_EQ(State.Failure.DocumentSlot, 1);
  EXPECT_EQ(State.Failure.FileOffset, 0);
  EXPECT_NE(State.Failure.Rule.find("cross-reference streams are not handled"), std::string::npos);
}

TEST_F(XrefSectionTest, APositionBeyondTheEndFails) {
  EXPECT_FALSE(ReadSection(1, "xref\n", 100).SectionOk);
  EXPECT_EQ(State.Failure.FileOffset, 100);
  EXPECT_EQ(State.Failure.Rule, "the file ends here instead of the header of a cross-reference subsection");
}

TEST_F(XrefSectionTest, TheLargestOffsetFailsWithoutAnOverflow) {
  EXPECT_FALSE(ReadSection(1, "xref\n", 2147483646).SectionOk);
  EXPECT_FALSE(ReadSection(1, "xref\n", 2147483647).SectionOk);
  EXPECT_EQ(State.Failure.DocumentSlot, 1);
}

TEST_F(XrefSectionTest, ASlotThatDoesNotExistFails) {
  EXPECT_FALSE(Reader.ReadXrefSection(0, 0).SectionOk);
  EXPECT_FALSE(Reader.ReadXrefSection(4, 0).SectionOk);
  EXPECT_FALSE(State.Failure.Empty());
}

// The header.

TEST_F(XrefSectionTest, TheHeaderIsTwoNumbersAndNothingElse) {
  for (const char* line : {"0", "12", "123", "0 x", "a 2", "-1 2", "0 2 3", "0 2 n", "0 -2", "0 2.0", "0\t2",
                           "0 2\t", "00000000000 2", "0 00000000002", "2147483647 1", "0x 2"}) {
    ExpectHeaderRefused(line);
  }
}

TEST_F(XrefSectionTest, AHeaderIndentedByASpaceIsRefused) {
  ExpectHeaderRefused(" 0 2");
}

TEST_F(XrefSectionTest, SpacesAroundTheCountAreFine) {
  EXPECT_TRUE(Read("xref\n0   2  \n" + kFree + kUsed + kTrailer).SectionOk);
  EXPECT_TRUE(Read("xref\n0000000000 0000000002\n" + kFree + kUsed + kTrailer).SectionOk);
}

TEST_F(XrefSectionTest, ASectionMayHaveNoEntries) {
  const XrefSectionInfo info = Read("xref\n0 0\n" + kTrailer);
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.EntryCount, 0);
  EXPECT_EQ(Shell.StatusText(0), "");
}

TEST_F(XrefSectionTest, ASumAbove350000IsRefused) {
  ExpectHeaderRefused("349990 11");
  EXPECT_EQ(State.Failure.Rule, "the cross-reference table goes beyond object number 350000");
  EXPECT_EQ(State.Objects.UpperBound(), 0);
}

TEST_F(XrefSectionTest, ASumThatOverflows32BitsIsRefused) {
  ExpectHeaderRefused("2147483646 2147483646");
}

TEST_F(XrefSectionTest, ASumOf350000IsAccepted) {
  EXPECT_TRUE(Read("xref\n349990 10\n" + Repeat(kUsed, 10) + kTrailer).SectionOk);
  EXPECT_EQ(State.DocObjectCount(1), 350000);
  EXPECT_EQ(State.Objects[349999].ObjState, kListed);
  EXPECT_EQ(State.Objects[349989].ObjState, kNoObject);
}

TEST_F(XrefSectionTest, TheObjectCountNeverShrinks) {
  State.DocObjectCount(1) = 10;
  EXPECT_TRUE(Read("xref\n0 2\n" + kFree + kUsed + kTrailer).SectionOk);
  EXPECT_EQ(State.DocObjectCount(1), 10);
  EXPECT_EQ(State.Objects.UpperBound(), 9);
}

TEST_F(XrefSectionTest, ATableThatIsNotAllocatedFailsTheSection) {
  State.Objects.Reset(0);
  EXPECT_FALSE(Read("xref\n0 1\n" + kFree + kTrailer).SectionOk);
  EXPECT_EQ(State.Failure.Rule, "the object table cannot grow");
}

// The entries.

TEST_F(XrefSectionTest, AMalformedEntryFailsTheSection) {
  for (const char* line : {
           "000000017 00000 n  ",  // nine digits of offset
           "00000000017 00000 n",  // eleven
           "0000000017 0000 n  ",  // four digits of generation
           "0000000017 000000 n",  // six
           "0000000017 00000",     // no keyword
           "0000000017 00000  ",   // nothing but spaces for it
           "0000000017 00000n ",   // the keyword beside the generation
           " 0000000017 00000 n",  // indented
           "x000000017 00000 n",   // no number
           "0000000017 x0000 n",   //
           "0000000017\t00000 n",  // tabs separate nothing
           "0000000017 00000\tn",  //
           "2147483647 00000 n",   // beyond 32 bits
           "0000000017 n 00000",   //
           "<</Size 2>>",          // no entry at all
       }) {
    ExpectEntryRefused(line);
  }
}

TEST_F(XrefSectionTest, AnEntryLineOf17CharactersIsRefusedAndOneOf18Accepted) {
  EXPECT_TRUE(ReadEntry("0000000017 00000 n\n").SectionOk);
  ExpectEntryRefused("0000000017 00000 ");
}

TEST_F(XrefSectionTest, TheKeywordOfAnEntryIsNotChecked) {
  ASSERT_TRUE(ReadEntry("0000000017 00000 xyz\n").SectionOk);
  EXPECT_EQ(State.Objects[1].EntryType, 'x');
}

TEST_F(XrefSectionTest, ExtraSpacesBetweenTheFieldsAreFine) {
  ASSERT_TRUE(ReadEntry("0000000017   00003   n   \n").SectionOk);
  EXPECT_EQ(State.Objects[1].Generation, 3);
  EXPECT_EQ(State.Objects[1].EntryType, 'n');
}

TEST_F(XrefSectionTest, EveryLineEndIsUnderstood) {
  for (const std::string end : {"\n", "\r", "\r\n", " \r", " \n"}) {
    ResetMergeState(State);
    const std::string bytes = "xref" + end + "0 2" + end + "0000000000 65535 f" + end + "0000000017 00000 n" +
                              end + "trailer" + end + "<</Size 2>>" + end + "startxref" + end;
    EXPECT_TRUE(Read(bytes).SectionOk);
  }
}

TEST_F(XrefSectionTest, AFileThatEndsWithinTheEntriesFails) {
  EXPECT_FALSE(Read("xref\n0 3\n" + kFree + kUsed).SectionOk);
  EXPECT_EQ(State.Failure.Rule, "the file ends here instead of a cross-reference entry");
  EXPECT_EQ(State.Failure.ObjectNumber, 2);
}

TEST_F(XrefSectionTest, EntriesBeforeAFailureStay) {
  EXPECT_FALSE(Read("xref\n0 3\n" + kFree + kUsed + "broken\n" + kTrailer).SectionOk);
  EXPECT_EQ(State.Objects[1].ObjState, kListed);
  EXPECT_EQ(State.Objects[1].OutOffset, 17);
  EXPECT_EQ(State.Objects[2].ObjState, kNoObject);
  EXPECT_EQ(State.DocObjectCount(1), 3);
}

TEST_F(XrefSectionTest, ANewerSectionWinsOverAnOlderOne) {
  const std::string newer = "xref\n1 1\n0000000100 00002 n \n" + kTrailer;
  const std::string older = "xref\n0 2\n" + kFree + "0000000200 00001 n \n" + kTrailer;
  Open(1, newer + older);
  EXPECT_TRUE(Reader.ReadXrefSection(1, 0).SectionOk);
  EXPECT_TRUE(Reader.ReadXrefSection(1, static_cast<std::int32_t>(newer.size())).SectionOk);
  EXPECT_EQ(State.Objects[1].OutOffset, 100);
  EXPECT_EQ(State.Objects[1].Generation, 2);
  EXPECT_EQ(State.Objects[0].Generation, 65535);
}

TEST_F(XrefSectionTest, ANewerSectionWinsAlsoWhenItFreesTheObject) {
  const std::string newer = "xref\n4 1\n0000000000 65535 f \n" + kTrailer;
  const std::string older = "xref\n4 1\n0000000200 00000 n \n" + kTrailer;
  Open(1, newer + older);
  EXPECT_TRUE(Reader.ReadXrefSection(1, 0).SectionOk);
  EXPECT_TRUE(Reader.ReadXrefSection(1, static_cast<std::int32_t>(newer.size())).SectionOk);
  EXPECT_EQ(State.Objects[4].EntryType, 'f');
  EXPECT_EQ(State.Objects[4].Generation, 65535);
}

TEST_F(XrefSectionTest, APlaceTakenByAnotherObjectFailsTheSection) {
  State.DocObjectCount(1) = 2;
  ASSERT_TRUE(Reader.GrowObjectTable(1));
  State.Objects[1].ObjState = kListed;
  State.Objects[1].ObjNumber = 5;
  EXPECT_FALSE(Read("xref\n0 2\n" + kFree + kUsed + kTrailer).SectionOk);
  EXPECT_EQ(State.Failure.ObjectNumber, 1);
  EXPECT_EQ(State.Failure.Rule, "two objects claim one place in the object table");
  EXPECT_EQ(State.Objects[1].OutOffset, -1);
}

TEST_F(XrefSectionTest, TheSecondInputsObjectsFollowTheFirstOnes) {
  ASSERT_TRUE(Read("xref\n0 2\n" + kFree + kUsed + kTrailer).SectionOk);
  ASSERT_TRUE(Read("xref\n0 3\n" + kFree + Repeat("0000000099 00001 n \n", 2) + kTrailer, 2).SectionOk);
  EXPECT_EQ(State.Objects.UpperBound(), 4);
  EXPECT_EQ(State.Objects[1].OutOffset, 17);
  EXPECT_EQ(State.Objects[1].DocNo, 1);
  EXPECT_EQ(State.Objects[2].ObjNumber, 0);
  EXPECT_EQ(State.Objects[4].ObjNumber, 2);
  EXPECT_EQ(State.Objects[4].OutOffset, 99);
  EXPECT_EQ(State.Objects[4].DocNo, 2);
}

// The caption.

TEST_F(XrefSectionTest, TheCaptionShowsTheFirstAndTheLastObjectNumber) {
  std::vector<std::string> captions;
  Shell.SetStatusText(0, "Pass #1+");
  Shell.OnStatus = [&](int line) { captions.push_back(Shell.StatusText(line)); };
  ASSERT_TRUE(Read("xref\n3 4\n" + Repeat(kUsed, 4) + kTrailer).SectionOk);
  EXPECT_EQ(captions, (std::vector<std::string>{"Pass #1+3-3", "Pass #1+3-6"}));
}

TEST_F(XrefSectionTest, TheCaptionChangesEvery7738Entries) {
  std::vector<std::string> captions;
  Shell.OnStatus = [&](int line) { captions.push_back(Shell.StatusText(line)); };
  ASSERT_TRUE(Read("xref\n0 15478\n" + Repeat(kUsed, 15478) + kTrailer).SectionOk);
  EXPECT_EQ(captions, (std::vector<std::string>{"0-0", "0-7738", "0-15476", "0-15477"}));
}

TEST_F(XrefSectionTest, TheSecondInputHasItsOwnCaption) {
  std::set<int> lines;
  Shell.OnStatus = [&](int line) { lines.insert(line); };
  ASSERT_TRUE(Read("xref\n0 1\n" + kFree + kTrailer, 2).SectionOk);
  EXPECT_EQ(lines, std::set<int>{1});
}

// Long lines, a broken disk, many entries.

TEST_F(XrefSectionTest, AHeaderLineOf100000BytesIsReadAndOneMoreFails) {
  EXPECT_TRUE(Read("0" + std::string(99998, ' ') + "1\n" + kFree + kTrailer).SectionOk);
  EXPECT_FALSE(Read("0" + std::string(99999, ' ') + "1\n" + kFree + kTrailer).SectionOk);
  EXPECT_EQ(State.Failure.Rule,
            "a line is longer than 100000 bytes or has no end instead of the header of a cross-reference "
            "subsection");
  EXPECT_EQ(State.Failure.FileOffset, 0);
}

TEST_F(XrefSectionTest, AReadErrorIsToldInTheSystemsWords) {
  Open(1, "xref\n0 1\n" + kFree + kTrailer);
  System.Decide = testing::FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_FALSE(Reader.ReadXrefSection(1, 0).SectionOk);
  EXPECT_EQ(State.Failure.Rule.find("the file cannot be read: "), 0U);
  EXPECT_NE(State.Failure.Rule.find("nput/output error"), std::string::npos);
}

TEST_F(XrefSectionTest, TheMostEntriesAreReadQuickly) {
  Open(1, "xref\n0 350000\n" + kFree + Repeat(kUsed, 349999) + kTrailer);
  const double begin = ProcessorSeconds();
  EXPECT_TRUE(Reader.ReadXrefSection(1, 0).SectionOk);
  EXPECT_LT(ProcessorSeconds() - begin, 20);
  EXPECT_EQ(State.Objects[349999].OutOffset, 17);
}

}  // namespace
}  // namespace folioweld
