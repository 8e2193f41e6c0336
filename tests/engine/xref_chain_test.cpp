// Pass #1 of an input: the chain of cross-reference sections.

#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

class XrefChainTest : public ::testing::Test {
 protected:
  MergeState& State() { return run_.State; }

  /// Opens the bytes in the slot, accepts them and walks their chain.
  bool Walk(std::int16_t slot, const std::string& bytes) {
    ResetMergeState(State());
    return WalkOn(slot, bytes);
  }

  bool WalkOn(std::int16_t slot, const std::string& bytes) {
    State().DocUsed(slot) = true;
    State().DocFileNumber(slot) = run_.Files.OpenForBinaryRead(run_.Folder.Write("in", bytes));
    std::int32_t result = -1;
    PassFailure why;
    CheckDocumentStructure(State(), run_.Files, State().DocFileNumber(slot), slot, result, why);
    EXPECT_GT(result, 0) << why.Rule;
    bool ok = false;
    run_.Job.ReadXrefChain(slot, ok);
    return ok;
  }

  /// Three revisions of a document of four objects; the second names another catalog and information.
  static std::string ThreeRevisions() {
    return DocumentBuilder()
        .Object(1, "<</Type/Catalog>>")
        .Object(2, "<<>>")
        .Object(3, "<<>>")
        .Trailer("/Size 4/Root 1 0 R/Info 2 0 R")
        .EndRevision()
        .Object(2, "<</Second 1>>")
        .Trailer("/Size 4/Root 2 0 R/Info 3 0 R")
        .EndRevision()
        .Object(3, "<</Third 1>>")
        .Trailer("/Size 4")
        .Build();
  }

  /// The objects of one revision and a trailer of the test's own, whose /Prev leads where it says.
  static std::string WithTrailer(const std::string& trailer) {
    return DocumentBuilder().Object(1, "<<>>").Object(2, "<<>>").Trailer(trailer).Build();
  }

  void ExpectFailure(const std::string& rule, std::int16_t slot = 1) {
    EXPECT_EQ(State().Failure.Rule, rule);
    EXPECT_EQ(State().Failure.DocumentSlot, slot);
  }

  MergeRun run_;
};

TEST_F(XrefChainTest, ReadsEverySectionFromTheNewestAlongPrev) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(State().DocXrefCount(1), 3);
  EXPECT_EQ(State().DocXrefStart(1), -1) << "the walk has ended";
  EXPECT_EQ(State().DocObjectCount(1), 4);
  EXPECT_EQ(State().Objects.UpperBound(), 3);
}

TEST_F(XrefChainTest, TakesTheCatalogAndTheInformationOfTheNewestTrailerThatHasThem) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(State().DocRootNumber(1), 2);
  EXPECT_EQ(State().DocInfoNumber(1), 3);
}

TEST_F(XrefChainTest, KeepsTheFieldsOfTheNewestSectionAtIndexZero) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(State().TrailerSize(1, 0), 4);
  EXPECT_EQ(State().TrailerRoot(1, 0), -1);
  EXPECT_EQ(State().TrailerInfo(1, 0), -1);
  EXPECT_EQ(State().TrailerEncrypt(1, 0), -1);
  EXPECT_EQ(State().TrailerId(1, 0), "");
  EXPECT_GT(State().TrailerPrev(1, 0), 0);
  EXPECT_GE(State().TrailerEntry(1, 0), 0);
  EXPECT_EQ(State().TrailerFirstLine(1, 0), 0);
  EXPECT_GE(State().TrailerLastLine(1, 0), 0);
}

TEST_F(XrefChainTest, KeepsTheFieldsOfTheOldestSectionAtTheLastIndex) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(State().TrailerSize(1, 2), 4);
  EXPECT_EQ(State().TrailerRoot(1, 2), 1);
  EXPECT_EQ(State().TrailerInfo(1, 2), 2);
  EXPECT_EQ(State().TrailerPrev(1, 2), -1);
  EXPECT_EQ(State().TrailerLastLine(1, 2), State().PageKidsCount - 1);
}

TEST_F(XrefChainTest, EveryGrowthClearsTheSectionsBetweenTheNewestAndTheLast) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(State().TrailerSize(1, 1), -1);
  EXPECT_EQ(State().TrailerRoot(1, 1), -1);
  EXPECT_EQ(State().TrailerEntry(1, 1), -1);
  EXPECT_EQ(State().DocRootNumber(1), 2) << "what was taken from it stays";
}

TEST_F(XrefChainTest, AGrowthAfterALongerFirstChainClearsEverySectionOfTheSecondOne) {
  DocumentBuilder first;
  first.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  for (int i = 1; i < 3; ++i) first.Object(2, "<<>>").EndRevision();
  DocumentBuilder second;
  second.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  for (int i = 1; i < 5; ++i) second.Object(2, "<<>>").EndRevision();
  ASSERT_TRUE(Walk(1, first.Build()));
  ASSERT_TRUE(WalkOn(2, second.Build()));
  EXPECT_EQ(State().TrailerSize.UpperBound(), 4);
  for (std::int32_t section = 1; section < 4; ++section) {
    EXPECT_EQ(State().TrailerSize(2, section), -1) << section;
    EXPECT_EQ(State().TrailerFirstLine(2, section), -1) << section;
  }
  EXPECT_EQ(State().TrailerSize(2, 0), 3);
  EXPECT_EQ(State().TrailerSize(2, 4), 3);
}

TEST_F(XrefChainTest, AShorterSecondChainKeepsItsSections) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  ASSERT_TRUE(WalkOn(2, ThreeRevisions()));
  EXPECT_EQ(State().TrailerSize(2, 1), 4);
  EXPECT_EQ(State().TrailerRoot(2, 1), 2);
}

TEST_F(XrefChainTest, KeepsTheIdentifierAndTheEncryptionReference) {
  ASSERT_TRUE(Walk(1, WithTrailer("/Size 3/Root 1 0 R/ID[<01><02>]/Encrypt 2 0 R")));
  EXPECT_EQ(State().TrailerId(1, 0), "[<01><02>]");
  EXPECT_EQ(State().TrailerEncrypt(1, 0), 2);
}

TEST_F(XrefChainTest, ObjectsOfNewerSectionsAreNotOverwritten) {
  DocumentBuilder builder;
  builder.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  builder.Object(2, "<</New 1>>");
  const std::string bytes = builder.Build();
  ASSERT_TRUE(Walk(1, bytes));
  EXPECT_EQ(State().Objects[2].OutOffset, builder.OffsetOf(2));
}

TEST_F(XrefChainTest, AppendsAPlusForEverySection) {
  run_.Shell.SetStatusText(0, "start ");
  run_.Shell.Events.clear();
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(run_.Shell.Events.front(), "0|start +");
  EXPECT_EQ(CountOf(run_.Status(0), "+"), 3);
  EXPECT_EQ(run_.Status(1), "");
}

TEST_F(XrefChainTest, TheSecondInputsSectionsGoToTheirOwnSlotBehindTheFirstOnes) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  const std::int32_t lines = State().PageKidsCount;
  ASSERT_TRUE(WalkOn(2, WithTrailer("/Size 3/Root 2 0 R")));
  EXPECT_EQ(State().DocXrefCount(2), 1);
  EXPECT_EQ(State().DocRootNumber(2), 2);
  EXPECT_EQ(State().DocInfoNumber(2), -1);
  EXPECT_EQ(State().PageKidsLast, lines) << "where the second document's trailer lines begin";
  EXPECT_EQ(State().Objects.UpperBound(), 6);
  EXPECT_EQ(State().TrailerRoot(2, 0), 2);
  EXPECT_EQ(State().TrailerRoot(1, 2), 1);
}

TEST_F(XrefChainTest, TheFirstInputLeavesTheMarkOfTheSecondsTrailerLinesAlone) {
  ASSERT_TRUE(Walk(1, ThreeRevisions()));
  EXPECT_EQ(State().PageKidsLast, -1);
}

TEST_F(XrefChainTest, AGrowthClearsTheFieldsOfTheDocumentBeingRead) {
  ASSERT_TRUE(Walk(1, WithTrailer("/Size 3")));
  ASSERT_TRUE(WalkOn(2, ThreeRevisions()));
  EXPECT_EQ(State().TrailerSize.UpperBound(), 2);
  EXPECT_EQ(State().TrailerSize(1, 1), 0) << "the other slots keep fresh cells";
  EXPECT_EQ(State().TrailerSize(2, 2), 4);
}

TEST_F(XrefChainTest, ASizeLargerThanTheNewestSectionGrowsTheObjectTable) {
  DocumentBuilder builder;
  builder.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  builder.Object(1, "<</New 1>>");
  ASSERT_TRUE(Walk(1, builder.Build()));
  EXPECT_EQ(State().DocObjectCount(1), 3);
  EXPECT_EQ(State().Objects.UpperBound(), 2);
}

TEST_F(XrefChainTest, ANewestTrailerWithoutASizeFails) {
  EXPECT_FALSE(Walk(1, WithTrailer("/Root 1 0 R")));
  ExpectFailure("the newest trailer gives no /Size above 0");
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 0/Root 1 0 R")));
  ExpectFailure("the newest trailer gives no /Size above 0");
}

TEST_F(XrefChainTest, ASizeBelowTheListedObjectsFails) {
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 2/Root 1 0 R")));
  ExpectFailure("the cross-reference table lists objects beyond the trailer's /Size of 2");
}

TEST_F(XrefChainTest, ASizeAboveTheLimitFailsWithoutATableOfThatSize) {
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 350001/Root 1 0 R")));
  ExpectFailure("the trailer's /Size is above 350000");
  EXPECT_LT(State().Objects.UpperBound(), 1000);
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 2147483646/Root 1 0 R")));
  ExpectFailure("the trailer's /Size is above 350000");
}

TEST_F(XrefChainTest, ASizeAtTheLimitIsTaken) {
  ASSERT_TRUE(Walk(1, WithTrailer("/Size 350000/Root 1 0 R")));
  EXPECT_EQ(State().DocObjectCount(1), 350000);
  EXPECT_EQ(State().Objects.UpperBound(), 349999);
}

TEST_F(XrefChainTest, AnOlderSizeAboveTheNewestFails) {
  EXPECT_FALSE(Walk(1, DocumentBuilder()
                           .Object(1, "<<>>")
                           .Object(2, "<<>>")
                           .Trailer("/Size 4/Root 1 0 R")
                           .EndRevision()
                           .Object(2, "<<>>")
                           .Trailer("/Size 3/Root 1 0 R")
                           .Build()));
  ExpectFailure("an older trailer's /Size is above the newest one's");
}

TEST_F(XrefChainTest, AnOlderSizeAboveTheNewestFailsInTheMiddleOfTheChainToo) {
  DocumentBuilder builder;
  builder.Object(1, "<<>>").Object(2, "<<>>").Trailer("/Size 3").EndRevision();
  builder.Object(2, "<<>>").Trailer("/Size 4").EndRevision();
  builder.Object(2, "<<>>").Trailer("/Size 3");
  EXPECT_FALSE(Walk(1, builder.Build()));
  ExpectFailure("an older trailer's /Size is above the newest one's");
}

TEST_F(XrefChainTest, AnOlderSizeBelowTheNewestIsTaken) {
  EXPECT_TRUE(Walk(1, DocumentBuilder()
                          .Object(1, "<<>>")
                          .Trailer("/Size 2/Root 1 0 R")
                          .EndRevision()
                          .Object(2, "<<>>")
                          .Trailer("/Size 3/Root 1 0 R")
                          .Build()));
}

TEST_F(XrefChainTest, AnOlderSectionThatListsObjectsBeyondTheNewestSizeFails) {
  EXPECT_FALSE(Walk(1, DocumentBuilder()
                           .Object(1, "<<>>")
                           .Object(2, "<<>>")
                           .Object(3, "<<>>")
                           .Trailer("/Root 1 0 R")
                           .EndRevision()
                           .Object(1, "<<>>")
                           .Trailer("/Size 2/Root 1 0 R")
                           .Build()));
  ExpectFailure("the cross-reference table lists objects beyond the trailer's /Size of 2");
}

TEST_F(XrefChainTest, APrevToTheSectionItselfFailsInsteadOfTurningForEver) {
  DocumentBuilder probe;
  probe.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  const std::string prev = std::to_string(probe.XrefOffset());
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 3/Root 1 0 R/Prev " + prev)));
  ExpectFailure("/Prev leads to a cross-reference section that was read already");
  EXPECT_EQ(CountOf(run_.Status(0), "+"), 2);
}

TEST_F(XrefChainTest, APrevBackToANewerSectionFails) {
  DocumentBuilder builder;
  builder.Object(1, "<<>>").Object(2, "<<>>").Trailer("/Size 3/Root 1 0 R/Prev ########").EndRevision();
  builder.Object(2, "<<>>").Trailer("/Size 3/Root 1 0 R");
  std::string bytes = builder.Build();
  std::string newest = std::to_string(builder.XrefOffset());
  newest.resize(8, ' ');
  bytes.replace(bytes.find("########"), 8, newest);
  EXPECT_FALSE(Walk(1, bytes));
  ExpectFailure("/Prev leads to a cross-reference section that was read already");
}

TEST_F(XrefChainTest, APrevIntoTheTrailerOfASectionThatWasReadFails) {
  DocumentBuilder probe;
  probe.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  // The second line of the section looks like a section of its own.
  const std::string prev = std::to_string(probe.XrefOffset() + 9);
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 3/Root 1 0 R/Prev " + prev)));
}

TEST_F(XrefChainTest, AnOlderSectionMayRunOnIntoANewerOne) {
  // Without an end of its own it takes the newer section's lines for its trailer.
  DocumentBuilder builder;
  const auto older = static_cast<long>(builder.Bytes().size());
  builder.Raw("xref\n0 1\n0000000000 65535 f \n").Object(1, "<<>>").Object(2, "<<>>");
  builder.Trailer("/Size 3/Root 1 0 R/Prev " + std::to_string(older));
  EXPECT_TRUE(Walk(1, builder.Build()));
  EXPECT_EQ(State().DocXrefCount(1), 2);
}

TEST_F(XrefChainTest, SectionsMayOverlap) {
  // The older one stands within the newer one's trailer.
  std::string trailer = "/Size 3/Root 1 0 R/Prev ########/Older\n0 1\n0000000000 65535 f \n<</Size 3>> ";
  std::string bytes = WithTrailer(trailer);
  const std::string offset = std::to_string(bytes.find("0 1\n0000000000"));
  bytes.replace(bytes.find("########"), 8, offset + std::string(8 - offset.size(), ' '));
  EXPECT_TRUE(Walk(1, bytes)) << State().Failure.Rule;
  EXPECT_EQ(State().DocXrefCount(1), 2);
}

/// A document whose sections all reach to its end, 1 MiB further on: each one's rest is a string to it.
std::string NestedSections(int count) {
  constexpr std::size_t kSectionSize = 100;
  const std::string start = "%PDF-1.4\n%abcd\n";
  std::string bytes = start;
  for (int i = 1; i <= count; ++i) {
    const auto next = start.size() + static_cast<std::size_t>(i) * kSectionSize;
    std::string section = "xref\n0 1\n0000000000 65535 f \ntrailer\n<</Size 1/Root 0 0 R";
    section += (i < count ? "/Prev " + std::to_string(next) : std::string()) + "/Rest(\n";
    bytes += section + std::string(kSectionSize - section.size(), '\n');
  }
  for (int i = 0; i < 1024; ++i) bytes += std::string(1023, 'x') + '\n';
  return bytes + ">>\nstartxref\n" + std::to_string(start.size()) + "\n%%EOF\n";
}

TEST_F(XrefChainTest, SectionsOfFourTimesTheFileAndSixteenMebibytesAreRead) {
  EXPECT_TRUE(Walk(1, NestedSections(19))) << State().Failure.Rule;
  EXPECT_EQ(State().DocXrefCount(1), 19);
}

TEST_F(XrefChainTest, LinesThatSectionsShareAreKeptOnce) {
  ASSERT_TRUE(Walk(1, NestedSections(1)));
  const std::int32_t lines = State().PageKidsCount;
  const std::int32_t rows = State().NameEntryCount;
  ASSERT_TRUE(Walk(1, NestedSections(19)));
  EXPECT_LT(State().PageKidsCount, lines + 19 * 4);
  EXPECT_EQ(State().NameEntryCount, rows + 1) << "with the newest one's /Prev";
  EXPECT_GE(State().TrailerEntry(1, 0), 0);
  EXPECT_EQ(State().DocXrefCount(1), 19);
  EXPECT_EQ(State().TrailerSize(1, 18), 1);
}

TEST_F(XrefChainTest, SectionsThatRunIntoEachOtherFail) {
  EXPECT_FALSE(Walk(1, NestedSections(40)));
  ExpectFailure("the cross-reference sections of the document run into each other");
  EXPECT_EQ(State().DocXrefCount(1), 19);
}

TEST_F(XrefChainTest, ACommentAfterTheTrailersDictionaryIsToldAsThat) {
  const std::string rule = "a comment follows the trailer's dictionary, which has to end with \">>\"";
  const std::string bytes = WithTrailer("/Size 3/Root 1 0 R");
  const std::size_t end = bytes.rfind(">>") + 2;
  for (const char* comment : {" % made by hand", "\n% made by hand", "\n%>\n%\n"}) {
    EXPECT_FALSE(Walk(1, bytes.substr(0, end) + comment + bytes.substr(end))) << comment;
    ExpectFailure(rule);
  }
  EXPECT_FALSE(Walk(1, bytes.substr(0, end) + " x" + bytes.substr(end)));
  ExpectFailure(
      "no dictionary follows the cross-reference table (tables of several subsections are not handled)");
}

TEST_F(XrefChainTest, APrevOfZeroEndsTheWalk) {
  EXPECT_TRUE(Walk(1, WithTrailer("/Size 3/Root 1 0 R/Prev 0")));
  EXPECT_EQ(State().DocXrefCount(1), 1);
}

TEST_F(XrefChainTest, APrevThatLeadsNowhereFails) {
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 3/Root 1 0 R/Prev 20")));
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 3/Root 1 0 R/Prev 999999")));
  EXPECT_EQ(State().Failure.DocumentSlot, 1);
}

TEST_F(XrefChainTest, OneHundredRevisionsAreRead) {
  DocumentBuilder builder;
  builder.Object(1, "<<>>").Object(2, "<<>>").EndRevision();
  for (int i = 1; i < 100; ++i) builder.Object(2, "<<>>").EndRevision();
  ASSERT_TRUE(Walk(1, builder.Build()));
  EXPECT_EQ(State().DocXrefCount(1), 100);
  EXPECT_EQ(State().TrailerSize(1, 99), 3);
}

TEST_F(XrefChainTest, ACancelAtAnyYieldFailsAndIsCalledACancel) {
  const std::string bytes = ThreeRevisions();
  for (long yield = 1;; ++yield) {
    State().AbortRequested = false;
    run_.Shell.Yields = 0;
    run_.Shell.OnYield = [&] {
      if (run_.Shell.Yields == yield) State().AbortRequested = true;
    };
    const bool ok = Walk(1, bytes);
    if (!State().AbortRequested) {
      EXPECT_TRUE(ok);
      return;
    }
    EXPECT_FALSE(ok) << yield;
    EXPECT_EQ(State().Failure.Rule, kCancelled) << yield;
  }
}

TEST_F(XrefChainTest, ACancelAfterTheLastSectionWasStoredIsSeen) {
  run_.Shell.OnYield = [&] {
    if (State().DocXrefCount(1) == 1) State().AbortRequested = true;
  };
  EXPECT_FALSE(Walk(1, WithTrailer("/Size 3/Root 1 0 R")));
  ExpectFailure(kCancelled);
}

TEST_F(XrefChainTest, AWalkWithoutASectionFails) {
  ResetMergeState(State());
  bool ok = true;
  run_.Job.ReadXrefChain(1, ok);
  EXPECT_FALSE(ok);
  ExpectFailure("no cross-reference section was found");
}

TEST_F(XrefChainTest, ASlotOutsideTheInputsFails) {
  bool ok = true;
  run_.Job.ReadXrefChain(4, ok);
  EXPECT_FALSE(ok);
}

}  // namespace
}  // namespace folioweld::testing
