#include <gmock/gmock.h>

#include "prepare/losses.h"
#include "tests/prepare/prepare_fixture.h"

namespace folioweld {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::SimpleDocument;

class ProtectedDocument : public testing::PrepareFixture {};

TEST_F(ProtectedDocument, IsOpenedWithoutAPasswordWhereItNeedsNone) {
  const std::string copy = Copied(Protected(SimpleDocument(1, "secret"), ""));
  EXPECT_THAT(copy, AllOf(HasSubstr("secret 1"), Not(HasSubstr("/Encrypt"))));
  EXPECT_THAT(system_.Take(), AllOf(HasSubstr("prepared: protected\n"), HasSubstr("lost: its protection\n")));
}

TEST_F(ProtectedDocument, IsNotWrittenWithoutThePasswordThatItNeeds) {
  EXPECT_EQ(Run(Protected(SimpleDocument(1), "word")), kNoCopy);
  EXPECT_THAT(system_.Take(), HasSubstr("not written: it needs a password\n"));
  EXPECT_EQ(folder_.Names(), std::vector<std::string>{"in.pdf"});
}

TEST_F(ProtectedDocument, IsOpenedWithTheFirstLineOfThePasswordFile) {
  const std::string file = folder_.Write("password", "word\r\nsecond line\n");
  EXPECT_EQ(Run(Protected(SimpleDocument(1, "secret"), "word"), {"--password-file=" + file}), kCopyWritten);
  EXPECT_THAT(testing::ReadFile(Out()), HasSubstr("secret 1"));
}

TEST_F(ProtectedDocument, IsNotWrittenWithAnotherPassword) {
  const std::string file = folder_.Write("password", "other");
  EXPECT_EQ(Run(Protected(SimpleDocument(1), "word"), {"--password-file=" + file}), kNoCopy);
  EXPECT_THAT(system_.Take(), HasSubstr("not written: the password is not the one it needs\n"));
}

TEST_F(ProtectedDocument, IsNotWrittenWhenThePasswordFileCannotBeRead) {
  EXPECT_EQ(Run(SimpleDocument(1), {"--password-file=" + folder_.File("none")}), kNoCopy);
  EXPECT_THAT(system_.Take(),
              AllOf(HasSubstr("the file of the password, "), HasSubstr(" cannot be opened: ")));
}

TEST(CryptFilters, GoWithTheirParameters) {
  auto dictionary = WithoutCryptFilters(QPDFObjectHandle::parse(
      "<< /Filter [ /Crypt /FlateDecode ] /DecodeParms [ << /Name /StdCF >> << /Predictor 12 >> ] >>"));
  EXPECT_EQ(dictionary.unparse(), "<< /DecodeParms [ << /Predictor 12 >> ] /Filter [ /FlateDecode ] >>");
  dictionary = WithoutCryptFilters(QPDFObjectHandle::parse("<< /Filter /Crypt >>"));
  EXPECT_EQ(dictionary.unparse(), "<< /DecodeParms [ ] /Filter [ ] >>");
  dictionary = WithoutCryptFilters(QPDFObjectHandle::parse("<< /Filter /FlateDecode >>"));
  EXPECT_EQ(dictionary.unparse(), "<< /Filter /FlateDecode >>");
}

}  // namespace
}  // namespace folioweld
