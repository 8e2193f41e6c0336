#include <gmock/gmock.h>

#include "prepare/carry/page_walk.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::ElementsAre;
using testing::PagesDocument;

/// Numbers of the pages of a document whose catalog is object 1.
std::vector<int> PageNumbers(DocumentBuilder document) {
  const std::string bytes = document.Build();
  QPDF file;
  file.setSuppressWarnings(true);
  file.processMemoryFile("document", bytes.data(), bytes.size());
  std::vector<int> numbers;
  for (const FoundPage& page : WalkPages(file)) numbers.push_back(page.Number);
  return numbers;
}

std::string WhyNoPages(const DocumentBuilder& document) {
  try {
    static_cast<void>(PageNumbers(document));
  } catch (const NotCarried& why) {
    return why.what();
  }
  return {};
}

DocumentBuilder WithRoot(const std::string& ofCatalog) {
  DocumentBuilder document;
  document.Object(1, "<< /Type /Catalog " + ofCatalog + " >>");
  return document;
}

TEST(CarriedPages, AreFoundInTheirOrderAndAsOftenAsTheTreeLeadsToThem) {
  auto document = WithRoot("/Pages 2 0 R");
  document.Object(2, "<< /Kids [ 5 0 R 3 0 R null 9 0 R << /Type /Page >> 4 0 R 4 0 R ] >>");
  document.Object(3, "<< /Kids [ << /Kids [ 5 0 R ] >> 6 0 R ] >>");
  for (const int page : {4, 5, 6}) document.Object(page, "<< /Type /Page >>");
  EXPECT_THAT(PageNumbers(document), ElementsAre(5, 5, 6, 2, 4, 4));
}

TEST(CarriedPages, AreNotGuessed) {
  EXPECT_EQ(WhyNoPages(WithRoot("")), "the joined file's catalog leads to no page tree");
}

TEST(CarriedPages, AreNotLookedForWithoutEnd) {
  auto loop = WithRoot("/Pages 2 0 R");
  loop.Object(2, "<< /Kids [ 3 0 R ] >>").Object(3, "<< /Kids [ 2 0 R ] >>");
  EXPECT_EQ(WhyNoPages(loop), "the page tree leads back to object 2");
  auto deep = WithRoot("/Pages 2 0 R");
  for (int i = 2; i < 500; ++i) deep.Object(i, "<< /Kids [ " + std::to_string(i + 1) + " 0 R ] >>");
  EXPECT_EQ(WhyNoPages(deep), "the page tree is too deep");
  auto many = WithRoot("/Pages 2 0 R");
  for (int i = 2; i < 30; ++i) {
    const std::string next = std::to_string(i + 1) + " 0 R ";
    many.Object(i, "<< /Kids [ " + next + next + "] >>");
  }
  many.Object(30, "<< /Type /Page >>");
  EXPECT_EQ(WhyNoPages(many), "the page tree has more than a million places");
}

TEST(CarriedPages, BelongToTheDocumentThatHasTheirNumber) {
  std::vector<CarriedDocument> documents(3);
  documents[1].FirstObject = 10;
  documents[2].FirstObject = 20;
  const QPDFObjectHandle page = QPDFObjectHandle::newDictionary();
  GivePages({{page, 3}, {page, 12}, {page, 19}, {page, 20}}, documents);
  EXPECT_EQ(documents[0].Pages.size(), 1U);
  EXPECT_EQ(documents[1].Pages.size(), 2U);
  EXPECT_EQ(documents[2].Pages.size(), 1U);
}

}  // namespace
}  // namespace folioweld
