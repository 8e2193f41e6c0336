// What the pages of a second input lose with its catalog: hidden layers, a printing condition, fields that
// the form draws.

#include <gtest/gtest.h>

#include "engine/alteration.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

using Kind = AlterationKind;

/// One page and what the catalog has; objects from 4 on are up to the test.
DocumentBuilder With(const std::string& catalog) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R" + catalog + ">>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>");
  return builder;
}

/// What is told of the second document, as "kind number: detail; ".
std::string Told(DocumentBuilder second, DocumentBuilder first = With("")) {
  MergeRun run(first.Build(), second.Build());
  run.Run();
  EXPECT_FALSE(run.Failed());
  if (run.Failed()) return "failed";
  EXPECT_TRUE(run.State.DocSources(3).at(0).Alterations.empty()) << "the first one's catalog stays";
  std::string words;
  for (const Alteration& found : run.State.DocSources(3).at(1).Alterations) {
    const char* kind = found.Kind == Kind::LayersShown            ? "layers"
                       : found.Kind == Kind::OutputIntentLost     ? "intent"
                       : found.Kind == Kind::FieldsDrawnOtherwise ? "field"
                                                                  : "another kind";
    words += std::string(kind) + " " + std::to_string(found.ObjectNumber) +
             (found.Detail.empty() ? "" : ": " + found.Detail) +
             (found.Count == 1 ? "" : " x" + std::to_string(found.Count)) + "; ";
  }
  return words;
}

DocumentBuilder WithLayers(const std::string& configuration) {
  return With("/OCProperties<</OCGs[4 0 R 5 0 R]/D" + configuration + ">>")
      .Object(4, "<</Type/OCG/Name(a)>>")
      .Object(5, "<</Type/OCG/Name(b)>>");
}

TEST(CatalogCheck, TellsOfLayersThatAreHidden) {
  EXPECT_EQ(Told(WithLayers("<</OFF[5 0 R]>>")), "layers 1; ");
  EXPECT_EQ(Told(WithLayers(" 6 0 R").Object(6, "<</OFF 7 0 R>>").Object(7, "[4 0 R]")), "layers 1; ");
  EXPECT_EQ(Told(WithLayers("<</BaseState/OFF/ON[4 0 R]>>")), "layers 1; ");
}

TEST(CatalogCheck, IsQuietAboutLayersThatAreShown) {
  EXPECT_EQ(Told(WithLayers("<</Order[4 0 R]>>")), "");
  EXPECT_EQ(Told(WithLayers("<</OFF[]>>")), "");
  EXPECT_EQ(Told(WithLayers("<</BaseState/OFF/ON[4 0 R 5 0 R]>>")), "");
}

/// Layer 5 says of its use what a rule of the configuration may have count.
DocumentBuilder WithUsage(const std::string& rules, const std::string& usage) {
  return WithLayers("<</AS" + rules + ">>").Object(5, "<</Type/OCG/Name(b)/Usage" + usage + ">>");
}

const std::string kHiddenInView = "<</View<</ViewState/OFF>>>>";
const std::string kHiddenInPrint = "<</View<</ViewState/ON>>/Print<</PrintState/OFF>>>>";

std::string Rule(const std::string& use, const std::string& layers = "[4 0 R 5 0 R]") {
  return "<</Event" + use + "/Category[" + use + "]/OCGs" + layers + ">>";
}

TEST(CatalogCheck, TellsOfLayersThatAreHiddenInAUse) {
  EXPECT_EQ(Told(WithUsage("[" + Rule("/View") + "]", kHiddenInView)), "layers 1; ");
  EXPECT_EQ(Told(WithUsage("[" + Rule("/Export") + Rule("/Print") + "]", kHiddenInPrint)), "layers 1; ");
  EXPECT_EQ(Told(WithUsage(" 6 0 R", " 9 0 R")
                     .Object(6, "[7 0 R]")
                     .Object(7, Rule("/View", " 8 0 R"))
                     .Object(8, "[5 0 R]")
                     .Object(9, "<</View 10 0 R>>")
                     .Object(10, "<</ViewState/OFF>>")),
            "layers 1; ");
}

TEST(CatalogCheck, IsQuietAboutLayersThatNoUseHides) {
  EXPECT_EQ(Told(WithLayers("<<>>").Object(5, "<</Type/OCG/Usage" + kHiddenInView + ">>")), "") << "no rule";
  EXPECT_EQ(Told(WithUsage("[" + Rule("/Print") + "]", kHiddenInView)), "") << "another use";
  EXPECT_EQ(Told(WithUsage("[" + Rule("/View", "[4 0 R]") + "]", kHiddenInView)), "") << "another layer";
  EXPECT_EQ(Told(WithUsage("[" + Rule("/View") + "]", "<</View<</ViewState/ON>>>>")), "");
  EXPECT_EQ(Told(WithUsage("[6 0 R 6 0 R]", " 5 0 R").Object(6, Rule("/View", " 6 0 R"))), "")
      << "leads to itself";
}

DocumentBuilder WithIntent(const std::string& intent) {
  return With("/OutputIntents[" + intent + "]").Stream(4, "/N 4", "profile");
}

TEST(CatalogCheck, TellsOfAPrintingConditionThatIsLost) {
  const std::string press = "<</S/GTS_PDFX/OutputConditionIdentifier(FOGRA39)/DestOutputProfile 4 0 R>>";
  EXPECT_EQ(Told(WithIntent(press)), "intent 1: (FOGRA39); ");
  EXPECT_EQ(Told(WithIntent("5 0 R").Object(5, press)), "intent 1: (FOGRA39); ");
  EXPECT_EQ(Told(WithIntent(press), WithIntent("<</OutputConditionIdentifier(X)/DestOutputProfile 4 0 R>>")),
            "intent 1: (FOGRA39); ");
  EXPECT_EQ(Told(WithIntent(press), WithIntent("5 0 R").Object(5, press)), "") << "the output has it";
}

TEST(CatalogCheck, IsQuietAboutColoursAsScreensHaveThem) {
  EXPECT_EQ(Told(WithIntent("<</OutputConditionIdentifier(sRGB IEC61966-2.1)/DestOutputProfile 4 0 R>>")),
            "");
  EXPECT_EQ(Told(WithIntent("<</OutputConditionIdentifier(FOGRA39)>>")), "") << "no profile";
}

/// A form and the field 4.
DocumentBuilder WithForm(const std::string& form, const std::string& field) {
  return With("/AcroForm<</Fields[4 0 R]" + form + ">>").Object(4, "<<" + field + ">>");
}

const std::string kField = "/Subtype/Widget/FT/Tx/V(a)";
const std::string kHelvetica = "/DR<</Font<</Helv<</Subtype/Type1>>>>>>";

TEST(CatalogCheck, TellsOfAFieldWithoutAnAppearance) {
  EXPECT_EQ(Told(WithForm("", kField)), "field 4; ");
  EXPECT_EQ(Told(WithForm(kHelvetica, kField + "/DA(/Helv 9 Tf)")), "field 4; ");
  EXPECT_EQ(Told(WithForm("", "/FT/Tx/V(a)/Kids[5 0 R 6 0 R]")
                     .Object(5, "<</Subtype/Widget/Parent 4 0 R>>")
                     .Object(6, "<</Subtype/Widget/Parent 4 0 R>>")),
            "field 5 x2; ");
}

TEST(CatalogCheck, TellsOfAFieldThatTheFormHasDrawnAnew) {
  EXPECT_EQ(Told(WithForm("/NeedAppearances true", kField + "/AP<</N 3 0 R>>")), "field 4; ");
  EXPECT_EQ(Told(WithForm("/NeedAppearances false", kField + "/AP<</N 3 0 R>>")), "");
  EXPECT_EQ(Told(WithForm("", kField + "/AP<</N 3 0 R>>"), WithForm("/NeedAppearances true", kField)),
            "field 4; ")
      << "by the first document's form";
}

TEST(CatalogCheck, IsQuietAboutFieldsThatLookTheSame) {
  EXPECT_EQ(Told(WithForm("", kField + "/AP<</N 3 0 R>>")), "") << "an appearance of its own";
  EXPECT_EQ(Told(WithForm("", "/Subtype/Widget/FT/Tx")), "") << "nothing to show";
  EXPECT_EQ(Told(WithForm("", "/Subtype/Widget/FT/Tx/V()")), "") << "nothing to show";
  EXPECT_EQ(Told(WithForm("", "/Subtype/Widget/FT/Sig/V 3 0 R")), "") << "a signature";
  EXPECT_EQ(Told(WithForm("", kField + "/F 2")), "") << "hidden";
  EXPECT_EQ(Told(With("").Object(4, "<<" + kField + ">>")), "") << "no form";
  EXPECT_EQ(Told(WithForm("", "/FT/Tx/V(a)/Parent 4 0 R")), "") << "no annotation";
}

TEST(CatalogCheck, IsQuietWhereTheFirstFormDrawsTheFieldAlike) {
  const std::string form = kHelvetica + "/DA(/Helv 9 Tf)";
  EXPECT_EQ(Told(WithForm(form, kField), WithForm(form, kField)), "");
  EXPECT_EQ(Told(WithForm("", kField + "/DA(/Helv 9 Tf)"), WithForm(kHelvetica, kField)), "");
  EXPECT_EQ(Told(WithForm("", kField + "/DA(/He 9 Tf)"), WithForm(kHelvetica, kField)), "field 4; ");
  EXPECT_EQ(Told(WithForm("/DA(/Helv 8 Tf)", kField), WithForm(form, kField)), "field 4; ");
}

DocumentBuilder WithButton(const std::string& entries, const std::string& form = "/DA(/Helv 9 Tf)") {
  return WithForm(form, "/Subtype/Widget/FT/Btn" + entries);
}

TEST(CatalogCheck, TellsOfAButtonWithoutAnAppearance) {
  EXPECT_EQ(Told(WithButton("/Ff 65536/MK<</CA(Go)>>")), "field 4; ");
  EXPECT_EQ(Told(WithButton("/MK<</CA(4)>>/AS/Yes")), "field 4; ") << "a box that is ticked";
  EXPECT_EQ(Told(WithForm("/DA(/Helv 9 Tf)", "/FT/Btn/Ff 65536/Kids[5 0 R]")
                     .Object(5, "<</Subtype/Widget/Parent 4 0 R/MK 6 0 R>>")
                     .Object(6, "<</CA(Go)>>")),
            "field 5; ");
}

TEST(CatalogCheck, IsQuietAboutButtonsThatLookTheSame) {
  EXPECT_EQ(Told(WithButton("/Ff 65536/MK<</CA(Go)>>/AP<</N 3 0 R>>")), "") << "an appearance of its own";
  EXPECT_EQ(Told(WithButton("/AP<</N 3 0 R>>", "/NeedAppearances true")), "")
      << "it shows the button's state";
  EXPECT_EQ(Told(WithButton("/Ff 65536")), "") << "nothing to show";
  EXPECT_EQ(Told(WithButton("/Ff 65536/MK<</CA()>>")), "") << "nothing to show";
  EXPECT_EQ(Told(WithButton("/MK<</CA(4)>>")), "") << "a box that is not ticked";
  EXPECT_EQ(Told(WithButton("/MK<</CA(4)>>/AS/Off")), "") << "a box that is not ticked";
  EXPECT_EQ(Told(WithButton("/MK<</CA(4)>>/AS/Yes/Ff 32768")), "") << "a radio button";
  EXPECT_EQ(Told(WithButton("/MK<</CA(4)>>/AS/Yes/DA(/ZaDb 9 Tf)")), "") << "a standard font";
  EXPECT_EQ(Told(WithButton("/Ff 65536/MK<</CA(Go)>>", "")), "") << "nothing to draw it by";
  const std::string form = kHelvetica + "/DA(/Helv 9 Tf)";
  EXPECT_EQ(Told(WithButton("/MK<</CA(4)>>/AS/Yes", form), WithForm(form, kField)), "")
      << "the first document's form draws it alike";
  EXPECT_EQ(Told(WithButton("/Ff 65536/MK<</CA(Go)>>", form), WithForm(form, kField)), "")
      << "the first document's form draws it alike";
}

TEST(CatalogCheck, ComesToAnEndWhereFieldsLeadToThemselves) {
  EXPECT_EQ(Told(WithForm("", "/Subtype/Widget/Parent 4 0 R")), "");
}

}  // namespace
}  // namespace folioweld::testing
