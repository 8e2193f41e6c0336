// Documents with two faces: what the joining takes from a trailer, and what other programs read there.

#include <gtest/gtest.h>

#include "engine/alteration.h"
#include "engine/read_object.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

using Kind = AlterationKind;

/// One page; object 4 is a second catalog, 5 an information dictionary, 6 what no test looks at.
DocumentBuilder Page(const std::string& catalog = "", const std::string& root = "") {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R" + catalog + ">>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1" + root + ">>")
      .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>")
      .Object(4, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(5, "<</Title(a)>>")
      .Object(6, "<</Filter/Standard>>");
  return builder;
}

DocumentBuilder WithTrailer(const std::string& entries) {
  return Page().Trailer(entries);
}

/// What is told of the document joined alone, as "kind number: detail; "; the same as the second input.
std::string Told(const std::string& document) {
  std::string words[2];
  for (const bool first : {true, false}) {
    MergeRun run(first ? document : SimpleDocument(1), first ? "" : document);
    run.Run();
    EXPECT_FALSE(run.Failed());
    if (run.Failed()) return "failed: " + run.LogLines().back();
    for (const Alteration& found : run.State.DocSources(3).back().Alterations) {
      const char* kind = found.Kind == Kind::Encrypted              ? "encrypted"
                         : found.Kind == Kind::StartXrefDisputed    ? "startxref"
                         : found.Kind == Kind::TrailerReadOtherwise ? "trailer"
                         : found.Kind == Kind::HybridPartLost       ? "hybrid"
                         : found.Kind == Kind::KeyRepeated          ? "repeated"
                                                                    : nullptr;
      // The tests' own references are odd as well.
      if (kind == nullptr) continue;
      words[first ? 0 : 1] += std::string(kind) + " " + std::to_string(found.ObjectNumber) +
                              (found.Detail.empty() ? "" : ": " + found.Detail) + "; ";
    }
  }
  EXPECT_EQ(words[0], words[1]);
  return words[0];
}

TEST(TrailerCheck, IsSilentAboutADocumentOfFourRevisions) {
  DocumentBuilder builder = Page();
  builder.EndRevision();
  for (int i = 0; i < 3; ++i) builder.Object(6, "<<>>").EndRevision();
  EXPECT_EQ(Told(builder.Build()), "");
}

TEST(TrailerCheck, TellsOfEncryptionInEverySpelling) {
  for (const char* entry :
       {"/Encrypt 6 0 R", "/Encrypt\n6 0 R", "/Encrypt\t6 0 R", "/Encrypt\f6 0 R", "/Enc#72ypt 6 0 R",
        "/Encrypt<</Filter/Standard>>", "/Encrypt\n<<\n/Filter/Standard\n>>", "/#45ncryp#74\n6\n0 R",
        "/Encrypt%a comment\n6 0 R"}) {
    EXPECT_EQ(Told(WithTrailer(std::string("/Size 7/Root 1 0 R") + entry).Build()), "encrypted -1; ")
        << entry;
    EXPECT_EQ(Told(WithTrailer(entry + std::string("\n/Size 7/Root 1 0 R")).Build()), "encrypted -1; ")
        << entry;
  }
}

TEST(TrailerCheck, TellsOfEncryptionOnlyWhereItIs) {
  for (const char* entry : {"/Encrypt null", "/EncryptX 6 0 R", "/A/Encrypt", "/A<</Encrypt 6 0 R>>",
                            "/A(/Encrypt 6 0 R)", "/B 1% /Encrypt 6 0 R\n", "/Encrypt#20 6 0 R"}) {
    EXPECT_EQ(Told(WithTrailer(std::string("/Root 1 0 R/Size 7\n") + entry).Build()), "") << entry;
  }
}

TEST(TrailerCheck, TellsOfACrossReferenceStreamBesideTheTableOfAnyRevision) {
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/XRefStm 15").Build()), "hybrid -1: /XRefStm; ");
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R\n/XRef#53tm\n15").Build()), "hybrid -1: /XRefStm; ");
  DocumentBuilder builder = Page().Trailer("/Size 7/Root 1 0 R/XRefStm 15");
  builder.EndRevision().Object(6, "<<>>").EndRevision();
  EXPECT_EQ(Told(builder.Build()), "hybrid -1: /XRefStm; ");
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/XRefStmX 15/A/XRefStm").Build()), "");
}

TEST(TrailerCheck, TellsOfAKeyThatCountsByItsBeginning) {
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/Rooted 4 0 R").Build()), "trailer -1: /Root; ");
  EXPECT_EQ(Told(WithTrailer("/Size 7/Rooted 4 0 R").Build()), "trailer -1: /Root; ");
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/InfoX 5 0 R").Build()), "trailer -1: /Info; ");
  EXPECT_EQ(Told(WithTrailer("/Sizes 7/Root 1 0 R").Build()), "trailer -1: /Size; ");
}

TEST(TrailerCheck, IsQuietAboutAKeyThatMakesNoDifference) {
  EXPECT_EQ(Told(WithTrailer("/Size 7/Rooted 4 0 R/Root 1 0 R").Build()), "") << "the last one counts";
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/InfoX(a)/IDs 3/Encryption 6 0 R").Build()), "");
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/Info\n5 0 R").Build()), "") << "nothing is replaced";
}

TEST(TrailerCheck, TellsOfAKeyThatIsGivenTwice) {
  EXPECT_EQ(Told(WithTrailer("/Size 7/Root 1 0 R/Root 4 0 R").Build()), "repeated -1: /Root; ");
  EXPECT_EQ(Told(WithTrailer("/Size 7/R#6fot 4 0 R/Root 1 0 R").Build()), "repeated -1: /Root; ");
  EXPECT_EQ(Told(Page("/Pages 9 0 R").Build()), "repeated 1: /Pages; ");
  EXPECT_EQ(Told(Page("/P#61ges 9 0 R").Build()), "repeated 1: /P#61ges; ");
  EXPECT_EQ(Told(Page("/Pages\t9 0 R").Build()), "repeated 1: /Pages; ");
  EXPECT_EQ(Told(Page("", "/Kids[]").Build()), "repeated 2: /Kids; ");
  EXPECT_EQ(Told(Page("", "/Co#75nt 2").Build()), "repeated 2: /Co#75nt; ");
}

TEST(TrailerCheck, TellsOfACommentWhoseWordsAreReadAsEntries) {
  EXPECT_EQ(Told(WithTrailer("/Root 1 0 R/Size 7 % /Info 5 0 R\n").Build()), "trailer -1: /Info; ");
  EXPECT_EQ(Told(WithTrailer("/Root 1 0 R/Size 7 % /Root 4 0 R\n").Build()), "trailer -1: /Root; ");
  EXPECT_EQ(Told(WithTrailer("/Root 1 0 R/Size 7 % (\n/Encrypt 6 0 R\n% )\n").Build()), "encrypted -1; ");
  EXPECT_EQ(Told(WithTrailer("/Root 1 0 R/Size 7 % of /all words\n").Build()), "");
}

TEST(TrailerCheck, LooksAtTheTrailerThatCounts) {
  DocumentBuilder builder = Page();
  builder.Trailer("/Size 7/Rooted 4 0 R/InfoX 5 0 R").EndRevision();
  builder.Trailer("/Size 7/Root 1 0 R/Info 5 0 R");
  EXPECT_EQ(Told(builder.Object(6, "<<>>").Build()), "");
}

TEST(TrailerCheck, LooksAtEveryTrailerOfTheChain) {
  for (int odd = 0; odd < 5; ++odd) {
    DocumentBuilder builder = Page();
    for (int revision = 0; revision < 5; ++revision) {
      builder.TrailerExtra(revision == odd ? "/A 1/#41 2" : "").Object(6, "<<>>").EndRevision();
    }
    EXPECT_EQ(Told(builder.Build()), "repeated -1: /#41; ") << odd;
  }
}

TEST(TrailerCheck, TellsOfASecondStartXrefThatGivesAnotherNumber) {
  const std::string document = SimpleDocument(1);
  const auto end = [&](const std::string& last) {
    const std::size_t start = document.rfind("startxref");
    const std::size_t number = start + 10;
    const std::string digits = document.substr(number, document.find('\n', number) - number);
    return document.substr(0, start) + "startxref\n" + digits + "\n%%EOF startxref\n" +
           (last.empty() ? digits : last) + "\n%%EOF";
  };
  EXPECT_EQ(Told(end("9")), "startxref -1; ");
  EXPECT_EQ(Told(end("")), "");
  EXPECT_EQ(Told(document), "");
  MergeRun run(end("9"), "");
  run.Run();
  EXPECT_EQ(run.State.DocSources(3).at(0).Alterations.at(0).FileOffset,
            static_cast<std::int64_t>(end("9").rfind("startxref")));
}

TEST(TrailerCheck, NamesAreReadWithTheirEscapes) {
  EXPECT_EQ(PlainName("/A#42c"), "/ABc");
  EXPECT_EQ(PlainName("/#4a#4A"), "/JJ");
  EXPECT_EQ(PlainName("/A#4"), "/A#4");
  EXPECT_EQ(PlainName("/A#4g#"), "/A#4g#");
  EXPECT_TRUE(IsName("/Ro#6ft", "/Root"));
  EXPECT_FALSE(IsName("/Root#20", "/Root"));
}

}  // namespace
}  // namespace folioweld::testing
