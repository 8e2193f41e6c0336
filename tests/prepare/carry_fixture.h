#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "engine/joined_documents.h"
#include "prepare/carry/revision.h"
#include "prepare/libqpdf.h"
#include "tests/batch/screen_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// Joins documents and appends a revision to the result.
class CarryFixture : public ::testing::Test {
 protected:
  /// Joins the documents, which are called "1.pdf", "2.pdf" and so on, or as `names_` says, has `feature` put
  /// what it carries into the revision, and appends that. The joined bytes stay the beginning, the engine and
  /// libqpdf take the result, and its pages are the same. What is returned lives until the next call.
  QPDF& Carry(const std::vector<std::string>& documents, const std::function<void(Revision&)>& feature);

  /// Of the last result.
  QPDFObjectHandle Root() { return result_->getRoot(); }
  [[nodiscard]] std::string ResultPath() const { return folder_.File("joined.pdf"); }
  /// What was appended.
  [[nodiscard]] std::string Appended() const { return bytes_.substr(joined_.size()); }
  /// The losses, each as "2: outline: the reason".
  [[nodiscard]] std::vector<std::string> Losses() const { return losses_; }
  /// The number that object `number` of the document (counted from 1) has in the joined file.
  [[nodiscard]] int Numbered(int document, int number) const {
    return firstObjects_.at(static_cast<std::size_t>(document) - 1) + number;
  }
  /// The standard output of a command of the shell, in which "$file" is the result.
  [[nodiscard]] std::string Said(const std::string& command) const;

  /// Writes the documents and joins them; what is returned describes them.
  std::vector<JoinedDocument> Join(const std::vector<std::string>& documents);

  std::vector<std::string> names_;
  TempFolder folder_;
  ScreenSystem system_;

 private:
  std::vector<std::string> WriteDocuments(const std::vector<std::string>& documents);
  /// Where the joined documents begin, and where the last one ends.
  void Number(const std::vector<std::string>& paths);
  void JoinFiles(const std::vector<std::string>& paths);
  std::vector<CarriedDocument> Model(const std::vector<JoinedDocument>& list, QPDF& file);

  std::vector<int> firstObjects_;
  std::vector<std::string> losses_;
  std::string joined_;
  std::string bytes_;
  std::unique_ptr<QPDF> result_;
};

/// Objects 1 and 2 are the catalog and the root of the page tree; the pages follow from 3 on. More objects
/// can be added.
[[nodiscard]] DocumentBuilder PagesDocument(int pages, const std::string& ofCatalog = "",
                                            const std::string& ofPages = "");

}  // namespace folioweld::testing
