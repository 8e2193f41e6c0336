// An encrypted input is joined all the same, and the log says what that means.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::MergeRun;
using testing::SimpleDocument;

/// One page, with the text in its trailer.
DocumentBuilder DocumentWith(const std::string& trailerExtra) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .Object(3, "<</Type/Page/Parent 2 0 R>>")
      .Object(4, "<</Filter/Standard>>")
      .TrailerExtra(trailerExtra);
  return builder;
}

std::vector<std::string> LinesAboutEncryption(const MergeRun& run) {
  std::vector<std::string> lines;
  for (const std::string& line : run.LogLines()) {
    if (line.find("is encrypted") != std::string::npos) lines.push_back(line);
  }
  return lines;
}

TEST(EncryptedInputs, AreJoinedAndNamedInTheLog) {
  MergeRun run(DocumentWith("/Encrypt 4 0 R").Build(), SimpleDocument(1));
  run.Run();
  EXPECT_FALSE(run.Failed());
  ASSERT_EQ(LinesAboutEncryption(run).size(), 1U);
  EXPECT_THAT(LinesAboutEncryption(run)[0],
              HasSubstr("[Folioweld-cmdOK]=>\"" + run.FirstPath +
                        "\" is encrypted: its pages will not be readable in the output"));
}

TEST(EncryptedInputs, MayBeTheSecond) {
  MergeRun run(SimpleDocument(1), DocumentWith("/Encrypt 4 0 R").Build());
  run.Run();
  EXPECT_FALSE(run.Failed());
  ASSERT_EQ(LinesAboutEncryption(run).size(), 1U);
  EXPECT_THAT(LinesAboutEncryption(run)[0], HasSubstr(run.SecondPath));
}

TEST(EncryptedInputs, MayGiveTheDictionaryInTheTrailer) {
  MergeRun run(DocumentWith("/Encrypt<</Filter/Standard>>").Build(), SimpleDocument(1));
  run.Run();
  EXPECT_FALSE(run.Failed());
}

TEST(EncryptedInputs, AreToldByTheNewestTrailerOnly) {
  DocumentBuilder decrypted = DocumentWith("/Encrypt 4 0 R");
  decrypted.EndRevision().TrailerExtra("").Object(3, "<</Type/Page/Parent 2 0 R/A 1>>");
  DocumentBuilder encrypted = DocumentWith("");
  encrypted.EndRevision().TrailerExtra("/Encrypt 4 0 R").Object(3, "<</Type/Page/Parent 2 0 R/A 1>>");
  MergeRun run(decrypted.Build(), encrypted.Build());
  run.Run();
  EXPECT_FALSE(run.Failed());
}

TEST(EncryptedInputs, AreNotSuspectedForAnotherKey) {
  MergeRun run(DocumentWith("/Encryption 4 0 R").Build(), SimpleDocument(1));
  run.Run();
  EXPECT_FALSE(run.Failed());
  EXPECT_THAT(LinesAboutEncryption(run), IsEmpty());
}

}  // namespace
}  // namespace folioweld
