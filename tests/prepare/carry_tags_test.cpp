#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "prepare/carry/tags.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::PagesDocument;

class CarryTagsTest : public testing::CarryFixture {
 protected:
  QPDF& CarryAll(const std::vector<std::string>& documents) { return Carry(documents, CarryTags); }

  QPDFObjectHandle Object(QPDF& result, int document, int number) {
    return result.getObjectByID(Numbered(document, number), 0);
  }
  QPDFObjectHandle TagRoot() { return Root().getKey("/StructTreeRoot"); }
  QPDFObjectHandle Tag(int index) { return TagRoot().getKey("/K").getArrayItem(index); }
  /// As a reader shows the structure.
  std::string Shown() const { return Said("pdfinfo -struct-text \"$file\""); }
};

const char* const kNumbers = "/ParentTree << /Nums [ 0 [ 6 0 R ] ] >>";

/// A page whose text `text` is a paragraph: 4 its contents, 5 the root of the structure, 6 the element.
DocumentBuilder Tagged(const std::string& text, const std::string& ofRoot = kNumbers,
                       const std::string& ofElement = "/S /P", const std::string& ofCatalog = "") {
  auto document = PagesDocument(1, "/StructTreeRoot 5 0 R /MarkInfo << /Marked true >> " + ofCatalog,
                                "/StructParents 0 /Contents 4 0 R /Resources << /Font << /F << /Type /Font "
                                "/Subtype /Type1 /BaseFont /Helvetica >> >> >>");
  document.Stream(4, "", "/P << /MCID 0 >> BDC BT /F 9 Tf 9 9 Td (" + text + ") Tj ET EMC")
      .Object(5, "<< /Type /StructTreeRoot /K 6 0 R " + ofRoot + " >>")
      .Object(6, "<< /Type /StructElem /P 5 0 R /Pg 3 0 R /K 0 " + ofElement + " >>");
  return document;
}

TEST_F(CarryTagsTest, PutsTheElementsOfAllDocumentsBelowOneRoot) {
  QPDF& result = CarryAll({Tagged("Alpha").Build(), PagesDocument(1).Build(), Tagged("Beta").Build()});
  EXPECT_EQ(TagRoot().getObjectID(), 5);
  EXPECT_EQ(Tag(0).getObjectID(), 6);
  EXPECT_EQ(Tag(1).getObjectID(), Numbered(3, 6));
  EXPECT_EQ(Tag(1).getKey("/P").getObjectID(), 5);
  EXPECT_EQ(Object(result, 3, 3).getKey("/StructParents").getIntValue(), 1);
  QPDFObjectHandle numbers = TagRoot().getKey("/ParentTree").getKey("/Nums");
  EXPECT_EQ(numbers.getArrayItem(2).getIntValue(), 1);
  EXPECT_EQ(numbers.getArrayItem(3).getArrayItem(0).getObjectID(), Numbered(3, 6));
  EXPECT_EQ(TagRoot().getKey("/ParentTreeNextKey").getIntValue(), 2);
  EXPECT_THAT(Appended(), Not(HasSubstr("\n3 0 obj")));
  EXPECT_THAT(Shown(), AllOf(HasSubstr("\"Alpha\""), HasSubstr("\"Beta\"")));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarryTagsTest, AddsNothingWhereOnlyTheFirstDocumentHasTags) {
  CarryAll({Tagged("Alpha").Build(), PagesDocument(1, "/StructTreeRoot << >>").Build()});
  EXPECT_EQ(Appended().find(" 0 obj"), Appended().rfind(" 0 obj"));
}

TEST_F(CarryTagsTest, ShiftsNumbersThatWouldLeadIntoTheOnlyTree) {
  const std::string stray =
      PagesDocument(1, "", "/StructParents 0 /Annots [ << /StructParent 1 >> << /StructParent -1 >> ]")
          .Build();
  QPDF& result = CarryAll({Tagged("Alpha").Build(), stray});
  EXPECT_EQ(Object(result, 2, 3).getKey("/StructParents").getIntValue(), 1);
  QPDFObjectHandle annotations = Object(result, 2, 3).getKey("/Annots");
  EXPECT_EQ(annotations.getArrayItem(0).getKey("/StructParent").getIntValue(), 2);
  EXPECT_EQ(annotations.getArrayItem(1).getKey("/StructParent").getIntValue(), -1);
}

TEST_F(CarryTagsTest, GivesTheOnlyTreeNumbersThatAPageWithoutTreeDoesNotHave) {
  QPDF& result = CarryAll({PagesDocument(1, "", "/StructParents 0").Build(), Tagged("Beta").Build()});
  EXPECT_EQ(Object(result, 1, 3).getKey("/StructParents").getIntValue(), 0);
  EXPECT_EQ(Object(result, 2, 3).getKey("/StructParents").getIntValue(), 1);
  EXPECT_EQ(TagRoot().getKey("/ParentTree").getKey("/Nums").getArrayItem(0).getIntValue(), 1);
}

TEST_F(CarryTagsTest, MakesARootWhereTheFirstDocumentHasNone) {
  QPDF& result = CarryAll({PagesDocument(1).Build(), Tagged("Beta").Build()});
  EXPECT_EQ(TagRoot().getKey("/Type").getName(), "/StructTreeRoot");
  EXPECT_TRUE(Tag(0).getKey("/P").isSameObjectAs(TagRoot()));
  EXPECT_EQ(Object(result, 2, 3).getKey("/StructParents").getIntValue(), 0);
  EXPECT_FALSE(Root().hasKey("/MarkInfo"));
  EXPECT_THAT(Shown(), HasSubstr("\"Beta\""));
}

TEST_F(CarryTagsTest, MakesAnObjectOfARootThatIsNone) {
  CarryAll(
      {PagesDocument(1, "/StructTreeRoot << /K << /S /Div >> /Mark 7 >>").Build(), Tagged("Beta").Build()});
  EXPECT_TRUE(TagRoot().isIndirect());
  EXPECT_EQ(TagRoot().getKey("/Mark").getIntValue(), 7);
  EXPECT_EQ(Tag(0).getKey("/S").getName(), "/Div");
  EXPECT_EQ(Tag(1).getKey("/S").getName(), "/P");
}

TEST_F(CarryTagsTest, TellsThatTheFirstDocumentsNumbersAreBrokenWhereTheyAreWrittenAnew) {
  const std::string first = Tagged("Alpha", "/ParentTree << /Nums [ 0 [ 6 0 R ] (x) 0 ] >>").Build();
  CarryAll({first, PagesDocument(1).Build()});
  EXPECT_THAT(Losses(), IsEmpty());
  CarryAll({first, Tagged("Beta").Build()});
  EXPECT_THAT(Losses(),
              ElementsAre("1: tags: the tree of the numbers of its structure elements has a key that "
                          "is no number from 0 on"));
  EXPECT_EQ(TagRoot().getKey("/ParentTree").getKey("/Nums").getArrayNItems(), 4);
}

TEST_F(CarryTagsTest, LeavesTheFirstDocumentsTreeAsItIsWhereThatCannotBeRead) {
  std::string kids;
  std::string numbers;
  for (int i = 0; i < 1000; ++i) {
    kids += "<< /Nums 8 0 R >>\n";
    numbers += "0 0\n";
  }
  auto first = Tagged("Alpha", "/ParentTree << /Kids 7 0 R >>");
  first.Object(7, "[ " + kids + "]").Object(8, "[ " + numbers + "]");
  CarryAll({first.Build(), Tagged("Beta").Build(), PagesDocument(1).Build()});
  EXPECT_THAT(Losses(), ElementsAre("1: tags: it has more than a million places to look at",
                                    "2: tags: the tags in the first document cannot be read"));
  EXPECT_EQ(TagRoot().getKey("/K").getObjectID(), 6);
}

TEST_F(CarryTagsTest, ShiftsNumbersOfAnnotationsPicturesAndForms) {
  auto second = PagesDocument(1, "/StructTreeRoot 4 0 R",
                              "/StructParents 3 /Annots [ << /StructParent 4 >> 5 0 R ] "
                              "/Resources << /XObject << /X 6 0 R >> >>");
  second.Object(4, "<< /K << /S /P >> /ParentTree << /Kids [ << /Nums [ 3 [ ] 9 5 0 R ] >> ] >> >>")
      .Object(5, "<< /StructParent 5 /AP << /N 7 0 R >> >>")
      .Stream(6, "/Subtype /Form /StructParents 6 /Resources << /XObject << /A 6 0 R /I 7 0 R >> >>", "data")
      .Stream(7, "/Subtype /Image /StructParent 7", "picture");
  QPDF& result = CarryAll({Tagged("Alpha").Build(), second.Build(), Tagged("Beta").Build()});
  QPDFObjectHandle page = Object(result, 2, 3);
  EXPECT_EQ(page.getKey("/StructParents").getIntValue(), 4);
  EXPECT_EQ(page.getKey("/Annots").getArrayItem(0).getKey("/StructParent").getIntValue(), 5);
  EXPECT_EQ(Object(result, 2, 5).getKey("/StructParent").getIntValue(), 6);
  EXPECT_EQ(Object(result, 2, 6).getDict().getKey("/StructParents").getIntValue(), 7);
  EXPECT_EQ(Object(result, 2, 7).getDict().getKey("/StructParent").getIntValue(), 8);
  EXPECT_EQ(Object(result, 3, 3).getKey("/StructParents").getIntValue(), 11);
  EXPECT_THAT(Appended(), HasSubstr("picture"));
}

TEST_F(CarryTagsTest, ShiftsNumbersOfADocumentWithoutATreeSoThatTheyLeadNowhere) {
  QPDF& result = CarryAll(
      {Tagged("Alpha").Build(), PagesDocument(1, "", "/StructParents 0").Build(), Tagged("Beta").Build()});
  EXPECT_EQ(Object(result, 2, 3).getKey("/StructParents").getIntValue(), 1);
  EXPECT_EQ(Object(result, 3, 3).getKey("/StructParents").getIntValue(), 2);
}

TEST_F(CarryTagsTest, RenamesARoleThatMeansSomethingElse) {
  const auto numbers = std::string(kNumbers);
  QPDF& result = CarryAll(
      {Tagged("Alpha", numbers + " /RoleMap << /Title /H1 /Same /P >>").Build(),
       Tagged("Beta", numbers + " /RoleMap << /Title /H2 /Same /P /Sub /Title >>", "/S /Title").Build(),
       Tagged("Gamma", numbers + " /RoleMap << /Sub /Title /Title /H1 >>", "/S /Sub").Build()});
  QPDFObjectHandle roles = TagRoot().getKey("/RoleMap");
  EXPECT_EQ(roles.unparse(), "<< /Same /P /Sub /Title-2 /Sub-3 /Title /Title /H1 /Title-2 /H2 >>");
  EXPECT_EQ(Object(result, 1, 6).getKey("/S").getName(), "/P");
  EXPECT_EQ(Object(result, 2, 6).getKey("/S").getName(), "/Title-2");
  EXPECT_EQ(Object(result, 3, 6).getKey("/S").getName(), "/Sub-3");
}

TEST_F(CarryTagsTest, TakesANewRoleThatNoDocumentHas) {
  const auto numbers = std::string(kNumbers);
  CarryAll({Tagged("Alpha", numbers + " /RoleMap << /A /H1 >>").Build(),
            Tagged("Beta", numbers + " /RoleMap << /A /H2 /A-2 /H3 >>").Build()});
  EXPECT_EQ(TagRoot().getKey("/RoleMap").unparse(), "<< /A /H1 /A-2 /H3 /A-3 /H2 >>");
}

TEST_F(CarryTagsTest, LeavesTypesOfANamespace) {
  const std::string roles = std::string(kNumbers) + " /RoleMap << /A /";
  QPDF& result = CarryAll({Tagged("Alpha", roles + "H1 >>").Build(),
                           Tagged("Beta", roles + "H2 >>", "/S /A /NS << /NS (x) >>").Build()});
  EXPECT_EQ(Object(result, 2, 6).getKey("/S").getName(), "/A");
}

TEST_F(CarryTagsTest, RenamesARoleThatLeadsToARenamedOne) {
  const auto roles = [](const std::string& last) {
    return std::string(kNumbers) + " /RoleMap << /A /B /B /" + last + " >>";
  };
  QPDF& result =
      CarryAll({Tagged("Alpha", roles("H1")).Build(), Tagged("Beta", roles("H2"), "/S /A").Build()});
  EXPECT_EQ(TagRoot().getKey("/RoleMap").unparse(), "<< /A /B /A-2 /B-2 /B /H1 /B-2 /H2 >>");
  EXPECT_EQ(Object(result, 2, 6).getKey("/S").getName(), "/A-2");
}

TEST_F(CarryTagsTest, RenamesAClassThatMeansSomethingElse) {
  const auto classes = [](const std::string& align) {
    return std::string(kNumbers) + " /ClassMap << /C << /O /Layout /TextAlign /" + align + " >> >>";
  };
  auto second = Tagged("Beta", std::string(kNumbers) + " /ClassMap << /C 7 0 R >>", "/S /P /C /C");
  second.Object(7, "<< /O /Layout /TextAlign /Start >>");
  QPDF& result = CarryAll({Tagged("Alpha", classes("Start")).Build(), second.Build(),
                           Tagged("Gamma", classes("End"), "/S /P /C [ /C 0 /D ]").Build()});
  EXPECT_EQ(Object(result, 2, 6).getKey("/C").getName(), "/C");
  EXPECT_EQ(Object(result, 3, 6).getKey("/C").unparse(), "[ /C-3 0 /D ]");
  EXPECT_EQ(TagRoot().getKey("/ClassMap").getKey("/C-3").getKey("/TextAlign").getName(), "/End");
}

TEST_F(CarryTagsTest, ChangesNoElementOfAnotherDocument) {
  const auto roles = [](const std::string& role) {
    return std::string(kNumbers) + " /RoleMap << /A /" + role + " >>";
  };
  // Object 13 of the second document is none of its own; by its number it is object 6 of the third one.
  QPDF& result = CarryAll({Tagged("Alpha", roles("H1")).Build(),
                           Tagged("Beta", roles("H2"), "/S /A /K [ 0 13 0 R ]").Build(),
                           Tagged("Gamma", roles("H1"), "/S /A").Build()});
  ASSERT_EQ(Numbered(2, 13), Numbered(3, 6));
  EXPECT_EQ(Object(result, 2, 6).getKey("/S").getName(), "/A-2");
  EXPECT_EQ(Object(result, 3, 6).getKey("/S").getName(), "/A");
}

TEST_F(CarryTagsTest, SaysTheLanguageOfALaterDocument) {
  const auto document = [](const std::string& language) {
    return Tagged("text", kNumbers, "/S /P", language).Build();
  };
  QPDF& result = CarryAll({document("/Lang (en)"), document("/Lang (en)"), document("/Lang (de)"),
                           document(""), Tagged("text", kNumbers, "/S /P /Lang (fr)", "/Lang (it)").Build()});
  EXPECT_FALSE(Object(result, 1, 6).hasKey("/Lang"));
  EXPECT_FALSE(Object(result, 2, 6).hasKey("/Lang"));
  EXPECT_EQ(Object(result, 3, 6).getKey("/Lang").getStringValue(), "de");
  EXPECT_EQ(Object(result, 4, 6).getKey("/Lang").getStringValue(), "");
  EXPECT_EQ(Object(result, 5, 6).getKey("/Lang").getStringValue(), "fr");
}

TEST_F(CarryTagsTest, LeavesIdentifiersOutThatAnEarlierDocumentHas) {
  const std::string document =
      Tagged("text", std::string(kNumbers) + " /IDTree << /Names [ (id) 6 0 R ] >>", "/S /P /ID (id)")
          .Build();
  CarryAll({document, document});
  EXPECT_EQ(TagRoot().getKey("/IDTree").getKey("/Names").getArrayNItems(), 2);
  EXPECT_THAT(Losses(), ElementsAre("2: tags: an earlier document has the same identifiers of elements"));
}

TEST_F(CarryTagsTest, PutsListsOfTheRootsTogether) {
  const std::string document =
      Tagged("text", std::string(kNumbers) + " /Namespaces [ << /NS (x) >> ]").Build();
  CarryAll({document, document});
  EXPECT_EQ(TagRoot().getKey("/Namespaces").getArrayNItems(), 2);
}

TEST_F(CarryTagsTest, LeavesOutATreeWithoutNumbersAndKeepsItsPageFromLeadingToOthers) {
  QPDF& result =
      CarryAll({Tagged("Alpha").Build(), Tagged("Beta", "").Build(),
                Tagged("Gamma", "/ParentTree << /Kids [ 7 ] >>").Build(), Tagged("Delta").Build()});
  const std::string reason = ": tags: the tree of the numbers of its structure elements ";
  EXPECT_THAT(Losses(),
              ElementsAre("2" + reason + "is missing", "3" + reason + "has a node that is no dictionary"));
  EXPECT_EQ(TagRoot().getKey("/K").getArrayNItems(), 2);
  EXPECT_EQ(Object(result, 2, 3).getKey("/StructParents").getIntValue(), 1);
  EXPECT_EQ(Object(result, 4, 3).getKey("/StructParents").getIntValue(), 3);
}

TEST_F(CarryTagsTest, LeavesOutATreeWithALoopWhereElementsHaveToChange) {
  const auto document = [](const std::string& role) {
    auto built = Tagged("text", std::string(kNumbers) + " /RoleMap << /A /" + role + " >>", "/S /A /K 7 0 R");
    return built.Object(7, "<< /S /A /P 6 0 R /K [ 6 0 R ] >>").Build();
  };
  CarryAll({document("H1"), document("H2")});
  EXPECT_THAT(Losses(), ElementsAre("2: tags: its structure tree has a loop"));
  EXPECT_EQ(TagRoot().getKey("/RoleMap").unparse(), "<< /A /H1 >>");
}

TEST_F(CarryTagsTest, LeavesOutATreeWhoseNumbersAreTooHigh) {
  CarryAll({Tagged("Alpha").Build(), Tagged("Beta", "/ParentTree << /Nums [ 2147483646 6 0 R ] >>").Build()});
  EXPECT_THAT(Losses(), ElementsAre("2: tags: its structure tree has numbers that are too high"));
}

TEST_F(CarryTagsTest, LeavesOutATreeWhoseRootHasAKidThatIsNoElement) {
  CarryAll({Tagged("Alpha").Build(), Tagged("Beta", std::string("/K 4 ") + kNumbers).Build()});
  EXPECT_THAT(Losses(), ElementsAre("2: tags: the root of its structure tree has a kid that is no element"));
}

}  // namespace
}  // namespace folioweld
