#include <gmock/gmock.h>

#include "tests/prepare/prepare_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::HasSubstr;

class PreparedPages : public testing::PrepareFixture {
 protected:
  /// A document whose root of the page tree has these entries; 3 and 4 are pages.
  static DocumentBuilder WithRoot(const std::string& entries) {
    DocumentBuilder document;
    document.Object(1, "<< /Type /Catalog /Pages 2 0 R >>");
    document.Object(2, "<< /Type /Pages " + entries + " >>");
    for (const int page : {3, 4})
      document.Object(page, "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 9 9 ] >>");
    return document;
  }
};

TEST_F(PreparedPages, AreCountedAnew) {
  EXPECT_EQ(Run(WithRoot("/Kids [ 3 0 R 4 0 R ] /Count 7").Build()), kCopyRepaired);
  EXPECT_THAT(testing::ReadFile(Out()), HasSubstr("/Count 2 "));
  EXPECT_THAT(system_.Take(), HasSubstr("repaired: /Count was wrong in 1 node of the page tree\n"));
}

TEST_F(PreparedPages, AreCountedAsOftenAsTheTreeLeadsToThem) {
  EXPECT_THAT(Copied(WithRoot("/Kids [ 3 0 R 3 0 R ] /Count 2").Build()),
              HasSubstr("/Count 2 /Kids [ 3 0 R 3 0 R ]"));
}

TEST_F(PreparedPages, BecomeObjectsWhereTheyStandInTheTree) {
  EXPECT_THAT(Copied(WithRoot("/Kids [ << /Type /Page /MediaBox [ 0 0 1 1 ] >> 3 0 R ] /Count 2").Build()),
              HasSubstr("/Kids [ 4 0 R 3 0 R ]"));
}

TEST_F(PreparedPages, DoNotIncludeKidsThatAreNoDictionaries) {
  EXPECT_EQ(Run(WithRoot("/Kids [ 3 0 R null 5 0 R (x) ] /Count 1").Build()), kCopyRepaired);
  EXPECT_THAT(testing::ReadFile(Out()), HasSubstr("/Kids [ 3 0 R ]"));
  EXPECT_THAT(system_.Take(),
              HasSubstr("repaired: 3 kids of the page tree, which are no pages, were taken out\n"));
}

TEST_F(PreparedPages, HaveARootWithoutAParent) {
  EXPECT_THAT(Copied(WithRoot("/Kids [ 3 0 R ] /Count 1 /Parent 1 0 R").Build()),
              HasSubstr("<< /Count 1 /Kids [ 3 0 R ] /Type /Pages >>"));
}

TEST_F(PreparedPages, AreNotGuessedWhereTheTreeLeadsToANodeTwice) {
  auto document = WithRoot("/Kids [ 5 0 R 5 0 R ] /Count 2");
  document.Object(5, "<< /Type /Pages /Parent 2 0 R /Kids [ 3 0 R ] /Count 1 >>");
  EXPECT_EQ(Run(document.Build()), kNoCopy);
  EXPECT_THAT(system_.Take(), HasSubstr("not written: its page tree leads to object 5 twice\n"));
}

TEST_F(PreparedPages, AreNotGuessedWhereTheCatalogHasNone) {
  DocumentBuilder document;
  document.Object(1, "<< /Type /Catalog >>");
  EXPECT_EQ(Run(document.Build()), kNoCopy);
  // libqpdf 12 notices it by itself.
  EXPECT_THAT(system_.Take(), ::testing::AnyOf(HasSubstr("not written: its catalog leads to no page tree\n"),
                                               HasSubstr("not written: unable to find page tree\n")));
}

TEST_F(PreparedPages, AreNotLookedForWithoutEnd) {
  DocumentBuilder document;
  document.Object(1, "<< /Type /Catalog /Pages 2 0 R >>");
  for (int i = 2; i < 5000; ++i) {
    document.Object(i, "<< /Type /Pages /Count 1 /Kids [ " + std::to_string(i + 1) + " 0 R ] >>");
  }
  document.Object(5000, "<< /Type /Page >>");
  EXPECT_EQ(Run(document.Build()), kNoCopy);
  EXPECT_THAT(system_.Take(), HasSubstr("not written: its page tree is too deep\n"));
}

}  // namespace
}  // namespace folioweld
