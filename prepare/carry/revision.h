#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "prepare/libqpdf.h"

namespace folioweld {

/// Why something cannot be carried over, in words that follow the document's name.
class NotCarried : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A document of the joined file.
struct CarriedDocument {
  int Index = 0;        ///< its place in the file, counts from 1
  std::string Name;     ///< file name without its folder; bytes
  int FirstObject = 0;  ///< its object n has the number n + FirstObject in the file
  int EndObject = 0;    ///< one above its highest number in the file
  /// A dictionary of its own with the entries of the document's catalog, whose references are those of the
  /// file; not initialised when it could not be read. Changing it changes nothing that is written.
  QPDFObjectHandle Catalog;
  QPDFObjectHandle Title;               ///< of its information dictionary: a string, or not initialised
  std::vector<QPDFObjectHandle> Pages;  ///< in the file, in their order

  [[nodiscard]] bool Has(const QPDFObjectHandle& object) const;  ///< an indirect object of this document
};

/// What could not be carried over of a document.
struct CarryLoss {
  int Document = 0;   ///< `CarriedDocument::Index`
  std::string Part;   ///< one word: "outline", "form", "destinations", "labels", "layers", ...
  std::string Words;  ///< the reason
};

/// The revision that is going to be appended to a joined file: a new catalog, new objects, and objects that
/// have to change. Values are changed in the memory of libqpdf; nothing of the file's bytes is.
class Revision {
 public:
  /// `file` is the joined file, owned by the caller.
  Revision(QPDF& file, std::vector<CarriedDocument> documents);

  [[nodiscard]] QPDF& File() { return file_; }
  [[nodiscard]] std::vector<CarriedDocument>& Documents() { return documents_; }

  /// The new catalog: at first a copy of the file's, which is the first document's with the root of all
  /// pages.
  [[nodiscard]] QPDFObjectHandle Catalog() { return catalog_; }

  /// The file's information dictionary; not initialised when it has none.
  [[nodiscard]] QPDFObjectHandle Information() { return information_; }
  /// An indirect object that becomes the information dictionary.
  void SetInformation(const QPDFObjectHandle& information) { information_ = information; }

  /// A new indirect object with this value. To be preferred to what libqpdf has for it, which reads all
  /// objects of the file first. A stream that libqpdf has made is indirect already, and only noted.
  [[nodiscard]] QPDFObjectHandle Add(const QPDFObjectHandle& value);
  /// Has an indirect object of the file written anew, under its own number; to be called whenever a value in
  /// it, however deep but not across a reference, is changed.
  void Change(const QPDFObjectHandle& object);

  /// Runs `work` for each document whose catalog could be read. What it raises becomes a loss of that
  /// document's `part`, so it has to look at everything that can be wrong before it changes anything.
  void ForEach(const std::string& part, const std::function<void(CarriedDocument&)>& work);
  void TellLost(const CarriedDocument& document, const std::string& part, const std::string& why);

  /// Counts a step of a walk that a hostile file could make endless. Raises `NotCarried` after a million.
  void Spend();

  [[nodiscard]] const std::vector<CarryLoss>& Losses() const { return losses_; }
  /// Numbers of objects that were added or changed.
  [[nodiscard]] const std::set<int>& Written() const { return written_; }

 private:
  QPDF& file_;
  std::vector<CarriedDocument> documents_;
  int nextNumber_;  ///< of the object that is added next
  QPDFObjectHandle catalog_;
  QPDFObjectHandle information_;
  std::set<int> written_;
  std::vector<CarryLoss> losses_;
  std::size_t steps_ = 0;
};

}  // namespace folioweld
