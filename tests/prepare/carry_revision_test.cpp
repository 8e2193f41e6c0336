#include <gmock/gmock.h>

#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::PagesDocument;
using ::testing::StartsWith;

class CarryRevisionTest : public testing::CarryFixture {};

TEST_F(CarryRevisionTest, HasACatalogOfItsOwnAfterTheJoinedFile) {
  Carry({PagesDocument(1, "/Lang (en)").Build(), PagesDocument(2).Build()},
        [](Revision& revision) { revision.Catalog().replaceKey("/Mark", QPDFObjectHandle::newInteger(7)); });
  EXPECT_EQ(Root().getKey("/Mark").getIntValue(), 7);
  EXPECT_EQ(Root().getKey("/Lang").getStringValue(), "en");
  EXPECT_EQ(Root().getKey("/Pages").getKey("/Count").getIntValue(), 3);
  const std::string number = std::to_string(Numbered(2, 5));
  EXPECT_THAT(Appended(), StartsWith(number + " 0 obj\n"));
  EXPECT_THAT(Appended(), HasSubstr("\nxref\n0 " + std::to_string(Numbered(2, 5) + 1) + "\n"));
  EXPECT_THAT(Said("qpdf --check \"$file\""), HasSubstr("No syntax or stream encoding errors found"));
}

TEST_F(CarryRevisionTest, WritesChangedObjectsUnderTheirNumberAndGeneration) {
  auto second = PagesDocument(1);
  second.Object(4, "[ 1 ]", 2).Object(5, "[ 4 2 R 4 0 R ]");
  QPDF& result = Carry({PagesDocument(1).Build(), second.Build()}, [&](Revision& revision) {
    QPDFObjectHandle list = revision.File().getObjectByID(Numbered(2, 4), 2);
    list.appendItem(revision.File().getObjectByID(Numbered(2, 5), 0));
    revision.Change(list);
  });
  const std::string list = std::to_string(Numbered(2, 4)) + " 2 obj\n[ 1 " + std::to_string(Numbered(2, 5));
  EXPECT_THAT(Appended(), HasSubstr(list + " 0 R ]\nendobj\n"));
  EXPECT_EQ(result.getObjectByID(Numbered(2, 4), 2).getArrayNItems(), 2);
}

TEST_F(CarryRevisionTest, WritesNullForAReferenceToAnotherGeneration) {
  auto second = PagesDocument(1);
  second.Object(4, "[ 1 ]", 2).Object(5, "[ 4 2 R 4 0 R ]");
  Carry({PagesDocument(1).Build(), second.Build()},
        [&](Revision& revision) { revision.Change(revision.File().getObjectByID(Numbered(2, 5), 0)); });
  EXPECT_THAT(Appended(), HasSubstr("[ " + std::to_string(Numbered(2, 4)) + " 2 R null ]"));
}

TEST_F(CarryRevisionTest, WritesAChangedStreamWithItsBytes) {
  auto first = PagesDocument(1);
  first.Stream(4, "/Kind /Old", "some data");
  QPDF& result = Carry({first.Build(), PagesDocument(1).Build()}, [](Revision& revision) {
    QPDFObjectHandle stream = revision.File().getObjectByID(4, 0);
    stream.getDict().replaceKey("/Kind", QPDFObjectHandle::newName("/New"));
    revision.Change(stream);
  });
  QPDFObjectHandle stream = result.getObjectByID(4, 0);
  EXPECT_EQ(stream.getDict().getKey("/Kind").getName(), "/New");
  const auto bytes = stream.getRawStreamData();
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes->getBuffer()), bytes->getSize()), "some data");
}

TEST_F(CarryRevisionTest, KnowsTheCatalogTitleAndPagesOfEveryDocument) {
  auto second = PagesDocument(2, "/Lang (en) /Deep [ << /A 3 0 R /B 7 0 R >> ]");
  second.Object(5, "<< /Title (Second) >>").TrailerExtra("/Info 5 0 R");
  Carry({PagesDocument(1).Build(), second.Build(), PagesDocument(3).Build()}, [&](Revision& revision) {
    auto& documents = revision.Documents();
    ASSERT_EQ(documents.size(), 3U);
    EXPECT_FALSE(documents[0].Title.isInitialized());
    EXPECT_EQ(documents[1].Title.getStringValue(), "Second");
    EXPECT_EQ(documents[1].Catalog.getKey("/Lang").getStringValue(), "en");
    QPDFObjectHandle deep = documents[1].Catalog.getKey("/Deep").getArrayItem(0);
    EXPECT_EQ(deep.getKey("/A").getObjectID(), Numbered(2, 3));
    EXPECT_FALSE(deep.hasKey("/B"));
    EXPECT_EQ(documents[0].Pages.size(), 1U);
    EXPECT_EQ(documents[1].Pages.size(), 2U);
    EXPECT_EQ(documents[2].Pages.size(), 3U);
    EXPECT_EQ(documents[2].Pages[0].getObjectID(), Numbered(3, 3));
    EXPECT_TRUE(documents[2].Has(documents[2].Pages[0]));
    EXPECT_FALSE(documents[1].Has(documents[2].Pages[0]));
  });
}

TEST_F(CarryRevisionTest, TellsWhatAFeatureCannotCarry) {
  Carry({PagesDocument(1).Build(), PagesDocument(1).Build()}, [](Revision& revision) {
    revision.ForEach("outline", [](const CarriedDocument& document) {
      if (document.Index == 2) throw NotCarried("it has no end");
    });
  });
  EXPECT_THAT(Losses(), ElementsAre("2: outline: it has no end"));
}

TEST_F(CarryRevisionTest, CanBeAppendedToASingleDocument) {
  Carry({PagesDocument(2).Build()}, [](Revision& revision) {
    revision.Catalog().replaceKey("/Mark", revision.Add(QPDFObjectHandle::newDictionary()));
  });
  EXPECT_TRUE(Root().getKey("/Mark").isDictionary());
}

}  // namespace
}  // namespace folioweld
