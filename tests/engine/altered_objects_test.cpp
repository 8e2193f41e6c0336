// What objects of an input lose on their way into the output: streams, strings, references, generations.

#include <gtest/gtest.h>
#include <map>

#include "engine/alteration.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {
namespace {

using Kind = AlterationKind;

/// A page whose catalog and page tree are objects 1 to 3. The test adds object 4 and what follows.
DocumentBuilder OnePage(const std::string& page = "") {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>")
      .Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
      .Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]" + page + ">>");
  return builder;
}

/// What a merge told of one of its inputs: kind and first object.
using FoundKinds = std::map<Kind, std::int32_t>;

FoundKinds TellOf(MergeRun& run, std::size_t document) {
  run.Run();
  EXPECT_FALSE(run.Failed());
  FoundKinds told;
  if (run.Failed()) return told;
  for (const Alteration& found : run.State.DocSources(3).at(document).Alterations) {
    told[found.Kind] = found.ObjectNumber;
  }
  return told;
}

FoundKinds ToldAlone(const std::string& document) {
  MergeRun run(document, "");
  return TellOf(run, 0);
}

FoundKinds ToldAsFirst(const std::string& document, const std::string& second = SimpleDocument(1)) {
  MergeRun run(document, second);
  return TellOf(run, 0);
}

FoundKinds ToldAsSecond(const std::string& document) {
  MergeRun run(SimpleDocument(1), document);
  return TellOf(run, 1);
}

/// The same whether the document is alone, the first or the second one.
FoundKinds ToldAnywhere(const std::string& document) {
  const FoundKinds told = ToldAlone(document);
  EXPECT_EQ(ToldAsFirst(document), told);
  EXPECT_EQ(ToldAsSecond(document), told);
  return told;
}

// Streams.

std::string WithStream(const std::string& data, const std::string& length, const std::string& end) {
  return OnePage()
      .RawObject(4, "4 0 obj\n<</Length " + length + ">>\nstream\n" + data + end + "\nendobj\n")
      .Build();
}

TEST(AlteredStream, ThatEndsAfterOrBeforeItsLengthIsTold) {
  EXPECT_EQ(ToldAnywhere(WithStream("0123456789", "9", "\nendstream")),
            (FoundKinds{{Kind::StreamEndsElsewhere, 4}}));
  EXPECT_EQ(ToldAnywhere(WithStream("0123456789", "12", "\nendstream")),
            (FoundKinds{{Kind::StreamEndsElsewhere, 4}}));
  EXPECT_EQ(ToldAnywhere(WithStream("0123456789", "0", "\nendstream")),
            (FoundKinds{{Kind::StreamEndsElsewhere, 4}}));
}

TEST(AlteredStream, ThatEndsWhereItsLengthSaysIsNot) {
  for (const char* end : {"endstream", "\nendstream", "\r\nendstream", "\rendstream", " \n\nendstream"}) {
    EXPECT_EQ(ToldAnywhere(WithStream("0123456789", "10", end)), FoundKinds{}) << end;
  }
}

TEST(AlteredStream, OfALengthInAnObjectIsLookedAtWhereThatSays) {
  const auto document = [](const std::string& length) {
    return OnePage().Stream(4, "", "0123456789", "5 0 R").Object(5, length).Build();
  };
  EXPECT_EQ(ToldAnywhere(document("10")), FoundKinds{});
  EXPECT_EQ(ToldAnywhere(document("8")), (FoundKinds{{Kind::StreamEndsElsewhere, 4}}));
}

TEST(AlteredStream, ThatEndsWithTheFileIsTold) {
  // Its length goes to the last byte of the file, so that nothing follows the data.
  std::string bytes = WithStream("0123456789", "00010", "\nendstream");
  const std::string length = std::to_string(bytes.size() - bytes.find("0123456789"));
  bytes.replace(bytes.find("00010"), 5, std::string(5 - length.size(), '0') + length);
  EXPECT_EQ(ToldAlone(bytes), (FoundKinds{{Kind::StreamEndsElsewhere, 4}}));
}

TEST(AlteredStream, IsToldWithTheFirstPlaceAndTheirNumber) {
  DocumentBuilder builder = OnePage();
  for (int number = 4; number < 7; ++number) builder.Stream(number, "", "0123456789", "5");
  const std::string document = builder.Build();
  MergeRun run(document, "");
  run.Run();
  EXPECT_EQ(run.LogLines(),
            (std::vector<std::string>{
                "[Folioweld-cmdOK]=>\"" + run.FirstPath + "\", object 4, file offset " +
                std::to_string(builder.OffsetOf(4)) +
                ": \"endstream\" does not stand where the stream's /Length says: other programs look for it, "
                "and the output has what /Length says, the first of 3 such places"}));
  EXPECT_NE(run.Status(2).find("1 warning, see the log\r\n"), std::string::npos);
}

// Strings over several lines.

std::string WithString(const std::string& text) {
  return OnePage().Object(4, "<</S " + text + ">>").Build();
}

TEST(AlteredString, ThatLosesBlanksOrEmptyLinesIsTold) {
  for (const char* text : {"(a \nb)", "(a\n\nb)", "(a\r\n\r\nb)", "(a\n\rb)", "(a  \r\nb)", "(a\n \nb)",
                           "[(x)(a \nb)]", "(a\\\n\nb)"}) {
    EXPECT_EQ(ToldAnywhere(WithString(text)), (FoundKinds{{Kind::StringLosesBytes, 4}})) << text;
  }
}

TEST(AlteredString, ThatKeepsItsBytesIsNot) {
  for (const char* text : {"(a\nb)", "(a\r\nb)", "(a\rb)", "(a\n  b)", "(a\\\nb)", "(a\t\nb)", "(a) \n /T 1",
                           "<61 \n\n 62>", "% (a \n(b)", "[(a)\n\n(b)]", "()\r\n\r\n"}) {
    EXPECT_EQ(ToldAnywhere(WithString(text)), FoundKinds{}) << text;
  }
}

// Ends that are none.

TEST(AlteredObject, ThatEndsEarlyWithinAStringACommentOrANameIsTold) {
  for (const char* text :
       {"(to the endobj\n)", "% the endobj\n", "/The/endobj\n", "/Theendobj\n", "(\\) endobj\n)"}) {
    const std::string document =
        OnePage().RawObject(4, "4 0 obj\n<</S " + std::string(text) + ">>\nendobj\n").Build();
    EXPECT_EQ(ToldAnywhere(document), (FoundKinds{{Kind::ObjectCutShort, 4}})) << text;
  }
}

TEST(AlteredObject, ThatEndsAfterAStringACommentOrANameIsNot) {
  for (const char* text :
       {"<</S(endobj)>>endobj", "/Name endobj", "<</S(%)>> endobj", "[(a)]endobj", "42 endobj"}) {
    EXPECT_EQ(ToldAnywhere(OnePage().RawObject(4, "4 0 obj\n" + std::string(text) + "\n").Build()),
              FoundKinds{})
        << text;
  }
}

// References.

TEST(AlteredReference, ThatOthersSeeAndTheRenumberingDoesNotIsTold) {
  for (const char* text :
       {"1\t0 R", "1 0\tR", "1 0 R\t", "1\f0 R", "1 % one\n0 R", "1 0%\nR", "00000000001 0 R", "/B\t1 0 R"}) {
    const std::string document = OnePage().Object(4, "<</A " + std::string(text) + "/C 3 0 R>>").Build();
    EXPECT_EQ(ToldAsSecond(document), (FoundKinds{{Kind::ReferenceNotSeen, 4}})) << text;
    EXPECT_EQ(ToldAsFirst(document), FoundKinds{}) << text;
    EXPECT_EQ(ToldAlone(document), FoundKinds{}) << text;
  }
  const std::string withNul = std::string("<</A 1") + '\0' + "0 R>>";
  EXPECT_EQ(ToldAsSecond(OnePage().Object(4, withNul).Build()), (FoundKinds{{Kind::ReferenceNotSeen, 4}}));
}

TEST(AlteredReference, ThatOnlyLooksLikeOneIsNot) {
  for (const char* text : {"(1\t0 R)", "% 1\t0 R\n1 0 R", "<31\t30>", "[1\t0 2 0 R]", "1\t0 0 RG",
                           "0.00000000000001 0 R", "(50% 1 0 R)"}) {
    EXPECT_EQ(ToldAsSecond(OnePage().Object(4, "<</A " + std::string(text) + ">>").Build()), FoundKinds{})
        << text;
  }
}

TEST(AlteredReference, ToAnObjectThatOnlyALaterDocumentHasIsTold) {
  // Five objects with the free one; the second document's objects are 5 and the following.
  const auto document = [](const std::string& number) {
    return OnePage().Object(4, "<</A " + number + " 0 R/B(9 0 R)>>").Build();
  };
  const std::string second = OnePage().Object(4, "<<>>").Object(5, "<<>>").Build();
  EXPECT_EQ(ToldAsFirst(document("6"), second), (FoundKinds{{Kind::ReferenceToLater, 4}}));
  EXPECT_EQ(ToldAsFirst(document("10"), second), (FoundKinds{{Kind::ReferenceToLater, 4}}));
  EXPECT_EQ(ToldAsFirst(document("5"), second), (FoundKinds{{Kind::ReferenceToLater, 4}})) << "the filler";
  EXPECT_EQ(ToldAsFirst(document("11"), second), FoundKinds{}) << "nobody has it";
  EXPECT_EQ(ToldAsFirst(document("4"), second), FoundKinds{});
  EXPECT_EQ(ToldAsFirst(document("6 % six\n"), second), (FoundKinds{{Kind::ReferenceToLater, 4}}));
  EXPECT_EQ(ToldAlone(document("6")), FoundKinds{}) << "nothing follows";
  EXPECT_EQ(ToldAsSecond(document("6")), FoundKinds{}) << "nothing follows";
}

TEST(AlteredReference, ToAFreeSlotOfALaterDocumentIsNot) {
  const std::string first = OnePage().Object(4, "<</A 9 0 R>>").Build();
  EXPECT_EQ(ToldAsFirst(first, OnePage().Free(4).Build()), FoundKinds{});
}

TEST(AlteredReference, ToObjectZeroIsToldOfAnyDocumentButTheFirst) {
  const std::string document = OnePage().Object(4, "<</A 0 0 R/B 00 1 R>>").Build();
  EXPECT_EQ(ToldAsSecond(document), (FoundKinds{{Kind::ReferenceToFiller, 4}}));
  EXPECT_EQ(ToldAsFirst(document), FoundKinds{});
  EXPECT_EQ(ToldAlone(document), FoundKinds{});
  EXPECT_EQ(ToldAsSecond(OnePage().Object(4, "<</A(0 0 R)/B 10 0 R/C 0 0 obj>>").Build()), FoundKinds{});
}

// Generations.

TEST(AlteredObject, WhoseHeaderGivesAnotherGenerationThanTheTableIsTold) {
  const std::string document = OnePage().RawObject(4, "4 1 obj\n<<>>\nendobj\n", 0).Build();
  EXPECT_EQ(ToldAnywhere(document), (FoundKinds{{Kind::GenerationChanged, 4}}));
  EXPECT_EQ(ToldAnywhere(OnePage().RawObject(4, "4 1 obj\n<<>>\nendobj\n", 1).Build()), FoundKinds{});
}

TEST(AlteredObject, InUseWithTheGenerationOfFreeOnesIsTold) {
  const std::string document = OnePage().Object(4, "<<>>", 65535).Build();
  EXPECT_EQ(ToldAnywhere(document), (FoundKinds{{Kind::ObjectLeftOut, 4}}));
  EXPECT_EQ(ToldAnywhere(OnePage().Free(4).Build()), FoundKinds{});
}

}  // namespace
}  // namespace folioweld::testing
