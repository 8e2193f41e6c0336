#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

#include "dirmerge/file_ordering.h"
#include "engine/settings_store.h"
#include "tests/support/faulting_system.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

TEST(SortOrderFromSetting, TakesTheFourOrders) {
  EXPECT_EQ(SortOrderFromSetting("1"), 1);
  EXPECT_EQ(SortOrderFromSetting("-1"), -1);
  EXPECT_EQ(SortOrderFromSetting("2"), 2);
  EXPECT_EQ(SortOrderFromSetting("-2"), -2);
}

TEST(SortOrderFromSetting, TakesZeroAndWordsForByName) {
  EXPECT_EQ(SortOrderFromSetting("0"), 1);
  EXPECT_EQ(SortOrderFromSetting("abc"), 1);
  EXPECT_EQ(SortOrderFromSetting(""), 1);
}

TEST(SortOrderFromSetting, TakesEveryOtherNumberForByName) {
  for (const char* text :
       {"3", "-3", "99", "-99", "32768", "65537", "-65538", "1e400", "99999999999999999999"}) {
    EXPECT_EQ(SortOrderFromSetting(text), 1) << text;
  }
}

TEST(SortOrderFromSetting, ReadsTheNumberLeniently) {
  EXPECT_EQ(SortOrderFromSetting(" -2 "), -2);
  EXPECT_EQ(SortOrderFromSetting("2x"), 2);
  EXPECT_EQ(SortOrderFromSetting("-1.0"), -1);
}

TEST(SortOrderFromSetting, HalvesGoToTheEvenNumber) {
  EXPECT_EQ(SortOrderFromSetting("-0.5"), 1);
  EXPECT_EQ(SortOrderFromSetting("1.5"), 2);
  EXPECT_EQ(SortOrderFromSetting("2.5"), 2);
  EXPECT_EQ(SortOrderFromSetting("-2.5"), -2);
}

TEST(SortOrderFromSetting, GivesOneOfTheFourForEveryFraction) {
  for (int tenths = -40; tenths <= 40; ++tenths) {
    const std::string text = (tenths < 0 ? "-" : "") + std::to_string(std::abs(tenths) / 10) + "." +
                             std::to_string(std::abs(tenths) % 10);
    const int order = SortOrderFromSetting(text);
    EXPECT_TRUE(order == 1 || order == -1 || order == 2 || order == -2) << text << " gives " << order;
  }
}

TEST(StoreSortOrder, StoresTheOrderInDecimal) {
  const testing::TempFolder folder;
  testing::FaultingSystem system;
  system.Environment = {{"XDG_CONFIG_HOME", folder.Path()}};
  SettingsStore settings(system);
  StoreSortOrder(settings, -2);
  EXPECT_EQ(settings.ReadSetting("MenuSort"), "-2");
  StoreSortOrder(settings, 1);
  EXPECT_EQ(settings.ReadSetting("MenuSort"), "1");
}

}  // namespace
}  // namespace folioweld
