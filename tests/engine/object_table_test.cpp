// The object table's growth and its fresh rows.

#include <gtest/gtest.h>
#include <limits>

#include "tests/support/reader_setup.h"

namespace folioweld {
namespace {

using testing::ReaderSetup;

class ObjectTableTest : public ::testing::Test, public ReaderSetup {};

TEST_F(ObjectTableTest, CoversTheObjectsOfEverySlot) {
  State.DocObjectCount(1) = 3;
  State.DocObjectCount(2) = 4;
  State.DocObjectCount(3) = 5;
  EXPECT_TRUE(Reader.GrowObjectTable(2));
  EXPECT_EQ(State.Objects.UpperBound(), 11);
}

TEST_F(ObjectTableTest, NewRowsCarryTheSlotAndTheirIndex) {
  State.DocObjectCount(1) = 3;
  EXPECT_TRUE(Reader.GrowObjectTable(1));
  State.DocObjectCount(2) = 2;
  EXPECT_TRUE(Reader.GrowObjectTable(2));
  EXPECT_EQ(State.Objects[2].DocNo, 1);
  EXPECT_EQ(State.Objects[2].ObjNumber, 2);
  EXPECT_EQ(State.Objects[3].DocNo, 2);
  EXPECT_EQ(State.Objects[4].ObjNumber, 4);
}

TEST_F(ObjectTableTest, KeepsItsContents) {
  State.DocObjectCount(1) = 2;
  EXPECT_TRUE(Reader.GrowObjectTable(1));
  State.Objects[1].ValueText = "kept";
  State.DocObjectCount(1) = 500;
  EXPECT_TRUE(Reader.GrowObjectTable(1));
  EXPECT_EQ(State.Objects[1].ValueText, "kept");
  EXPECT_EQ(State.Objects.UpperBound(), 499);
}

TEST_F(ObjectTableTest, NeverShrinks) {
  State.DocObjectCount(1) = 9;
  EXPECT_TRUE(Reader.GrowObjectTable(1));
  State.DocObjectCount(1) = 2;
  Shell.Yields = 0;
  EXPECT_TRUE(Reader.GrowObjectTable(1));
  EXPECT_EQ(State.Objects.UpperBound(), 8);
  EXPECT_EQ(Shell.Yields, 0);
}

TEST_F(ObjectTableTest, YieldsBeforeEveryNewRow) {
  State.DocObjectCount(1) = 9;
  EXPECT_TRUE(Reader.GrowObjectTable(1));
  EXPECT_EQ(Shell.Yields, 8);
}

TEST_F(ObjectTableTest, ATableThatIsNotAllocatedCannotGrow) {
  State.Objects.Reset(0);
  State.DocObjectCount(1) = 9;
  EXPECT_FALSE(Reader.GrowObjectTable(1));
}

TEST_F(ObjectTableTest, CountsThatOverflowFail) {
  State.DocObjectCount(1) = std::numeric_limits<std::int32_t>::max();
  State.DocObjectCount(2) = 1;
  EXPECT_FALSE(Reader.GrowObjectTable(2));
  EXPECT_EQ(State.Failure.DocumentSlot, 2);
  EXPECT_FALSE(State.Failure.Rule.empty());
}

TEST_F(ObjectTableTest, AFreshRowKnowsItsNumberOnly) {
  State.DocObjectCount(1) = 8;
  ASSERT_TRUE(Reader.GrowObjectTable(1));
  ObjectEntry& entry = State.Objects[7];
  entry = {1, 2, 3, 'n', 2, 2, 7, 8, 9, "text", 10, 11, 12, 13};
  Reader.InitObjectEntry(7);
  EXPECT_EQ(entry.ObjNumber, 7);
  EXPECT_EQ(entry.OutOffset, -1);
  EXPECT_EQ(entry.Generation, -1);
  EXPECT_EQ(entry.EntryType, '\0');
  EXPECT_EQ(entry.DocNo, 1);
  EXPECT_EQ(entry.ObjState, -1);
  EXPECT_EQ(entry.ObjAux, -1);
  EXPECT_EQ(entry.FirstLine, -1);
  EXPECT_EQ(entry.LastLine, -1);
  EXPECT_EQ(entry.ValueText, "");
  EXPECT_EQ(entry.StreamStart, -1);
  EXPECT_EQ(entry.StreamLength, -1);
  EXPECT_EQ(entry.LengthRefNumber, -1);
}

TEST_F(ObjectTableTest, AFreshRowKeepsTheGenerationOfItsLengthReference) {
  State.Objects[0].LengthRefGeneration = 13;
  Reader.InitObjectEntry(0);
  EXPECT_EQ(State.Objects[0].LengthRefGeneration, 13);
}

TEST_F(ObjectTableTest, AnIndexCountsTheObjectsOfTheSlotsBefore) {
  State.DocObjectCount(1) = 10;
  State.DocObjectCount(2) = 20;
  EXPECT_EQ(TableIndexOf(State, 5, 1), 5);
  EXPECT_EQ(TableIndexOf(State, 5, 2), 15);
  EXPECT_EQ(TableIndexOf(State, 5, 3), 35);
  EXPECT_EQ(TableIndexOf(State, 5, 0), 0);
  EXPECT_EQ(TableIndexOf(State, 5, 4), 0);
}

TEST_F(ObjectTableTest, AnIndexThatOverflowsIsRaised) {
  State.DocObjectCount(1) = 10;
  EXPECT_THROW(static_cast<void>(TableIndexOf(State, 2147483646, 2)), OverflowError);
}

}  // namespace
}  // namespace folioweld
