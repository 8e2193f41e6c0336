#include "prepare/serialiser.h"

#include <limits>

#include "prepare/not_prepared.h"
#include "prepare/token_text.h"

namespace folioweld {

namespace {

/// Numbers in a file are at most this for the engine.
constexpr std::int64_t kLongestFile = std::numeric_limits<std::int32_t>::max() - 1;

}  // namespace

Serialiser::Serialiser(ByteSink& sink, const References& references, std::int64_t offset)
    : sink_(sink), references_(references), offset_(offset), offsets_(1, -1) {}

void Serialiser::Write(std::string_view bytes) {
  sink_.Write(bytes);
  offset_ += static_cast<std::int64_t>(bytes.size());
  if (offset_ > kLongestFile) throw NotPrepared("its copy would be longer than 2,147,483,646 bytes");
}

void Serialiser::WriteHeader(std::string_view version) {
  Write("%PDF-" + std::string(version) + "\n%\xE2\xE3\xCF\xD3\n");
}

void Serialiser::SetOffset(int number, std::int64_t offset) {
  const auto index = static_cast<std::size_t>(number);
  if (offsets_.size() <= index) offsets_.resize(index + 1, -1);
  offsets_[index] = offset;
}

void Serialiser::BeginObject(int number) {
  SetOffset(number, offset_);
  lines_.Clear();
  lines_.Put(std::to_string(number) + " 0 obj");
  lines_.EndLine();
}

void Serialiser::EndObject() {
  lines_.EndLine();
  Write(lines_.Text());
  Write("endobj\n");
}

void Serialiser::WriteObject(int number, const QPDFObjectHandle& value) {
  BeginObject(number);
  PutValue(value);
  EndObject();
}

void Serialiser::WriteStream(int number, const QPDFObjectHandle& dictionary, std::string_view bytes) {
  BeginObject(number);
  lines_.Put("<<");
  lines_.Put("/Length " + std::to_string(bytes.size()));
  PutEntries(dictionary, false);
  lines_.Put(">>");
  lines_.EndLine();
  Write(lines_.Text());
  Write("stream\n");
  Write(bytes);
  lines_.Clear();
  // Other programs look for the keyword on a line of its own.
  Write("\nendstream\n");
  EndObject();
}

void Serialiser::PutReferred(QPDFObjectHandle value) {
  const int number =
      value.isIndirect() && !value.isNull() ? references_.NumberOf(value) : References::kInPlace;
  if (number == References::kInPlace) {
    PutValue(value);
  } else {
    lines_.Put(std::to_string(number) + " 0 R");
  }
}

void Serialiser::PutValue(QPDFObjectHandle value) {
  if (value.isDictionary()) {
    lines_.Put("<<");
    PutEntries(value, true);
    lines_.Put(">>");
  } else if (value.isArray()) {
    lines_.Put("[");
    for (const QPDFObjectHandle& item : value.getArrayAsVector()) PutReferred(item);
    lines_.Put("]");
  } else if (value.isString()) {
    lines_.Put(StringToken(value.getStringValue()));
  } else if (value.isName()) {
    lines_.Put(NameToken(value.getName()));
  } else {
    lines_.Put(value.unparseResolved());
  }
}

void Serialiser::PutEntries(QPDFObjectHandle dictionary, bool withLength) {
  for (auto& [key, value] : dictionary.getDictAsMap()) {
    // An entry without a value is none.
    if (value.isNull() || (!withLength && key == "/Length")) continue;
    lines_.Put(NameToken(key));
    PutReferred(value);
  }
}

void Serialiser::WriteEntry(std::int64_t offset) {
  if (offset < 0) return Write("0000000000 65535 f \n");
  const std::string digits = std::to_string(offset);
  Write(std::string(10 - digits.size(), '0') + digits + " 00000 n \n");
}

void Serialiser::WriteTableAndTrailer(const Trailer& trailer) {
  const std::int64_t table = offset_;
  const std::string size = std::to_string(offsets_.size());
  Write("xref\n0 " + size + "\n");
  for (const std::int64_t offset : offsets_) WriteEntry(offset);
  std::string text = "trailer\n<< /Size " + size + "\n/Root " + std::to_string(trailer.Root) + " 0 R\n";
  if (trailer.Information > 0) text += "/Info " + std::to_string(trailer.Information) + " 0 R\n";
  if (trailer.Id.size() == 2)
    text += "/ID [ " + HexToken(trailer.Id[0]) + " " + HexToken(trailer.Id[1]) + " ]\n";
  text += ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
  Write(text);
}

}  // namespace folioweld
