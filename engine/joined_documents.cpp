#include "engine/joined_documents.h"

#include <charconv>

namespace folioweld {

namespace {

constexpr char kEnd = '\0';

/// Hands every field of a document to `visit`, in the order in which they are written.
template <typename Document, typename Visit>
void VisitFields(Document& document, Visit visit) {
  visit(document.Path);
  visit(document.Name);
  visit(document.FirstObject);
  visit(document.Known.Identity.Device);
  visit(document.Known.Identity.File);
  visit(document.Known.Size);
  visit(document.Known.WriteSeconds);
  visit(document.Known.WriteNanoseconds);
  visit(document.Known.ChangeSeconds);
  visit(document.Known.ChangeNanoseconds);
}

class Writer {
 public:
  explicit Writer(std::string& bytes) : bytes_(bytes) {}
  void operator()(const std::string& text) { (bytes_ += text) += kEnd; }
  template <typename Number>
  void operator()(Number number) {
    (bytes_ += std::to_string(number)) += kEnd;
  }

 private:
  std::string& bytes_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  void operator()(std::string& text) { text = Next(); }
  template <typename Number>
  void operator()(Number& number) {
    const std::string_view text = Next();
    const char* const end = text.data() + text.size();
    const auto [after, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || after != end) good_ = false;
  }

  [[nodiscard]] bool HasMore() const { return good_ && !rest_.empty(); }
  [[nodiscard]] bool Good() const { return good_; }

 private:
  std::string_view Next() {
    const std::size_t end = rest_.find(kEnd);
    if (end == std::string_view::npos) {
      good_ = false;
      return {};
    }
    const std::string_view field = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    return field;
  }

  std::string_view rest_;
  bool good_ = true;
};

}  // namespace

std::string WriteJoinedDocuments(const std::vector<JoinedDocument>& documents) {
  std::string bytes;
  for (const JoinedDocument& document : documents) VisitFields(document, Writer(bytes));
  return bytes;
}

std::optional<std::vector<JoinedDocument>> ReadJoinedDocuments(std::string_view bytes) {
  std::vector<JoinedDocument> documents;
  Reader reader(bytes);
  while (reader.HasMore()) {
    VisitFields(documents.emplace_back(), [&](auto& field) { reader(field); });
  }
  if (!reader.Good()) return std::nullopt;
  return documents;
}

}  // namespace folioweld
