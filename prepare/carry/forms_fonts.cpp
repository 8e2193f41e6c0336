#include "prepare/carry/forms_fonts.h"

#include <cstddef>
#include <memory>

#include "prepare/carry/forms_same_value.h"
#include "prepare/token_text.h"

namespace folioweld {

namespace {

const char* const kFonts = "/Font";

}  // namespace

NewNames DefaultResources::Plan(const QPDFObjectHandle& form, int document) {
  QPDFObjectHandle taken = DictionaryOf(merged_, kFonts);
  QPDFObjectHandle own = DictionaryOf(DictionaryOf(form, "/DR"), kFonts);
  NewNames renamed;
  const auto isTaken = [&](const std::string& name) { return taken.hasKey(name) || own.hasKey(name); };
  for (const std::string& name : own.getKeys()) {
    revision_.Spend();
    if (!taken.hasKey(name) || IsSameValue(taken.getKey(name), own.getKey(name))) continue;
    renamed[name] = Numbered(revision_, name, document, isTaken);
  }
  return renamed;
}

void DefaultResources::Take(const QPDFObjectHandle& form, const NewNames& renamed) {
  for (auto& [category, resources] : DictionaryOf(form, "/DR").getDictAsMap()) {
    if (!resources.isDictionary()) {
      if (!merged_.hasKey(category)) merged_.replaceKey(category, resources);
      continue;
    }
    QPDFObjectHandle merged = DictionaryOf(merged_, category);
    for (auto& [name, resource] : resources.getDictAsMap()) {
      const auto found = category == kFonts ? renamed.find(name) : renamed.end();
      const std::string& newName = found == renamed.end() ? name : found->second;
      if (!merged.hasKey(newName)) merged.replaceKey(newName, resource);
    }
    merged_.replaceKey(category, merged);
  }
}

std::string WithFonts(const std::string& appearance, const NewNames& renamed) {
  QPDFTokenizer tokenizer;
  tokenizer.allowEOF();
  tokenizer.includeIgnorable();
  const auto input = std::make_shared<BufferInputSource>("default appearance", appearance);
  std::string text;
  QPDFTokenizer::Token name;  // the last one before the operator
  std::size_t nameStart = 0;  // index in the text
  for (;;) {
    const QPDFTokenizer::Token token = tokenizer.readToken(input, "default appearance", true);
    if (token.getType() == QPDFTokenizer::tt_eof) return text;
    if (token.getType() == QPDFTokenizer::tt_name) {
      name = token;
      nameStart = text.size();
    } else if (token.isWord("Tf") && renamed.count(name.getValue()) > 0) {
      text.replace(nameStart, name.getRawValue().size(), NameToken(renamed.at(name.getValue())));
    }
    text += token.getRawValue();
  }
}

}  // namespace folioweld
