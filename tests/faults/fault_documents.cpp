#include "tests/faults/fault_documents.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"

namespace folioweld::testing {

namespace fs = std::filesystem;

std::string DocumentWithLongStream(const std::string& text, std::size_t streamBytes) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>");
  builder.Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1/MediaBox[0 0 300 200]>>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/Contents 4 0 R/Resources<<>>>>");
  builder.Stream(4, "", "BT 20 100 Td (" + text + " 1) Tj ET");
  std::string data = "% " + text + "\n";
  while (data.size() < streamBytes) data += "0123456789abcdef\n";
  builder.Stream(5, "/Attached true", data);
  return builder.Build();
}

std::string Joined(const std::string& first, const std::string& second) {
  MergeRun merge(first, second);
  merge.Run();
  EXPECT_FALSE(merge.Failed());
  return merge.Output();
}

bool IsSound(const std::string& path) {
  // The path is this test's own and holds nothing that a shell would take for more than letters.
  return std::system(("qpdf --check '" + path + "' >/dev/null 2>&1").c_str()) == 0;
}

bool HaveQpdf() {
  return std::system("qpdf --version >/dev/null 2>&1") == 0;
}

void MakeOld(const std::string& path) {
  fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(24));
}

}  // namespace folioweld::testing
