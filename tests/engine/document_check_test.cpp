// The acceptance test for input files.

#include "engine/document_check.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

#include "tests/engine/file_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;

constexpr char kHeader[] = "%PDF-1.4\n";
constexpr char kMarker[] = "%\xE2\xE3\xCF\xD3\n";

class DocumentCheckTest : public testing::FileFixture {
 protected:
  /// A document whose table begins with "xref" and the line end given.
  static std::string Document(const std::string& xrefEnd = "\n", const std::string& header = kHeader,
                              const std::string& marker = kMarker) {
    const std::string body = header + marker + "1 0 obj\n<<>>\nendobj\n";
    return body + "xref" + xrefEnd + "0 1\n" + Tail(body.size());
  }

  static std::string Tail(std::size_t offset) { return "startxref\n" + std::to_string(offset) + "\n%%EOF\n"; }

  static std::int32_t OffsetOfXref(const std::string& document) {
    return static_cast<std::int32_t>(document.find("\nxref") + 1);
  }

  /// The result for the slot; the verdict of the public test has to be the same.
  std::int32_t Check(const std::string& document, std::int16_t slot = 1) {
    const std::int16_t number = OpenWith(document);
    std::int32_t result = 12345;
    CheckDocumentStructure(State, Files, number, slot, result, Why);
    EXPECT_TRUE(Files.Close(number));
    EXPECT_EQ(IsThisDocumentApdf(Files, Folder.File("in")), result > 0);
    return result;
  }

  void ExpectRefused(const std::string& document, const std::string& rule) {
    EXPECT_EQ(Check(document), -1);
    EXPECT_EQ(Why.Rule, rule);
    EXPECT_EQ(Why.DocumentSlot, 1);
    EXPECT_EQ(State.DocHeader(1), "");
    EXPECT_EQ(State.DocSecondLine(1), "");
    EXPECT_EQ(State.DocXrefStart(1), -1);
  }

  MergeState State;
  PassFailure Why;
};

TEST_F(DocumentCheckTest, AcceptsADocumentAndRecordsItsLinesAndTheStartOfItsTable) {
  const std::string document = Document();
  EXPECT_EQ(Check(document), OffsetOfXref(document) + 5);
  EXPECT_TRUE(Why.Empty());
  EXPECT_EQ(State.DocHeader(1), "%PDF-1.4\r");
  EXPECT_EQ(State.DocSecondLine(1), "%\xE2\xE3\xCF\xD3\r\n");
  EXPECT_EQ(State.DocXrefStart(1), OffsetOfXref(document) + 5);
}

TEST_F(DocumentCheckTest, RecordsForTheSecondInputInItsOwnSlot) {
  const std::string document = Document("\n", "%PDF-1.7\n");
  EXPECT_EQ(Check(document, 2), OffsetOfXref(document) + 5);
  EXPECT_EQ(State.DocHeader(2), "%PDF-1.7\r");
  EXPECT_EQ(State.DocXrefStart(2), OffsetOfXref(document) + 5);
  EXPECT_EQ(State.DocHeader(1), "");
  EXPECT_EQ(State.DocXrefStart(1), -1);
}

TEST_F(DocumentCheckTest, LeavesTheStateAloneForAnyOtherSlot) {
  State.DocHeader(1) = "kept";
  State.DocSecondLine(2) = "kept";
  State.DocXrefStart(3) = 77;
  for (const int other : {-1, 0, 3, 4}) {
    const auto slot = static_cast<std::int16_t>(other);
    EXPECT_GT(Check(Document(), slot), 0);
    EXPECT_EQ(Check("no document at all", slot), -1);
    EXPECT_EQ(Why.DocumentSlot, 0);
    EXPECT_FALSE(Why.Rule.empty());
  }
  EXPECT_EQ(State.DocHeader(1), "kept");
  EXPECT_EQ(State.DocSecondLine(2), "kept");
  EXPECT_EQ(State.DocXrefStart(3), 77);
  EXPECT_EQ(State.DocXrefStart(1), -1);
}

TEST_F(DocumentCheckTest, ARefusalForgetsWhatAnEarlierDocumentLeftInTheSlot) {
  for (const std::string& document :
       {Document("\n", "%PDF-1.4\n", "no comment\n"), std::string("%PDX-1.4\n")}) {
    ASSERT_GT(Check(Document()), 0);
    EXPECT_EQ(Check(document), -1);
    EXPECT_EQ(State.DocHeader(1), "");
    EXPECT_EQ(State.DocSecondLine(1), "");
    EXPECT_EQ(State.DocXrefStart(1), -1);
  }
}

TEST_F(DocumentCheckTest, TheLineEndBehindXrefIsLeftBehindInAnyForm) {
  const std::int32_t xref = OffsetOfXref(Document());
  EXPECT_EQ(Check(Document("\r\n")), xref + 6);
  EXPECT_EQ(Check(Document("\n")), xref + 5);
  EXPECT_EQ(Check(Document("\r")), xref + 5);
  EXPECT_EQ(Check(Document("\n\r")), xref + 6);
  EXPECT_EQ(Check(Document("\r\r")), xref + 6);
  EXPECT_EQ(Check(Document("\n\n")), xref + 6);
  EXPECT_EQ(Check(Document(" \n")), xref + 5) << "the sixth byte alone counts too";
  EXPECT_EQ(Check(Document(" ")), xref + 4);
  EXPECT_EQ(Check(Document("")), xref + 4);
  EXPECT_EQ(Check(Document("\r\n\n")), xref + 6) << "no more than two bytes are looked at";
}

TEST_F(DocumentCheckTest, HeaderAndSecondLineMayEndInAnyLineEnd) {
  EXPECT_GT(Check(Document("\n", "%PDF-1.4\r\n", "%\xE2\xE3\xCF\xD3\r\n")), 0);
  EXPECT_EQ(State.DocSecondLine(1), "%\xE2\xE3\xCF\xD3\r\n");
  EXPECT_GT(Check(Document("\n", "%PDF-1.4\r", "%\xE2\xE3\xCF\xD3\r")), 0);
  EXPECT_GT(Check(Document("\n", "%PDF-1.4\n\n\r\n", "%\xE2\xE3\xCF\xD3\n")), 0) << "blank lines are skipped";
}

TEST_F(DocumentCheckTest, AHeaderThatDoesNotBeginAsOneIsRefused) {
  ExpectRefused(Document("\n", "%PDX-1.4\n"), "the file does not begin with \"%PDF-\"");
  ExpectRefused(Document("\n", " %PDF-1.4\n"), "the file does not begin with \"%PDF-\"");
  ExpectRefused(Document("\n", "%pdf-1.4\n"), "the file does not begin with \"%PDF-\"");
}

TEST_F(DocumentCheckTest, AHeaderOfSixCharactersIsRefused) {
  ExpectRefused(Document("\n", "%PDF-1\n"), "the header line is shorter than 8 characters");
  ExpectRefused(Document("\n", "%PDF-1.\n"), "the header line is shorter than 8 characters");
}

TEST_F(DocumentCheckTest, ALongHeaderIsTakenByItsFirstSixteenBytesAndTheSecondLineLookedForBehindThem) {
  EXPECT_GT(Check(Document("\n", "%PDF-1.4  123456\n")), 0) << "exactly 16 bytes";
  EXPECT_EQ(State.DocHeader(1), "%PDF-1.4  123456\r");
  ExpectRefused(Document("\n", "%PDF-1.4  1234567\n"),
                "the second line is no comment of at least 5 characters");
  EXPECT_GT(Check(Document("\n", "%PDF-1.4  123456%rest of it\n")), 0);
  EXPECT_EQ(State.DocHeader(1), "%PDF-1.4  123456\r");
  EXPECT_EQ(State.DocSecondLine(1), "%rest of it\r\n");
}

TEST_F(DocumentCheckTest, ASecondLineThatIsNoCommentIsRefused) {
  ExpectRefused(Document("\n", kHeader, "1 0 obj\n"),
                "the second line is no comment of at least 5 characters");
  ExpectRefused(Document("\n", kHeader, " %abcd\n"),
                "the second line is no comment of at least 5 characters");
}

TEST_F(DocumentCheckTest, ALineEndBeforeTheHeaderIsTheReason) {
  for (const char* end : {"\n", "\r", "\r\n", "\n\n"}) {
    ExpectRefused(Document("\n", std::string(end) + kHeader), "a line end stands before \"%PDF-\"");
  }
}

TEST_F(DocumentCheckTest, ASecondLineOfFourCharactersIsRefusedAndOneOfFiveIsNot) {
  ExpectRefused(Document("\n", kHeader, "%abc\n"), "the second line is no comment of at least 5 characters");
  EXPECT_GT(Check(Document("\n", kHeader, "%abcd\n")), 0);
}

TEST_F(DocumentCheckTest, ALongMarkerLineIsAcceptedByItsFirstSixteenBytes) {
  EXPECT_GT(Check(Document("\n", kHeader, "%" + std::string(500, 'x') + "\n")), 0);
  EXPECT_EQ(State.DocSecondLine(1), "%" + std::string(14, 'x') + "\r\n")
      << "one of the 16 bytes is the header's line end";
}

TEST_F(DocumentCheckTest, AFileOfThirtyNineBytesIsRefused) {
  std::string document = std::string("%PDF-1.4\n%abcdxref") + "startxref\n14\n%%EOF";
  ASSERT_LT(document.size(), 39U);
  document.insert(14, 39 - document.size(), 'x');
  ExpectRefused(document, "the file is shorter than 40 bytes");
  EXPECT_EQ(Why.FileOffset, 39);
}

TEST_F(DocumentCheckTest, AFileOfFortyBytesCanBeAccepted) {
  const std::string document = "%PDF-1.4\n%abcd\nxrefstartxref\n15\n%%EOF";
  EXPECT_GT(Check(document + std::string(40 - document.size(), '\n')), 0);
}

TEST_F(DocumentCheckTest, EmptyAndTinyFilesAreRefused) {
  ExpectRefused("", "the file is empty");
  ExpectRefused("%PDF-1.4", "the second line cannot be read");
  ExpectRefused("%PDF-1.4\n", "the second line is no comment of at least 5 characters");
  ExpectRefused("%PDF-1.4\n%abcd\n", "the file is shorter than 40 bytes");
}

TEST_F(DocumentCheckTest, MoreThanThirtyBytesOfGarbageBehindTheEndAreRefused) {
  const std::string rule = "no \"%%EOF\" stands in the last 40 bytes";
  ExpectRefused(Document() + std::string(35, 'x'), rule);
  ExpectRefused(Document() + std::string(34, 'x'), "no \"startxref\" stands in the last 40 bytes");
  const std::string shortest = "%PDF-1.4\n%abcd\nxref\nstartxref 15%%EOF";
  EXPECT_GT(Check(shortest + std::string(23, 'x')), 0) << "both are still in the last 40 bytes";
  ExpectRefused(shortest + std::string(24, 'x'), "no \"startxref\" stands in the last 40 bytes");
}

TEST_F(DocumentCheckTest, WithoutTheWordsOfTheTailADocumentIsRefused) {
  const std::string body = std::string(kHeader) + kMarker + "xref\n0 1\n" + std::string(40, 'x');
  ExpectRefused(body + "\nstartxref\n15\n%%EO", "no \"%%EOF\" stands in the last 40 bytes");
  ExpectRefused(body + "\nstartxre\n15\n%%EOF", "no \"startxref\" stands in the last 40 bytes");
}

TEST_F(DocumentCheckTest, OfTwoEndMarkersInTheTailTheFirstIsUsedAndStartxrefHasToPrecedeIt) {
  const std::string body = std::string(kHeader) + kMarker + "xref\n0 1\n";
  EXPECT_EQ(Check(body + "startxref\n15\n%%EOF\n9\n%%EOF\n"), 20);
  ExpectRefused(body + std::string(40, 'x') + "%%EOF\nstartxref\n15\n%%EOF\n",
                "no number stands between \"startxref\" and \"%%EOF\"");
}

TEST_F(DocumentCheckTest, OfTwoStartxrefTheFirstInTheTailIsUsed) {
  const std::string body = std::string(kHeader) + kMarker + "xref\n0 1\n" + std::string(40, 'x');
  EXPECT_EQ(Check(body + "startxref\n15\nstartxref\n9\n%%EOF\n"), 20);
  EXPECT_EQ(Check(body + "startxref\n9\nstartxref\n15\n%%EOF\n"), -1);
}

TEST_F(DocumentCheckTest, BlanksAndLineEndsAroundTheNumberAreSkipped) {
  const std::string body = std::string(kHeader) + kMarker + "xref\n0 1\n" + std::string(20, 'x');
  EXPECT_EQ(Check(body + "startxref \r\n  15 \r\n%%EOF"), 20);
  EXPECT_EQ(Check(body + "startxref15%%EOF\n\n\n\n\n\n\n\n\n"), 20);
  EXPECT_EQ(Check(body + "startxref\n0015\n%%EOF\n"), 20);
}

TEST_F(DocumentCheckTest, WithoutANumberADocumentIsRefused) {
  const std::string body = std::string(kHeader) + kMarker + "xref\n0 1\n" + std::string(20, 'x');
  const std::string rule = "no number stands between \"startxref\" and \"%%EOF\"";
  for (const char* number : {"", " ", "abc", "-15", "+15", "1.5", "15x", "\t15"}) {
    ExpectRefused(body + "startxref\n" + number + "\n%%EOF\n", rule);
  }
  ExpectRefused(body + "startxref\n99999999999\n%%EOF\n", rule);
}

TEST_F(DocumentCheckTest, ANumberBeyondTheFileIsRefused) {
  const std::string body = std::string(kHeader) + kMarker + "xref\n0 1\n" + std::string(20, 'x');
  const std::string rule = "\"startxref\" leads beyond the end of the file";
  ExpectRefused(body + "startxref\n4000\n%%EOF\n", rule);
  EXPECT_EQ(Why.FileOffset, 4000);
  ExpectRefused(body + "startxref\n2147483646\n%%EOF\n", rule);
}

TEST_F(DocumentCheckTest, ACrossReferenceStreamIsRefused) {
  const std::string document = std::string(kHeader) + kMarker +
                               "7 0 obj\n<</Type/XRef/Size 8>>\nstream\nendstream\nendobj\n" + Tail(15);
  ExpectRefused(
      document,
      "\"startxref\" does not lead to a cross-reference table (\"xref\"); cross-reference streams are "
      "not handled");
  EXPECT_EQ(Why.FileOffset, 15);
}

TEST_F(DocumentCheckTest, ANumberThatMissesTheTableByOneByteIsRefused) {
  const std::string body = std::string(kHeader) + kMarker;
  EXPECT_GT(Check(body + "xref\n0 1\n" + std::string(20, 'x') + Tail(15)), 0);
  EXPECT_EQ(Check(body + "xref\n0 1\n" + std::string(20, 'x') + Tail(14)), -1);
  EXPECT_EQ(Check(body + "xref\n0 1\n" + std::string(20, 'x') + Tail(16)), -1);
}

TEST_F(DocumentCheckTest, AKeywordCutOffByTheEndOfTheFileIsRefusedAndAWholeOneIsNot) {
  const std::string body = std::string(kHeader) + kMarker + std::string(40, 'x') + "\nstartxref\n74\n%%EOF\n";
  ASSERT_EQ(body.size(), 75U);
  EXPECT_EQ(Check(body.substr(0, 74) + "xref"), 78);
  EXPECT_EQ(Check(body.substr(0, 74) + "xre"), -1);
}

TEST_F(DocumentCheckTest, EveryFailedReadRefusesTheDocument) {
  const std::string document = Document("\n", kHeader, kMarker + std::string(50000, 'x') + "\n");
  const std::int16_t number = OpenWith(document);
  System.Calls.clear();
  std::int32_t result = -1;
  CheckDocumentStructure(State, Files, number, 1, result, Why);
  ASSERT_GT(result, 0);
  const std::size_t reads = System.Calls.size();
  EXPECT_LE(reads, 3U) << "a few bytes at both ends";
  EXPECT_TRUE(Files.Close(number));
  for (std::size_t failing = 0; failing < reads; ++failing) {
    const std::int16_t again = OpenWith(document);
    System.Calls.clear();
    System.Decide = [&](const FaultingSystem::Call&, std::size_t index) {
      return FaultingSystem::Fault{index == failing ? EIO : 0, 0};
    };
    CheckDocumentStructure(State, Files, again, 1, result, Why);
    EXPECT_EQ(result, -1) << failing;
    EXPECT_FALSE(Why.Rule.empty());
    EXPECT_EQ(State.DocHeader(1), "");
    System.Decide = nullptr;
    EXPECT_TRUE(Files.Close(again));
  }
}

TEST_F(DocumentCheckTest, ExhaustedMemoryRefusesTheDocumentAndIsToldAsThat) {
  const std::int16_t number = OpenWith(Document());
  System.Decide = [](const FaultingSystem::Call&, std::size_t) -> FaultingSystem::Fault {
    throw std::bad_alloc();
  };
  std::int32_t result = 5;
  CheckDocumentStructure(State, Files, number, 2, result, Why);
  System.Decide = nullptr;
  EXPECT_EQ(result, -1);
  EXPECT_EQ(State.DocXrefStart(2), -1);
  EXPECT_EQ(Why.Rule, "out of memory");
  EXPECT_EQ(Why.DocumentSlot, 2);
}

TEST_F(DocumentCheckTest, AFileThatIsNotOpenIsRefused) {
  for (const int number : {-1, 0, 9}) {
    std::int32_t result = 5;
    CheckDocumentStructure(State, Files, static_cast<std::int16_t>(number), 1, result, Why);
    EXPECT_EQ(result, -1);
    EXPECT_FALSE(Why.Empty());
  }
}

class IsThisDocumentApdfTest : public testing::FileFixture {};

TEST_F(IsThisDocumentApdfTest, AcceptsADocumentAndClosesIt) {
  const std::string path = Folder.Write("in.pdf", testing::SimpleDocument(2));
  PassFailure why;
  why.Rule = "an old reason";
  EXPECT_TRUE(IsThisDocumentApdf(Files, path, &why));
  EXPECT_TRUE(why.Empty());
  EXPECT_TRUE(IsThisDocumentApdf(Files, path));
  EXPECT_EQ(CountOf("CloseHandle"), 2);
}

TEST_F(IsThisDocumentApdfTest, ClosesARefusedFileTooAndSaysWhy) {
  const std::string path = Folder.Write("in.pdf", "no document");
  PassFailure why;
  EXPECT_FALSE(IsThisDocumentApdf(Files, path, &why));
  EXPECT_EQ(why.Rule, "the file does not begin with \"%PDF-\"");
  EXPECT_EQ(why.DocumentSlot, 0);
  EXPECT_EQ(CountOf("CloseHandle"), 1);
}

TEST_F(IsThisDocumentApdfTest, AnEmptyPathIsRefusedWithoutAskingTheSystem) {
  PassFailure why;
  EXPECT_FALSE(IsThisDocumentApdf(Files, "", &why));
  EXPECT_EQ(why.Rule, "no file is named");
  EXPECT_TRUE(System.Calls.empty());
}

TEST_F(IsThisDocumentApdfTest, WhatCannotBeOpenedIsRefusedInTheSystemsWords) {
  PassFailure why;
  EXPECT_FALSE(IsThisDocumentApdf(Files, Folder.File("missing.pdf"), &why));
  EXPECT_EQ(why.Rule, "the file cannot be opened: No such file or directory");
  EXPECT_FALSE(IsThisDocumentApdf(Files, Folder.Path(), &why));
  EXPECT_EQ(why.Rule, "the file cannot be opened: Is a directory");
}

TEST_F(IsThisDocumentApdfTest, APipeNeitherBlocksNorIsRead) {
  ASSERT_EQ(::mkfifo(Folder.File("pipe.pdf").c_str(), 0600), 0);
  EXPECT_FALSE(IsThisDocumentApdf(Files, Folder.File("pipe.pdf")));
  EXPECT_EQ(CountOf("ReadFile"), 0);
}

TEST_F(IsThisDocumentApdfTest, ALinkToADocumentIsADocument) {
  std::filesystem::create_symlink(Folder.Write("in.pdf", testing::SimpleDocument(1)), Folder.File("link"));
  EXPECT_TRUE(IsThisDocumentApdf(Files, Folder.File("link")));
}

}  // namespace
}  // namespace folioweld
