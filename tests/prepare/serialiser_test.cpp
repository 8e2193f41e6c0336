#include "prepare/serialiser.h"

#include <gtest/gtest.h>
#include <map>

#include "prepare/not_prepared.h"

namespace folioweld {
namespace {

class TextSink : public ByteSink {
 public:
  void Write(std::string_view bytes) override { Text += bytes; }
  std::string Text;
};

/// Objects keep the numbers of the document that they come from.
class SameNumbers : public References {
 public:
  [[nodiscard]] int NumberOf(const QPDFObjectHandle& object) const override { return object.getObjectID(); }
};

class SerialiserTest : public ::testing::Test {
 protected:
  TextSink sink_;
  SameNumbers numbers_;
};

TEST_F(SerialiserTest, WritesAFileThatHoldsOneObject) {
  Serialiser serialiser(sink_, numbers_);
  serialiser.WriteHeader("1.4");
  serialiser.WriteObject({1}, QPDFObjectHandle::parse("<</B[1 -2.50 true null(x)]/A/n/C null>>"));
  serialiser.WriteTableAndTrailer({{1}, {}, {}});
  EXPECT_EQ(sink_.Text,
            "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n"
            "1 0 obj\n<< /A /n /B [ 1 -2.50 true null (x) ] >>\nendobj\n"
            "xref\n0 2\n0000000000 65535 f \n0000000015 00000 n \n"
            "trailer\n<< /Size 2\n/Root 1 0 R\n>>\nstartxref\n71\n%%EOF\n");
}

TEST_F(SerialiserTest, WritesAStreamWithItsOwnLength) {
  Serialiser serialiser(sink_, numbers_);
  serialiser.WriteStream({1}, QPDFObjectHandle::parse("<</Length 99/Filter/X>>"), "a\r\nb");
  EXPECT_EQ(sink_.Text, "1 0 obj\n<< /Length 4 /Filter /X >>\nstream\na\r\nb\nendstream\nendobj\n");
}

TEST_F(SerialiserTest, GoesOnAtAnOffsetAndListsWhatTheFileHadBefore) {
  Serialiser serialiser(sink_, numbers_, 1000);
  serialiser.SetOffset({2}, 15);
  serialiser.WriteObject({4}, QPDFObjectHandle::parse("[]"));
  serialiser.WriteTableAndTrailer({{4}, {2}, {"a", "b"}});
  EXPECT_EQ(sink_.Text,
            "4 0 obj\n[ ]\nendobj\n"
            "xref\n0 5\n0000000000 65535 f \n0000000000 65535 f \n0000000015 00000 n \n0000000000 65535 f \n"
            "0000001000 00000 n \n"
            "trailer\n<< /Size 5\n/Root 4 0 R\n/Info 2 0 R\n/ID [ <61> <62> ]\n>>\nstartxref\n1019\n%%EOF\n");
}

TEST_F(SerialiserTest, KeepsGenerations) {
  class Third : public SameNumbers {
   public:
    [[nodiscard]] int GenerationOf(const QPDFObjectHandle& /*object*/) const override { return 3; }
  };
  QPDF document;
  document.emptyPDF();
  const QPDFObjectHandle one = document.makeIndirectObject(QPDFObjectHandle::newInteger(1));
  const Third third;
  Serialiser serialiser(sink_, third);
  const std::string number = std::to_string(one.getObjectID());
  serialiser.WriteObject({1, 2}, QPDFObjectHandle::newArray({one}));
  serialiser.WriteTableAndTrailer({{1, 2}, {}, {}});
  EXPECT_EQ(sink_.Text, "1 2 obj\n[ " + number +
                            " 3 R ]\nendobj\n"
                            "xref\n0 2\n0000000000 65535 f \n0000000000 00002 n \n"
                            "trailer\n<< /Size 2\n/Root 1 2 R\n>>\nstartxref\n25\n%%EOF\n");
}

TEST_F(SerialiserTest, RefusesAFileThatGetsTooLong) {
  Serialiser serialiser(sink_, numbers_, 2'147'483'640);
  EXPECT_THROW(serialiser.WriteObject({1}, QPDFObjectHandle::parse("[]")), NotPrepared);
}

}  // namespace
}  // namespace folioweld
