// The scanners of the interface: groups in brackets, and texts without their comments.

#include <gtest/gtest.h>

#include "engine/conversions.h"
#include "tests/support/processor_time.h"
#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ProcessorSeconds;
using testing::Repeat;

TEST(PdfLookUpForSeparator, SkipsASlashInsideALiteralString) {
  EXPECT_EQ(PdfLookUpForSeparator("/A (x/y) /B", "/", 2), 10);
}

TEST(PdfLookUpForSeparator, SkipsAngleGroupsAndArrays) {
  EXPECT_EQ(PdfLookUpForSeparator("/A <x/y> /B", "/", 2), 10);
  EXPECT_EQ(PdfLookUpForSeparator("/A [x/y] /B", "/", 2), 10);
  EXPECT_EQ(PdfLookUpForSeparator("/A <</x/y>> /B", "/", 2), 13);
}

TEST(PdfLookUpForSeparator, FindsASeparatorAtTheStartItself) {
  EXPECT_EQ(PdfLookUpForSeparator("a/b", "/", 2), 2);
}

TEST(PdfLookUpForSeparator, GivesZeroWhenNoSeparatorIsLeft) {
  EXPECT_EQ(PdfLookUpForSeparator("/A 1 2", "/", 2), 0);
  EXPECT_EQ(PdfLookUpForSeparator("/A (/)", "/", 2), 0);
}

TEST(PdfLookUpForSeparator, ArgumentsThatCannotWorkGiveZero) {
  EXPECT_EQ(PdfLookUpForSeparator("a/b", "/", 0), 0);
  EXPECT_EQ(PdfLookUpForSeparator("a/b", "/", -3), 0);
  EXPECT_EQ(PdfLookUpForSeparator("a/b", "/", 4), 0);
  EXPECT_EQ(PdfLookUpForSeparator("", "/", 1), 0);
  EXPECT_EQ(PdfLookUpForSeparator("a/b", "", 1), 0);
}

TEST(PdfLookUpForSeparator, AStartOfOneIsAnInvalidArgumentOnPurpose) {
  EXPECT_THROW(static_cast<void>(PdfLookUpForSeparator("a/b", "/", 1)), InvalidScan);
}

TEST(PdfLookUpForSeparator, AGroupWithoutEndIsAnInvalidArgument) {
  EXPECT_THROW(static_cast<void>(PdfLookUpForSeparator("/A (x", "/", 2)), InvalidScan);
  EXPECT_THROW(static_cast<void>(PdfLookUpForSeparator("/A <x", "/", 2)), InvalidScan);
  EXPECT_THROW(static_cast<void>(PdfLookUpForSeparator("/A [x", "/", 2)), InvalidScan);
}

TEST(PdfLookUpForSeparator, AnOpeningBracketThatEndsTheTextGivesZero) {
  EXPECT_EQ(PdfLookUpForSeparator("/A (", "/", 2), 0);
  EXPECT_EQ(PdfLookUpForSeparator("/A <", "/", 2), 0);
  EXPECT_EQ(PdfLookUpForSeparator("/A [", "/", 2), 0);
}

TEST(PdfLookUpForSeparator, AnOpeningBracketIsASeparatorOnlyWhenEscaped) {
  EXPECT_EQ(PdfLookUpForSeparator("a(b)c", "(", 2), 0);
  EXPECT_EQ(PdfLookUpForSeparator("a\\(b", "(", 2), 3);
  EXPECT_EQ(PdfLookUpForSeparator("\\<b", "<", 2), 2);
  EXPECT_EQ(PdfLookUpForSeparator("\\[b", "[", 2), 2);
}

TEST(PdfLookUpForSeparator, ABracketAfterTwoBackslashesCountsAsEscapedToo) {
  EXPECT_EQ(PdfLookUpForSeparator("a\\\\(/", "/", 2), 5);
}

TEST(PdfLookUpForSeparator, AClosingBracketCanBeASeparator) {
  EXPECT_EQ(PdfLookUpForSeparator("a(b)c)", ")", 2), 6);
}

TEST(PdfLookUpForSeparator, SkipsGroupsThatStandSideBySide) {
  EXPECT_EQ(PdfLookUpForSeparator("a(x)(/)</>[/]/", "/", 2), 14);
}

TEST(FindLiteralStringEnd, FindsTheMatchingBracket) {
  EXPECT_EQ(FindLiteralStringEnd("(a(b)c)", 2), 7);
  EXPECT_EQ(FindLiteralStringEnd("(a\\)b)", 2), 6);
  EXPECT_EQ(FindLiteralStringEnd("()", 2), 2);
}

TEST(FindLiteralStringEnd, GivesZeroWithoutAnEnd) {
  EXPECT_EQ(FindLiteralStringEnd("(abc", 2), 0);
  EXPECT_EQ(FindLiteralStringEnd("(a(b)", 2), 0);
}

TEST(FindLiteralStringEnd, AnEscapedOpeningBracketDoesNotNest) {
  EXPECT_EQ(FindLiteralStringEnd("(a\\(b)", 2), 6);
}

TEST(FindLiteralStringEnd, ABracketAfterTwoBackslashesDoesNotCount) {
  EXPECT_EQ(FindLiteralStringEnd("(\\\\)x)", 2), 6);
}

TEST(FindGroupEnds, AStartThatCannotWorkGivesTheLengthPlusOne) {
  for (const auto find : {FindLiteralStringEnd, FindAngleGroupEnd, FindArrayEnd}) {
    EXPECT_EQ(find("(a)", 1), 4);
    EXPECT_EQ(find("(a)", 0), 4);
    EXPECT_EQ(find("(a)", -1), 4);
    EXPECT_EQ(find("(a)", 4), 4);
    EXPECT_EQ(find("", 2), 1);
  }
}

TEST(FindAngleGroupEnd, DictionariesNestThroughTheCountOfAngles) {
  EXPECT_EQ(FindAngleGroupEnd("<</A<</B 1>>>>", 2), 14);
  EXPECT_EQ(FindAngleGroupEnd("<ab>", 2), 4);
  EXPECT_EQ(FindAngleGroupEnd("<a\\>b>", 2), 6);
  EXPECT_EQ(FindAngleGroupEnd("<<a>", 2), 0);
}

TEST(FindArrayEnd, ArraysNest) {
  EXPECT_EQ(FindArrayEnd("[a[b]c]", 2), 7);
  EXPECT_EQ(FindArrayEnd("[a\\]b]", 2), 6);
  EXPECT_EQ(FindArrayEnd("[a[b]", 2), 0);
}

TEST(FindGroupEnds, OtherKindsOfBracketsAreNotTracked) {
  EXPECT_EQ(FindAngleGroupEnd("<a)(>", 2), 5);
  EXPECT_EQ(FindArrayEnd("[(])", 2), 3);
  EXPECT_EQ(FindLiteralStringEnd("([)", 2), 3);
}

TEST(CutAtComment, EndsBeforePercentOrLineEnd) {
  EXPECT_EQ(CutAtComment("a b%c"), "a b");
  EXPECT_EQ(CutAtComment("a\rb"), "a");
  EXPECT_EQ(CutAtComment("a\nb"), "a");
  EXPECT_EQ(CutAtComment("%"), "");
  EXPECT_EQ(CutAtComment(""), "");
  EXPECT_EQ(CutAtComment(" a "), " a ");
}

TEST(CutAtComment, AlsoCutsAPercentInsideAString) {
  EXPECT_EQ(CutAtComment("(50 % off)"), "(50 ");
}

TEST(CutCommentAndLeftTrim, LosesLeadingBlanksOnly) {
  EXPECT_EQ(CutCommentAndLeftTrim("  a %c"), "a ");
  EXPECT_EQ(CutCommentAndLeftTrim("  %c"), "");
  EXPECT_EQ(CutCommentAndLeftTrim("\ta"), "\ta");
  EXPECT_EQ(CutCommentAndLeftTrim("\ra"), "");
}

TEST(CutCommentAndTrim, LosesBlanksAtBothEnds) {
  EXPECT_EQ(CutCommentAndTrim("  a b %c"), "a b");
  EXPECT_EQ(CutCommentAndTrim("  %c"), "");
}

TEST(Scanners, AMillionNestedBracketsTakeNoTime) {
  constexpr int kDeep = 1000000;
  const double begin = ProcessorSeconds();
  const std::string nested = Repeat("[", kDeep) + Repeat("]", kDeep);
  EXPECT_EQ(FindArrayEnd(nested, 2), 2 * kDeep);
  EXPECT_EQ(PdfLookUpForSeparator("x" + nested + "/", "/", 2), 2 * kDeep + 2);
  EXPECT_EQ(FindLiteralStringEnd(Repeat("(", kDeep), 2), 0);
  EXPECT_LT(ProcessorSeconds() - begin, 5);
}

}  // namespace
}  // namespace folioweld
