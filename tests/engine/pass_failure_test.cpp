#include "engine/pass_failure.h"

#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

#include "engine/pass_guard.h"
#include "engine/table.h"

namespace folioweld {
namespace {

TEST(PassFailureTest, IsEmptyUntilARuleIsNamed) {
  PassFailure failure;
  EXPECT_TRUE(failure.Empty());
  failure.Rule = "something is wrong";
  EXPECT_FALSE(failure.Empty());
}

TEST(PassFailureTest, TheSentenceNamesDocumentObjectOffsetAndRule) {
  const PassFailure failure{2, 7, 1234, "the object has no \"endobj\""};
  EXPECT_EQ(failure.Sentence("/tmp/a b.pdf"),
            "\"/tmp/a b.pdf\", object 7, file offset 1234: the object has no \"endobj\"");
}

TEST(PassFailureTest, TheSentenceLeavesOutWhatIsNotKnown) {
  EXPECT_EQ((PassFailure{0, -1, -1, "rule"}).Sentence("a.pdf"), "rule");
  EXPECT_EQ((PassFailure{1, -1, -1, "rule"}).Sentence("a.pdf"), "\"a.pdf\": rule");
  EXPECT_EQ((PassFailure{0, 0, -1, "rule"}).Sentence("a.pdf"), "object 0: rule");
  EXPECT_EQ((PassFailure{0, -1, 0, "rule"}).Sentence("a.pdf"), "file offset 0: rule");
  EXPECT_EQ((PassFailure{0, 5, 9, "rule"}).Sentence("a.pdf"), "object 5, file offset 9: rule");
  EXPECT_EQ((PassFailure{3, -1, 9, "rule"}).Sentence("a.pdf"), "\"a.pdf\", file offset 9: rule");
}

TEST(RuleBrokenTest, CarriesTheFailureAsData) {
  const RuleBroken broken({1, 2, 3, "rule"});
  EXPECT_STREQ(broken.what(), "rule");
  EXPECT_EQ(broken.Failure().DocumentSlot, 1);
  EXPECT_EQ(broken.Failure().ObjectNumber, 2);
  EXPECT_EQ(broken.Failure().FileOffset, 3);
}

TEST(RunGuardedTest, PassesTheStepsOwnVerdictOn) {
  MergeState state;
  EXPECT_TRUE(RunGuarded(state, 1, [] { return true; }));
  EXPECT_TRUE(state.Failure.Empty());
  EXPECT_FALSE(RunGuarded(state, 1, [&] {
    state.Failure.Rule = "left by the step";
    return false;
  }));
  EXPECT_EQ(state.Failure.Rule, "left by the step");
}

TEST(RunGuardedTest, ABrokenRuleIsRememberedForTheSlotUnlessItNamesAnother) {
  MergeState state;
  EXPECT_FALSE(RunGuarded(state, 2, []() -> bool { throw RuleBroken({0, 5, 6, "rule"}); }));
  EXPECT_EQ(state.Failure.DocumentSlot, 2);
  EXPECT_EQ(state.Failure.ObjectNumber, 5);
  EXPECT_EQ(state.Failure.FileOffset, 6);
  EXPECT_EQ(state.Failure.Rule, "rule");
  EXPECT_FALSE(RunGuarded(state, 2, []() -> bool { throw RuleBroken({1, 5, 6, "rule"}); }));
  EXPECT_EQ(state.Failure.DocumentSlot, 1);
}

TEST(RunGuardedTest, AnIndexOutsideATableFailsThePass) {
  MergeState state;
  EXPECT_FALSE(RunGuarded(state, 1, [&] { return state.Objects[5].ObjNumber == 0; }));
  EXPECT_EQ(state.Failure.Rule, "index 5 lies outside its table");
  EXPECT_EQ(state.Failure.DocumentSlot, 1);
  EXPECT_EQ(state.Failure.ObjectNumber, -1);
  EXPECT_EQ(state.Failure.FileOffset, -1);
}

TEST(RunGuardedTest, AnOverflowFailsThePass) {
  MergeState state;
  EXPECT_FALSE(RunGuarded(state, 3, [] { return CheckedAdd(2147483647, 1) == 0; }));
  EXPECT_EQ(state.Failure.Rule, "a count or position is too large");
  EXPECT_EQ(state.Failure.DocumentSlot, 3);
}

TEST(RunGuardedTest, ExhaustedMemoryFailsThePassInPlainWords) {
  MergeState state;
  EXPECT_FALSE(RunGuarded(state, 1, []() -> bool { throw std::bad_alloc(); }));
  EXPECT_EQ(state.Failure.Rule, "out of memory");
  EXPECT_EQ(state.Failure.DocumentSlot, 1);
}

}  // namespace
}  // namespace folioweld
