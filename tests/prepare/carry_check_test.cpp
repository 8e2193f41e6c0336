#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "prepare/carry/appended_check.h"
#include "prepare/carry/appending.h"
#include "tests/prepare/carry_fixture.h"

namespace folioweld {
namespace {

using ::testing::HasSubstr;
using testing::PagesDocument;
using testing::ReadFile;

class CarryCheckTest : public testing::CarryFixture {
 protected:
  CarryCheckTest() {
    static_cast<void>(Join({PagesDocument(1).Build(), PagesDocument(2).Build()}));
    joined_ = ReadFile(ResultPath());
  }

  /// What the check says of a revision; `spoil` gets the bytes that are appended.
  std::string Objection(
      const std::function<void(Revision&)>& change,
      const std::function<void(std::string&)>& spoil = [](std::string& /*bytes*/) {}) {
    folder_.Write("joined.pdf", joined_);
    const int handle = ::open(ResultPath().c_str(), O_RDONLY | O_CLOEXEC);
    const auto length = static_cast<std::int64_t>(joined_.size());
    JoinedState before;
    std::string bytes;
    std::set<int> written;
    {
      const JoinedFile joined(system_, handle, length);
      before = StateOf(joined.File(), length);
      Revision revision(joined.File(), {});
      change(revision);
      bytes = RevisionBytes(revision, length);
      written = revision.Written();
    }
    spoil(bytes);
    folder_.Write("joined.pdf", joined_ + bytes);
    std::string objection;
    try {
      CheckAppended(system_, handle, before, length + static_cast<std::int64_t>(bytes.size()), written);
    } catch (const NotCarried& why) {
      objection = why.what();
    }
    ::close(handle);
    return objection;
  }

  std::string joined_;
};

TEST_F(CarryCheckTest, FindsNothingWhereOnlyMoreIsThere) {
  EXPECT_EQ(Objection([](Revision& revision) {
              QPDFObjectHandle page = revision.File().getObjectByID(3, 0);
              page.replaceKey("/Rotate", QPDFObjectHandle::newInteger(90));
              revision.Change(page);
            }),
            "");
}

TEST_F(CarryCheckTest, FindsAnObjectThatIsElsewhere) {
  const auto nothing = [](Revision& /*revision*/) {};
  const auto move = [](std::string& bytes) {
    const std::size_t table = bytes.find('\n', bytes.find("xref\n") + 5) + 1;
    bytes[table + std::size_t{3} * 20 + 9] ^= 1;
  };
  EXPECT_THAT(Objection(nothing, move), HasSubstr(" would not be where it was"));
}

TEST_F(CarryCheckTest, FindsAPageTreeThatLeadsToOtherPages) {
  EXPECT_EQ(Objection([](Revision& revision) {
              QPDFObjectHandle root = revision.File().getObjectByID(2, 0);
              root.replaceKey("/Kids", QPDFObjectHandle::parse("[ ]"));
              revision.Change(root);
            }),
            "object 2 would have other kids");
  EXPECT_EQ(Objection([](Revision& revision) {
              revision.Catalog().replaceKey("/Pages", revision.File().getObjectByID(2, 0));
            }),
            "its pages would not be what they were");
}

TEST_F(CarryCheckTest, FindsWhatTheEngineWouldNotJoin) {
  EXPECT_EQ(Objection([](Revision& revision) {
              QPDFObjectHandle root = revision.File().getRoot().getKey("/Pages");
              root.removeKey("/Count");
              revision.Change(root);
            }),
            "it could not be joined again: the root of the page tree has no /Count");
}

}  // namespace
}  // namespace folioweld
