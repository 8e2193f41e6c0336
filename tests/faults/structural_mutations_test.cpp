// Small documents whose structure is changed at random - tokens, lines and objects lost, doubled, exchanged -
// are joined or refused, and do no harm. The sanitizers watch in one of the builds.

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "engine/merge_job.h"
#include "tests/faults/fault_sweep.h"
#include "tests/support/document_builder.h"
#include "tests/support/memory_system.h"

namespace folioweld {
namespace {

using testing::MemorySystem;

/// A length by reference, an older revision, nested values and a stream.
std::string Revised() {
  testing::DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R/Names<</A[(x\\)y) <2f3E>]/B<</C[1 0 R 2 0 R]>>>>>>");
  builder.Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/Contents 4 0 R>>");
  builder.Stream(4, "", "BT ET", "5 0 R", "\r\n");
  builder.Object(5, "5");
  builder.Object(6, "<</Producer(somebody)>>");
  builder.EndRevision();
  builder.Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R>>");
  builder.Trailer("/Size 7/Root 1 0 R/Info 6 0 R");
  return builder.Build();
}

/// A text as pieces: words and numbers, runs of white space, single marks.
std::vector<std::string> PiecesOf(const std::string& text) {
  const auto kind = [](char c) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) return 0;
    return std::isspace(static_cast<unsigned char>(c)) != 0 ? 1 : 2;
  };
  std::vector<std::string> pieces;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool goesOn = i > 0 && kind(text[i]) == kind(text[i - 1]) && kind(text[i]) != 2;
    if (!goesOn) pieces.emplace_back();
    pieces.back() += text[i];
  }
  return pieces;
}

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  /// The text with up to five changes.
  std::string Changed(const std::string& text) {
    std::vector<std::string> pieces = PiecesOf(text);
    for (std::size_t changes = 1 + Below(5); changes > 0; --changes) Change(pieces);
    std::string result;
    for (const std::string& piece : pieces) result += piece;
    return result;
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  void Change(std::vector<std::string>& pieces) {
    static const std::vector<std::string> kStrange = {
        "0",    "-1",      "65535",     "2147483647", "4294967296", "99999999999", "<<",
        ">>",   "[",       "]",         "(",          ")",          "%",           "\r",
        "\n",   " ",       "R",         "obj",        "endobj",     "stream",      "endstream",
        "xref", "trailer", "startxref", "/Prev 0",    "/Length"};
    const std::size_t at = Below(pieces.size());
    const std::size_t other = Below(pieces.size());
    const auto from = pieces.begin() + static_cast<std::ptrdiff_t>(std::min(at, other));
    // As much as a line or an object of such a document.
    const auto to =
        pieces.begin() + static_cast<std::ptrdiff_t>(std::min(
                             {std::max(at, other), std::min(at, other) + 1 + Below(30), pieces.size() - 1}));
    switch (Below(5)) {
      case 0:
        pieces[at] = kStrange[Below(kStrange.size())];
        break;
      case 1:
        std::swap(pieces[at], pieces[other]);
        break;
      case 2:
        pieces.insert(from, kStrange[Below(kStrange.size())]);
        break;
      case 3:
        if (pieces.size() > 40) pieces.erase(from, to);
        break;
      default: {
        const std::vector<std::string> again(from, to);
        pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(at), again.begin(), again.end());
      }
    }
  }

  std::minstd_rand random_;
};

TEST(StructuralMutations, AreJoinedOrRefusedAndDoNoHarm) {
  const int count = testing::FullRun() || testing::kSanitized ? 5000 : 1000;
  const std::string originals[] = {Revised(), testing::SimpleDocument(2)};
  const std::string plain = testing::SimpleDocument(1);
  int joined = 0;
  for (int i = 0; i < count; ++i) {
    const std::string bytes = Mutator(static_cast<unsigned>(i) + 1).Changed(originals[i % 2]);
    MemorySystem system;
    system.Put("/changed", bytes);
    system.Put("/plain", plain);
    FileModule files(system);
    MergeState state;
    MergeShell shell;
    ActivityLog log(shell);
    MergeJob job(state, files, shell, log);
    const bool first = i / 2 % 2 == 0;
    state.DocFileName(1) = first ? "/changed" : "/plain";
    state.DocFileName(2) = first ? "/plain" : "/changed";
    state.DocFileName(3) = "/out";
    job.cmdOK_Click();
    const bool good = state.MergeStatus != -1;
    ASSERT_EQ(good, system.Has("/out")) << "mutation " << i << ":\n" << bytes;
    ASSERT_TRUE(good || !log.LogLine(log.LogIndex()).empty()) << "mutation " << i << " failed without a word";
    ASSERT_EQ(system.OpenFiles(), 0U) << "mutation " << i;
    ASSERT_EQ(system.Bytes("/changed"), bytes) << "mutation " << i;
    joined += good ? 1 : 0;
  }
  std::cout << "  joined: " << joined << " of " << count << '\n';
  EXPECT_GT(joined, count / 20);
  EXPECT_LT(joined, count);
}

}  // namespace
}  // namespace folioweld
