#include "dirmerge/start_settings.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/engine/settings_fixture.h"

namespace folioweld {
namespace {

class StartSettings : public testing::SettingsFixture {
 protected:
  void Write(const std::string& name, const std::string& text) {
    ASSERT_EQ(Store.WriteSetting(name, text), 0);
  }
};

TEST_F(StartSettings, DefaultsAreWrittenAtTheFirstStart) {
  ProgramState program;
  ReadStartSettings(program, Store);
  EXPECT_EQ(program.SortOrder, 1);
  EXPECT_TRUE(program.Merge.LogEnabled);
  EXPECT_TRUE(program.Merge.ShowOutputAfterMerge);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "1");
  EXPECT_EQ(Store.ReadSetting("MenuShowLogWindow"), "1");
  EXPECT_EQ(Store.ReadSetting("DisplayOutputAfterMerge"), "1");
}

TEST_F(StartSettings, StoredChoicesHold) {
  Write("MenuSort", "-2");
  Write("MenuShowLogWindow", "0");
  Write("DisplayOutputAfterMerge", "0");
  ProgramState program;
  ReadStartSettings(program, Store);
  EXPECT_EQ(program.SortOrder, -2);
  EXPECT_FALSE(program.Merge.LogEnabled);
  EXPECT_FALSE(program.Merge.ShowOutputAfterMerge);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "-2");
  EXPECT_EQ(Store.ReadSetting("MenuShowLogWindow"), "0");
  EXPECT_EQ(Store.ReadSetting("DisplayOutputAfterMerge"), "0");
}

TEST_F(StartSettings, UnknownChoicesBecomeOnesThatExist) {
  Write("MenuSort", "abc");
  Write("MenuShowLogWindow", "yes");
  Write("DisplayOutputAfterMerge", "yes");
  ProgramState program;
  ReadStartSettings(program, Store);
  EXPECT_EQ(program.SortOrder, 1);
  EXPECT_FALSE(program.Merge.LogEnabled);
  EXPECT_FALSE(program.Merge.ShowOutputAfterMerge);
  EXPECT_EQ(Store.ReadSetting("MenuSort"), "1");
  EXPECT_EQ(Store.ReadSetting("MenuShowLogWindow"), "0");
  EXPECT_EQ(Store.ReadSetting("DisplayOutputAfterMerge"), "yes") << "only read at the start";
}

}  // namespace
}  // namespace folioweld
