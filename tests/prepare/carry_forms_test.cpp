#include <gmock/gmock.h>
#include <map>
#include <string>
#include <vector>

#include "prepare/carry/forms.h"
#include "prepare/carry/forms_same_value.h"
#include "prepare/token_text.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::PagesDocument;

/// A page with one text field, object 4, which is its widget as well.
DocumentBuilder FormDocument(const std::string& ofField, const std::string& ofForm = "",
                             const std::string& moreFields = "") {
  auto document = PagesDocument(1, "/AcroForm << /Fields [ 4 0 R " + moreFields + " ] " + ofForm + " >>",
                                "/Annots [ 4 0 R ]");
  document.Object(4,
                  "<< /Type /Annot /Subtype /Widget /Rect [ 9 9 90 30 ] /FT /Tx /P 3 0 R " + ofField + " >>");
  return document;
}

std::string Helvetica(const std::string& more = "") {
  return "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica " + more + " >>";
}

class CarriedForms : public testing::CarryFixture {
 protected:
  QPDF& Carried(const std::vector<std::string>& documents) {
    return Carry(documents, [](Revision& revision) { CarryForms(revision); });
  }

  QPDFObjectHandle Form() { return Root().getKey("/AcroForm"); }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (QPDFObjectHandle field : Form().getKey("/Fields").getArrayAsVector()) {
      names.push_back(field.getKey("/T").isString() ? field.getKey("/T").getUTF8Value() : "none");
    }
    return names;
  }

  /// The entry of the field that FormDocument makes, in a document counted from 1.
  std::string EntryOfField(QPDF& file, int document, const std::string& key, int field = 4) {
    return file.getObjectByID(Numbered(document, field), 0).getKey(key).unparseResolved();
  }
};

TEST_F(CarriedForms, HaveTheFieldsOfAllDocumentsInOrder) {
  Carried({FormDocument("/T (b) /V (1)").Build(), PagesDocument(1).Build(),
           FormDocument("/T (a) /V (3)").Build()});
  EXPECT_THAT(Names(), ElementsAre("b", "a"));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedForms, ComeFromALaterDocumentAlone) {
  Carried(
      {PagesDocument(1).Build(), FormDocument("/T (a)", "/DA (/F 9 Tf) /Q 2 /NeedAppearances true").Build()});
  EXPECT_THAT(Names(), ElementsAre("a"));
  EXPECT_EQ(Form().getKey("/DA").getStringValue(), "/F 9 Tf");
  EXPECT_EQ(Form().getKey("/Q").getIntValue(), 2);
}

TEST_F(CarriedForms, StayAsTheyAreWhereOnlyTheFirstDocumentHasOne) {
  Carry({FormDocument("/T (a)", "/XFA (x) /SigFlags 3").Build(), PagesDocument(1).Build()},
        [](Revision& revision) {
          const std::size_t written = revision.Written().size();
          CarryForms(revision);
          EXPECT_EQ(revision.Written().size(), written);
        });
  EXPECT_TRUE(Form().hasKey("/XFA"));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedForms, GiveAFieldTheNumberOfItsDocumentWhereItsNameIsTaken) {
  const std::string document = FormDocument("/T (name)").Build();
  Carried({document, document, document});
  EXPECT_THAT(Names(), ElementsAre("name", "name-2", "name-3"));
}

TEST_F(CarriedForms, GiveTheNextNumberThatIsFree) {
  auto second = PagesDocument(1, "/AcroForm << /Fields [ 4 0 R 5 0 R ] >>");
  second.Object(4, "<< /FT /Tx /T (name) >>").Object(5, "<< /FT /Tx /T (name-2) >>");
  Carried({FormDocument("/T (name)").Build(), second.Build(), FormDocument("/T (name-2)").Build()});
  EXPECT_THAT(Names(), ElementsAre("name", "name-3", "name-2", "name-2-3"));
}

TEST_F(CarriedForms, HoldTheNewNamesAsTakenToo) {
  Carried({FormDocument("/T (name)").Build(), FormDocument("/T (name)").Build(),
           FormDocument("/T (name-2)").Build()});
  EXPECT_THAT(Names(), ElementsAre("name", "name-2", "name-2-3"));
}

TEST_F(CarriedForms, HaveNoFieldOfAnotherDocument) {
  // In the joined file, 9 is the field of the second document.
  Carried({FormDocument("/Kids [ 9 0 R ]").Build(), FormDocument("/T (name)").Build()});
  EXPECT_EQ(Numbered(2, 4), 9);
  EXPECT_THAT(Names(), ElementsAre("none", "name"));
}

TEST_F(CarriedForms, CompareNamesAsTextWhateverTheirEncoding) {
  Carried({FormDocument("/T (\\344)").Build(), FormDocument("/T <FEFF00E4>").Build()});
  EXPECT_THAT(Names(), ElementsAre("ä", "ä-2"));
}

TEST_F(CarriedForms, RenameWhereNamesBeginBelowRootsWithoutOne) {
  auto second = PagesDocument(1, "/AcroForm << /Fields [ 4 0 R ] >>");
  second.Object(4, "<< /FT /Tx /Kids [ 5 0 R 6 0 R ] >>");
  second.Object(5, "<< /Parent 4 0 R /T (name) /Kids [ 7 0 R ] >>").Object(6, "<< /Parent 4 0 R /T (own) >>");
  second.Object(7, "<< /Parent 5 0 R /T (name) >>");
  QPDF& file = Carried({FormDocument("/T (name)").Build(), second.Build()});
  EXPECT_EQ(EntryOfField(file, 2, "/T", 5), "(name-2)");
  EXPECT_EQ(EntryOfField(file, 2, "/T", 6), "(own)");
  EXPECT_EQ(EntryOfField(file, 2, "/T", 7), "(name)");
}

TEST_F(CarriedForms, ComeToNoOneNameForADotInOne) {
  const std::string dotted = FormDocument("/T (a.b) /A << /S /Hide /T [ (a.b) (a.b.c) (a) ] >>").Build();
  auto tree = FormDocument("/T (a) /Kids [ 5 0 R ]");
  tree.Object(5, "<< /Parent 4 0 R /T (b) >>");
  QPDF& file = Carried({dotted, dotted, tree.Build(), FormDocument("/T (a.c)").Build(),
                        FormDocument("/T (a.b.c)").Build(), FormDocument("/T (ab)").Build()});
  EXPECT_THAT(Names(), ElementsAre("a.b", "a-2.b", "a-3", "a.c", "a-5.b.c", "ab"));
  EXPECT_EQ(file.getObjectByID(Numbered(2, 4), 0).getKey("/A").getKey("/T").unparse(),
            "[ (a-2.b) (a-2.b.c) (a) ]");
}

TEST_F(CarriedForms, ChangeTheNamesInActionsTogether) {
  auto second = FormDocument("/T (name) /A << /S /Hide /T (name.kid) /Next [ 5 0 R 6 0 R ] >> /Lock 7 0 R");
  second.Object(5, "<< /S /ResetForm /Fields 8 0 R /Next 5 0 R >>");
  second.Object(6, "<< /S /URI /T (name) /Fields [ (name) ] >>");
  second.Object(7, "<< /Type /SigFieldLock /Action /Include /Fields [ (name) ] >>");
  second.Object(8, "[ (other) 4 0 R (name) ]");
  QPDF& file = Carried({FormDocument("/T (name)").Build(), second.Build()});
  EXPECT_EQ(file.getObjectByID(Numbered(2, 4), 0).getKey("/A").getKey("/T").getStringValue(), "name-2.kid");
  QPDFObjectHandle list = file.getObjectByID(Numbered(2, 8), 0);
  EXPECT_EQ(list.getArrayItem(0).getStringValue(), "other");
  EXPECT_EQ(list.getArrayItem(2).getStringValue(), "name-2");
  EXPECT_EQ(EntryOfField(file, 2, "/T", 6), "(name)");
  EXPECT_EQ(EntryOfField(file, 2, "/Fields", 7), "[ (name-2) ]");
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedForms, AreResetAndSentEachForItself) {
  const auto document = [](const std::string& name) {
    auto built = FormDocument("/T (" + name + ") /A 5 0 R", "", "6 0 R");
    built.Object(5, "<< /S /ResetForm /Flags 1 /Next << /S /SubmitForm /F (x) /Flags 5 >> >>");
    return built.Object(6, "<< /T (" + name + "2) /FT /Tx >>").Build();
  };
  QPDF& file = Carried({document("a"), document("b")});
  for (const int number : {1, 2}) {
    QPDFObjectHandle reset = file.getObjectByID(Numbered(number, 5), 0);
    for (QPDFObjectHandle action : {reset, reset.getKey("/Next")}) {
      ASSERT_EQ(action.getKey("/Fields").getArrayNItems(), 2);
      EXPECT_EQ(action.getKey("/Fields").getArrayItem(0).getObjectID(), Numbered(number, 4));
      EXPECT_EQ(action.getKey("/Fields").getArrayItem(1).getObjectID(), Numbered(number, 6));
    }
    EXPECT_EQ(reset.getKey("/Flags").getIntValue(), 0);
    EXPECT_EQ(reset.getKey("/Next").getKey("/Flags").getIntValue(), 4);
  }
  QPDF& alone = Carried({PagesDocument(1).Build(), document("a")});
  EXPECT_EQ(EntryOfField(alone, 2, "/Fields", 5), "null");
}

/// Its action resets all fields but for those that `excluded` lists. 4 is "a", 6 is "p" with the kids 7,
/// "p.q", and 8, "p.r", which has the widget 9.
DocumentBuilder ResettingDocument(const std::string& excluded) {
  auto document = FormDocument("/T (a) /A 5 0 R", "", "6 0 R");
  document.Object(5, "<< /S /ResetForm /Fields [ " + excluded + " ] /Flags 1 >>");
  document.Object(6, "<< /FT /Tx /T (p) /Kids [ 7 0 R 8 0 R ] >>");
  document.Object(7, "<< /Parent 6 0 R /T (q) >>").Object(8, "<< /Parent 6 0 R /T (r) /Kids [ 9 0 R ] >>");
  return document.Object(9, "<< /Parent 8 0 R /Subtype /Widget /Rect [ 9 9 90 30 ] >>");
}

TEST_F(CarriedForms, AreResetEachForItselfWhereSomeFieldsAreNot) {
  const std::string other = FormDocument("/T (a)").Build();
  const std::map<std::string, std::vector<int>> listed = {
      {"(a)", {6}},      {"(p)", {4}},      {"4 0 R (p.q)", {8}},     {"(p.r)", {4, 7}},
      {"8 0 R", {4, 7}}, {"9 0 R", {4, 7}}, {"(b) (q) null", {4, 6}}, {"<FEFF0070>", {4}},
  };
  for (const auto& [excluded, expected] : listed) {
    QPDF& file = Carried({other, ResettingDocument(excluded).Build(), other});
    QPDFObjectHandle reset = file.getObjectByID(Numbered(2, 5), 0);
    EXPECT_EQ(reset.getKey("/Flags").getIntValue(), 0);
    std::vector<int> numbers;
    for (QPDFObjectHandle field : reset.getKey("/Fields").getArrayAsVector())
      numbers.push_back(field.getObjectID() - Numbered(2, 0));
    EXPECT_EQ(numbers, expected) << excluded;
  }
}

TEST_F(CarriedForms, KeepOutWhatAnActionLeavesOutInADocumentAlone) {
  QPDF& file = Carried({PagesDocument(1).Build(), ResettingDocument("(a)").Build()});
  EXPECT_EQ(EntryOfField(file, 2, "/Fields", 5), "[ (a) ]");
  EXPECT_EQ(EntryOfField(file, 2, "/Flags", 5), "1");
}

TEST_F(CarriedForms, AreLeftAloneByAnActionForNoField) {
  // Some readers take an empty list for none, and reset all fields.
  QPDF& file = Carried({ResettingDocument("(a) 6 0 R").Build(), FormDocument("/T (a)").Build()});
  QPDFObjectHandle reset = file.getObjectByID(Numbered(1, 5), 0);
  EXPECT_EQ(reset.getKey("/Flags").getIntValue(), 1);
  std::vector<int> numbers;
  for (QPDFObjectHandle field : reset.getKey("/Fields").getArrayAsVector())
    numbers.push_back(field.getObjectID());
  EXPECT_THAT(numbers, ElementsAre(4, 6, 7, 8, 9, Numbered(2, 4)));
}

TEST_F(CarriedForms, TellThatRenamedFieldsAreSentAndImportedByTheirNewNames) {
  const std::string sends = FormDocument("/T (a) /A << /S /SubmitForm /F (x) /Fields [ (a) ] >>").Build();
  Carried({sends, sends, FormDocument("/T (a) /A << /S /ImportData /F (x) >>").Build(),
           FormDocument("/T (b) /A << /S /SubmitForm /F (x) >>").Build()});
  EXPECT_THAT(Losses(), ElementsAre("2: names: its renamed fields are sent and imported by their new names",
                                    "3: names: its renamed fields are sent and imported by their new names"));
}

TEST_F(CarriedForms, TellThatScriptsMayUseOldNames) {
  const std::string script = "/AA << /C << /S /JavaScript /JS (x) >> >>";
  Carried({FormDocument("/T (a)" + script).Build(), FormDocument("/T (a)" + script).Build(),
           FormDocument("/T (c)" + script).Build()});
  EXPECT_THAT(Losses(), ElementsAre("2: scripts: they may use the old names of renamed fields"));
}

TEST_F(CarriedForms, KeepWhatFieldsInheritedFromTheirOwnForm) {
  QPDF& file = Carried({FormDocument("/T (a)", "/DA (/F 1 Tf) /Q 1").Build(),
                        FormDocument("/T (b)", "/DA (/F 2 Tf)").Build(),
                        FormDocument("/T (c) /DA (/F 4 Tf) /Q 2", "/DA (/F 3 Tf)").Build(),
                        FormDocument("/T (d)", "/DA (/F 1 Tf) /Q 1").Build()});
  EXPECT_EQ(EntryOfField(file, 1, "/DA"), "null");
  EXPECT_EQ(EntryOfField(file, 2, "/DA"), "(/F 2 Tf)");
  EXPECT_EQ(EntryOfField(file, 2, "/Q"), "0");
  EXPECT_EQ(EntryOfField(file, 3, "/DA"), "(/F 4 Tf)");
  EXPECT_EQ(EntryOfField(file, 3, "/Q"), "2");
  EXPECT_EQ(EntryOfField(file, 4, "/DA"), "null");
  EXPECT_EQ(EntryOfField(file, 4, "/Q"), "null");
}

TEST_F(CarriedForms, RenameAFontThatIsAnotherOneUnderTheSameName) {
  auto first =
      FormDocument("/T (a)", "/DR << /Font << /F 5 0 R /G 6 0 R >> /ProcSet [ /PDF ] >> /DA (/F 9 Tf)");
  first.Object(5, Helvetica()).Object(6, Helvetica("/Encoding 7 0 R"));
  first.Object(7, "<< /Type /Encoding /Differences [ 1 /a ] >>");
  auto second = FormDocument("/T (b) /DA (/F /F 9 Tf /F gs (/F 9 Tf) /G 1 Tf)",
                             "/DR 7 0 R /DA (0 g /F\n12  Tf)", "10 0 R");
  second.Object(5, Helvetica("/Encoding /WinAnsiEncoding")).Object(6, Helvetica("/Encoding 9 0 R"));
  second.Object(7, "<< /Font 8 0 R /XObject << /X 5 0 R >> /ProcSet [ /Text ] >>")
      .Object(8, "<< /F 5 0 R /G 6 0 R /F-2 6 0 R >>");
  second.Object(9, "<< /Type /Encoding /Differences [ 1 /a ] >>");
  second.Object(10, "<< /FT /Tx /T (o) /DA (/G  9  Tf) >>");
  auto third = FormDocument("/T (c)", "/DR << /Font << /F 5 0 R >> >> /DA (/F 9 Tf)");
  third.Object(5, Helvetica("/Encoding /MacRomanEncoding"));
  QPDF& file = Carried({first.Build(), second.Build(), third.Build()});
  QPDFObjectHandle resources = Form().getKey("/DR");
  QPDFObjectHandle fonts = resources.getKey("/Font");
  EXPECT_THAT(fonts.getKeys(), ElementsAre("/F", "/F-2", "/F-3", "/F-4", "/G"));
  EXPECT_EQ(fonts.getKey("/F").getObjectID(), Numbered(1, 5));
  EXPECT_EQ(fonts.getKey("/F-3").getObjectID(), Numbered(2, 5));
  EXPECT_EQ(fonts.getKey("/G").getObjectID(), Numbered(1, 6));
  EXPECT_THAT(resources.getKeys(), ElementsAre("/Font", "/ProcSet", "/XObject"));
  EXPECT_EQ(resources.getKey("/ProcSet").unparse(), "[ /PDF ]");
  EXPECT_EQ(file.getObjectByID(Numbered(2, 4), 0).getKey("/DA").getStringValue(),
            "/F /F-3 9 Tf /F gs (/F 9 Tf) /G 1 Tf");
  EXPECT_EQ(EntryOfField(file, 1, "/DA"), "null");
  EXPECT_EQ(EntryOfField(file, 3, "/DA"), "(/F-4 9 Tf)");
  EXPECT_THAT(Appended(), Not(HasSubstr("\n" + std::to_string(Numbered(2, 10)) + " 0 obj")));
}

TEST(FontsOfForms, AreTheSameWhenTheirValuesAre) {
  QPDF file;
  file.emptyPDF();
  const auto indirect = [&](const std::string& value) {
    return file.makeIndirectObject(QPDFObjectHandle::parse(value));
  };
  const auto with = [](QPDFObjectHandle inner) {
    QPDFObjectHandle outer = QPDFObjectHandle::parse("<< /B [ 1 2.50 (x) ] >>");
    outer.replaceKey("/A", inner);
    return outer;
  };
  EXPECT_TRUE(IsSameValue(with(indirect("<< /C [ /N ] >>")), with(indirect("<< /C [ /N ] >>"))));
  EXPECT_FALSE(IsSameValue(with(indirect("[ 1 ]")), with(indirect("[ 1 2 ]"))));
  EXPECT_FALSE(IsSameValue(with(indirect("[ 1 ]")), with(indirect("[ 2 ]"))));
  EXPECT_FALSE(IsSameValue(with(indirect("<< /C 1 >>")), with(indirect("<< /D 1 >>"))));
  QPDFObjectHandle stream = QPDFObjectHandle::newStream(&file, "x");
  EXPECT_TRUE(IsSameValue(with(stream), with(stream)));
  EXPECT_FALSE(IsSameValue(with(stream), with(QPDFObjectHandle::newStream(&file, "y"))));
}

TEST(FontsOfForms, AreNotComparedWithoutEnd) {
  QPDF file;
  file.emptyPDF();
  const auto endless = [&] {
    QPDFObjectHandle list = file.makeIndirectObject(QPDFObjectHandle::newArray());
    list.appendItem(list);
    list.appendItem(list);
    return list;
  };
  EXPECT_FALSE(IsSameValue(endless(), endless()));
}

TEST_F(CarriedForms, CalculateInTheOrderOfTheDocuments) {
  Carried({FormDocument("/T (a)", "/CO [ 4 0 R ]").Build(),
           FormDocument("/T (b)", "/CO [ 4 0 R null ]").Build()});
  const auto order = Form().getKey("/CO").getArrayAsVector();
  ASSERT_EQ(order.size(), 2U);
  EXPECT_EQ(QPDFObjectHandle(order[1]).getObjectID(), Numbered(2, 4));
}

TEST_F(CarriedForms, AreDrawnAnewWhereOneOfThemAsksForIt) {
  Carried({FormDocument("/T (a)", "/NeedAppearances false").Build(),
           FormDocument("/T (b)", "/NeedAppearances true").Build(), FormDocument("/T (c)").Build()});
  EXPECT_TRUE(Form().getKey("/NeedAppearances").getBoolValue());
  EXPECT_THAT(Losses(),
              ElementsAre("1: looks: its fields are drawn anew, as the form of document 2 asks for that",
                          "3: looks: its fields are drawn anew, as the form of document 2 asks for that"));
}

TEST_F(CarriedForms, AreAsTheyWereWhereAllOfThemAskToBeDrawnAnew) {
  Carried({FormDocument("/T (a)", "/NeedAppearances true").Build(), PagesDocument(1).Build(),
           FormDocument("/T (b)", "/NeedAppearances true").Build()});
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedForms, AreNotDrawnAnewForOneWithoutFields) {
  Carried(
      {PagesDocument(1, "/AcroForm << /NeedAppearances true >>").Build(), FormDocument("/T (a)").Build()});
  EXPECT_FALSE(Form().getKey("/NeedAppearances").getBoolValue());
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedForms, TellOfSignaturesAndLetFilesBeSaved) {
  const std::string signature = "/T (s) /FT /Sig /V << /Type /Sig /ByteRange [ 0 1 2 3 ] >>";
  const std::string document = FormDocument(signature, "/SigFlags 3").Build();
  auto below = FormDocument("/T (t) /FT /Sig /Kids [ 5 0 R ]");
  below.Object(5, "<< /Parent 4 0 R /V << /Type /Sig >> >>");
  Carried({document, FormDocument("/T (u) /FT /Sig").Build(), document, below.Build()});
  EXPECT_EQ(Form().getKey("/SigFlags").getIntValue(), 1);
  EXPECT_THAT(Losses(), ElementsAre("1: signatures: its signatures are no longer valid",
                                    "3: signatures: its signatures are no longer valid",
                                    "4: signatures: its signatures are no longer valid"));
}

TEST_F(CarriedForms, TellOfSignaturesInTheOnlyForm) {
  Carried({FormDocument("/T (s) /FT /Sig /V << /Type /Sig >>").Build(), PagesDocument(1).Build()});
  EXPECT_THAT(Losses(), ElementsAre("1: signatures: its signatures are no longer valid"));
}

TEST_F(CarriedForms, LeaveOutXfaFormsWhereThereAreOtherFields) {
  auto first = PagesDocument(1, "/NeedsRendering true /AcroForm << /Fields [ 4 0 R ] /XFA (x) >>");
  first.Object(4, "<< /FT /Tx /T (a) >>");
  Carried({first.Build(), FormDocument("/T (b)", "/XFA (x)").Build()});
  EXPECT_FALSE(Form().hasKey("/XFA"));
  EXPECT_FALSE(Root().hasKey("/NeedsRendering"));
  EXPECT_THAT(Losses(),
              ElementsAre("1: form: its XFA form is left out", "2: form: its XFA form is left out"));
}

TEST_F(CarriedForms, KeepTheXfaFormOfTheFirstDocumentWhereItHasAllFields) {
  Carried(
      {FormDocument("/T (a)", "/XFA (x)").Build(), PagesDocument(1, "/AcroForm << /Fields [ ] >>").Build()});
  EXPECT_TRUE(Form().hasKey("/XFA"));
  EXPECT_THAT(Losses(), IsEmpty());
}

TEST_F(CarriedForms, LeaveOutABrokenFormAlone) {
  Carried({FormDocument("/T (a)").Build(), PagesDocument(1, "/AcroForm 7").Build(),
           PagesDocument(1, "/AcroForm << /Fields 7 >>").Build(), FormDocument("/T (d)").Build()});
  EXPECT_THAT(Names(), ElementsAre("a", "d"));
  EXPECT_THAT(Losses(), ElementsAre("2: form: its form is no dictionary",
                                    "3: form: the fields of its form are no array"));
}

TEST_F(CarriedForms, TakeEachFieldOnce) {
  auto second = PagesDocument(1, "/AcroForm << /Fields [ 4 0 R 4 0 R null 1 << /T (d) >> 5 0 R ] /Q 1 >>");
  second.Object(4, "<< /FT /Tx /T (b) /Kids [ 5 0 R 4 0 R ] >>").Object(5, "<< /T (k) /Parent 4 0 R >>");
  Carried({FormDocument("/T (a)").Build(), second.Build()});
  EXPECT_THAT(Names(), ElementsAre("a", "b", "d"));
  EXPECT_EQ(Form().getKey("/Fields").getArrayItem(2).getKey("/Q").unparse(), "1");
}

TEST_F(CarriedForms, CanBeFilledInWithOtherPrograms) {
  const std::string resources = "/DA (/Helv 9 Tf 0 g) /DR << /Font << /Helv 5 0 R >> >>";
  auto first = FormDocument("/T (name) /V (old)", resources);
  first.Object(5, Helvetica());
  auto second = FormDocument("/T (name) /V (old)", resources);
  second.Object(5, Helvetica("/Encoding /WinAnsiEncoding"));
  Carried({first.Build(), second.Build(), first.Build()});
  folder_.Write("fill.js",
                "var file = new PDFDocument(scriptArgs[0]), widget = file.loadPage(1).getWidgets()[0];\n"
                "widget.setTextValue('filled in'); widget.update(); file.save(scriptArgs[1], '');\n");
  folder_.Write("fill.fdf",
                "%FDF-1.2\n1 0 obj\n<< /FDF << /Fields [ << /T (name-2) /V (filled in) >> ] >> >>\nendobj\n"
                "trailer\n<< /Root 1 0 R >>\n%%EOF\n");
  for (const char* fill : {"mutool run fill.js \"$file\" filled.pdf",
                           "pdftk \"$file\" fill_form fill.fdf output filled.pdf need_appearances"}) {
    const std::string text = Said("cd \"$(dirname \"$file\")\" && " + std::string(fill) +
                                  " && pdftotext filled.pdf - | tr '\\n\\f' '.|'");
    EXPECT_EQ(text, "old..|filled in..|old..|") << fill;
  }
}

TEST_F(CarriedForms, AreNotReadWithoutEnd) {
  auto deep = PagesDocument(1, "/AcroForm << /Fields [ 4 0 R ] >>");
  for (int i = 4; i < 200; ++i) {
    deep.Object(i, "<< /T (d) /Kids [ " + std::to_string(i + 1) + " 0 R ] >>");
  }
  std::string fields;
  for (int i = 0; i < 1000; ++i) fields += "5 0 R " + std::to_string(10 + i) + " 0 R\n";
  auto wide = PagesDocument(1, "/AcroForm << /Fields 4 0 R >>");
  wide.Object(4, "[ " + fields + " ]").Object(5, HexToken(std::string(200'000, 'n')));
  for (int i = 0; i < 1000; ++i) wide.Object(10 + i, "<< /T 5 0 R >>");
  Carried({FormDocument("/T (a)").Build(), deep.Build(), wide.Build()});
  EXPECT_THAT(Names(), ElementsAre("a"));
  EXPECT_THAT(Losses(), ElementsAre("2: form: the fields of its form are too deep",
                                    "3: form: it has more than a million places to look at"));
}

}  // namespace
}  // namespace folioweld
