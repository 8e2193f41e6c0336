// A page tree whose root counts other pages than its kids lead to: beside it, pages of other documents
// disappear, and the job says so.

#include <gtest/gtest.h>

#include "engine/alteration.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

using Kind = AlterationKind;

/// Catalog 1 with root 2 and pages 3 and 4; the root's entries are the test's.
DocumentBuilder Tree(const std::string& root) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages" + root + ">>");
  for (const int page : {3, 4}) builder.Object(page, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>");
  return builder;
}

/// What is told of the document beside another one, as "kind number: detail" words; the same in both places.
std::string Told(const DocumentBuilder& builder) {
  std::string words[2];
  for (const bool first : {true, false}) {
    const std::string document = DocumentBuilder(builder).Build();
    MergeRun run(first ? document : SimpleDocument(1), first ? SimpleDocument(1) : document);
    run.Run();
    EXPECT_FALSE(run.Failed());
    if (run.Failed()) return "failed";
    for (const Alteration& found : run.State.DocSources(3).at(first ? 0 : 1).Alterations) {
      const char* kind = found.Kind == Kind::PageCountWrong       ? "count"
                         : found.Kind == Kind::PageTreeRepeated   ? "repeated"
                         : found.Kind == Kind::PageTreeIncomplete ? "incomplete"
                         : found.Kind == Kind::PageTreeHasParent  ? "parent"
                                                                  : nullptr;
      // What is no matter of the page tree has tests of its own.
      if (kind == nullptr) continue;
      words[first ? 0 : 1] += std::string(kind) + " " + std::to_string(found.ObjectNumber) +
                              (found.Detail.empty() ? "" : ": " + found.Detail) +
                              (found.Count == 1 ? "" : " x" + std::to_string(found.Count)) + ";";
    }
  }
  EXPECT_EQ(words[0], words[1]);
  return words[0];
}

TEST(PageTreeCheck, TellsOfACountThatIsTooSmallOrTooLarge) {
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 1")), "count 2: 1 instead of 2;");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 3")), "count 2: 3 instead of 2;");
  EXPECT_EQ(Told(Tree("/Kids[]/Count 1")), "count 2: 1 instead of 0;");
}

TEST(PageTreeCheck, TakesTheCountAsTheJobTakesIt) {
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 5 0 R").Object(5, "2")), "");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 5 0 R").Object(5, "7")), "count 2: 7 instead of 2;");
}

TEST(PageTreeCheck, FollowsNodesAndArraysOfTheirOwn) {
  const DocumentBuilder nested = Tree("/Kids[5 0 R 4 0 R]/Count 2").Object(5, "<</Kids 6 0 R/Count 1>>");
  EXPECT_EQ(Told(DocumentBuilder(nested).Object(6, "[3 0 R]")), "");
  EXPECT_EQ(Told(DocumentBuilder(nested).Object(6, "[3 0 R 7 0 R]").Object(7, "<</Type/Page>>")),
            "count 2: 2 instead of 3;");
}

TEST(PageTreeCheck, CountsPagesInTheArrayItself) {
  EXPECT_EQ(Told(Tree("/Kids[<</Type/Page/Parent 2 0 R/A<</B 2 0 R>>>>3 0 R 4 0 R]/Count 3")), "");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R<</Type/Page/Parent 2 0 R>>]/Count 1")), "count 2: 1 instead of 2;");
}

TEST(PageTreeCheck, TellsOfANodeThatIsReachedAgain) {
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 2 0 R]/Count 2")), "repeated 2: object 2;");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 5 0 R]/Count 2").Object(5, "<</Kids[2 0 R 5 0 R]>>")),
            "repeated 5: object 2 x2;");
}

TEST(PageTreeCheck, GoesThroughAnArrayOnce) {
  EXPECT_EQ(Told(Tree("/Kids[5 0 R 6 0 R]/Count 4")
                     .Object(5, "<</Kids 7 0 R>>")
                     .Object(6, "<</Kids 7 0 R>>")
                     .Object(7, "[3 0 R 4 0 R]")),
            "repeated 5: object 7;");
  EXPECT_EQ(Told(Tree("/Kids 9 0 R/Count 0")), "incomplete 2: object 9;");
}

TEST(PageTreeCheck, CountsAPageAsOftenAsItIsNamed) {
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 3 0 R]/Count 2")), "");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 3 0 R]/Count 1")), "count 2: 1 instead of 2;");
}

TEST(PageTreeCheck, TellsOfANodeThatIsMissing) {
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 9 0 R]/Count 2")), "incomplete 2: object 9;");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 5 0 R]/Count 2").Free(5)), "incomplete 2: object 5;");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 5 0 R]/Count 2").Object(5, "[3 0 R]")), "incomplete 2: object 5;");
}

TEST(PageTreeCheck, TellsOfARootThatHasAParent) {
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 2/Parent 1 0 R")), "parent 2;");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 2/Par#65nt 1 0 R")), "parent 2;");
  EXPECT_EQ(Told(Tree("/Kids[3 0 R 4 0 R]/Count 2/Parent null")), "");
}

TEST(PageTreeCheck, SeesWhatOtherReadersSee) {
  const auto withPage5 = [](const std::string& node) { return Tree("/Kids[5 0 R]/Count 2").Object(5, node); };
  EXPECT_EQ(Told(withPage5("<</Type/Pages/Kids\t[3 0 R 4 0 R]>>")), "");
  EXPECT_EQ(Told(withPage5("<</Kids[3\t0 R\f4 0\tR]>>")), "");
  EXPECT_EQ(Told(withPage5("<</K#69ds[3 0 R 4 0 R]>>")), "");
  EXPECT_EQ(Told(withPage5("<</Kids[3 0 R% 9 0 R\n4 0 R]>>")), "");
}

TEST(PageTreeCheck, IsQuietAboutADocumentThatIsJoinedAlone) {
  MergeRun run(Tree("/Kids[3 0 R 9 0 R]/Count 7/Parent 1 0 R").Build(), "");
  run.Run();
  EXPECT_FALSE(run.Failed());
  EXPECT_TRUE(run.LogLines().empty());
}

TEST(PageTreeCheck, IsCancelledAtEveryNode) {
  std::string kids;
  DocumentBuilder builder;
  for (int page = 3; page < 503; ++page) kids += std::to_string(page) + " 0 R ";
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Kids[" + kids + "]/Count 500>>");
  for (int page = 3; page < 503; ++page) builder.Object(page, "<</Type/Page>>");
  MergeRun run(SimpleDocument(1), builder.Build());
  run.Shell.OnYield = [&] {
    if (run.Status(2).rfind("Pass #1", 0) == 0) run.State.AbortRequested = true;
  };
  run.Run();
  EXPECT_TRUE(run.Failed());
  EXPECT_EQ(run.Status(2).find("Pass #2"), std::string::npos);
  EXPECT_NE(run.Status(2).find("FAILED or cancelled"), std::string::npos);
  EXPECT_FALSE(Exists(run.OutputPath));
}

}  // namespace
}  // namespace folioweld::testing
