#include "prepare/serialiser.h"

#include <limits>

#include "prepare/not_prepared.h"
#include "prepare/token_text.h"

namespace folioweld {

namespace {

/// Numbers in a file are at most this for the engine.
constexpr std::int64_t kLongestFile = std::numeric_limits<std::int32_t>::max() - 1;

std::string Words(const ObjectName& name) {
  return std::to_string(name.Number) + " " + std::to_string(name.Generation);
}

/// With zeros before them.
std::string Digits(std::int64_t number, std::size_t count) {
  const std::string digits = std::to_string(number);
  return std::string(count - digits.size(), '0') + digits;
}

}  // namespace

Serialiser::Serialiser(ByteSink& sink, const References& references, std::int64_t offset)
    : sink_(sink), references_(references), offset_(offset), entries_(1) {}

void Serialiser::Write(std::string_view bytes) {
  sink_.Write(bytes);
  offset_ += static_cast<std::int64_t>(bytes.size());
  if (offset_ > kLongestFile) throw NotPrepared("its copy would be longer than 2,147,483,646 bytes");
}

void Serialiser::WriteHeader(std::string_view version) {
  Write("%PDF-" + std::string(version) + "\n%\xE2\xE3\xCF\xD3\n");
}

void Serialiser::SetOffset(const ObjectName& name, std::int64_t offset) {
  const auto index = static_cast<std::size_t>(name.Number);
  if (entries_.size() <= index) entries_.resize(index + 1);
  entries_[index] = {offset, name.Generation};
}

void Serialiser::BeginObject(const ObjectName& name) {
  SetOffset(name, offset_);
  lines_.Clear();
  lines_.Put(Words(name) + " obj");
  lines_.EndLine();
}

void Serialiser::EndObject() {
  lines_.EndLine();
  Write(lines_.Text());
  Write("endobj\n");
}

void Serialiser::WriteObject(const ObjectName& name, const QPDFObjectHandle& value) {
  BeginObject(name);
  PutValue(value);
  EndObject();
}

void Serialiser::WriteStream(const ObjectName& name, const QPDFObjectHandle& dictionary,
                             std::string_view bytes) {
  BeginObject(name);
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

void Serialiser::PutReferred(const QPDFObjectHandle& value) {
  const int number =
      value.isIndirect() && !references_.IsNull(value) ? references_.NumberOf(value) : References::kInPlace;
  if (number == References::kInPlace) {
    PutValue(value);
  } else {
    lines_.Put(Words({number, references_.GenerationOf(value)}) + " R");
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
    if (references_.IsNull(value) || (!withLength && key == "/Length")) continue;
    lines_.Put(NameToken(key));
    PutReferred(value);
  }
}

void Serialiser::WriteEntry(const Entry& entry) {
  const bool isFree = entry.Offset < 0;
  Write(Digits(isFree ? 0 : entry.Offset, 10) + " " + Digits(entry.Generation, 5) +
        (isFree ? " f \n" : " n \n"));
}

void Serialiser::WriteTableAndTrailer(const Trailer& trailer) {
  const std::int64_t table = offset_;
  const std::string size = std::to_string(entries_.size());
  Write("xref\n0 " + size + "\n");
  for (const Entry& entry : entries_) WriteEntry(entry);
  std::string text = "trailer\n<< /Size " + size + "\n/Root " + Words(trailer.Root) + " R\n";
  if (trailer.Information.Number > 0) text += "/Info " + Words(trailer.Information) + " R\n";
  if (trailer.Id.size() == 2)
    text += "/ID [ " + HexToken(trailer.Id[0]) + " " + HexToken(trailer.Id[1]) + " ]\n";
  text += ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
  Write(text);
}

}  // namespace folioweld
