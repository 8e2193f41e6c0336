#include <gmock/gmock.h>

#include "prepare/carry/outlines.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using ::testing::AllOf;
using testing::DocumentBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::PagesDocument;

class CarryOutlinesTest : public testing::CarryFixture {
 protected:
  /// A document of one page with two items, the first of which is open and has one below it.
  static DocumentBuilder WithOutline(const std::string& name,
                                     const std::string& ofRoot = "/First 11 0 R /Last 12 0 R") {
    auto document = PagesDocument(1, "/Outlines 10 0 R");
    document.Object(10, "<< /Type /Outlines " + ofRoot + " /Count 3 >>");
    document.Object(11, "<< /Title (" + name +
                            " a) /Parent 10 0 R /Next 12 0 R /First 13 0 R /Last 13 0 R "
                            "/Count 1 /Dest [ 3 0 R /Fit ] >>");
    document.Object(12, "<< /Title (" + name + " b) /Parent 10 0 R /Prev 11 0 R >>");
    document.Object(13, "<< /Title (" + name + " a a) /Parent 11 0 R >>");
    return document;
  }

  static DocumentBuilder Titled(DocumentBuilder document, const std::string& title) {
    document.Object(20, "<< /Title " + title + " >>").TrailerExtra("/Info 20 0 R");
    return document;
  }

  void Join(const std::vector<std::string>& documents, Bookmarks bookmarks = Bookmarks::Both) {
    Carry(documents, [&](Revision& revision) { CarryOutlines(revision, bookmarks); });
  }

  /// The items below an item, a line each with as many dots as levels; links in both directions are right.
  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    QPDFObjectHandle root = Root().getKey("/Outlines");
    if (root.isDictionary()) PutLines(root, "", lines);
    return lines;
  }

  static long long CountOf(QPDFObjectHandle item) {
    long long count = 0;
    return item.getKey("/Count").getValueAsInt(count) ? count : 0;
  }

 private:
  static void PutLines(QPDFObjectHandle parent, const std::string& dots, std::vector<std::string>& lines) {
    QPDFObjectHandle before;
    for (QPDFObjectHandle item = parent.getKey("/First"); item.isDictionary(); item = item.getKey("/Next")) {
      EXPECT_TRUE(item.getKey("/Parent").isSameObjectAs(parent));
      if (before.isInitialized()) {
        EXPECT_TRUE(item.getKey("/Prev").isSameObjectAs(before));
      } else {
        EXPECT_FALSE(item.hasKey("/Prev"));
      }
      before = item;
      lines.push_back(dots + item.getKey("/Title").getUTF8Value());
      PutLines(item, dots + ".", lines);
    }
    if (before.isInitialized()) {
      EXPECT_TRUE(parent.getKey("/Last").isSameObjectAs(before));
    }
  }
};

TEST_F(CarryOutlinesTest, StandBelowAnEntryForEachDocument) {
  Join({WithOutline("one").Build(), PagesDocument(2).Build(),
        Titled(WithOutline("three"), "(Third)").Build()});
  EXPECT_THAT(Lines(), ElementsAre("1.pdf", ".one a", "..one a a", ".one b", "2.pdf", "Third", ".three a",
                                   "..three a a", ".three b"));
  QPDFObjectHandle entry = Root().getKey("/Outlines").getKey("/First");
  EXPECT_EQ(CountOf(Root().getKey("/Outlines")), 3);
  EXPECT_EQ(CountOf(entry), -3);
  EXPECT_FALSE(entry.hasKey("/Type"));
  EXPECT_EQ(entry.getKey("/Dest").getArrayItem(0).getObjectID(), Numbered(1, 3));
  entry = entry.getKey("/Next");
  EXPECT_FALSE(entry.hasKey("/Count"));
  EXPECT_EQ(entry.getKey("/Dest").unparse(),
            "[ " + std::to_string(Numbered(2, 3)) + " 0 R /XYZ null null null ]");
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_THAT(Said("mutool show \"$file\" outline"),
              AllOf(HasSubstr("\"Third\"\t#page=4"), HasSubstr("\"three a\"\t#page=4")));
  EXPECT_THAT(Said("qpdf --json --json-key=outlines \"$file\""), HasSubstr("\"title\": \"one a a\""));
}

TEST_F(CarryOutlinesTest, CanBeEntriesForTheDocumentsAlone) {
  Join({WithOutline("one").Build(), WithOutline("two").Build()}, Bookmarks::Documents);
  EXPECT_THAT(Lines(), ElementsAre("1.pdf", "2.pdf"));
  EXPECT_EQ(CountOf(Root().getKey("/Outlines")), 2);
}

TEST_F(CarryOutlinesTest, CanFollowEachOther) {
  Join({WithOutline("one").Build(), PagesDocument(1).Build(), WithOutline("three").Build()}, Bookmarks::Own);
  EXPECT_THAT(Lines(), ElementsAre("one a", ".one a a", "one b", "three a", ".three a a", "three b"));
  EXPECT_EQ(CountOf(Root().getKey("/Outlines")), 6);
}

TEST_F(CarryOutlinesTest, CanStayThoseOfTheFirstDocument) {
  Join({WithOutline("one").Build(), WithOutline("two").Build()}, Bookmarks::None);
  EXPECT_THAT(Lines(), ElementsAre("one a", ".one a a", "one b"));
  Join({PagesDocument(1).Build(), WithOutline("two").Build()}, Bookmarks::None);
  EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(CarryOutlinesTest, AreMadeOfDocumentsWithoutOne) {
  Join({PagesDocument(1).Build(), Titled(PagesDocument(1), "( \t)").Build()});
  EXPECT_THAT(Lines(), ElementsAre("1.pdf", "2.pdf"));
  Join({PagesDocument(1).Build(), PagesDocument(1).Build()}, Bookmarks::Own);
  EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(CarryOutlinesTest, StayWhatTheyAreInASingleDocument) {
  Join({WithOutline("one").Build()});
  EXPECT_THAT(Lines(), ElementsAre("one a", ".one a a", "one b"));
}

TEST_F(CarryOutlinesTest, TakeTitlesAsTheyAreAndNamesAsTheyAreMeant) {
  names_ = {"\xC3\xA9t\xC3\xA9.pdf", "\xE9t\xE9.pdf", "\xE6\x97\xA5.PDF", "4"};
  Join({PagesDocument(1).Build(), PagesDocument(1).Build(), PagesDocument(1).Build(),
        Titled(PagesDocument(1), "<FEFF65E5>").Build()});
  EXPECT_THAT(Lines(), ElementsAre("\xC3\xA9t\xC3\xA9.pdf", "\xC3\xA9t\xC3\xA9.pdf", "\xE6\x97\xA5.PDF",
                                   "\xE6\x97\xA5"));
}

TEST_F(CarryOutlinesTest, LeavePagesWhatTheyAre) {
  const std::string asItem = "/Title (a) /First 11 0 R /Last 11 0 R";
  for (const char* key : {"/Outlines 3 0 R", "/Outlines 10 0 R"}) {
    auto mixed = PagesDocument(1, key, asItem);
    mixed.Object(10, "<< /First 3 0 R /Last 3 0 R >>").Object(11, "<< /Title (b) >>");
    Join({PagesDocument(1).Build(), mixed.Build()});
    EXPECT_THAT(Lines(), ElementsAre("1.pdf", "2.pdf"));
    EXPECT_THAT(Losses(), ElementsAre("2: outline: it has an item that belongs to the page tree"));
  }
}

TEST_F(CarryOutlinesTest, NeedNoRootOfTheirOwn) {
  auto direct = PagesDocument(1, "/Outlines << /First 11 0 R /Last 11 0 R /Count 1 >>");
  direct.Object(11, "<< /Title (direct) >>");
  for (const Bookmarks bookmarks : {Bookmarks::Both, Bookmarks::Own}) {
    Join({direct.Build(), direct.Build()}, bookmarks);
    EXPECT_EQ(Lines().size(), bookmarks == Bookmarks::Own ? 2U : 4U);
  }
}

TEST_F(CarryOutlinesTest, GetWhatTheirLinksLack) {
  auto bare = PagesDocument(1, "/Outlines 10 0 R");
  bare.Object(10, "<< /First 11 0 R >>");
  bare.Object(11, "<< /Title (a) /Prev 12 0 R /Next 12 0 R >>");
  bare.Object(12, "<< /Title (b) /Prev 12 0 R >>");
  Join({PagesDocument(1).Build(), bare.Build()});
  EXPECT_THAT(Lines(), ElementsAre("1.pdf", "2.pdf", ".a", ".b"));
}

TEST_F(CarryOutlinesTest, ThatHaveNoEndAreLostAndTold) {
  auto loop = PagesDocument(1, "/Outlines 10 0 R");
  loop.Object(10, "<< /First 11 0 R /Last 12 0 R >>");
  loop.Object(11, "<< /Title (a) /Next 12 0 R >>").Object(12, "<< /Title (b) /Next 11 0 R >>");
  auto inRoot = PagesDocument(1, "/Outlines 10 0 R");
  inRoot.Object(10, "<< /First 10 0 R >>");
  Join({loop.Build(), inRoot.Build(), WithOutline("three").Build()});
  EXPECT_THAT(Lines(), ElementsAre("1.pdf", "2.pdf", "3.pdf", ".three a", "..three a a", ".three b"));
  EXPECT_THAT(Losses(), ElementsAre("1: outline: it leads to object 11 twice",
                                    "2: outline: it leads to object 10 twice"));
}

TEST_F(CarryOutlinesTest, ThatLeadOutOfTheirDocumentAreLostAndTold) {
  auto direct = PagesDocument(1, "/Outlines 10 0 R");
  direct.Object(10, "<< /First << /Title (a) >> >>");
  Join({direct.Build(), PagesDocument(1).Build()});
  EXPECT_THAT(Lines(), ElementsAre("1.pdf", "2.pdf"));
  EXPECT_THAT(Losses(), ElementsAre("1: outline: it has an item that is no object of the document"));
}

TEST_F(CarryOutlinesTest, AreReadHoweverDeep) {
  auto deep = PagesDocument(1, "/Outlines 10 0 R");
  deep.Object(10, "<< /First 11 0 R /Count 9999999999 >>");
  constexpr int kLevels = 12'000;
  for (int i = 11; i < kLevels; ++i) {
    deep.Object(i, "<< /Title (a) /Count 2147483646 /First " + std::to_string(i + 1) + " 0 R >>");
  }
  deep.Object(kLevels, "<< /Title (z) >>");
  Carry({deep.Build(), PagesDocument(1).Build()},
        [](Revision& revision) { CarryOutlines(revision, Bookmarks::Both); });
  EXPECT_THAT(Losses(), IsEmpty());
  EXPECT_LT(-CountOf(Root().getKey("/Outlines").getKey("/First")), kLevels);
}

}  // namespace
}  // namespace folioweld
