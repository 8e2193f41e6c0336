// What the job makes of its inputs, as bytes.

#include <filesystem>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

/// Has what the joining touches: a catalog on several lines, a count and a stream length given as references,
/// a free slot, generations, and text that looks like references.
std::string First() {
  return DocumentBuilder("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n")
      .Object(1, "<</Type/Catalog\n/Pages 2 0 R\n/Lang(en 2 0 R)>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 5 0 R/MediaBox[0 0 9 9]>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/Contents 4 0 R>>")
      .Stream(4, "", "BT ET", "6 0 R", "\r\n")
      .Object(5, "1")
      .Object(6, "5")
      .Free(7)
      .Object(8, "<</Producer(one)>>", 2)
      .TrailerExtra("/Info 8 2 R")
      .Build();
}

std::string Second() {
  return DocumentBuilder("%PDF-1.3\n%abcd\n")
      .Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R 5 0 R]/Count 2\n/MediaBox[0 0 9 9]>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/Contents 4 0 R>>")
      .Stream(4, "/DL 4 ", "q Q\n")
      .Object(5, "<</Type/Page/Parent 2 0 R/Names[(3 0 R)<33>3 0 R]>>")
      .Object(6, "[3 0 R 4 0 R]")
      .Object(7, "<</Producer(two)>>")
      .TrailerExtra("/Info 7 0 R")
      .Build();
}

std::string Joined(const std::string& first, const std::string& second) {
  MergeRun run(first, second);
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.State.DocFileName(3), run.OutputPath);
  return run.Output();
}

TEST(JoinedDocumentTest, IsWhatItShouldBeByteForByte) {
  const std::string expected =
      "%PDF-1.5\r%\xE2\xE3\xCF\xD3\r\n"
      "1 0 obj\r<<\r/Type/Catalog/Pages 10 0 R /Lang (en 2 0 R)\r>>\rendobj\r\n"
      "2 0 obj\r<</Type/Pages/Kids[3 0 R]/Count 5 0 R/MediaBox[0 0 9 9]/Parent 10 0 R >>\rendobj\r\n"
      "3 0 obj\r<</Type/Page/Parent 2 0 R/Contents 4 0 R>>\rendobj\r\n"
      "4 0 obj\r<</Length 6 0 R>>\rstream\nBT ETendstream\r\nendobj\r\n"
      "5 0 obj\r1\rendobj\r\n"
      "6 0 obj\r5\rendobj\r\n"
      "8 2 obj\r<<\r/CreationDate (D:20080101010101)\r/ModDate (D:20080101010101)\r"
      "/Producer (Folioweld)\r>>\rendobj\r\n"
      "9 0 obj\r19540716\rendobj\r\n"
      "10 0 obj\r<<\r/Type /Pages /Kids [ 2 0 R 11 0 R ] /Count 3\r>>\rendobj\r\n"
      "11 0 obj\r<</Type/Pages/Kids[12 0 R 14 0 R]/Count 2\r/MediaBox[0 0 9 9]/Parent 10 0 R >>\rendobj\r\n"
      "12 0 obj\r<</Type/Page/Parent 11 0 R/Contents 13 0 R>>\rendobj\r\n"
      "13 0 obj\r<</DL 4 /Length 4>>\rstream\nq Q\nendstream\r\nendobj\r\n"
      "14 0 obj\r<</Type/Page/Parent 11 0 R/Names[(3 0 R)<33>12 0 R]>>\rendobj\r\n"
      "15 0 obj\r[12 0 R 13 0 R]\rendobj\r\n"
      "16 0 obj\r<<\r/CreationDate (D:20080101010101)\r/ModDate (D:20080101010101)\r"
      "/Producer (Folioweld)\r>>\rendobj\r\n"
      "xref\r\n0 17\r\n"
      "0000000000 65535 f\r\n"
      "0000000016 00000 n\r\n"
      "0000000082 00000 n\r\n"
      "0000000171 00000 n\r\n"
      "0000000230 00000 n\r\n"
      "0000000287 00000 n\r\n"
      "0000000305 00000 n\r\n"
      "0000000000 65535 f\r\n"
      "0000000323 00002 n\r\n"
      "0000000428 00000 n\r\n"
      "0000000453 00000 n\r\n"
      "0000000521 00000 n\r\n"
      "0000000616 00000 n\r\n"
      "0000000678 00000 n\r\n"
      "0000000737 00000 n\r\n"
      "0000000808 00000 n\r\n"
      "0000000841 00000 n\r\n"
      "trailer\r\n<< /Size 17\r/Root 1 0 R\r/Info 8 2 R\r>>\r\nstartxref\r\n947\r\n%%EOF\r\n";
  EXPECT_EQ(Joined(First(), Second()), expected);
}

TEST(JoinedDocumentTest, OfOneInputIsThatDocumentRebuilt) {
  const std::string expected =
      "%PDF-1.3\r%abcd\r\n"
      "1 0 obj\r<</Type/Catalog/Pages 2 0 R>>\rendobj\r\n"
      "2 0 obj\r<</Type/Pages/Kids[3 0 R 5 0 R]/Count 2\r/MediaBox[0 0 9 9]>>\rendobj\r\n"
      "3 0 obj\r<</Type/Page/Parent 2 0 R/Contents 4 0 R>>\rendobj\r\n"
      "4 0 obj\r<</DL 4 /Length 4>>\rstream\nq Q\nendstream\r\nendobj\r\n"
      "5 0 obj\r<</Type/Page/Parent 2 0 R/Names[(3 0 R)<33>3 0 R]>>\rendobj\r\n"
      "6 0 obj\r[3 0 R 4 0 R]\rendobj\r\n"
      "7 0 obj\r<<\r/CreationDate (D:20080101010101)\r/ModDate (D:20080101010101)\r"
      "/Producer (Folioweld)\r>>\rendobj\r\n"
      "xref\r\n0 8\r\n"
      "0000000000 65535 f\r\n"
      "0000000016 00000 n\r\n"
      "0000000062 00000 n\r\n"
      "0000000139 00000 n\r\n"
      "0000000198 00000 n\r\n"
      "0000000256 00000 n\r\n"
      "0000000324 00000 n\r\n"
      "0000000354 00000 n\r\n"
      "trailer\r\n<< /Size 8\r/Root 1 0 R\r/Info 7 0 R\r>>\r\nstartxref\r\n459\r\n%%EOF\r\n";
  EXPECT_EQ(Joined(Second(), ""), expected);
}

TEST(JoinedDocumentTest, IsTheSameEveryTime) {
  EXPECT_EQ(Joined(First(), Second()), Joined(First(), Second()));
}

TEST(JoinedDocumentTest, LeavesTheInputsAsTheyWere) {
  MergeRun run(First(), Second());
  run.Run();
  EXPECT_EQ(ReadFile(run.FirstPath), First());
  EXPECT_EQ(ReadFile(run.SecondPath), Second());
  EXPECT_EQ(run.Folder.Names(), (std::vector<std::string>{"a.pdf", "b.pdf", "out.pdf"}));
}

TEST(JoinedDocumentTest, ThreeAndFivePagesAreEight) {
  const std::string joined = Joined(SimpleDocument(3), SimpleDocument(5));
  // The first document has objects 0 to 10, so its count is 11 and the second catalog is object 12.
  EXPECT_EQ(WrittenObject(joined, 12),
            "12 0 obj\r<<\r/Type /Pages /Kids [ 2 0 R 13 0 R ] /Count 8\r>>\rendobj");
}

TEST(JoinedDocumentTest, OfEqualVersionsTheFirstInputsHeaderIsTaken) {
  EXPECT_EQ(Joined(DocumentBuilder("%PDF-1.4\n%one!\n")
                       .Object(1, "<</Pages 2 0 R>>")
                       .Object(2, "<</Count 0>>")
                       .Build(),
                   DocumentBuilder("%PDF-1.4\n%two!\n")
                       .Object(1, "<</Pages 2 0 R>>")
                       .Object(2, "<</Count 0>>")
                       .Build())
                .substr(0, 16),
            "%PDF-1.4\r%one!\r\n");
}

TEST(JoinedDocumentTest, ANewerFirstInputGivesItsHeader) {
  EXPECT_EQ(Joined(SimpleDocument(1, "a", "1.7"), SimpleDocument(1, "b", "1.3")).substr(0, 9), "%PDF-1.7\r");
}

TEST(JoinedDocumentTest, ANewerSecondInputGivesItsHeader) {
  EXPECT_EQ(Joined(SimpleDocument(1, "a", "1.3"), SimpleDocument(1, "b", "1.7")).substr(0, 9), "%PDF-1.7\r");
}

TEST(JoinedDocumentTest, CanBeJoinedAgain) {
  const std::string once = Joined(SimpleDocument(1), SimpleDocument(2));
  const std::string twice = Joined(once, once);
  const std::string thrice = Joined(twice, SimpleDocument(1));
  EXPECT_EQ(CountOf(thrice, "/Type/Page/"), 7);
  EXPECT_NE(thrice.find("/Count 7\r"), std::string::npos);
}

TEST(JoinedDocumentTest, OfADocumentWithItselfHasItsPagesTwice) {
  MergeRun run(SimpleDocument(2), "");
  run.State.DocFileName(2) = run.FirstPath;
  run.Run();
  EXPECT_NE(run.Output().find("/Count 4\r"), std::string::npos);
}

TEST(JoinedDocumentTest, TakesTheNewestRevisionOfEveryObject) {
  DocumentBuilder builder;
  builder.Object(1, "<</Pages 2 0 R>>").Object(2, "<</Count 0>>").Object(3, "<</Old 1>>").EndRevision();
  builder.Object(3, "<</New 1>>").EndRevision();
  const std::string joined = Joined(builder.Build(), builder.Build());
  EXPECT_EQ(CountOf(joined, "/Old"), 0);
  EXPECT_EQ(CountOf(joined, "/New"), 2);
}

TEST(JoinedDocumentTest, AnObjectThatANewerRevisionFreedIsFree) {
  DocumentBuilder builder;
  builder.Object(1, "<</Pages 2 0 R>>").Object(2, "<</Count 0>>").Object(3, "<</Old 1>>").EndRevision();
  builder.Free(3).EndRevision();
  const std::string joined = Joined(SimpleDocument(1), builder.Build());
  EXPECT_EQ(CountOf(joined, "/Old"), 0);
  EXPECT_EQ(WrittenEntry(joined, 10), "0000000000 65535 f\r\n");
}

TEST(JoinedDocumentTest, IsShorterThanTheOutputThatItReplacesWhenItHasLessBytes) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1));
  run.Folder.Write("out.pdf", std::string(100000, 'x'));
  run.Run();
  EXPECT_EQ(run.Output(), Joined(SimpleDocument(1), SimpleDocument(1)));
}

TEST(JoinedDocumentTest, IsCutWhereItEndsWhenSomebodyMadeItLongerMeanwhile) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1));
  run.Shell.OnStatus = [&](int line) {
    if (line != 2 || run.Status(2).find("Write the output file") == std::string::npos) return;
    if (std::filesystem::file_size(run.OutputPath) == 0) std::filesystem::resize_file(run.OutputPath, 100000);
  };
  run.Run();
  EXPECT_EQ(run.State.MergeStatus, 2);
  EXPECT_EQ(run.Output(), Joined(SimpleDocument(1), SimpleDocument(1)));
}

/// A document of three objects with a trailer of its own.
std::string WithTrailer(const std::string& trailer) {
  return DocumentBuilder()
      .Object(1, "<</Pages 2 0 R>>")
      .Object(2, "<</Count 0>>")
      .Object(3, "<</Mine 1>>")
      .Trailer("/Size 4/Root 1 0 R" + trailer)
      .Build();
}

TEST(JoinedDocumentTest, WithoutAnInformationDictionaryRefersToTheFreeSlotZero) {
  for (const char* const trailer : {"", "/Info 9 0 R", "/Info 5 0 R", "/Info (none)"}) {
    const std::string joined = Joined(WithTrailer(trailer), WithTrailer(""));
    EXPECT_NE(joined.find("\r/Info 0 65535 R\r"), std::string::npos) << trailer;
    EXPECT_EQ(CountOf(joined, "/Mine 1"), 2) << trailer;
  }
}

TEST(JoinedDocumentTest, ADanglingInformationNumberOfTheSecondInputIsIgnored) {
  const std::string joined = Joined(WithTrailer("/Info 3 0 R"), WithTrailer("/Info 9 0 R"));
  EXPECT_EQ(CountOf(joined, "/Producer (Folioweld)"), 1);
  EXPECT_EQ(CountOf(joined, "/Mine 1"), 1);
}

/// A document whose one stream is the data.
std::string WithStream(const std::string& data) {
  return DocumentBuilder()
      .Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[]/Count 0>>")
      .Stream(3, "", data)
      .Build();
}

class JoinedStreamTest : public ::testing::TestWithParam<std::size_t> {};

TEST_P(JoinedStreamTest, IsCopiedWholeFromEitherInput) {
  std::string data(GetParam(), '\0');
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + i / 251);
  const std::string length = std::to_string(data.size());
  const std::string stream =
      " 0 obj\r<</Length " + length + ">>\rstream\n" + data + "endstream\r\nendobj\r\n";
  const std::string joined = Joined(WithStream(data), WithStream(data));
  EXPECT_NE(joined.find("\n3" + stream), std::string::npos);
  EXPECT_NE(joined.find("\n7" + stream), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Bytes, JoinedStreamTest,
                         ::testing::Values(0, 1, 999, 1000, 1001, 65536, 65537, 5 * 1024 * 1024 + 3));

}  // namespace
}  // namespace folioweld::testing
