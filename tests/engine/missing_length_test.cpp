// How a stream's /Length that is a reference is kept between reading and building.

#include <gtest/gtest.h>
#include <string>

#include "engine/merge_job.h"
#include "engine/pdf_builder.h"
#include "platform/posix_api.h"
#include "tests/support/document_builder.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

using testing::DocumentBuilder;
using testing::TempFolder;

TEST(MissingLengthTest, AnIndirectLengthStaysUnknownUntilTheBuilderResolvesIt) {
  const TempFolder folder;
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>").Object(2, "<</Type/Pages/Kids[]/Count 0>>");
  builder.Stream(3, "", "1234567", "4 0 R").Object(4, "7");
  const std::string path = folder.Write("in.pdf", builder.Build());
  PosixApi system;
  FileModule files(system);
  MergeShell shell;
  ActivityLog log(shell);
  MergeState state;
  MergeJob job(state, files, shell, log);
  state.DocFileNumber(1) = files.OpenForBinaryRead(path);
  state.DocUsed(1) = true;
  std::int32_t result = -1;
  PassFailure why;
  CheckDocumentStructure(state, files, state.DocFileNumber(1), 1, result, why);
  ASSERT_GT(result, 0) << why.Rule;
  bool ok = false;
  job.ReadInputs(ok);
  ASSERT_TRUE(ok) << state.Failure.Rule;

  EXPECT_EQ(state.Objects[3].StreamLength, -1);
  EXPECT_EQ(state.Objects[3].LengthRefNumber, 4);
  EXPECT_EQ(state.Objects[3].LengthRefGeneration, 0);
  EXPECT_EQ(state.Objects[4].ValueText, "7");
  ASSERT_EQ(state.MissingLengthCount, 1);
  const MissingLength& missing = state.MissingLengths[0];
  EXPECT_EQ(missing.StreamObjIndex, 3);
  EXPECT_EQ(missing.LengthObjIndex, 4);
  EXPECT_EQ(missing.LengthObjNumber, 4);
  EXPECT_EQ(missing.LengthObjGeneration, 0);
  EXPECT_EQ(missing.MissingDocNo, 1);
  EXPECT_GE(missing.LineIndex, state.Objects[3].FirstLine);
  EXPECT_LE(missing.LineIndex, state.Objects[3].LastLine);

  PdfBuilder output(state, files, shell);
  ASSERT_TRUE(output.BuildOutputPasses1And2()) << state.Failure.Rule;
  EXPECT_EQ(state.Objects[3].StreamLength, 7);
}

}  // namespace
}  // namespace folioweld
