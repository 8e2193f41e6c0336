// Lists of dropped files.

#include "dirmerge/uri_list.h"

#include <gtest/gtest.h>

namespace folioweld {
namespace {

using Files = std::vector<std::string>;

Files FilesOf(std::string_view list) {
  return FilesOfUriList(list, "Workbench");
}

TEST(UriList, HoldsOneFileALineWhateverEndsTheLine) {
  EXPECT_EQ(FilesOf("file:///a\r\nfile:///b\nfile:///c"), (Files{"/a", "/b", "/c"}));
  EXPECT_EQ(FilesOf("\r\n\n  file:///a \t\r\n"), Files{"/a"});
  EXPECT_EQ(FilesOf(""), Files{});
}

TEST(UriList, DecodesEveryByteOfAName) {
  EXPECT_EQ(FilesOf("file:///%FF%fe%20%0A%25%23%3f%7C.pdf"), Files{"/\xFF\xFE \n%#?|.pdf"});
  EXPECT_EQ(FilesOf("file:///caf\xC3\xA9/\xFF"), Files{"/caf\xC3\xA9/\xFF"}) << "also what was left as it is";
}

TEST(UriList, TakesAPercentSignWithoutTwoDigitsForItself) {
  EXPECT_EQ(FilesOf("file:///100%/%2/%4/%zz/%4g/%"), Files{"/100%/%2/%4/%zz/%4g/%"});
  EXPECT_EQ(FilesOf("file:///%41%4"), Files{"/A%4"});
  EXPECT_EQ(FilesOf("file:///%4A%4a"), Files{"/JJ"});
}

TEST(UriList, LeavesOutWhatIsNoFileOfThisMachine) {
  EXPECT_EQ(FilesOf("https://example.com/a\nfile://elsewhere/b\nftp:///c\n/d\nfile\nfile:"), Files{});
  EXPECT_EQ(FilesOf("# file:///comment\n#file:///comment"), Files{});
  EXPECT_EQ(FilesOf("file://LOCALHOST/a\nFile://workbench/b\nfile:/c"), (Files{"/a", "/b", "/c"}));
}

TEST(UriList, CountsEveryAddressAndNoComment) {
  EXPECT_EQ(CountOfUriList(""), 0U);
  EXPECT_EQ(
      CountOfUriList("# file:///comment\r\n\r\nfile:///a\r\nhttps://example.com/b\r\nfile://elsewhere/c"),
      3U);
}

TEST(UriList, LeavesOutPathsThatNoFileCanHave) {
  EXPECT_EQ(FilesOf("file:///a%00b\nfile:relative\nfile://\nfile://localhost\nfile:%2Fa%00"), Files{});
  EXPECT_EQ(FilesOf(std::string_view("file:///a\0b\nfile:///c", 21)), Files{"/c"});
}

TEST(UriList, EndsAPathWhereAQueryOrAFragmentBegins) {
  EXPECT_EQ(FilesOf("file:///a?b=c\nfile:///d#e?f"), (Files{"/a", "/d"}));
}

}  // namespace
}  // namespace folioweld
