// Trailers: PdfReader::ReadTrailerDictionary.

#include "engine/entry_walk.h"
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
void TakeEntry(std::string_view key, std::string_view value, XrefSectionInfo& info) {
  if (BeginsWith(key, "/Size")) {
    TakeNumber(value, info.TrailerSize);
  } else if (BeginsWith(key, "/Root")) {
    TakeReference(value, info.TrailerRoot);
  } else if (BeginsWith(key, "/Info")) {
    TakeReference(value, info.TrailerInfo);
  } else if (BeginsWith(key, "/Prev")) {
    TakeNumber(value, info.TrailerPrev);
  } else if (BeginsWith(key, "/Encrypt")) {
    TakeReference(value, info.TrailerEncrypt);
  } else if (BeginsWith(key, "/ID")) {
    info.TrailerId = value;
  }
}

}  // namespace

void PdfReader::ReadTrailerDictionary(std::int16_t slot, XrefSectionInfo& info) {
  if (KeepsSections(slot)) {
    info.TrailerEntry = JoinAndParseDictionary(state_.PageKids, info.TrailerFirstLine, info.TrailerLastLine);
    for (std::int32_t row = info.TrailerEntry; row >= 0; row = state_.NameEntries[row].NameId) {
      TakeEntry(state_.NameEntries[row].NameText, state_.NameEntries[row].NameValue, info);
    }
    return;
  }
  std::string joined;
  for (std::int32_t i = info.TrailerFirstLine; i <= info.TrailerLastLine; ++i) joined += state_.PageKids[i];
  std::string room;
  EntryWalk walk(InnerText(TrimBlanks(joined)).value_or(""));
  while (walk.Next()) TakeEntry(walk.Key(), walk.Value(room), info);
  info.TrailerId.clear();
}

bool PdfReader::KeepsSections(std::int16_t slot) const {
  return state_.DocSectionBytes(slot) <= files_.FileLength(state_.DocFileNumber(slot));
}

}  // namespace folioweld
