// The text form of the settings file.

#include "engine/settings_text.h"

#include <gtest/gtest.h>
#include <string>

namespace folioweld {
namespace {

TEST(FindSettingTest, GivesTheValueOfTheNameInTheGroup) {
  const std::string text = "[Settings]\nMenuSort=2\nMergeCurDir=/home/user/a b/\n";
  EXPECT_EQ(FindSetting(text, "MenuSort"), "2");
  EXPECT_EQ(FindSetting(text, "MergeCurDir"), "/home/user/a b/");
}

TEST(FindSettingTest, AnEmptyValueIsAValueAndAMissingNameIsNone) {
  const std::string text = "[Settings]\nMenuSort=\n";
  EXPECT_EQ(FindSetting(text, "MenuSort"), "");
  EXPECT_EQ(FindSetting(text, "MenuSor"), std::nullopt);
  EXPECT_EQ(FindSetting(text, "MenuSortX"), std::nullopt);
  EXPECT_EQ(FindSetting("", "MenuSort"), std::nullopt);
}

TEST(FindSettingTest, OtherGroupsDoNotCount) {
  const std::string text =
      "MenuSort=0\n[Other]\nMenuSort=1\n[Settings]\nMenuSort=2\n[Settings2]\nMergeTmpDir=/\n";
  EXPECT_EQ(FindSetting(text, "MenuSort"), "2");
  EXPECT_EQ(FindSetting(text, "MergeTmpDir"), std::nullopt);
}

TEST(FindSettingTest, OfTwoLinesTheFirstCounts) {
  EXPECT_EQ(FindSetting("[Settings]\nMenuSort=2\nMenuSort=3\n", "MenuSort"), "2");
}

TEST(FindSettingTest, LinesMayEndAsOnAnotherSystemAndTheLastOneNotAtAll) {
  EXPECT_EQ(FindSetting("[Settings]\r\nMenuSort=2\r\nMergeTmpDir=/tmp", "MenuSort"), "2");
  EXPECT_EQ(FindSetting("[Settings]\r\nMenuSort=2\r\nMergeTmpDir=/tmp", "MergeTmpDir"), "/tmp");
}

TEST(FindSettingTest, ReadsEscapesOfEitherCase) {
  EXPECT_EQ(FindSetting("[Settings]\na=\\\\ \\n \\r \\x41\\xfF\\x0d\n", "a"), "\\ \n \r A\xFF\r");
}

TEST(FindSettingTest, ABackslashThatBeginsNoEscapeStandsForItself) {
  EXPECT_EQ(FindSetting("[Settings]\na=C:\\Users\\x4\n", "a"), "C:\\Users\\x4");
  EXPECT_EQ(FindSetting("[Settings]\na=\\xG0\\x0G\\\n", "a"), "\\xG0\\x0G\\");
}

TEST(FindSettingTest, AValueMayHoldEqualSignsBracketsAndComments) {
  EXPECT_EQ(FindSetting("[Settings]\na=b=c [d] ;e #f\n", "a"), "b=c [d] ;e #f");
}

TEST(ReplaceSettingTest, MakesGroupAndLineInAnEmptyFile) {
  EXPECT_EQ(ReplaceSetting("", "MenuSort", "1"), "[Settings]\nMenuSort=1\n");
}

TEST(ReplaceSettingTest, ReplacesTheLineInItsPlaceAndKeepsEveryOther) {
  const std::string text =
      "# kept\n\n[Other]\nMenuSort=9\n[Settings]\nFuture=x\\q\nMenuSort=1\n;kept "
      "too\nMergeTmpDir=/tmp\n\n[Last]\na=b\n";
  EXPECT_EQ(
      ReplaceSetting(text, "MenuSort", "2"),
      "# kept\n\n[Other]\nMenuSort=9\n[Settings]\nFuture=x\\q\nMenuSort=2\n;kept too\nMergeTmpDir=/tmp\n\n"
      "[Last]\na=b\n");
}

TEST(ReplaceSettingTest, AddsALineAtTheEndOfTheGroupBeforeItsBlankLines) {
  EXPECT_EQ(ReplaceSetting("[Settings]\nMenuSort=1\n\n[Other]\na=b\n", "MergeTmpDir", "/tmp"),
            "[Settings]\nMenuSort=1\nMergeTmpDir=/tmp\n\n[Other]\na=b\n");
  EXPECT_EQ(ReplaceSetting("[Settings]\n", "a", "b"), "[Settings]\na=b\n");
}

TEST(ReplaceSettingTest, AddsTheGroupBehindOthers) {
  EXPECT_EQ(ReplaceSetting("[Other]\na=b", "MenuSort", "1"), "[Other]\na=b\n[Settings]\nMenuSort=1\n");
}

TEST(ReplaceSettingTest, MendsALastLineWithoutALineEnd) {
  EXPECT_EQ(ReplaceSetting("[Settings]\nMenuSort=1", "MenuSort", "2"), "[Settings]\nMenuSort=2\n");
  EXPECT_EQ(ReplaceSetting("[Settings]\nMenuSort=1", "a", "b"), "[Settings]\nMenuSort=1\na=b\n");
  EXPECT_EQ(ReplaceSetting("[Settings]", "a", "b"), "[Settings]\na=b\n");
}

TEST(ReplaceSettingTest, ReplacesTheLineThatIsRead) {
  const std::string text = ReplaceSetting("[Settings]\na=1\na=2\n", "a", "3");
  EXPECT_EQ(text, "[Settings]\na=3\na=2\n");
  EXPECT_EQ(FindSetting(text, "a"), "3");
}

TEST(ReplaceSettingTest, EscapesWhatWouldNotSurviveALineOfText) {
  const std::string value("a\\b\r\nc\0d\te\x7F", 11);
  EXPECT_EQ(ReplaceSetting("", "a", value), "[Settings]\na=a\\\\b\\r\\nc\\x00d\\x09e\\x7F\n");
  EXPECT_EQ(ReplaceSetting("", "a", " b c "), "[Settings]\na=\\x20b c\\x20\n");
  EXPECT_EQ(ReplaceSetting("", "a", "\"quoted\" 'too'"), "[Settings]\na=\"quoted\" 'too'\n");
}

TEST(ReplaceSettingTest, KeepsUtf8ReadableAndEscapesOtherBytes) {
  EXPECT_EQ(ReplaceSetting("", "a", "\xC3\xA4\xE2\x82\xAC"), "[Settings]\na=\xC3\xA4\xE2\x82\xAC\n");
  EXPECT_EQ(ReplaceSetting("", "a", "\xE4 a"), "[Settings]\na=\\xE4 a\n");
}

TEST(SettingsRoundTripTest, EveryValueIsReadAsItWasWritten) {
  std::string everyByte;
  for (int i = 0; i < 256; ++i) everyByte += static_cast<char>(i);
  for (const std::string& value :
       {everyByte, std::string(), std::string(" "), std::string("  "), std::string("\\"), std::string("\\n"),
        std::string("\\x41"), std::string("\n"), std::string("[Settings]"), std::string("x\r"),
        std::string("\xC3\xA4\n\xC3"), std::string(1, '\0'), std::string(100000, '\xFF')}) {
    const std::string text = ReplaceSetting("[Settings]\nb=kept\n", "a", value);
    EXPECT_EQ(FindSetting(text, "a"), value);
    EXPECT_EQ(FindSetting(text, "b"), "kept");
    EXPECT_TRUE(IsUtf8(text));
    EXPECT_EQ(ReplaceSetting(text, "a", value), text);
  }
}

TEST(IsUtf8Test, AcceptsWellFormedTextOnly) {
  for (const char* good :
       {"", "abc", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "a\xC3\xA4z"}) {
    EXPECT_TRUE(IsUtf8(good)) << good;
  }
  for (const char* bad : {"\x80", "\xBF", "\xC3", "\xC3z", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xE2\x82",
                          "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
                          "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF", "ok\xFE", "\xF0\x90\x80"}) {
    EXPECT_FALSE(IsUtf8(bad)) << bad;
  }
  EXPECT_TRUE(IsUtf8(std::string("\0", 1)));
}

}  // namespace
}  // namespace folioweld
