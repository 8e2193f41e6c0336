// From the last entry of a section to "startxref": the trailer's lines and what they say.

#include <gtest/gtest.h>
#include <vector>

#include "tests/support/processor_time.h"
#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ProcessorSeconds;
using testing::ReaderSetup;
using testing::Repeat;

const std::string kOneEntry = "xref\n0 1\n0000000000 65535 f \n";

class TrailerTest : public ::testing::Test, public ReaderSetup {
 protected:
  XrefSectionInfo Read(const std::string& afterEntries) { return ReadSection(1, kOneEntry + afterEntries); }

  XrefSectionInfo ReadEntries(const std::string& entries) {
    return Read("trailer\n<<" + entries + ">>\nstartxref\n0\n");
  }

  [[nodiscard]] std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    for (std::int32_t i = 0; i < State.PageKidsCount; ++i) lines.push_back(State.PageKids[i]);
    return lines;
  }
};

// The lines.

TEST_F(TrailerTest, EveryLineUpToStartxrefIsKept) {
  const XrefSectionInfo info = Read("trailer\n<<\n/Size 1\n>>\nstartxref\n0\n%%EOF\n");
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(Lines(), (std::vector<std::string>{"<<", "/Size 1", ">>"}));
  EXPECT_EQ(info.TrailerFirstLine, 0);
  EXPECT_EQ(info.TrailerLastLine, 2);
}

TEST_F(TrailerTest, FurtherSectionsAppendTheirLines) {
  static_cast<void>(ReadEntries("/Size 1"));
  const XrefSectionInfo info = Read("trailer\n<<\n/Size 2>>\nstartxref\n");
  EXPECT_EQ(info.TrailerFirstLine, 1);
  EXPECT_EQ(info.TrailerLastLine, 2);
  EXPECT_EQ(info.TrailerSize, 2);
}

TEST_F(TrailerTest, ATrailerOnTheKeywordsLineIsLost) {
  const XrefSectionInfo info = Read("trailer<</Size 1>>\nstartxref\n0\n");
  EXPECT_FALSE(info.SectionOk);
  EXPECT_EQ(info.TrailerFirstLine, -1);
  EXPECT_EQ(info.FirstObject, -1);
  EXPECT_EQ(info.EntryCount, -1);
  EXPECT_EQ(State.PageKidsCount, 0);
  EXPECT_EQ(State.Failure.DocumentSlot, 1);
  EXPECT_EQ(State.Failure.FileOffset, 48);
  EXPECT_NE(State.Failure.Rule.find("the trailer holds no line of its own"), std::string::npos);
}

TEST_F(TrailerTest, OnlyTheRestOfALineThatBeginsWithTheKeywordIsLost) {
  const XrefSectionInfo info = Read("trailer <<\n/Size 1\ntrailers\n>>\nstartxref\n");
  EXPECT_EQ(Lines(), (std::vector<std::string>{"/Size 1", ">>"}));
  // What is left begins without "<<" and is no dictionary.
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.TrailerEntry, -1);
  EXPECT_EQ(info.TrailerSize, -1);
}

TEST_F(TrailerTest, TheKeywordsAreLookedForAtTheFirstColumnOnly) {
  static_cast<void>(Read(" trailer\nTrailer\n startxref\nStartxref\n<<>>\nstartxref\n"));
  EXPECT_EQ(Lines(), (std::vector<std::string>{" trailer", "Trailer", " startxref", "Startxref", "<<>>"}));
}

TEST_F(TrailerTest, ALineThatOnlyBeginsWithStartxrefEndsTheTrailer) {
  const XrefSectionInfo info = Read("trailer\n<</Size 1>>\nstartxref123\n<</Size 2>>\n");
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.TrailerSize, 1);
  EXPECT_EQ(State.PageKidsCount, 1);
}

TEST_F(TrailerTest, ASecondSubsectionIsTakenAsTrailerText) {
  const XrefSectionInfo info =
      Read("3 1\n0000000017 00000 n \ntrailer\n<</Size 4/Root 3 0 R>>\nstartxref\n0\n");
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(Lines(), (std::vector<std::string>{"3 1", "0000000017 00000 n ", "<</Size 4/Root 3 0 R>>"}));
  EXPECT_EQ(info.EntryCount, 1);
  EXPECT_EQ(State.DocObjectCount(1), 1);
  // Joined with the dictionary they are no dictionary any more.
  EXPECT_EQ(info.TrailerEntry, -1);
  EXPECT_EQ(info.TrailerSize, -1);
  EXPECT_EQ(info.TrailerRoot, -1);
}

TEST_F(TrailerTest, ASectionWithoutStartxrefFails) {
  const XrefSectionInfo info = Read("trailer\n<</Size 1>>\n");
  EXPECT_FALSE(info.SectionOk);
  EXPECT_EQ(info.FirstObject, -1);
  EXPECT_EQ(State.Failure.Rule, "the file ends here instead of the end of the trailer (\"startxref\")");
  EXPECT_EQ(State.PageKidsCount, 1);
}

TEST_F(TrailerTest, ALineOf100000BytesIsReadAndOneMoreFails) {
  const std::string entries = "<</Size 1/X(";
  const std::string rest(100000 - entries.size() - 3, 'x');
  EXPECT_EQ(Read("trailer\n" + entries + rest + ")>>\nstartxref\n").TrailerSize, 1);
  EXPECT_FALSE(Read("trailer\n" + entries + rest + "x)>>\nstartxref\n").SectionOk);
  EXPECT_EQ(State.Failure.FileOffset, 37);
}

TEST_F(TrailerTest, ManyLinesAreReadQuickly) {
  const double begin = ProcessorSeconds();
  const XrefSectionInfo info =
      Read("trailer\n<<\n" + Repeat("/A%\n(\n)\n[\n]\n", 200000) + ">>\nstartxref\n");
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.TrailerLastLine, 1000001);
  EXPECT_LT(ProcessorSeconds() - begin, 30);
}

// The dictionary.

TEST_F(TrailerTest, EveryKnownEntryIsTaken) {
  const XrefSectionInfo info =
      ReadEntries("/Size 6/Root 1 0 R/Info 5 0 R/Prev 1234/Encrypt 4 0 R/ID[<ab> <cd>]/Other 9");
  EXPECT_EQ(info.TrailerSize, 6);
  EXPECT_EQ(info.TrailerRoot, 1);
  EXPECT_EQ(info.TrailerInfo, 5);
  EXPECT_EQ(info.TrailerPrev, 1234);
  EXPECT_EQ(info.TrailerEncrypt, 4);
  EXPECT_EQ(info.TrailerId, "[<ab> <cd>]");
  EXPECT_EQ(Row(info.TrailerEntry).NameText, "/Size");
}

TEST_F(TrailerTest, OtherKeysAreIgnored) {
  const XrefSectionInfo info = ReadEntries("/XSize 6/root 1 0 R/Inf 5 0 R/prev 1/Id(x)");
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.TrailerSize, -1);
  EXPECT_EQ(info.TrailerRoot, -1);
  EXPECT_EQ(info.TrailerInfo, -1);
  EXPECT_EQ(info.TrailerPrev, -1);
  EXPECT_EQ(info.TrailerEncrypt, -1);
  EXPECT_EQ(info.TrailerId, "");
}

TEST_F(TrailerTest, OnlyTheBeginningOfTheKeyIsCompared) {
  const XrefSectionInfo info =
      ReadEntries("/Sizes 6/RootOfAll 1 0 R/Information 5 0 R/Previous 12/Encryption 4 0 R/IDs(x)");
  EXPECT_EQ(info.TrailerSize, 6);
  EXPECT_EQ(info.TrailerRoot, 1);
  EXPECT_EQ(info.TrailerInfo, 5);
  EXPECT_EQ(info.TrailerPrev, 12);
  EXPECT_EQ(info.TrailerEncrypt, 4);
  EXPECT_EQ(info.TrailerId, "(x)");
}

TEST_F(TrailerTest, OfTwoEntriesTheLaterOneStays) {
  EXPECT_EQ(ReadEntries("/Size 6/Sizes 7").TrailerSize, 7);
  EXPECT_EQ(ReadEntries("/Size 6/Size x").TrailerSize, 6);
}

TEST_F(TrailerTest, NumbersAreTheValuesFirstWord) {
  EXPECT_EQ(ReadEntries("/Size 6 7").TrailerSize, 6);
  EXPECT_EQ(ReadEntries("/Prev 12 0 R").TrailerPrev, 12);
  EXPECT_EQ(ReadEntries("/Size -6").TrailerSize, -1);
  EXPECT_EQ(ReadEntries("/Size (6)").TrailerSize, -1);
  EXPECT_EQ(ReadEntries("/Size 2147483647").TrailerSize, -1);
  EXPECT_EQ(ReadEntries("/Size").TrailerSize, -1);
}

TEST_F(TrailerTest, AReferenceNeedsItsR) {
  EXPECT_EQ(ReadEntries("/Root 3 0 R").TrailerRoot, 3);
  EXPECT_EQ(ReadEntries("/Root 3 0").TrailerRoot, -1);
  EXPECT_EQ(ReadEntries("/Root 3 0 r").TrailerRoot, -1);
  EXPECT_EQ(ReadEntries("/Root (R)").TrailerRoot, -1);
  EXPECT_EQ(ReadEntries("/Root x 0 R").TrailerRoot, -1);
}

TEST_F(TrailerTest, AReferenceIsLongerThanTwoCharacters) {
  EXPECT_EQ(ReadEntries("/Root 3R").TrailerRoot, -1);
  EXPECT_EQ(ReadEntries("/Root 3 R").TrailerRoot, 3);
  EXPECT_EQ(ReadEntries("/Root 30R").TrailerRoot, 30);
}

TEST_F(TrailerTest, TheGenerationOfAReferenceIsIgnored) {
  EXPECT_EQ(ReadEntries("/Root 3 17 R").TrailerRoot, 3);
  EXPECT_EQ(ReadEntries("/Root 3 x R").TrailerRoot, 3);
}

TEST_F(TrailerTest, AKeyAtTheEndOfALineRunsIntoTheNextLine) {
  // Line ends are not put back, so "/Root" and "3 0 R" become "/Root3 0 R".
  const XrefSectionInfo info = Read("trailer\n<</Size 4\n/Root\n3 0 R\n>>\nstartxref\n");
  EXPECT_EQ(info.TrailerSize, 4);
  EXPECT_EQ(info.TrailerRoot, 0);
}

TEST_F(TrailerTest, AnEncryptionDictionaryInTheTrailerGivesNoNumber) {
  EXPECT_EQ(ReadEntries("/Encrypt <</Filter/Standard>>").TrailerEncrypt, -1);
}

TEST_F(TrailerTest, KeysOfNestedDictionariesDoNotCount) {
  EXPECT_EQ(ReadEntries("/X<</Size 9/Root 8 0 R>>/Size 2").TrailerSize, 2);
  EXPECT_EQ(ReadEntries("/X<</Root 8 0 R>>").TrailerRoot, -1);
}

TEST_F(TrailerTest, APercentInATrailerIsText) {
  const XrefSectionInfo info = Read("trailer\n<</Size 2 % objects\n/Root 1 0 R>>\nstartxref\n");
  EXPECT_EQ(info.TrailerSize, 2);
  EXPECT_EQ(info.TrailerRoot, 1);
}

TEST_F(TrailerTest, ATrailerThatIsNoDictionaryLeavesTheSummaryEmpty) {
  const XrefSectionInfo info = Read("trailer\nnothing\nstartxref\n");
  EXPECT_TRUE(info.SectionOk);
  EXPECT_EQ(info.TrailerEntry, -1);
  EXPECT_EQ(info.TrailerSize, -1);
}

}  // namespace
}  // namespace folioweld
