#include "fuzz/numbered_document.h"

#include <cstdio>
#include <cstdlib>
#include <map>

namespace folioweld::fuzz {

namespace {

constexpr std::size_t kMostNumbered = 200;

/// Where the objects begin, by number.
std::map<std::size_t, std::size_t> FindObjects(std::string_view text) {
  std::map<std::size_t, std::size_t> objects;
  for (std::size_t line = 0; line < text.size();) {
    std::size_t number = 0;
    std::size_t at = line;
    while (at < text.size() && at < line + 3 && text[at] >= '0' && text[at] <= '9') {
      number = number * 10 + static_cast<std::size_t>(text[at++] - '0');
    }
    if (at > line && number > 0 && number < kMostNumbered && text.substr(at, 6) == " 0 obj") {
      objects.emplace(number, line);
    }
    line = text.find_first_of("\r\n", line);
    if (line == std::string_view::npos) break;
    ++line;
  }
  return objects;
}

std::string EntryOf(std::size_t offset, bool used) {
  char text[32];
  std::snprintf(text, sizeof text, "%010zu %05d %c\r\n", offset, used ? 0 : 65535, used ? 'n' : 'f');
  return text;
}

}  // namespace

std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

std::string NumberedDocument(std::string_view body, std::string_view trailer) {
  std::string text = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";
  text += body;
  text += '\n';
  const auto objects = FindObjects(text);
  const std::size_t count = objects.empty() ? 1 : objects.rbegin()->first + 1;
  const std::size_t xref = text.size();
  text += "xref\n0 " + std::to_string(count) + "\n";
  for (std::size_t number = 0; number < count; ++number) {
    const auto found = objects.find(number);
    text += found == objects.end() ? EntryOf(0, false) : EntryOf(found->second, true);
  }
  text += "trailer\n<</Size " + std::to_string(count) + std::string(trailer) + "\n>>\nstartxref\n" +
          std::to_string(xref) + "\n%%EOF\n";
  return text;
}

}  // namespace folioweld::fuzz
