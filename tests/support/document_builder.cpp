#include "tests/support/document_builder.h"

#include <cstdio>
#include <utility>

namespace folioweld::testing {

namespace {

std::string EntryLine(std::int64_t offset, int generation, char type) {
  char line[32];
  std::snprintf(line, sizeof line, "%010lld %05d %c \n", static_cast<long long>(offset), generation, type);
  return line;
}

}  // namespace

DocumentBuilder::DocumentBuilder(std::string header) : bytes_(std::move(header)) {}

DocumentBuilder& DocumentBuilder::Object(int number, const std::string& body, int generation) {
  return RawObject(number,
                   std::to_string(number) + " " + std::to_string(generation) + " obj\n" + body + "\nendobj\n",
                   generation);
}

DocumentBuilder& DocumentBuilder::Stream(int number, const std::string& dictionary, const std::string& data,
                                         const std::string& length, const std::string& lineEnd) {
  const std::string shown = length.empty() ? std::to_string(data.size()) : length;
  return RawObject(number, std::to_string(number) + " 0 obj\n<<" + dictionary + "/Length " + shown +
                               ">>\nstream" + lineEnd + data + "\nendstream\nendobj\n");
}

DocumentBuilder& DocumentBuilder::RawObject(int number, const std::string& bytes, int generation) {
  entries_[number] = {static_cast<std::int64_t>(bytes_.size()), generation, 'n'};
  offsets_[number] = static_cast<std::int64_t>(bytes_.size());
  bytes_ += bytes;
  return *this;
}

DocumentBuilder& DocumentBuilder::Raw(const std::string& bytes) {
  bytes_ += bytes;
  return *this;
}

DocumentBuilder& DocumentBuilder::Free(int number, int generation, std::int64_t offset) {
  entries_[number] = {offset, generation, 'f'};
  return *this;
}

DocumentBuilder& DocumentBuilder::Trailer(const std::string& entries) {
  trailer_ = entries;
  return *this;
}

DocumentBuilder& DocumentBuilder::TrailerExtra(const std::string& entries) {
  trailerExtra_ = entries;
  return *this;
}

DocumentBuilder& DocumentBuilder::EndRevision() {
  const bool first = lastXref_ < 0;
  if (first && entries_.find(0) == entries_.end()) entries_[0] = {0, 65535, 'f'};
  const int from = entries_.begin()->first;
  const int to = entries_.rbegin()->first;
  if (to > highest_) highest_ = to;
  const auto xref = static_cast<std::int64_t>(bytes_.size());
  bytes_ += "xref\n" + std::to_string(from) + " " + std::to_string(to - from + 1) + "\n";
  for (int number = from; number <= to; ++number) {
    const auto entry = entries_.find(number);
    bytes_ += entry == entries_.end()
                  ? EntryLine(0, 65535, 'f')
                  : EntryLine(entry->second.Offset, entry->second.Generation, entry->second.Type);
  }
  std::string trailer = trailer_;
  if (trailer.empty()) trailer = "/Size " + std::to_string(highest_ + 1) + "\n/Root 1 0 R\n" + trailerExtra_;
  if (!first) trailer += "\n/Prev " + std::to_string(lastXref_);
  bytes_ += "trailer\n<<" + trailer + "\n>>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n";
  lastXref_ = xref;
  entries_.clear();
  return *this;
}

std::string DocumentBuilder::Build() {
  if (!entries_.empty() || lastXref_ < 0) EndRevision();
  return bytes_;
}

std::int64_t DocumentBuilder::OffsetOf(int number) const {
  return offsets_.at(number);
}

std::string SimpleDocument(int pages, const std::string& text, const std::string& version) {
  DocumentBuilder builder("%PDF-" + version + "\n%\xE2\xE3\xCF\xD3\n");
  std::string kids;
  for (int i = 0; i < pages; ++i) kids += std::to_string(3 + 2 * i) + " 0 R ";
  const int font = 3 + 2 * pages;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>");
  builder.Object(2, "<</Type/Pages/Kids[" + kids + "]/Count " + std::to_string(pages) +
                        "/MediaBox[0 0 300 200]/Resources<</Font<</F1 " + std::to_string(font) +
                        " 0 R>>>>>>");
  for (int i = 0; i < pages; ++i) {
    const int page = 3 + 2 * i;
    builder.Object(page, "<</Type/Page/Parent 2 0 R/Contents " + std::to_string(page + 1) + " 0 R>>");
    builder.Stream(page + 1, "", "BT /F1 18 Tf 20 100 Td (" + text + " " + std::to_string(i + 1) + ") Tj ET");
  }
  builder.Object(font, "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>");
  builder.Object(font + 1, "<</Producer(a test)/Title(" + text + ")>>");
  builder.TrailerExtra("/Info " + std::to_string(font + 1) + " 0 R");
  return builder.Build();
}

}  // namespace folioweld::testing
