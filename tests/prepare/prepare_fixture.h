#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "prepare/libqpdf.h"
#include "prepare/prepare_run.h"
#include "tests/batch/screen_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/temp_folder.h"

// After what leaves its JSON out.
#include <qpdf/QPDFWriter.hh>

namespace folioweld::testing {

/// Runs folioweld-prepare, but for its main function, on "in.pdf" in a folder of its own; the copy is
/// "out.pdf".
class PrepareFixture : public ::testing::Test {
 protected:
  PrepareStatus Run(const std::string& document, std::vector<std::string> arguments = {}) {
    folder_.Write("in.pdf", document);
    arguments.insert(arguments.end(), {In(), Out()});
    return RunPrepare(system_, ParsePrepareArguments(arguments));
  }

  /// The copy of a document that needs no repair.
  std::string Copied(const std::string& document) {
    EXPECT_EQ(Run(document), kCopyWritten) << system_.Written;
    return Exists(Out()) ? ReadFile(Out()) : std::string();
  }

  /// The document as another program writes it.
  static std::string Rewritten(const std::string& document, const std::function<void(QPDFWriter&)>& choose) {
    QPDF parsed;
    parsed.processMemoryFile("document", document.data(), document.size());
    QPDFWriter writer(parsed);
    writer.setOutputMemory();
    writer.setStaticID(true);
    writer.setCompressStreams(false);
    choose(writer);
    writer.write();
    const std::unique_ptr<Buffer> bytes(writer.getBuffer());
    return {reinterpret_cast<const char*>(bytes->getBuffer()), bytes->getSize()};
  }

  /// With a cross-reference stream and object streams.
  static std::string Compressed(const std::string& document) {
    return Rewritten(document, [](QPDFWriter& writer) { writer.setObjectStreamMode(qpdf_o_generate); });
  }

  static std::string Protected(const std::string& document, const char* userPassword) {
    return Rewritten(document, [&](QPDFWriter& writer) {
      writer.setR6EncryptionParameters(userPassword, "owner", true, true, true, true, true, true,
                                       qpdf_r3p_full, true);
    });
  }

  [[nodiscard]] std::string In() const { return folder_.File("in.pdf"); }
  [[nodiscard]] std::string Out() const { return folder_.File("out.pdf"); }

  TempFolder folder_;
  ScreenSystem system_;
};

/// Objects 1 and 2 are the catalog and the root of the page tree, 3 is the only page with what is given.
inline DocumentBuilder OnePage(const std::string& ofPage, const std::string& ofCatalog = "") {
  DocumentBuilder document;
  document.Object(1, "<< /Type /Catalog /Pages 2 0 R " + ofCatalog + " >>");
  document.Object(2, "<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>");
  document.Object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 9 9 ] " + ofPage + " >>");
  return document;
}

}  // namespace folioweld::testing
