// Rounds in which a merge fails: what is lost, and how it is told.

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::FaultingSystem;
using testing::Names;
using testing::PageTexts;
using testing::ReadFile;

class FailingRounds : public testing::DirectoryMergeFixture {
 protected:
  [[nodiscard]] bool Noticed(const std::string& begin) const {
    return std::any_of(shell_.Notices.begin(), shell_.Notices.end(),
                       [&](const std::string& line) { return line.rfind(begin, 0) == 0; });
  }
  [[nodiscard]] bool Logged(const std::string& line) const {
    const Names lines = LogLines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
};

TEST_F(FailingRounds, PairThatFailsIsLeftOutAndEveryLostDocumentIsNamed) {
  for (const char* name : {"a", "b", "d"}) AddDocument(name);
  AddBrokenDocument("c");
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_FALSE(report.Complete());
  EXPECT_EQ(report.FailedMerges, 1);
  EXPECT_EQ(report.MissingDocuments, (Names{"c", "d"}));
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b"}));
  for (const char* name : {"c", "d"}) {
    const std::string line =
        "[Folioweld-MergeDirectory]=>File: \"" + std::string(name) + "\"  is missing in the output";
    EXPECT_TRUE(Logged(line)) << line;
    EXPECT_TRUE(Noticed(line)) << line;
  }
  EXPECT_TRUE(Noticed("[Folioweld-cmdOK]=>The merge failed: \"" + Doc("c") + "\""));
  EXPECT_TRUE(Noticed("[Folioweld-cmdOK]=>The second input is not accepted and left out: "));
  ExpectIdle();
}

TEST_F(FailingRounds, FailedFirstPairTakesTheWholeOutputWithIt) {
  for (const char* name : {"b", "c", "d"}) AddDocument(name);
  AddBrokenDocument("a");
  const DirectoryMergeReport& report = Merge();
  EXPECT_FALSE(report.OutputWritten);
  EXPECT_EQ(report.FailedMerges, 2);
  EXPECT_TRUE(Noticed("[Folioweld-cmdOK]=>The first input is not accepted: "));
  EXPECT_EQ(MessageTexts(), Names{"Unable to Merge and Create " + Output()});
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(FailingRounds, FailedPairOfTwoLeavesNoOutput) {
  AddDocument("a");
  AddBrokenDocument("b");
  const DirectoryMergeReport& report = Merge();
  EXPECT_FALSE(report.OutputWritten);
  EXPECT_EQ(report.MissingDocuments, (Names{"a", "b"}));
  EXPECT_TRUE(Noticed("[Folioweld-MergeDirectory]=>File: \"a\"  is missing in the output"));
  EXPECT_TRUE(Noticed("[Folioweld-MergeDirectory]=>File: \"b\"  is missing in the output"));
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(FailingRounds, SingleBrokenDocumentLeavesNoOutput) {
  AddBrokenDocument("a");
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_EQ(MessageTexts(), Names{"Unable to Merge and Create " + Output()});
  EXPECT_FALSE(Exists(Output()));
}

TEST_F(FailingRounds, ExistingOutputStaysWhenTheLastMergeFailsBeforeWriting) {
  AddDocument("a");
  AddBrokenDocument("b");
  folder_.Write("joined.pdf", "an older output of some length");
  EXPECT_FALSE(Merge().OutputWritten);
  EXPECT_TRUE(shell_.Messages.empty());
  EXPECT_EQ(ReadFile(Output()), "an older output of some length");
}

TEST_F(FailingRounds, DocumentThatVanishesBeforeItsRoundIsNamedAsMissing) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  shell_.OnStatus = [&](int) { ::unlink(Doc("c").c_str()); };
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_EQ(report.FailedMerges, 0);
  EXPECT_EQ(report.MissingDocuments, Names{"c"});
  EXPECT_TRUE(Noticed("[Folioweld-cmdOK]=>The second input is not accepted and left out: \"" + Doc("c") +
                      "\": the file cannot be opened: No such file or directory"));
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b"}));
}

TEST_F(FailingRounds, ResultThatVanishesBetweenTheRoundsIsNamedByItsDocuments) {
  for (const char* name : {"a", "b", "c", "d"}) AddDocument(name);
  shell_.OnYield = [&] {
    // The second round begins: the result of c and d goes.
    const Names lines = MergeLines();
    if (!lines.empty() && lines.back().rfind("iNumFilesToMerge: 2 ", 0) == 0) {
      for (const std::string& name : Temporaries()) {
        if (PageTexts(Tmp() + name) == Names{"c", "d"}) ::unlink((Tmp() + name).c_str());
      }
    }
  };
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_EQ(report.MissingDocuments, (Names{"c", "d"}));
}

TEST_F(FailingRounds, WriteFailureOfTheLastRoundLeavesNoOutput) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    const bool writing = call.Is("WriteFile") && program_.Merge.DocFileName(3) == Output();
    return FaultingSystem::Fault{writing ? ENOSPC : 0, 0};
  };
  const DirectoryMergeReport& report = Merge();
  EXPECT_FALSE(report.OutputWritten);
  EXPECT_EQ(report.FailedMerges, 1);
  EXPECT_TRUE(shell_.Messages.empty()) << "a missing output gives no message";
  EXPECT_FALSE(Exists(Output()));
  ExpectIdle();
}

TEST_F(FailingRounds, WriteFailureOfATemporaryLosesItsDocumentsOnly) {
  for (const char* name : {"a", "b", "c", "d", "e", "f"}) AddDocument(name);
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    const bool writing = call.Is("WriteFile") && program_.Merge.DocFileName(1) == Doc("e");
    return FaultingSystem::Fault{writing ? EIO : 0, 0};
  };
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_EQ(report.MissingDocuments, (Names{"e", "f"}));
  EXPECT_EQ(PageTexts(Output()), (Names{"a", "b", "c", "d"}));
  ExpectIdle();
}

TEST_F(FailingRounds, EncryptedDocumentIsJoinedAndNamed) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  testing::DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
  builder.Object(3, "<</Filter/Standard>>").TrailerExtra("/Encrypt 3 0 R");
  folder_.Write("docs/d", builder.Build());
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_FALSE(report.Complete());
  EXPECT_EQ(report.AlteredDocuments, Names{"d"});
  EXPECT_TRUE(report.MissingDocuments.empty());
  EXPECT_EQ(shell_.Notices, Names{"[Folioweld-cmdOK]=>\"" + Doc("d") +
                                  "\" is encrypted: its pages will not be readable in the output"});
}

TEST_F(FailingRounds, EncryptedFirstDocumentIsNamedToo) {
  AddDocument("b");
  testing::DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
  builder.TrailerExtra("/Encrypt<</Filter/Standard>>");
  folder_.Write("docs/a", builder.Build());
  EXPECT_EQ(Merge().AlteredDocuments, Names{"a"});
}

TEST_F(FailingRounds, EveryNumberOfDocumentsWithABrokenOneKeepsTheAccountsRight) {
  for (int count = 2; count <= 7; ++count) {
    for (int broken = 0; broken < count; ++broken) {
      for (int i = 0; i < count; ++i) {
        const std::string name(1, static_cast<char>('a' + i));
        i == broken ? AddBrokenDocument(name) : AddDocument(name);
      }
      const DirectoryMergeReport& report = Merge();
      ASSERT_FALSE(report.Complete());
      ASSERT_EQ(report.OutputWritten, Exists(Output())) << count << " with " << broken;
      if (report.OutputWritten) {
        Names all = PageTexts(Output());
        all.insert(all.end(), report.MissingDocuments.begin(), report.MissingDocuments.end());
        std::sort(all.begin(), all.end());
        Names expected;
        for (int i = 0; i < count; ++i) expected.emplace_back(1, static_cast<char>('a' + i));
        ASSERT_EQ(all, expected) << count << " with " << broken;
        ::unlink(Output().c_str());
      }
      ExpectIdle();
    }
  }
}

}  // namespace
}  // namespace folioweld
