#include <gmock/gmock.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "prepare/carry/names.h"
#include "prepare/carry/web_address.h"
#include "prepare/token_text.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::PagesDocument;
using ::testing::UnorderedElementsAre;

class CarryNamesTest : public testing::CarryFixture {
 protected:
  QPDF& CarryAll(const std::vector<std::string>& documents) { return Carry(documents, CarryNames); }

  /// "page name" of each destination, as a reader lists them.
  std::vector<std::string> Destinations() const {
    std::vector<std::string> lines;
    std::istringstream said(Said("pdfinfo -dests \"$file\""));
    std::string line;
    std::getline(said, line);
    while (std::getline(said, line)) {
      lines.push_back(std::to_string(std::stoi(line)) + " " + line.substr(line.find('"')));
    }
    return lines;
  }

  QPDFObjectHandle Object(QPDF& result, int document, int number) {
    return result.getObjectByID(Numbered(document, number), 0);
  }

  static std::vector<std::string> KeysOf(QPDFObjectHandle leaf) {
    std::vector<std::string> keys;
    for (int i = 0; i < leaf.getArrayNItems(); i += 2) keys.push_back(leaf.getArrayItem(i).getStringValue());
    return keys;
  }
};

/// Object 4 is the second page, which the destination `name` of a tree leads to.
DocumentBuilder DocumentWithTree(const std::string& name, const std::string& ofPages = "") {
  return PagesDocument(2, "/Names << /Dests << /Names [ (" + name + ") [ 4 0 R /Fit ] ] >> >>", ofPages);
}

DocumentBuilder DocumentWithDictionary(const std::string& name, const std::string& ofPages = "") {
  return PagesDocument(2, "/Dests << /" + name + " [ 4 0 R /Fit ] >>", ofPages);
}

std::string LinksTo(const std::string& entries) {
  return "/Annots [ << /Subtype /Link /Rect [ 0 0 9 9 ] " + entries + " >> ]";
}

TEST_F(CarryNamesTest, PutsDestinationsOfAllDocumentsIntoOneTree) {
  CarryAll({DocumentWithTree("one").Build(), PagesDocument(1).Build(), DocumentWithTree("another").Build()});
  EXPECT_THAT(Destinations(), ElementsAre("2 \"one\"", "5 \"another\""));
  EXPECT_THAT(KeysOf(Root().getKey("/Names").getKey("/Dests").getKey("/Names")),
              ElementsAre("another", "one"));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarryNamesTest, AddsNothingWhereOnlyTheFirstDocumentHasNames) {
  const std::string files = "/EmbeddedFiles << /Names [ (a.txt) << /F (a.txt) >> ] >> ";
  const std::string dests = "/Dests << /Names [ (one) [ 3 0 R /Fit ] (two) << /D [ 0 /Fit ] >> ] >> ";
  CarryAll({PagesDocument(2, "/Names << " + files + dests + ">>", LinksTo("/Dest [ 1 /Fit ]")).Build(),
            PagesDocument(2).Build()});
  EXPECT_EQ(Appended().find(" 0 obj"), Appended().rfind(" 0 obj"));
  EXPECT_THAT(Destinations(), ElementsAre("1 \"one\""));
}

TEST_F(CarryNamesTest, RenamesTheLaterOneOfTwoDestinationsWithOneName) {
  const std::string document = DocumentWithTree("a", LinksTo("/Dest (a)")).Build();
  QPDF& result = CarryAll({document, document, document});
  EXPECT_THAT(Destinations(), ElementsAre("2 \"a\"", "4 \"a-2\"", "6 \"a-3\""));
  const auto destination = [&](int number) {
    return Object(result, number, 3).getKey("/Annots").getArrayItem(0).getKey("/Dest").getStringValue();
  };
  EXPECT_EQ(destination(1), "a");
  EXPECT_EQ(destination(2), "a-2");
  EXPECT_EQ(destination(3), "a-3");
}

TEST_F(CarryNamesTest, TakesANewNameThatNeitherDocumentHas) {
  const std::string names = "/Names << /Dests << /Names [ (a) [ 3 0 R /Fit ] (a-2) [ 3 0 R /Fit ] ] >> >>";
  CarryAll({DocumentWithTree("a").Build(), PagesDocument(1, names).Build()});
  EXPECT_THAT(Destinations(), ElementsAre("2 \"a\"", "3 \"a-2\"", "3 \"a-3\""));
}

TEST_F(CarryNamesTest, TakesANewNameForNoOthers) {
  const std::string first = DocumentWithTree("a").Build();
  CarryAll({first, first, DocumentWithTree("a-2").Build()});
  EXPECT_THAT(Destinations(), ElementsAre("2 \"a\"", "4 \"a-3\"", "6 \"a-2\""));
}

TEST_F(CarryNamesTest, ExtendsATextInUtf16InUtf16) {
  const std::string document =
      PagesDocument(1, "/Names << /Dests << /Names [ <FEFF00E9> [ 3 0 R /Fit ] ] >> >>").Build();
  CarryAll({document, document});
  EXPECT_THAT(KeysOf(Root().getKey("/Names").getKey("/Dests").getKey("/Names")),
              ElementsAre(std::string("\xFE\xFF\0\xE9", 4), std::string("\xFE\xFF\0\xE9\0-\0002", 8)));
}

TEST_F(CarryNamesTest, ChangesEveryKindOfActionThatUsesARenamedDestination) {
  const std::string goTo = "<< /S /GoTo /D (a) >>";
  auto second = DocumentWithTree("a", "/AA << /O " + goTo + " >> /Annots 5 0 R");
  second.Object(5, "[ 6 0 R << /Subtype /Link /A 7 0 R >> ]")
      .Object(6, "<< /Subtype /Widget /AA << /U " + goTo + " >> >>")
      .Object(7, "<< /S /URI /URI (x) /Next [ << /S /Named /N /NextPage /Next 8 0 R >> ] >>")
      .Object(8, "<< /S /GoTo /D (a) /SD [ 3 0 R /Fit ] /Next 7 0 R >>");
  QPDF& result = CarryAll({DocumentWithTree("a").Build(), second.Build()});
  const auto name = [](QPDFObjectHandle action) { return action.getKey("/D").getStringValue(); };
  EXPECT_EQ(name(Object(result, 2, 3).getKey("/AA").getKey("/O")), "a-2");
  EXPECT_EQ(name(Object(result, 2, 4).getKey("/AA").getKey("/O")), "a-2");
  EXPECT_EQ(name(Object(result, 2, 6).getKey("/AA").getKey("/U")), "a-2");
  EXPECT_EQ(name(Object(result, 2, 8)), "a-2");
}

TEST_F(CarryNamesTest, ChangesOutlineItemsAndFieldsThatUseARenamedDestination) {
  auto second = PagesDocument(2,
                              "/Names << /Dests << /Names [ (a) [ 4 0 R /Fit ] ] >> >> /Outlines 5 0 R "
                              "/AcroForm << /Fields [ 8 0 R ] >>");
  second.Object(5, "<< /First 6 0 R /Last 7 0 R >>")
      .Object(6, "<< /Title (A) /Parent 5 0 R /Next 7 0 R /Dest (a) >>")
      .Object(7, "<< /Title (B) /Parent 5 0 R /Prev 6 0 R /Next 6 0 R /A << /S /GoTo /D (a) >> >>")
      .Object(8, "<< /T (field) /Kids [ 9 0 R ] >>")
      .Object(9, "<< /Parent 8 0 R /A << /S /GoTo /D (a) >> >>");
  QPDF& result = CarryAll({DocumentWithTree("a").Build(), second.Build()});
  EXPECT_EQ(Object(result, 2, 6).getKey("/Dest").getStringValue(), "a-2");
  EXPECT_EQ(Object(result, 2, 7).getKey("/A").getKey("/D").getStringValue(), "a-2");
  EXPECT_EQ(Object(result, 2, 9).getKey("/A").getKey("/D").getStringValue(), "a-2");
}

TEST_F(CarryNamesTest, LeavesActionsThatLeadIntoOtherFiles) {
  const std::string remote = "/A << /S /GoToR /F (other.pdf) /D (a) >>";
  QPDF& result = CarryAll({DocumentWithTree("a").Build(), DocumentWithTree("a", LinksTo(remote)).Build()});
  QPDFObjectHandle link = Object(result, 2, 3).getKey("/Annots").getArrayItem(0);
  EXPECT_EQ(link.getKey("/A").getKey("/D").getStringValue(), "a");
}

TEST_F(CarryNamesTest, KeepsALinkThatLeadsNowhereFromLeadingIntoAnotherDocument) {
  QPDF& result = CarryAll({PagesDocument(1, "", LinksTo("/Dest (a)")).Build(), DocumentWithTree("a").Build(),
                           PagesDocument(1, "", LinksTo("/Dest (a)")).Build()});
  EXPECT_THAT(Destinations(), ElementsAre("3 \"a\""));
  const auto destination = [&](int number) {
    return Object(result, number, 3).getKey("/Annots").getArrayItem(0).getKey("/Dest").getStringValue();
  };
  EXPECT_EQ(destination(1), "a-1");
  EXPECT_EQ(destination(3), "a-3");
}

TEST_F(CarryNamesTest, KeepsNameObjectsInADictionaryWhereAllDocumentsHaveOne) {
  const std::string document = DocumentWithDictionary("a#20b", LinksTo("/Dest /a#20b")).Build();
  QPDF& result = CarryAll({document, document});
  EXPECT_THAT(Destinations(), ElementsAre("2 \"a b\"", "4 \"a b-2\""));
  QPDFObjectHandle link = Object(result, 2, 3).getKey("/Annots").getArrayItem(0);
  EXPECT_EQ(link.getKey("/Dest").getName(), "/a b-2");
  EXPECT_FALSE(Root().hasKey("/Names"));
}

TEST_F(CarryNamesTest, PutsDictionariesIntoTheTreeWhereADocumentHasOne) {
  const std::string dictionary = DocumentWithDictionary("a", LinksTo("/A << /S /GoTo /D /a >>")).Build();
  QPDF& result = CarryAll({dictionary, DocumentWithTree("b").Build(), dictionary});
  EXPECT_THAT(Destinations(), ElementsAre("2 \"a\"", "4 \"b\"", "6 \"a-3\""));
  EXPECT_FALSE(Root().hasKey("/Dests"));
  for (const auto& [document, name] : std::map<int, std::string>{{1, "a"}, {3, "a-3"}}) {
    QPDFObjectHandle link = Object(result, document, 3).getKey("/Annots").getArrayItem(0);
    EXPECT_EQ(link.getKey("/A").getKey("/D").getStringValue(), name);
  }
}

TEST_F(CarryNamesTest, ChangesWhatOpensFirstTogetherWithTheDictionary) {
  const std::string first =
      PagesDocument(1, "/OpenAction << /S /GoTo /D /a >> /Dests << /a [ 3 0 R /Fit ] >>").Build();
  CarryAll({first, DocumentWithTree("b").Build()});
  EXPECT_EQ(Root().getKey("/OpenAction").getKey("/D").getStringValue(), "a");
}

TEST_F(CarryNamesTest, LeadsToThePageThatADestinationHasTheIndexOf) {
  auto second =
      PagesDocument(2,
                    "/Names << /Dests << /Names [ (a) [ 1 /Fit ] (b) << /D [ 0 /Fit ] >> (c) 5 0 R ] "
                    ">> >>",
                    LinksTo("/Dest [ 1 /Fit ]"));
  second.Object(5, "[ 7 /Fit ]");
  const std::string index = "/Names << /Dests << /Names [ (first) [ 2 /Fit ] ] >> >>";
  QPDF& result = CarryAll({PagesDocument(3, index).Build(), second.Build()});
  EXPECT_THAT(Destinations(), ElementsAre("4 \"b\"", "5 \"a\""));
  EXPECT_EQ(KeysOf(Root().getKey("/Names").getKey("/Dests").getKey("/Names")).size(), 4U);
  QPDFObjectHandle values = Root().getKey("/Names").getKey("/Dests").getKey("/Names");
  EXPECT_EQ(values.getArrayItem(7).unparse(), "[ 2 /Fit ]");
  QPDFObjectHandle link = Object(result, 2, 3).getKey("/Annots").getArrayItem(0);
  EXPECT_EQ(link.getKey("/Dest").getArrayItem(0).getObjectID(), Numbered(2, 4));
}

TEST_F(CarryNamesTest, LeadsNowhereInsteadOfToAPageOfAnotherDocument) {
  const std::string second = PagesDocument(1, "", LinksTo("/A << /S /GoTo /D [ 1 /Fit ] >>")).Build();
  QPDF& result = CarryAll({PagesDocument(2).Build(), second, PagesDocument(9).Build()});
  QPDFObjectHandle link = Object(result, 2, 3).getKey("/Annots").getArrayItem(0);
  EXPECT_EQ(link.getKey("/A").getKey("/D").unparse(), "[ null /Fit ]");
}

TEST_F(CarryNamesTest, KeepsTheFirstDocumentsPageNumbersOutOfOtherDocuments) {
  const std::string first =
      PagesDocument(
          2, "/OpenAction [ 2 /Fit ] /Names << /Dests << /Names [ (a) [ 1 /Fit ] (b) [ 2 /Fit ] ] >> >>",
          "/Annots [ << /Dest [ 3 /Fit ] >> << /A << /S /GoTo /D [ 1 /Fit ] >> >> ]")
          .Build();
  QPDF& result = CarryAll({first, PagesDocument(9).Build()});
  EXPECT_EQ(Root().getKey("/Names").getKey("/Dests").getKey("/Names").unparse(),
            "[ (a) [ 1 /Fit ] (b) [ null /Fit ] ]");
  EXPECT_EQ(Root().getKey("/OpenAction").unparse(), "[ null /Fit ]");
  QPDFObjectHandle links = Object(result, 1, 3).getKey("/Annots");
  EXPECT_EQ(links.getArrayItem(0).getKey("/Dest").unparse(), "[ null /Fit ]");
  EXPECT_EQ(links.getArrayItem(1).getKey("/A").getKey("/D").unparse(), "[ 1 /Fit ]");
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarryNamesTest, OpensWhereANameThatChangesLeads) {
  CarryAll({PagesDocument(1, "/OpenAction /a /Dests << /a [ 3 0 R /Fit ] >>").Build(),
            DocumentWithTree("b").Build()});
  EXPECT_EQ(Root().getKey("/OpenAction").unparse(), "(a)");
}

TEST_F(CarryNamesTest, TellsNameObjectsFromStringsWhereADocumentHasBothKinds) {
  auto both = PagesDocument(2,
                            "/Dests << /a [ 3 0 R /Fit ] /a-0 [ 3 0 R /Fit ] /b [ 4 0 R /Fit ] >> "
                            "/Names << /Dests << /Names [ (a) [ 4 0 R /Fit ] (b) [ 4 0 R /Fit ] ] >> >>",
                            "/Annots [ << /Dest /a >> << /Dest (a) >> << /Dest /b >> ]")
                  .Build();
  QPDF& result = CarryAll({both, both});
  EXPECT_THAT(Destinations(), UnorderedElementsAre("2 \"a\"", "1 \"a-0\"", "1 \"a-1\"", "2 \"b\"",
                                                   "4 \"a-2\"", "3 \"a-0-2\"", "3 \"a-1-2\"", "4 \"b-2\""));
  const auto destination = [&](int document, int link) {
    return Object(result, document, 3).getKey("/Annots").getArrayItem(link).getKey("/Dest").getStringValue();
  };
  EXPECT_EQ(destination(1, 0), "a-1");
  EXPECT_EQ(destination(1, 1), "a");
  EXPECT_EQ(destination(1, 2), "b");
  EXPECT_EQ(destination(2, 0), "a-1-2");
  EXPECT_EQ(destination(2, 1), "a-2");
  EXPECT_EQ(destination(2, 2), "b-2");
}

TEST_F(CarryNamesTest, SplitsALargeTree) {
  std::string names;
  for (int i = 10000; i < 15000; ++i) names += "(" + std::to_string(i) + ") [ 3 0 R /Fit ]\n";
  CarryAll({DocumentWithTree("zero").Build(),
            PagesDocument(1, "/Names << /Dests << /Names [ " + names + "] >> >>").Build()});
  EXPECT_EQ(Destinations().size(), 5001U);
  QPDFObjectHandle root = Root().getKey("/Names").getKey("/Dests");
  EXPECT_EQ(root.getKey("/Kids").getArrayNItems(), 2);
  EXPECT_FALSE(root.hasKey("/Limits"));
  QPDFObjectHandle kid = root.getKey("/Kids").getArrayItem(1);
  EXPECT_EQ(kid.getKey("/Limits").getArrayItem(0).getStringValue(), "14096");
  EXPECT_EQ(kid.getKey("/Limits").getArrayItem(1).getStringValue(), "zero");
  EXPECT_EQ(kid.getKey("/Kids").getArrayItem(0).getKey("/Names").getArrayNItems(), 128);
}

TEST_F(CarryNamesTest, GivesANameOfAMegabyteALeafOfItsOwn) {
  std::string name;
  for (int i = 0; i < 20'000; ++i) name += std::string(50, 'a') + "\\\n";
  const std::string names = "(" + name + ") [ 3 0 R /Fit ]\n(b) [ 3 0 R /Fit ]";
  CarryAll({PagesDocument(1).Build(),
            PagesDocument(1, "/Names << /Dests << /Names [ " + names + " ] >> >>").Build()});
  EXPECT_EQ(Root().getKey("/Names").getKey("/Dests").getKey("/Kids").getArrayNItems(), 2);
}

TEST_F(CarryNamesTest, WritesALargeDictionary) {
  std::string names;
  for (int i = 10000; i < 15000; ++i) names += "/" + std::to_string(i) + " [ 3 0 R /Fit ]\n";
  CarryAll({PagesDocument(1).Build(), PagesDocument(1, "/Dests << " + names + " >>").Build()});
  EXPECT_EQ(Destinations().size(), 5000U);
}

TEST_F(CarryNamesTest, ReadsWhatABrokenTreeStillHasAndTellsIt) {
  const std::string good = "<< /Limits [ (x) (y) ] /Names [ (z) [ 3 0 R /Fit ] (a) [ 3 0 R /Fit ] ] >>";
  const std::map<std::string, std::string> flaws = {
      {"4 0 R", "leads to object 4 twice"},
      {"7", "has a node that is no dictionary"},
      {"<< /Names [ (odd) ] >>", "has a key without a value"},
      {"<< /Names [ /name 3 0 R ] >>", "has a key that is no string"},
  };
  for (const auto& [kid, flaw] : flaws) {
    auto second = PagesDocument(1, "/Names << /Dests 4 0 R >>");
    second.Object(4, "<< /Kids [ " + kid + " " + good + " ] >>");
    CarryAll({PagesDocument(1).Build(), second.Build()});
    EXPECT_THAT(Destinations(), ElementsAre("2 \"a\"", "2 \"z\""));
    EXPECT_THAT(Losses(), ElementsAre("2: destinations: a part of the tree of names, which " + flaw));
  }
}

/// A tree with a million names in few bytes.
std::string DocumentWithLargeTree() {
  std::string kids;
  std::string names;
  for (int i = 0; i < 1000; ++i) {
    kids += "<< /Names 5 0 R >>\n";
    names += "()0\n";
  }
  auto document = PagesDocument(1, "/Names << /Dests << /Kids 4 0 R >> >>");
  return document.Object(4, "[ " + kids + "]").Object(5, "[ " + names + "]").Build();
}

TEST_F(CarryNamesTest, LeavesOutATreeThatIsTooLarge) {
  CarryAll({DocumentWithTree("a").Build(), DocumentWithLargeTree()});
  EXPECT_THAT(Losses(), ElementsAre("2: destinations: it has more than a million places to look at"));
  EXPECT_THAT(Destinations(), ElementsAre("2 \"a\""));
}

TEST_F(CarryNamesTest, DoesNotReadALongNameWithoutEnd) {
  for (const char* entry : {"/Dest 5 0 R", "/Dest 6 0 R", "/A << /S /URI /URI 5 0 R >>",
                            "/A << /S /GoToE /T << /R /C /N 5 0 R >> >>", "/A << /S /Thread /D 5 0 R >>"}) {
    std::string links;
    for (int i = 0; i < 500; ++i) links += "<< " + std::string(entry) + " >>\n";
    auto document = PagesDocument(1, "/Threads [ << /I << /Title 5 0 R >> >> ]", "/Annots 4 0 R");
    document.Object(4, "[ " + links + "]").Object(5, HexToken(std::string(40'000, 'n')));
    document.Object(6, "/" + std::string(40'000, 'n'));
    CarryAll({DocumentWithTree("a").Build(), document.Build()});
    ASSERT_FALSE(Losses().empty()) << entry;
    EXPECT_THAT(Losses().front(), HasSubstr(": it has more than a million places to look at")) << entry;
  }
}

TEST_F(CarryNamesTest, LeavesTheFirstDocumentsTreeAsItIsWhereThatCannotBeRead) {
  CarryAll({DocumentWithLargeTree(), PagesDocument(1).Build(), DocumentWithTree("a").Build()});
  EXPECT_THAT(Losses(), ElementsAre("1: destinations: it has more than a million places to look at",
                                    "3: destinations: the names in the first document cannot be read"));
  EXPECT_EQ(Root().getKey("/Names").getKey("/Dests").getKey("/Kids").getObjectID(), 4);
}

TEST_F(CarryNamesTest, PutsAttachmentsOfAllDocumentsIntoOneTree) {
  const auto document = [](const std::string& data) {
    auto built = PagesDocument(1, "/AF [ 4 0 R ] /Names << /EmbeddedFiles << /Names [ (a.txt) 4 0 R ] >> >>",
                               LinksTo("/A << /S /GoToE /D (x) /T << /R /C /N (a.txt) >> >>"));
    built.Object(4, "<< /Type /Filespec /F (a.txt) /UF (a.txt) /EF << /F 5 0 R >> >>").Stream(5, "", data);
    return built.Build();
  };
  QPDF& result = CarryAll({document("one"), document("two")});
  EXPECT_THAT(Said("qpdf --list-attachments \"$file\""),
              AllOf(HasSubstr("a.txt -> "), HasSubstr("a.txt-2 -> ")));
  EXPECT_EQ(Said("qpdf --show-attachment=a.txt \"$file\""), "one");
  EXPECT_EQ(Said("qpdf --show-attachment=a.txt-2 \"$file\""), "two");
  QPDFObjectHandle link = Object(result, 2, 3).getKey("/Annots").getArrayItem(0);
  EXPECT_EQ(link.getKey("/A").getKey("/T").getKey("/N").getStringValue(), "a.txt-2");
  EXPECT_EQ(Object(result, 2, 4).getKey("/F").getStringValue(), "a.txt");
  EXPECT_EQ(Root().getKey("/AF").getArrayNItems(), 2);
}

TEST_F(CarryNamesTest, GoesToTheFirstAndLastPageOfTheDocument) {
  const auto link = [](const std::string& name) { return "<< /A << /S /Named /N /" + name + " >> >> "; };
  const std::string document =
      PagesDocument(2, "", "/Annots [ " + link("FirstPage") + link("LastPage") + link("NextPage") + "]")
          .Build();
  QPDF& result = CarryAll({document, document, document});
  const auto action = [&](int number, int index) {
    QPDFObjectHandle links = Object(result, number, 3).getKey("/Annots");
    return links.getArrayItem(index).getKey("/A").unparse();
  };
  const auto goesTo = [&](int number, int page) {
    return "<< /D [ " + std::to_string(Numbered(number, page)) + " 0 R /XYZ null null null ] /S /GoTo >>";
  };
  EXPECT_EQ(action(1, 0), "<< /N /FirstPage /S /Named >>");
  EXPECT_EQ(action(1, 1), goesTo(1, 4));
  EXPECT_EQ(action(2, 0), goesTo(2, 3));
  EXPECT_EQ(action(2, 1), goesTo(2, 4));
  EXPECT_EQ(action(2, 2), "<< /N /NextPage /S /Named >>");
  EXPECT_EQ(action(3, 0), goesTo(3, 3));
  EXPECT_EQ(action(3, 1), "<< /N /LastPage /S /Named >>");
}

TEST_F(CarryNamesTest, LeadsToAFileThatIsAttachedToAPageOfTheDocument) {
  const auto link = [](const std::string& page) {
    return "<< /A << /S /GoToE /D (x) /T << /R /C /A 0 /P " + page + " >> >> >> ";
  };
  const auto document = [&](int pages) {
    return PagesDocument(pages, "/Dests << /a [ 3 0 R /Fit ] >>",
                         "/Annots [ " + link("1") + link("2") + link("(a)") + "]")
        .Build();
  };
  QPDF& result = CarryAll({document(2), document(3), document(1)});
  const auto pages = [&](int number) {
    std::vector<std::string> found;
    for (QPDFObjectHandle annotation : Object(result, number, 3).getKey("/Annots").getArrayAsVector())
      found.push_back(annotation.getKey("/A").getKey("/T").getKey("/P").unparse());
    return found;
  };
  EXPECT_THAT(pages(1), ElementsAre("1", "null", "(a)"));
  EXPECT_THAT(pages(2), ElementsAre("3", "4", "(a-2)"));
  EXPECT_THAT(pages(3), ElementsAre("null", "null", "(a-3)"));
}

TEST_F(CarryNamesTest, LeavesTargetsThatAreNoAttachmentOfTheFile) {
  const std::string files = "/Names << /EmbeddedFiles << /Names [ (a) << /F (a) >> ] >> >>";
  const auto link = [](const std::string& action) {
    return "<< /Subtype /Link /A << /S /GoToE /D (x) " + action + " >> >> ";
  };
  const std::string links = link("/F (other.pdf) /T << /R /C /N (a) >>") + link("/T << /R /P /N (a) >>");
  QPDF& result = CarryAll({PagesDocument(1, files).Build(),
                           PagesDocument(1, files + "/AF << /F (a) >>", "/Annots [ " + links + "]").Build()});
  for (const int i : {0, 1}) {
    QPDFObjectHandle action = Object(result, 2, 3).getKey("/Annots").getArrayItem(i).getKey("/A");
    EXPECT_EQ(action.getKey("/T").getKey("/N").getStringValue(), "a");
  }
  EXPECT_EQ(Root().getKey("/AF").getArrayItem(0).getKey("/F").getStringValue(), "a");
}

TEST_F(CarryNamesTest, CarriesNameTreesThatItDoesNotKnow) {
  const std::string document = PagesDocument(1, "/Names << /Templates << /Names [ (t) 3 0 R ] >> >>").Build();
  CarryAll({document, document});
  EXPECT_THAT(KeysOf(Root().getKey("/Names").getKey("/Templates").getKey("/Names")), ElementsAre("t", "t-2"));
}

TEST_F(CarryNamesTest, CarriesArticles) {
  auto document = PagesDocument(1, "/Threads [ 4 0 R ]", "/B [ 5 0 R ]");
  document.Object(4, "<< /F 5 0 R >>").Object(5, "<< /T 4 0 R /N 5 0 R /V 5 0 R /P 3 0 R /R [ 0 0 9 9 ] >>");
  CarryAll({PagesDocument(1).Build(), document.Build(), document.Build()});
  ASSERT_EQ(Root().getKey("/Threads").getArrayNItems(), 2);
  EXPECT_EQ(Root().getKey("/Threads").getArrayItem(1).getObjectID(), Numbered(3, 4));
}

TEST_F(CarryNamesTest, LeadsArticlesToThoseOfTheirDocument) {
  const auto document = [](const std::string& title) {
    const auto link = [](const std::string& action) {
      return "<< /A << /S /Thread /D " + action + " >> >> ";
    };
    auto built = PagesDocument(1, "/Threads [ 4 0 R 6 0 R ]",
                               "/Annots [ " + link("1") + link("(" + title + ")") + link("2") +
                                   link("(else)") + link("4 0 R") + link("1 /F (other.pdf)") + "]");
    built.Object(4, "<< /F 5 0 R /I << /Title (" + title + ") >> >>");
    built.Object(5, "<< /T 4 0 R /N 5 0 R /V 5 0 R /P 3 0 R /R [ 0 0 9 9 ] >>");
    return built.Object(6, "<< /F 5 0 R >>").Build();
  };
  QPDF& result = CarryAll({document("one"), document("one"), document("else")});
  const auto leads = [&](int number) {
    std::vector<std::string> targets;
    QPDFObjectHandle links = Object(result, number, 3).getKey("/Annots");
    for (QPDFObjectHandle link : links.getArrayAsVector())
      targets.push_back(link.getKey("/A").getKey("/D").unparse());
    return targets;
  };
  const auto reference = [&](int number, int object) {
    return std::to_string(Numbered(number, object)) + " 0 R";
  };
  EXPECT_THAT(leads(1), ElementsAre("1", "(one)", "null", "null", "4 0 R", "1"));
  EXPECT_THAT(leads(2), ElementsAre("3", "2", "null", "null", reference(2, 4), "1"));
  EXPECT_THAT(leads(3), ElementsAre("5", "4", "null", "4", reference(3, 4), "1"));
}

TEST_F(CarryNamesTest, CountsTheArticlesOfADocumentThatHasTooManyNames) {
  auto document = PagesDocument(1, "/Threads [ 4 0 R ]", "/Annots [ << /A << /S /Thread /D 0 >> >> ]");
  document.Object(4, "<< /F 5 0 R >>").Object(5, "<< /T 4 0 R /N 5 0 R /V 5 0 R /P 3 0 R /R [ 0 0 9 9 ] >>");
  std::string links;
  for (int i = 0; i < 500; ++i) links += "<< /A << /S /Thread /D (x) >> >>\n";
  auto second = PagesDocument(1, "/Threads [ << /I << /Title 5 0 R >> >> ]", "/Annots 4 0 R");
  second.Object(4, "[ " + links + "]").Object(5, HexToken(std::string(40'000, 'n')));
  QPDF& result = CarryAll({document.Build(), second.Build(), document.Build()});
  EXPECT_EQ(Root().getKey("/Threads").getArrayNItems(), 3);
  QPDFObjectHandle link = Object(result, 3, 3).getKey("/Annots").getArrayItem(0);
  EXPECT_EQ(link.getKey("/A").getKey("/D").getIntValue(), 2);
  EXPECT_THAT(Losses(), ElementsAre("2: names: it has more than a million places to look at"));
}

/// With links to the web, each of which has its number in "/Annots".
std::string DocumentWithLinks(const std::string& base, const std::vector<std::string>& links) {
  std::string annotations;
  for (const std::string& link : links) annotations += "<< /A << /S /URI /URI (" + link + ") >> >> ";
  return PagesDocument(1, base.empty() ? "" : "/URI << /Base (" + base + ") >>",
                       "/Annots [ " + annotations + "]")
      .Build();
}

class CarriedWebLinks : public CarryNamesTest {
 protected:
  std::vector<std::string> Links(QPDF& result, int document) {
    std::vector<std::string> links;
    for (QPDFObjectHandle link : Object(result, document, 3).getKey("/Annots").getArrayAsVector())
      links.push_back(link.getKey("/A").getKey("/URI").getStringValue());
    return links;
  }

  std::string Base() {
    QPDFObjectHandle base = Root().getKey("/URI");
    return base.isDictionary() && base.getKey("/Base").isString() ? base.getKey("/Base").getStringValue()
                                                                  : "none";
  }
};

TEST_F(CarriedWebLinks, BecomeWholeWhereTheirBaseIsNotTheFirstDocuments) {
  const std::vector<std::string> links = {"x", "mailto:a@b", "?q"};
  QPDF& result = CarryAll({DocumentWithLinks("http://a/b/", links), DocumentWithLinks("http://a/b/", links),
                           DocumentWithLinks("http://c/d/e?f", links)});
  EXPECT_EQ(Base(), "http://a/b/");
  EXPECT_EQ(Links(result, 1), links);
  EXPECT_EQ(Links(result, 2), links);
  EXPECT_THAT(Links(result, 3), ElementsAre("http://c/d/x", "mailto:a@b", "http://c/d/e?q"));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedWebLinks, BecomeWholeWhereTheFirstDocumentHasNoBase) {
  QPDF& result = CarryAll({DocumentWithLinks("", {"x"}), DocumentWithLinks("http://a/", {"x"})});
  EXPECT_THAT(Links(result, 1), ElementsAre("x"));
  EXPECT_THAT(Links(result, 2), ElementsAre("http://a/x"));
  EXPECT_EQ(Base(), "none");
}

TEST_F(CarriedWebLinks, AllBecomeWholeWhereSomeHaveNoBase) {
  QPDF& result = CarryAll({DocumentWithLinks("http://a/", {"x"}), DocumentWithLinks("", {"x"}),
                           DocumentWithLinks("http://a/", {"y"})});
  EXPECT_THAT(Links(result, 1), ElementsAre("http://a/x"));
  EXPECT_THAT(Links(result, 2), ElementsAre("x"));
  EXPECT_THAT(Links(result, 3), ElementsAre("http://a/y"));
  EXPECT_EQ(Base(), "none");
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedWebLinks, StayWithTheFirstDocumentsBaseWhereNoOthersNeedNone) {
  QPDF& result = CarryAll({DocumentWithLinks("http://a/", {"x"}), DocumentWithLinks("", {"http://b"}),
                           DocumentWithLinks("b", {"http://b"})});
  EXPECT_THAT(Links(result, 1), ElementsAre("x"));
  EXPECT_EQ(Base(), "http://a/");
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedWebLinks, AreToldWhereTheirBaseIsNoAddress) {
  CarryAll({DocumentWithLinks("a", {"x"}), DocumentWithLinks("", {"x"}), DocumentWithLinks("b", {"x"}),
            DocumentWithLinks("a", {"x"})});
  EXPECT_EQ(Base(), "a");
  EXPECT_THAT(Losses(), ElementsAre("2: destinations: its relative links to the web lead elsewhere",
                                    "3: destinations: its relative links to the web lead elsewhere"));
}

TEST(WebAddresses, AreRelativeToABaseAsBrowsersTakeThem) {
  // The examples of RFC 3986, 5.4.
  const std::map<std::string, std::string> wholes = {
      {"g:h", "g:h"},
      {"g", "http://a/b/c/g"},
      {"./g", "http://a/b/c/g"},
      {"g/", "http://a/b/c/g/"},
      {"/g", "http://a/g"},
      {"//g", "http://g"},
      {"?y", "http://a/b/c/d;p?y"},
      {"g?y", "http://a/b/c/g?y"},
      {"#s", "http://a/b/c/d;p?q#s"},
      {"g#s", "http://a/b/c/g#s"},
      {";x", "http://a/b/c/;x"},
      {"", "http://a/b/c/d;p?q"},
      {".", "http://a/b/c/"},
      {"..", "http://a/b/"},
      {"../g", "http://a/b/g"},
      {"../..", "http://a/"},
      {"../../../g", "http://a/g"},
      {"/./g", "http://a/g"},
      {"g.", "http://a/b/c/g."},
      {"..g", "http://a/b/c/..g"},
      {"./g/.", "http://a/b/c/g/"},
      {"g/../h", "http://a/b/c/h"},
      {"g?y/../x", "http://a/b/c/g?y/../x"},
  };
  for (const auto& [link, whole] : wholes) EXPECT_EQ(WholeAddress("http://a/b/c/d;p?q", link), whole) << link;
  EXPECT_EQ(WholeAddress("http://a", "g"), "http://a/g");
  EXPECT_EQ(WholeAddress("http://a?q", "#s"), "http://a?q#s");
}

TEST_F(CarryNamesTest, LeavesScriptsAndThePortfolioToTheFirstDocumentAndTellsIt) {
  const std::string document =
      PagesDocument(1, "/Collection << >> /Names << /JavaScript << /Names [ (s) << /S /JavaScript >> ] >> >>")
          .Build();
  CarryAll({document, document});
  EXPECT_THAT(KeysOf(Root().getKey("/Names").getKey("/JavaScript").getKey("/Names")), ElementsAre("s"));
  EXPECT_THAT(Losses(),
              ElementsAre("2: scripts: only the first document's can run for the whole file",
                          "2: attachments: only the first document can say how they are presented"));
}

}  // namespace
}  // namespace folioweld
