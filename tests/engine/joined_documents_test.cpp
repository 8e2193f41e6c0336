#include "engine/joined_documents.h"

#include <gtest/gtest.h>
#include <limits>

#include "engine/own_files.h"

namespace folioweld {
namespace {

FileInformation ExtremeState() {
  FileInformation state;
  state.Identity = {std::numeric_limits<std::uint64_t>::max(), 7};
  state.Size = 2'147'483'648;
  state.WriteSeconds = -1;
  state.WriteNanoseconds = 999'999'999;
  state.ChangeSeconds = std::numeric_limits<std::int64_t>::max();
  state.ChangeNanoseconds = 5;
  return state;
}

TEST(JoinedDocuments, AreReadAsTheyWereWritten) {
  const std::vector<JoinedDocument> documents = {
      {"/a folder/b\nc\xFF.pdf", ExtremeState(), "b\nc\xFF.pdf", 0}, {"/tmp/Pdf1.tmp", {}, "", 350'000}};
  const auto read = ReadJoinedDocuments(WriteJoinedDocuments(documents));
  ASSERT_TRUE(read);
  ASSERT_EQ(read->size(), 2U);
  for (const std::size_t i : {0U, 1U}) {
    EXPECT_EQ((*read)[i].Path, documents[i].Path);
    EXPECT_EQ((*read)[i].Name, documents[i].Name);
    EXPECT_EQ((*read)[i].FirstObject, documents[i].FirstObject);
    EXPECT_TRUE(IsSameState((*read)[i].Known, documents[i].Known));
  }
}

TEST(JoinedDocuments, OfNoneThereAreNoBytes) {
  EXPECT_EQ(WriteJoinedDocuments({}), "");
  ASSERT_TRUE(ReadJoinedDocuments(""));
  EXPECT_TRUE(ReadJoinedDocuments("")->empty());
}

TEST(JoinedDocuments, AreRefusedWhenCutAnywhere) {
  const std::string bytes = WriteJoinedDocuments({{"/a.pdf", ExtremeState(), "a.pdf", 12}});
  for (std::size_t size = 1; size < bytes.size(); ++size) {
    EXPECT_FALSE(ReadJoinedDocuments(std::string_view(bytes).substr(0, size))) << size;
  }
}

TEST(JoinedDocuments, AreRefusedWithWhatIsNoNumber) {
  for (const std::string_view number : {"", "x", "1x", "2147483648", " 1"}) {
    std::string bytes("/a.pdf\0a.pdf\0", 13);
    bytes += number;
    bytes += std::string(
        "\0"
        "1\0"
        "2\0"
        "3\0"
        "4\0"
        "5\0"
        "6\0"
        "7\0",
        15);
    EXPECT_FALSE(ReadJoinedDocuments(bytes)) << number;
  }
}

}  // namespace
}  // namespace folioweld
