// Small documents, cut short at every byte and changed at every byte, are joined or refused, and do no harm.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

#include "engine/merge_job.h"
#include "tests/faults/fault_sweep.h"
#include "tests/support/document_builder.h"
#include "tests/support/memory_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using testing::MemorySystem;

/// A document with an older revision, a length by reference, strings, comments and nested dictionaries.
std::string Varied() {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R/Names<</A[(x\\)y) <2f3E>]>>% comment\n/V 1>>");
  builder.Object(2, "<</Type/Pages/Kids[3 0 R]/Count 7 0 R>>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/Contents 4 0 R>>");
  builder.Stream(4, "", "BT ET", "5 0 R", "\r\n");
  builder.Object(5, "5");
  builder.Object(6, "<</Producer(somebody)>>");
  builder.Object(7, "1");
  builder.TrailerExtra("/Info 6 0 R");
  builder.EndRevision();
  builder.Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R>>");
  builder.Trailer("/Size 8/Root 1 0 R/Info 6 0 R");
  return builder.Build();
}

class DamageFixture : public ::testing::Test {
 protected:
  /// Joins the bytes as the first and as the second document.
  void Join(const std::string& bytes) {
    for (const bool asFirst : {true, false}) {
      MemorySystem system;
      system.Put("/damaged", bytes);
      system.Put("/plain", plain_);
      FileModule files(system);
      MergeState state;
      MergeShell shell;
      ActivityLog log(shell);
      MergeJob job(state, files, shell, log);
      state.DocFileName(1) = asFirst ? "/damaged" : "/plain";
      state.DocFileName(2) = asFirst ? "/plain" : "/damaged";
      state.DocFileName(3) = "/out";
      job.cmdOK_Click();
      const bool good = state.MergeStatus != -1;
      ASSERT_EQ(good, system.Has("/out"));
      ASSERT_TRUE(good || !log.LogLine(log.LogIndex()).empty()) << "failed without a word";
      ASSERT_EQ(system.OpenFiles(), 0U);
      ASSERT_EQ(system.Bytes("/damaged"), bytes);
      (good ? joined_ : refused_) += 1;
    }
  }

  /// Cuts the document and changes it in four ways at every `stride`th byte.
  void Damage(const std::string& whole, std::size_t stride) {
    for (std::size_t at = 0; at < whole.size(); at += stride) {
      std::string other = whole;
      other[at] = static_cast<char>(static_cast<unsigned char>(other[at]) ^ (1U << (at % 8)));
      std::string without = whole;
      without.erase(at, 1);
      std::string doubled = whole;
      doubled.insert(at, 1, whole[at]);
      std::string delimiter = whole;
      delimiter[at] = "()<>[]/%\r\n0"[at % 11];
      for (const std::string& bytes : {whole.substr(0, at), other, without, doubled, delimiter}) {
        ASSERT_NO_FATAL_FAILURE(Join(bytes)) << "at byte " << at;
      }
    }
  }

  const std::string plain_ = testing::SimpleDocument(1);
  int joined_ = 0;
  int refused_ = 0;
};

class DamagedDocuments : public DamageFixture, public ::testing::WithParamInterface<std::string> {};

TEST_P(DamagedDocuments, AreJoinedOrRefusedWhereverTheyAreCutOrChanged) {
  const std::string& whole = GetParam();
  ASSERT_NO_FATAL_FAILURE(Join(whole));
  ASSERT_EQ(joined_, 2);
  ASSERT_NO_FATAL_FAILURE(Damage(whole, 1));
  std::cout << "  joined: " << joined_ << ", refused: " << refused_ << '\n';
  EXPECT_GT(joined_, 100);
  EXPECT_GT(refused_, 100);
}

INSTANTIATE_TEST_SUITE_P(Documents, DamagedDocuments, ::testing::Values(Varied(), testing::SimpleDocument(1)),
                         [](const auto& tested) { return tested.index == 0 ? "Varied" : "Simple"; });

/// The smaller example documents and, where there are any, those of real producers.
std::vector<std::string> SmallDocuments() {
  const char* const named = std::getenv("FOLIOWELD_CORPUS");
  const std::uintmax_t largest = testing::FullRun() ? 8000 : 4500;
  std::vector<std::string> paths;
  for (const std::string& folder :
       {std::string(FOLIOWELD_EXAMPLES), std::string(named ? named : FOLIOWELD_CORPUS)}) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
      const bool document = entry.path().extension() == ".pdf" && entry.file_size() <= largest;
      if (document) paths.push_back(entry.path().string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

class RealDocuments : public DamageFixture {};

TEST_F(RealDocuments, AreJoinedOrRefusedWhereverTheyAreCutOrChanged) {
  const std::vector<std::string> paths = SmallDocuments();
  ASSERT_FALSE(paths.empty());
  // By default every document has another share of its bytes changed.
  const std::size_t stride = testing::FullRun() ? 1 : testing::kSanitized ? 67 : 29;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const std::string whole = testing::ReadFile(paths[i]);
    ASSERT_NO_FATAL_FAILURE(Join(whole)) << paths[i];
    ASSERT_NO_FATAL_FAILURE(Damage(whole, stride == 1 ? 1 : stride + i % 7)) << paths[i];
  }
  std::cout << "  documents: " << paths.size() << ", joined: " << joined_ << ", refused: " << refused_
            << '\n';
  EXPECT_GT(joined_, 100);
  EXPECT_GT(refused_, 100);
}

}  // namespace
}  // namespace folioweld
