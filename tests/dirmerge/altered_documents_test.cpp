// Alterations in a folder's merge: each is told once and names the person's document, whatever round it
// shows in.

#include <gtest/gtest.h>
#include <string>

#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using testing::Names;

class AlteredDocuments : public testing::DirectoryMergeFixture {
 protected:
  /// A document whose /Info names its only page.
  void AddAltered(const std::string& name) const {
    DocumentBuilder builder;
    builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>")
        .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
        .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>")
        .TrailerExtra("/Info 3 0 R");
    folder_.Write("docs/" + name, builder.Build());
  }

  /// A document with an entry of its page; its objects are 0 to 3, and so are those of every other one here.
  void AddWithEntry(const std::string& name, const std::string& entry = {}) const {
    DocumentBuilder builder;
    builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>")
        .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
        .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]" + entry + ">>");
    folder_.Write("docs/" + name, builder.Build());
  }

  /// The names of the documents that notices are about, one for each notice.
  [[nodiscard]] Names ToldDocuments() const {
    Names told;
    for (const std::string& line : shell_.Notices) {
      const std::size_t start = line.find(Docs());
      EXPECT_NE(start, std::string::npos) << line;
      if (start == std::string::npos) continue;
      const std::size_t name = start + Docs().size();
      told.push_back(line.substr(name, line.find('"', name) - name));
    }
    return told;
  }
};

TEST_F(AlteredDocuments, AreToldOnceEachAndNamedInTheReport) {
  for (int count = 1; count <= 7; ++count) {
    for (int altered = 0; altered < count; ++altered) {
      Names wanted;
      for (int i = 0; i < count; ++i) {
        const std::string name(1, static_cast<char>('a' + i));
        if (i == altered) {
          AddAltered(name);
          wanted.push_back(name);
        } else {
          AddDocument(name);
        }
      }
      shell_.Notices.clear();
      const DirectoryMergeReport& report = Merge();
      EXPECT_TRUE(report.OutputWritten);
      EXPECT_FALSE(report.Complete());
      EXPECT_EQ(report.AlteredDocuments, wanted) << count;
      EXPECT_EQ(ToldDocuments(), wanted) << count;
      EXPECT_TRUE(report.MissingDocuments.empty());
    }
  }
}

TEST_F(AlteredDocuments, AreCountedForTheWholeFolder) {
  for (const char* name : {"a", "b", "e"}) AddAltered(name);
  for (const char* name : {"c", "d"}) AddDocument(name);
  EXPECT_EQ(Merge().AlteredDocuments, (Names{"a", "b", "e"}));
  EXPECT_EQ(ToldDocuments(), (Names{"a", "b", "e"}));
  EXPECT_NE(shell_.StatusText(2).find("   -> OK\r\n3 warnings, see the log\r\n"), std::string::npos);
}

/// The catalog of the first document of a pair is lost when the pair becomes a second input.
TEST_F(AlteredDocuments, AreNamedWhereTheyShowInALaterRoundOnly) {
  for (const char* name : {"a", "b", "d"}) AddDocument(name);
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm<</Fields[4 0 R]>>>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Annots[4 0 R]>>")
      .Object(4, "<</Subtype/Widget/FT/Tx/V(a)/Rect[0 0 9 9]>>");
  folder_.Write("docs/c", builder.Build());
  EXPECT_EQ(Merge().AlteredDocuments, Names{"c"});
  ASSERT_EQ(shell_.Notices.size(), 1U);
  EXPECT_EQ(shell_.Notices[0],
            "[Folioweld-cmdOK]=>\"" + Doc("c") +
                "\", object 4: a field is drawn by the form in its catalog, which is lost, and can look "
                "otherwise or empty");
}

/// The first pair has numbers 0 to 7; the third document gets 8 to 11 when the pairs are joined.
TEST_F(AlteredDocuments, WithAReferenceToANumberOfALaterRoundAreNamedThen) {
  AddWithEntry("a", "/A 11 0 R");
  for (const char* name : {"b", "c", "d"}) AddWithEntry(name);
  EXPECT_EQ(Merge().AlteredDocuments, Names{"a"});
  ASSERT_EQ(shell_.Notices.size(), 1U);
  EXPECT_EQ(
      shell_.Notices[0],
      "[Folioweld-cmdOK]=>\"" + Doc("a") +
          "\", object 3: a reference to an object that the document does not have leads to one of a later "
          "document (11 0 R)");
}

/// The first document of a pair keeps its numbers until the pair becomes a second input.
TEST_F(AlteredDocuments, WithAReferenceThatIsNotRenumberedAreNamedWhenTheyWouldHaveToBe) {
  for (const char* name : {"a", "b", "d"}) AddWithEntry(name);
  AddWithEntry("c", "/A 1\t0 R");
  EXPECT_EQ(Merge().AlteredDocuments, Names{"c"});
  ASSERT_EQ(shell_.Notices.size(), 1U);
  EXPECT_EQ(shell_.Notices[0].rfind(
                "[Folioweld-cmdOK]=>\"" + Doc("c") + "\", object 3: a reference with a tab,", 0),
            0U)
      << shell_.Notices[0];
}

TEST_F(AlteredDocuments, LeaveNothingBehindForTheNextMerge) {
  AddAltered("a");
  Merge();
  for (const std::int32_t slot : {1, 2, 3}) EXPECT_TRUE(program_.Merge.DocSources(slot).empty()) << slot;
}

}  // namespace
}  // namespace folioweld
