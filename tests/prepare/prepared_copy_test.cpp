#include "prepare/prepared_copy.h"

#include <gmock/gmock.h>

#include "tests/prepare/prepare_fixture.h"

namespace folioweld {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::OnePage;
using testing::SimpleDocument;

class PreparedCopy : public testing::PrepareFixture {};

TEST_F(PreparedCopy, OfACompressedDocumentHoldsItsObjects) {
  const std::string copy = Copied(Compressed(SimpleDocument(2)));
  EXPECT_THAT(copy, AllOf(HasSubstr("/Type /Catalog"), HasSubstr("/Count 2"), HasSubstr("trailer\n<<")));
  EXPECT_THAT(copy, AllOf(Not(HasSubstr("ObjStm")), Not(HasSubstr("/XRef"))));
  EXPECT_THAT(system_.Take(), HasSubstr("in.pdf: prepared: cross-reference stream\n"));
}

TEST_F(PreparedCopy, IsTheSameEveryTime) {
  const std::string document = Compressed(SimpleDocument(3));
  EXPECT_EQ(Copied(document), Copied(document));
}

TEST_F(PreparedCopy, KeepsTheBytesOfAStreamAndGivesTheirLength) {
  const std::string data("x\r\n\n \t\0endobj", 13);
  auto document = OnePage("/Contents 4 0 R");
  document.Stream(4, "/Filter /Unknown", data, "5 0 R").Object(5, "13");
  EXPECT_THAT(Copied(document.Build()),
              HasSubstr("<< /Length 13 /Filter /Unknown >>\nstream\n" + data + "\nendstream\nendobj\n"));
}

TEST_F(PreparedCopy, GivesDirectlyWhatTheEngineDoesNotTakeForAnObject) {
  auto document = OnePage("/A 4 0 R /B 5 0 R /C 6 0 R /D 7 0 R /E 8 0 R /F [ 7 0 R 8 0 R ]");
  document.Object(4, "true").Object(5, "-1").Object(6, "2.5").Object(7, "null").Object(8, "/Name");
  EXPECT_THAT(Copied(document.Build()),
              HasSubstr("<< /A true /B -1 /C 2.5 /E /Name /F [ null /Name ] /MediaBox"));
}

TEST_F(PreparedCopy, TakesADanglingReferenceForNull) {
  EXPECT_THAT(Copied(OnePage("/A [ 99 0 R ] /B 98 0 R").Build()), HasSubstr("<< /A [ null ] /MediaBox"));
}

TEST_F(PreparedCopy, WritesAValueWhereItIsReferredToOnce) {
  auto document = OnePage("/A [ 4 0 R ] /B 5 0 R /C 5 0 R /D 6 0 R");
  document.Object(4, "<< /X [ 1 ] >>").Object(5, "[ 2 ]").Object(6, "<< /Parent 3 0 R >>");
  const std::string copy = Copied(document.Build());
  EXPECT_THAT(copy, HasSubstr("/A [ << /X [ 1 ] >> ] /B 4 0 R /C 4 0 R /D 5 0 R"));
  EXPECT_THAT(copy, AllOf(HasSubstr("4 0 obj\n[ 2 ]\n"), HasSubstr("5 0 obj\n<< /Parent 3 0 R >>\n")));
}

TEST_F(PreparedCopy, KeepsADictionaryOfStreamsAnObject) {
  auto document = OnePage("/A 4 0 R");
  document.Object(4, "<< /Off 5 0 R /Yes 6 0 R >>").Stream(5, "", "no").Stream(6, "", "yes");
  EXPECT_THAT(Copied(document.Build()), HasSubstr("4 0 obj\n<< /Off 5 0 R /Yes 6 0 R >>"));
}

TEST_F(PreparedCopy, PutsNoEndlessChainOfValuesIntoEachOther) {
  auto document = OnePage("/A 4 0 R");
  constexpr int kLast = 2000;
  for (int i = 4; i < kLast; ++i) document.Object(i, "[ " + std::to_string(i + 1) + " 0 R ]");
  document.Object(kLast, "(end)");
  EXPECT_THAT(Copied(document.Build()), AllOf(HasSubstr("(end)"), Not(HasSubstr("[ [ [ [ [ [ [ [ [ ["))));
}

TEST_F(PreparedCopy, OfManyLinksHoldsThemInTheirPage) {
  std::string links;
  for (int i = 4; i < 17'000; ++i) links += std::to_string(i) + " 0 R ";
  auto document = OnePage("/Annots [ " + links + "]");
  for (int i = 4; i < 17'000; ++i) document.Object(i, "<< /Subtype /Link /Rect [ 0 0 1 1 ] >>");
  EXPECT_THAT(Copied(document.Build()), HasSubstr("xref\n0 4\n"));
  EXPECT_THAT(system_.Take(), HasSubstr("did: 3 objects written, 16996 put where they were referred to\n"));
}

TEST_F(PreparedCopy, SaysNothingOfDamageThatNothingRefersTo) {
  auto document = OnePage("/A 6 0 R");
  document.Object(4, "<< /Broken", 0).Object(5, "<< /A 1 /A 2 >>").Object(6, "<< /A 1 >>");
  document.TrailerExtra("/Info 6 0 R");
  Copied(document.Build());
}

TEST_F(PreparedCopy, LeavesOutWhatNothingRefersTo) {
  auto document = OnePage("");
  document.Object(4, "(nobody)");
  EXPECT_THAT(Copied(document.Build()), Not(HasSubstr("nobody")));
}

TEST_F(PreparedCopy, HasGenerationsOfZeroOnly) {
  auto document = OnePage("/A [ 4 7 R 4 7 R ]");
  document.Object(4, "[ (x) ]", 7);
  EXPECT_THAT(Copied(document.Build()),
              AllOf(HasSubstr("/A [ 4 0 R 4 0 R ]"), HasSubstr("4 0 obj\n[ (x) ]")));
}

TEST_F(PreparedCopy, HasTheHigherVersionOfHeaderAndCatalog) {
  EXPECT_EQ(Copied(OnePage("", "/Version /1.6").Build()).substr(0, 9), "%PDF-1.6\n");
  EXPECT_EQ(Copied(OnePage("", "/Version /1.2").Build()).substr(0, 9), "%PDF-1.4\n");
}

TEST_F(PreparedCopy, HasAnInformationDictionaryThatIsNothingElse) {
  auto document = OnePage("/A 4 0 R");
  document.Object(4, "<< /Title (both) /Parent 3 0 R >>").TrailerExtra("/Info 4 0 R");
  const std::string copy = Copied(document.Build());
  EXPECT_THAT(copy, AllOf(HasSubstr("4 0 obj\n<< /Parent 3 0 R /Title (both) >>"),
                          HasSubstr("5 0 obj\n<< /Parent 3 0 R /Title (both) >>"), HasSubstr("/Info 5 0 R")));
}

TEST_F(PreparedCopy, HasNoInformationDictionaryWhereAnotherObjectIsNamed) {
  EXPECT_EQ(Run(OnePage("").TrailerExtra("/Info 1 0 R").Build()), kCopyRepaired);
  EXPECT_THAT(testing::ReadFile(Out()), Not(HasSubstr("/Info")));
  EXPECT_THAT(system_.Take(),
              HasSubstr("repaired: /Info, which names no information dictionary, was left out\n"));
}

TEST_F(PreparedCopy, KeepsAStringOverLinesAsItWas) {
  EXPECT_THAT(Copied(OnePage("/A (one  \r\n\r\ntwo\\\r\nthree)").Build()),
              HasSubstr("/A (one  \\012\\012twothree)"));
}

TEST_F(PreparedCopy, TellsOfSignaturesRevisionsAndEntriesOfTheTrailer) {
  auto document = OnePage("/A 4 0 R");
  document.Object(4, "<< /ByteRange [ 0 1 2 3 ] /Contents <00> >>").EndRevision();
  document.Object(5, "[ ]").TrailerExtra("/Mine (x)");
  Copied(document.Build());
  EXPECT_THAT(system_.Take(), AllOf(HasSubstr("lost: the validity of 1 signature\n"),
                                    HasSubstr("lost: its earlier revisions\n"),
                                    HasSubstr("lost: the trailer's entry /Mine\n")));
}

TEST_F(PreparedCopy, OfALinearizedDocumentLosesNoRevision) {
  const std::string document =
      Rewritten(SimpleDocument(2), [](QPDFWriter& writer) { writer.setLinearization(true); });
  Copied(document);
  EXPECT_THAT(system_.Take(), AllOf(HasSubstr("linearization"), Not(HasSubstr("revisions"))));
}

}  // namespace
}  // namespace folioweld
