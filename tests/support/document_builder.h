#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace folioweld::testing {

/// Builds the bytes of a document with classic cross-reference sections, right in every detail until a test
/// says otherwise. Objects are added in the order of their file positions.
class DocumentBuilder {
 public:
  explicit DocumentBuilder(std::string header = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");

  /// Adds "number 0 obj", the body and "endobj", each on its own line.
  DocumentBuilder& Object(int number, const std::string& body, int generation = 0);
  /// Adds a stream object; without `length` the dictionary gets the right direct /Length. `dictionary` is the
  /// text between "<<" and ">>".
  DocumentBuilder& Stream(int number, const std::string& dictionary, const std::string& data,
                          const std::string& length = "", const std::string& lineEnd = "\n");
  /// Adds bytes as they are; the object's offset is where they begin.
  DocumentBuilder& RawObject(int number, const std::string& bytes, int generation = 0);
  /// Adds bytes that belong to no object.
  DocumentBuilder& Raw(const std::string& bytes);
  /// Lists a free slot instead of an object.
  DocumentBuilder& Free(int number, int generation = 65535, std::int64_t offset = 0);

  /// Text between "<<" and ">>" of the trailer instead of "/Size n /Root 1 0 R".
  DocumentBuilder& Trailer(const std::string& entries);
  /// Adds to the standard trailer, such as "/Info 5 0 R".
  DocumentBuilder& TrailerExtra(const std::string& entries);

  /// Ends the revision: writes the section of all objects added since the last one (one subsection, from the
  /// lowest to the highest number; object 0 is added as a free one to the first section), its trailer,
  /// "startxref" and "%%EOF". Later objects belong to the next revision, whose trailer gets /Prev.
  DocumentBuilder& EndRevision();

  /// The bytes; ends the revision when objects were added since the last one.
  [[nodiscard]] std::string Build();

  [[nodiscard]] std::int64_t OffsetOf(int number) const;
  [[nodiscard]] std::int64_t XrefOffset() const { return lastXref_; }
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }

 private:
  struct Entry {
    std::int64_t Offset = 0;
    int Generation = 0;
    char Type = 'n';
  };

  std::string bytes_;
  std::map<int, Entry> entries_;  ///< of the revision
  std::map<int, std::int64_t> offsets_;
  std::string trailer_;
  std::string trailerExtra_;
  int highest_ = 0;
  std::int64_t lastXref_ = -1;
};

/// A document with one page tree: catalog 1, root 2, then a page and its content stream (`text` and the page
/// number) each, and an information dictionary as the last object.
[[nodiscard]] std::string SimpleDocument(int pages, const std::string& text = "page",
                                         const std::string& version = "1.4");

}  // namespace folioweld::testing
