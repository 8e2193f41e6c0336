#include <gmock/gmock.h>

#include "prepare/carry/labels.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::PagesDocument;

class CarryLabelsTest : public testing::CarryFixture {
 protected:
  std::string Join(const std::vector<std::string>& documents) {
    Carry(documents, CarryLabels);
    return Root().getKey("/PageLabels").unparseResolved();
  }
};

TEST_F(CarryLabelsTest, AreThoseOfEachDocument) {
  const std::string roman =
      PagesDocument(3, "/PageLabels << /Nums [ 0 << /S /r >> 2 << /S /D /St 5 >> ] >>").Build();
  auto tree = PagesDocument(2, "/PageLabels 20 0 R");
  tree.Object(20, "<< /Kids [ 21 0 R 22 0 R ] >>").Object(21, "<< /Nums [ 0 23 0 R ] >>");
  tree.Object(22, "<< /Nums [ 1 << /P (B-) >> ] >>").Object(23, "<< /P (A-) >>");
  const std::string labels = Join({roman, PagesDocument(1).Build(), tree.Build(), roman});
  EXPECT_EQ(labels, "<< /Nums [ 0 << /S /r >> 2 << /S /D /St 5 >> 3 << /S /D >> 4 " +
                        std::to_string(Numbered(3, 23)) +
                        " 0 R 5 << /P (B-) >> 6 << /S /r >> 8 << /S /D /St 5 >> ] >>");
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_THAT(Said("qpdf --json --json-key=pagelabels \"$file\""), HasSubstr("\"/P\": \"u:B-\""));
  EXPECT_THAT(Said("mutool show \"$file\" trailer/Root/PageLabels/Nums/8"), HasSubstr("/P (A-)"));
}

TEST_F(CarryLabelsTest, DoNotRunOnIntoTheNextDocument) {
  EXPECT_EQ(Join({PagesDocument(1, "/PageLabels << /Nums [ 0 << /S /r >> 7 << /S /A >> ] >>").Build(),
                  PagesDocument(1).Build()}),
            "<< /Nums [ 0 << /S /r >> 1 << /S /D >> ] >>");
}

TEST_F(CarryLabelsTest, ArePlainNumbersBeforeTheFirstOne) {
  EXPECT_EQ(
      Join({PagesDocument(1).Build(), PagesDocument(3, "/PageLabels << /Nums [ 2 << /S /r >> ] >>").Build()}),
      "<< /Nums [ 0 << /S /D >> 1 << /S /D >> 3 << /S /r >> ] >>");
}

TEST_F(CarryLabelsTest, AreNotMadeWhereNoDocumentHasAny) {
  EXPECT_EQ(Join({PagesDocument(1).Build(), PagesDocument(1, "/PageLabels << /Nums [ ] >>").Build()}),
            "null");
}

TEST_F(CarryLabelsTest, ThatCannotBeReadAreLostAndTold) {
  auto loop = PagesDocument(1, "/PageLabels 20 0 R");
  loop.Object(20, "<< /Kids [ 20 0 R ] >>");
  EXPECT_EQ(Join({loop.Build(), PagesDocument(1, "/PageLabels [ ]").Build(),
                  PagesDocument(1, "/PageLabels << /Nums [ -1 << >> ] >>").Build(),
                  PagesDocument(1, "/PageLabels << /Nums [ /A << >> ] >>").Build(),
                  PagesDocument(1, "/PageLabels << /Nums [ 0 1 ] >>").Build(),
                  PagesDocument(1, "/PageLabels << /Nums [ 0 << /S /r >> ] >>").Build()}),
            "<< /Nums [ 0 << /S /D >> 1 << /S /D >> 2 << /S /D >> 3 << /S /D >> 4 << /S /D >> "
            "5 << /S /r >> ] >>");
  EXPECT_THAT(Losses(), ElementsAre("1: labels: their tree leads to object 20 twice",
                                    "2: labels: their tree has a node that is no dictionary",
                                    "3: labels: their tree has a key that is no number from 0 on",
                                    "4: labels: their tree has a key that is no number from 0 on",
                                    "5: labels: one of them is no dictionary"));
}

}  // namespace
}  // namespace folioweld
