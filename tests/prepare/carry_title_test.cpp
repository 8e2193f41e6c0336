#include <gmock/gmock.h>

#include "prepare/carry/title.h"
#include "prepare/carry/xmp_title.h"
#include "tests/prepare/carry_fixture.h"

// After what leaves libqpdf's JSON out.
#include <qpdf/Pl_Flate.hh>
#include <qpdf/Pl_String.hh>

namespace folioweld {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::PagesDocument;

const std::string kXmp =
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
    "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
    "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">"
    "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Old</rdf:li></rdf:Alt></dc:title>"
    "<dc:format>application/pdf</dc:format></rdf:Description></rdf:RDF></x:xmpmeta>";

class CarryTitleTest : public testing::CarryFixture {
 protected:
  /// Joins a document with these metadata and another one.
  void Title(const std::string& title, const std::string& metadata = "", const std::string& ofStream = "") {
    auto first = PagesDocument(1, metadata.empty() ? "" : "/Metadata 20 0 R");
    if (!metadata.empty()) first.Stream(20, ofStream, metadata);
    first.Object(21, "<< /Title (Old) /Author (Me) >>").TrailerExtra("/Info 21 0 R");
    Carry({first.Build(), PagesDocument(1).Build()}, [&](Revision& revision) { SetTitle(revision, title); });
  }

  static std::string Deflated(const std::string& text) {
    std::string packed;
    Pl_String buffer("buffer", nullptr, packed);
    Pl_Flate flate("flate", &buffer, Pl_Flate::a_deflate);
    flate.write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    flate.finish();
    return packed;
  }

  std::string Metadata() {
    const auto bytes = Root().getKey("/Metadata").getStreamData();
    return {reinterpret_cast<const char*>(bytes->getBuffer()), bytes->getSize()};
  }
};

TEST_F(CarryTitleTest, StandsBesideWhatTheMergeWrites) {
  Title(
      "Gr\xC3\xBC\xC3\x9F"
      "e");
  EXPECT_THAT(Said("pdfinfo \"$file\""), AllOf(HasSubstr("Title:           Gr\xC3\xBC\xC3\x9F"
                                                         "e\n"),
                                               HasSubstr("Producer:        Folioweld\n")));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarryTitleTest, StandsInAnInformationDictionaryOfItsOwnWhereThereIsNone) {
  Carry({PagesDocument(1).Build(), PagesDocument(1).Build()},
        [](Revision& revision) { SetTitle(revision, "\xE6\x97\xA5"); });
  EXPECT_THAT(Said("pdfinfo \"$file\""), HasSubstr("Title:           \xE6\x97\xA5\n"));
}

TEST_F(CarryTitleTest, ReplacesTheOneOfTheMetadata) {
  Title("A < B & \"C\"\n", kXmp);
  EXPECT_THAT(Metadata(),
              AllOf(HasSubstr("<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">A &lt; B &amp; \"C\" "
                              "</rdf:li></rdf:Alt></dc:title><dc:format>"),
                    Not(HasSubstr("Old"))));
  EXPECT_THAT(Said("pdfinfo -meta \"$file\""), HasSubstr("A &lt; B"));
}

TEST_F(CarryTitleTest, ReplacesTheOneOfCompressedMetadata) {
  Title("New", "3<\xE2\x80\xA6", "/Filter /FlateDecode");
  EXPECT_THAT(Losses(), ElementsAre(HasSubstr("1: title: ")));
  Title("New", Deflated(kXmp), "/Filter /FlateDecode");
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_THAT(Metadata(), AllOf(HasSubstr(">New<"), Not(HasSubstr("Old"))));
}

TEST_F(CarryTitleTest, LeavesMetadataAloneThatHaveNone) {
  Title("New", "<x:xmpmeta/>");
  EXPECT_EQ(Metadata(), "<x:xmpmeta/>");
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarryTitleTest, LeavesMetadataAloneInWhichItIsNotClear) {
  const std::string twice = kXmp + kXmp;
  const std::string comment = "<!-- -->" + kXmp;
  const std::string otherPrefix = "<a xmlns:d=\"http://purl.org/dc/elements/1.1/\"><d:title>x</d:title></a>";
  const std::string attribute = "<a xmlns:dc=\"http://purl.org/dc/elements/1.1/\" dc:title=\"x\"/>";
  for (const std::string& xmp :
       {twice, comment, otherPrefix, attribute, std::string("<\xFF>"), std::string("\0<", 2)}) {
    EXPECT_THROW(static_cast<void>(WithTitle(xmp, "New")), NotCarried) << xmp;
  }
  Title("New", twice);
  EXPECT_EQ(Metadata(), twice);
  EXPECT_THAT(Losses(), ElementsAre("1: title: the title in the XMP metadata is not clear, and stays"));
}

}  // namespace
}  // namespace folioweld
