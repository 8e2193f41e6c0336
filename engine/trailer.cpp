// Trailers: PdfReader::ReadTrailerDictionary.

#include "engine/lexer.h"
#include "engine/pdf_reader.h"

namespace folioweld {

namespace {

/// The value's first word, when it is a number.
void TakeNumber(std::string_view value, std::int32_t& field) {
  const std::int32_t number = FirstNumberOf(value);
  if (number >= 0) field = number;
}

/// The object number of a value that ends in "R"; the generation is ignored.
void TakeReference(std::string_view value, std::int32_t& field) {
  const std::string_view text = kSpaceSet.Trim(value);
  if (text.size() > 2 && text.back() == 'R') TakeNumber(text.substr(0, text.size() - 1), field);
}

bool BeginsWith(std::string_view key, std::string_view name) {
  return key.substr(0, name.size()) == name;
}

/// The beginning of the key decides, so "/Sizes" counts as "/Size"; the first name that fits wins.
void TakeEntry(const NameEntry& entry, XrefSectionInfo& info) {
  if (BeginsWith(entry.NameText, "/Size")) {
    TakeNumber(entry.NameValue, info.TrailerSize);
  } else if (BeginsWith(entry.NameText, "/Root")) {
    TakeReference(entry.NameValue, info.TrailerRoot);
  } else if (BeginsWith(entry.NameText, "/Info")) {
    TakeReference(entry.NameValue, info.TrailerInfo);
  } else if (BeginsWith(entry.NameText, "/Prev")) {
    TakeNumber(entry.NameValue, info.TrailerPrev);
  } else if (BeginsWith(entry.NameText, "/Encrypt")) {
    TakeReference(entry.NameValue, info.TrailerEncrypt);
  } else if (BeginsWith(entry.NameText, "/ID")) {
    info.TrailerId = entry.NameValue;
  }
}

}  // namespace

void PdfReader::ReadTrailerDictionary(std::int16_t /*slot*/, XrefSectionInfo& info) {
  info.TrailerEntry = JoinAndParseDictionary(state_.PageKids, info.TrailerFirstLine, info.TrailerLastLine);
  for (std::int32_t row = info.TrailerEntry; row >= 0; row = state_.NameEntries[row].NameId) {
    TakeEntry(state_.NameEntries[row], info);
  }
}

}  // namespace folioweld
