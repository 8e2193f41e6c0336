#include "engine/object_text.h"

#include "engine/lexer.h"

namespace folioweld {

void ObjectText::Clear() {
  text_.clear();
  joints_.clear();
}

bool ObjectText::EndsWithin(std::size_t keywordSize) const {
  const std::string_view text = View();
  std::size_t token = text.size() - keywordSize;
  while (token > 0 && !kDelimiterSet.Has(text[token - 1])) --token;
  if (token > 0 && text[token - 1] == '/') return true;
  // A comment ends with its line.
  const bool beginsLine = token == text.size() - keywordSize && token > 0 && text[token - 1] == '\r';
  const bool mayBeComment = !beginsLine && text.find('%') != std::string_view::npos;
  if (!mayBeComment && text.find('(') == std::string_view::npos) return false;
  OpaquePiece piece;
  while (FindOpaque(text, piece.End, piece)) {
    if (piece.End == text.size()) return true;
  }
  return false;
}

bool ObjectText::StringLosesBytes(FileModule& files, std::int16_t fileNumber) const {
  const std::string_view text = View();
  if (joints_.empty() || text.find('(') == std::string_view::npos) return false;
  auto joint = joints_.begin();
  OpaquePiece piece;
  while (FindOpaque(text, piece.End, piece)) {
    while (joint != joints_.end() && joint->Index < piece.Start) ++joint;
    for (; joint != joints_.end() && joint->Index < piece.End; ++joint) {
      if (text[piece.Start] == '(' && !IsLineEnd(*joint, files, fileNumber)) return true;
    }
  }
  return false;
}

/// A carriage return and a line feed are one line end.
bool ObjectText::IsLineEnd(const Joint& joint, FileModule& files, std::int16_t fileNumber) {
  if (joint.Bytes != 2) return false;
  std::string bytes;
  const auto position = static_cast<std::int32_t>(joint.Offset + 1);
  return files.ReadBlock(fileNumber, position, 2, bytes) == 2 && bytes == "\r\n";
}

}  // namespace folioweld
