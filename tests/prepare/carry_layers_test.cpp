#include <gmock/gmock.h>

#include "prepare/carry/layers.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::PagesDocument;

/// A page with two groups, objects 4 and 5; each shows one half of the page in black, the first the left one.
DocumentBuilder LayeredDocument(const std::string& configuration, const std::string& ofProperties = "",
                                const std::string& ofSecond = "") {
  auto document = PagesDocument(
      1, "/OCProperties << /OCGs [ 4 0 R 5 0 R ] /D << " + configuration + " >> " + ofProperties + " >>",
      "/Contents 6 0 R /Resources << /Properties << /L 4 0 R /R 5 0 R >> >>");
  document.Object(4, "<< /Type /OCG /Name (left) >>");
  document.Object(5, "<< /Type /OCG /Name (right) " + ofSecond + " >>");
  document.Stream(6, "",
                  "/OC /L BDC 0 0 50 99 re f EMC\n"
                  "/OC /R BDC 50 0 49 99 re f EMC");
  return document;
}

class CarriedLayers : public testing::CarryFixture {
 protected:
  QPDF& Carried(const std::vector<std::string>& documents) {
    return Carry(documents, [](Revision& revision) { CarryLayers(revision); });
  }

  QPDFObjectHandle Properties() { return Root().getKey("/OCProperties"); }
  QPDFObjectHandle Configuration() { return Properties().getKey("/D"); }

  /// Groups in a list, each as "2:right": the document and the name.
  std::vector<std::string> Groups(QPDFObjectHandle list) {
    std::vector<std::string> groups;
    for (QPDFObjectHandle group : list.getArrayAsVector()) {
      int document = 1;
      while (group.getObjectID() > Numbered(document + 1, 0)) ++document;
      groups.push_back(std::to_string(document) + ":" + group.getKey("/Name").getStringValue());
    }
    return groups;
  }
  std::vector<std::string> Off() { return Groups(Configuration().getKey("/OFF")); }
};

TEST_F(CarriedLayers, AreThoseOfAllDocuments) {
  const std::string document = LayeredDocument("").Build();
  Carried({document, PagesDocument(1).Build(), document});
  EXPECT_THAT(Groups(Properties().getKey("/OCGs")), ElementsAre("1:left", "1:right", "3:left", "3:right"));
  EXPECT_FALSE(Configuration().hasKey("/OFF"));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedLayers, StayAsTheyAreWhereOnlyTheFirstDocumentHasThem) {
  Carry({LayeredDocument("/BaseState /OFF").Build(), PagesDocument(1).Build()}, [](Revision& revision) {
    const std::size_t written = revision.Written().size();
    CarryLayers(revision);
    EXPECT_EQ(revision.Written().size(), written);
  });
  EXPECT_TRUE(Configuration().hasKey("/BaseState"));
}

TEST_F(CarriedLayers, AreHiddenAsTheirOwnDocumentSays) {
  Carried({LayeredDocument("/OFF [ 5 0 R ]").Build(),
           LayeredDocument("/BaseState /OFF /ON [ 5 0 R ]").Build(),
           LayeredDocument("/BaseState /Unchanged /OFF [ 4 0 R 4 0 R null ]").Build(),
           LayeredDocument("/BaseState /OFF").Build()});
  EXPECT_THAT(Off(), ElementsAre("1:right", "2:left", "3:left", "4:left", "4:right"));
  EXPECT_FALSE(Configuration().hasKey("/BaseState"));
  EXPECT_FALSE(Configuration().hasKey("/ON"));
}

TEST_F(CarriedLayers, DoNotTakeTheBaseStateOfTheFirstDocument) {
  Carried({LayeredDocument("/BaseState /OFF /ON [ 4 0 R ]").Build(), LayeredDocument("").Build()});
  EXPECT_THAT(Off(), ElementsAre("1:right"));
  EXPECT_FALSE(Configuration().hasKey("/BaseState"));
  EXPECT_FALSE(Configuration().hasKey("/ON"));
}

TEST_F(CarriedLayers, ComeFromALaterDocumentAlone) {
  Carried({PagesDocument(1).Build(),
           LayeredDocument("/OFF [ 5 0 R ] /Name (own) /ListMode /VisiblePages").Build()});
  EXPECT_THAT(Off(), ElementsAre("2:right"));
  EXPECT_EQ(Configuration().getKey("/Name").getStringValue(), "own");
  EXPECT_EQ(Configuration().getKey("/ListMode").getName(), "/VisiblePages");
}

TEST_F(CarriedLayers, KeepOrderLocksRadioButtonsAndUsage) {
  const std::string lists =
      "/Order [ (label) [ 5 0 R ] ] /Locked [ 4 0 R ] /RBGroups [ [ 4 0 R 5 0 R ] ] "
      "/AS [ << /Event /View /Category [ /View ] /OCGs [ 5 0 R ] >> ]";
  const std::string document = LayeredDocument(lists).Build();
  Carried({LayeredDocument("/ListMode /VisiblePages").Build(), document, document});
  EXPECT_EQ(Configuration().getKey("/Order").getArrayNItems(), 4);
  EXPECT_THAT(Groups(Configuration().getKey("/Order").getArrayItem(3)), ElementsAre("3:right"));
  EXPECT_THAT(Groups(Configuration().getKey("/Locked")), ElementsAre("2:left", "3:left"));
  EXPECT_THAT(Groups(Configuration().getKey("/RBGroups").getArrayItem(1)), ElementsAre("3:left", "3:right"));
  EXPECT_THAT(Groups(Configuration().getKey("/AS").getArrayItem(1).getKey("/OCGs")), ElementsAre("3:right"));
  EXPECT_FALSE(Configuration().hasKey("/ListMode"));
}

TEST_F(CarriedLayers, KeepOtherConfigurationsThatChangeTheirOwnGroupsAlone) {
  Carried({LayeredDocument("", "/Configs [ << /Name (a) /BaseState /OFF /ON [ 4 0 R ] >> 7 ]").Build(),
           LayeredDocument("", "/Configs [ << /Name (b) /BaseState /Unchanged /OFF [ 5 0 R ] >> ]").Build()});
  QPDFObjectHandle others = Properties().getKey("/Configs");
  ASSERT_EQ(others.getArrayNItems(), 2);
  for (QPDFObjectHandle other : others.getArrayAsVector())
    EXPECT_EQ(other.getKey("/BaseState").getName(), "/Unchanged");
  EXPECT_THAT(Groups(others.getArrayItem(0).getKey("/ON")), ElementsAre("1:left"));
  EXPECT_THAT(Groups(others.getArrayItem(0).getKey("/OFF")), ElementsAre("1:right"));
  EXPECT_THAT(Groups(others.getArrayItem(1).getKey("/OFF")), ElementsAre("2:right"));
  EXPECT_FALSE(others.getArrayItem(1).hasKey("/ON"));
}

TEST_F(CarriedLayers, HeedTheIntentsOfTheirOwnDocument) {
  const std::string design = "/Intent [ /Design ]";
  Carried({LayeredDocument("/OFF [ 4 0 R 5 0 R ]", "", design).Build(),
           LayeredDocument("/Intent /Design /OFF [ 4 0 R 5 0 R ]", "", design).Build(),
           LayeredDocument("/Intent /All /OFF [ 5 0 R ]", "", design).Build()});
  EXPECT_THAT(Off(), ElementsAre("1:left", "2:right", "3:right"));
  EXPECT_EQ(Configuration().getKey("/Intent").unparse(), "[ /All /Design /View ]");
}

TEST_F(CarriedLayers, KeepWhatIsHiddenWhereAllHaveTheSameIntent) {
  const std::string document = LayeredDocument("/OFF [ 5 0 R ]", "", "/Intent /Design").Build();
  Carried({document, document});
  EXPECT_THAT(Off(), ElementsAre("1:right", "2:right"));
  EXPECT_FALSE(Configuration().hasKey("/Intent"));
}

TEST_F(CarriedLayers, LeaveOutBrokenOnesAlone) {
  Carried({PagesDocument(1, "/OCProperties 7").Build(), PagesDocument(1, "/OCProperties << >>").Build(),
           LayeredDocument("/OFF [ 5 0 R ]").Build(),
           PagesDocument(1, "/OCProperties << /OCGs [ 7 << >> 3 0 R 3 0 R ] /D 7 >>").Build()});
  EXPECT_EQ(Properties().getKey("/OCGs").getArrayNItems(), 3);
  EXPECT_THAT(Off(), ElementsAre("3:right"));
  EXPECT_THAT(Losses(),
              ElementsAre("1: layers: its layers are no dictionary", "2: layers: its layers are not listed"));
}

TEST_F(CarriedLayers, AreNoneOfAnotherDocument) {
  // In the joined file, 9 is the first group of the second document.
  Carried({PagesDocument(1, "/OCProperties 4 0 R").Object(4, "<< /OCGs [ 9 0 R ] >>").Build(),
           LayeredDocument("").Build()});
  EXPECT_EQ(Numbered(2, 4), 9);
  EXPECT_THAT(Groups(Properties().getKey("/OCGs")), ElementsAre("2:left", "2:right"));
}

TEST_F(CarriedLayers, AreNotReadWithoutEnd) {
  std::string configurations;
  for (int i = 0; i < 1000; ++i) configurations += "7 0 R\n";
  auto wide = LayeredDocument("", "/Configs [ " + configurations + " ]");
  std::string groups;
  for (int i = 0; i < 1000; ++i) groups += "5 0 R\n";
  wide.Object(7, "<< /ON 8 0 R >>").Object(8, "[ " + groups + " ]");
  Carried({LayeredDocument("").Build(), wide.Build()});
  EXPECT_THAT(Losses(), ElementsAre("2: layers: it has more than a million places to look at"));
}

TEST_F(CarriedLayers, DifferInTheirEntriesFromThoseOfOtherDocuments) {
  const std::string document = LayeredDocument("").Build();
  QPDF& file = Carried({document, LayeredDocument("", "", "/FolioweldNumber 4").Build(), document});
  const auto number = [&](int of, int group) {
    return file.getObjectByID(Numbered(of, group), 0).getKey("/FolioweldNumber").unparse();
  };
  EXPECT_EQ(number(1, 4) + " " + number(1, 5), "null null");
  EXPECT_EQ(number(2, 4) + " " + number(2, 5), "2 4");
  EXPECT_EQ(number(3, 4) + " " + number(3, 5), "3 5");
}

TEST_F(CarriedLayers, AreDrawnAsInTheirOwnDocument) {
  Carried({LayeredDocument("").Build(), LayeredDocument("/OFF [ 4 0 R ]").Build(),
           LayeredDocument("/BaseState /OFF /ON [ 4 0 R ]").Build()});
  for (const std::string& program :
       {std::string("pdftoppm -q -gray -r 72 -f $page -l $page \"$file\""),
        std::string("mutool draw -q -r 72 -F pgm -o - \"$file\" $page 2> /dev/null")}) {
    std::vector<std::string> halves;  // those that are black, as another program draws them
    for (const char* page : {"1", "2", "3"}) {
      const std::string picture = Said("page=" + std::string(page) + "; " + program);
      ASSERT_GT(picture.size(), 99U * 99U);
      const std::string middle = picture.substr(picture.size() - 50 * 99, 99);
      halves.push_back({middle[25] == 0 ? '#' : '.', middle[75] == 0 ? '#' : '.'});
    }
    EXPECT_THAT(halves, ElementsAre("##", ".#", "#.")) << program;
  }
}

}  // namespace
}  // namespace folioweld
