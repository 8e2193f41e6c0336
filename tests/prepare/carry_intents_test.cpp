#include <gmock/gmock.h>

#include "prepare/carry/intents.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::PagesDocument;

class CarryIntentsTest : public testing::CarryFixture {
 protected:
  static DocumentBuilder WithIntent(const std::string& condition, const std::string& profile,
                                    const std::string& ofProfile = "/N 4") {
    auto document = PagesDocument(1, "/OutputIntents [ 20 0 R ]");
    document.Object(
        20, "<< /S /GTS_PDFX /OutputConditionIdentifier (" + condition + ") /DestOutputProfile 21 0 R >>");
    document.Stream(21, ofProfile, profile);
    return document;
  }
};

TEST_F(CarryIntentsTest, ThatAreTheSameInAllDocumentsStayThoseOfTheFirst) {
  Carry({WithIntent("FOGRA39", "profile").Build(), WithIntent("FOGRA39", "profile").Build(),
         PagesDocument(1).Build()},
        CarryIntents);
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_EQ(Root().getKey("/OutputIntents").unparse(), "[ 20 0 R ]");
  EXPECT_THAT(Said("mutool show \"$file\" trailer/Root/OutputIntents/1"), HasSubstr("(FOGRA39)"));
}

TEST_F(CarryIntentsTest, OfLaterDocumentsThatDifferAreLostAndTold) {
  Carry({WithIntent("FOGRA39", "profile").Build(), WithIntent("FOGRA51", "profile").Build(),
         WithIntent("FOGRA39", "another").Build(), WithIntent("FOGRA39", "profile", "/N 3").Build(),
         PagesDocument(1, "/OutputIntents [ 1 ]").Build(), PagesDocument(1, "/OutputIntents [ ]").Build(),
         PagesDocument(1, "/OutputIntents [ << /S /GTS_PDFX /OutputConditionIdentifier (FOGRA39) >> ]")
             .Build()},
        CarryIntents);
  const std::string words = ": intent: its output intent is not the one of the first document";
  EXPECT_THAT(Losses(), ElementsAre("2" + words, "3" + words, "4" + words, "5" + words, "7" + words));
}

TEST_F(CarryIntentsTest, AreNotTakenOverByADocumentThatHasNone) {
  Carry({PagesDocument(1).Build(), WithIntent("FOGRA39", "profile").Build()}, CarryIntents);
  EXPECT_THAT(Losses(), ElementsAre(HasSubstr("2: intent: ")));
  EXPECT_FALSE(Root().hasKey("/OutputIntents"));
}

}  // namespace
}  // namespace folioweld
