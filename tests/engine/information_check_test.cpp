// An /Info that names something else: what it was is replaced, and the job says so.

#include <gtest/gtest.h>

#include "engine/alteration.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

/// One page; object 4 is up to the test.
DocumentBuilder Page() {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>");
  return builder;
}

DocumentBuilder WithInfo(const std::string& number) {
  return Page().TrailerExtra("/Info " + number + " 0 R");
}

/// What is told of the document, joined as the first and as the second input: the details, or "nothing".
std::string Told(const std::string& document) {
  std::string details;
  for (const bool first : {true, false}) {
    MergeRun run(first ? document : SimpleDocument(1), first ? "" : document);
    run.Run();
    EXPECT_FALSE(run.Failed());
    const SourceDocument& source = run.State.DocSources(3).back();
    std::string found = "nothing";
    for (const Alteration& alteration : source.Alterations) {
      EXPECT_EQ(alteration.Kind, AlterationKind::InformationShared);
      found = alteration.Detail;
    }
    EXPECT_TRUE(first || found == details) << found << " as the second input";
    details = found;
  }
  return details;
}

TEST(InformationCheck, TellsOfTheCatalog) {
  EXPECT_EQ(Told(WithInfo("1").Build()), "the catalog");
}

TEST(InformationCheck, TellsOfTheRootOfThePageTree) {
  MergeRun run(WithInfo("2").Build(), "");
  run.Run();
  EXPECT_EQ(run.State.DocSources(3).at(0).Alterations.at(0).Detail, "the root of the page tree");
}

TEST(InformationCheck, TellsOfAPage) {
  EXPECT_EQ(Told(WithInfo("3").Build()), "/Type /Page");
}

TEST(InformationCheck, TellsOfAStream) {
  MergeRun run(WithInfo("4").Stream(4, "", "data").Build(), "");
  run.Run();
  EXPECT_EQ(run.State.DocSources(3).at(0).Alterations.at(0).Detail, "a stream");
}

TEST(InformationCheck, TellsOfAnotherType) {
  EXPECT_EQ(Told(WithInfo("4").Object(4, "<</Type/Font>>").Build()), "/Type /Font");
}

TEST(InformationCheck, TellsOfWhatIsNoDictionary) {
  EXPECT_EQ(Told(WithInfo("4").Object(4, "[1 2]").Build()), "no dictionary");
  EXPECT_EQ(Told(WithInfo("4").Object(4, "42").Build()), "no dictionary");
}

TEST(InformationCheck, IsQuietAboutAnInformationDictionary) {
  EXPECT_EQ(Told(SimpleDocument(1)), "nothing");
  EXPECT_EQ(Told(WithInfo("4").Object(4, "<</Title(a)/Type/Info>>").Build()), "nothing");
  EXPECT_EQ(Told(WithInfo("4").Object(4, "<<>>").Build()), "nothing");
}

TEST(InformationCheck, IsQuietWhereNothingIsReplaced) {
  EXPECT_EQ(Told(Page().Build()), "nothing") << "no /Info";
  EXPECT_EQ(Told(WithInfo("0").Build()), "nothing") << "object 0";
  EXPECT_EQ(Told(WithInfo("4").Free(4).Build()), "nothing") << "a free object";
  EXPECT_EQ(Told(WithInfo("9").Build()), "nothing") << "an object that the document does not have";
}

}  // namespace
}  // namespace folioweld::testing
