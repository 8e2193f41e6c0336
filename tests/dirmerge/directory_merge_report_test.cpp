#include "dirmerge/directory_merge_report.h"

#include <gtest/gtest.h>

namespace folioweld {
namespace {

DirectoryMergeReport WrittenReport() {
  DirectoryMergeReport report;
  report.OutputWritten = true;
  return report;
}

TEST(StatusOf, IsZeroWhenEveryDocumentIsInTheOutput) {
  EXPECT_EQ(StatusOf(WrittenReport()), 0);
}

TEST(StatusOf, IsOneWithoutAnOutputWhateverElseHappened) {
  EXPECT_EQ(StatusOf({}), 1);
  DirectoryMergeReport report;
  report.FailedMerges = 1;
  report.RefusedDocuments = {"a"};
  EXPECT_EQ(StatusOf(report), 1);
}

TEST(StatusOf, IsThreeForEveryKindOfLoss) {
  DirectoryMergeReport failed = WrittenReport();
  failed.FailedMerges = 1;
  EXPECT_EQ(StatusOf(failed), 3);
  DirectoryMergeReport refused = WrittenReport();
  refused.RefusedDocuments = {"a"};
  EXPECT_EQ(StatusOf(refused), 3);
  DirectoryMergeReport altered = WrittenReport();
  altered.AlteredDocuments = {"a"};
  EXPECT_EQ(StatusOf(altered), 3);
  DirectoryMergeReport missing = WrittenReport();
  missing.MissingDocuments = {"a"};
  EXPECT_EQ(StatusOf(missing), 3);
}

}  // namespace
}  // namespace folioweld
