#include "dirmerge/uri_list.h"

#include <algorithm>
#include <utility>

#include "dirmerge/paths.h"
#include "engine/character_set.h"
#include "engine/hex_digits.h"

namespace folioweld {

namespace {

constexpr std::string_view kScheme = "file:";
constexpr CharacterSet kLineBlanks{" \t\r"};

char LowerCased(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Letters of both cases are the same in schemes and names of machines.
bool SameName(std::string_view first, std::string_view second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [](char a, char b) { return LowerCased(a) == LowerCased(b); });
}

std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return kLineBlanks.Trim(line);
}

/// A "%" without two digits after it stands for itself: not everybody encodes what they should.
std::string PercentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool encoded =
        text[i] == '%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 && HexValue(text[i + 2]) >= 0;
    decoded += encoded ? static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2])) : text[i];
    if (encoded) i += 2;
  }
  return decoded;
}

/// Takes the name of the machine, if any, off the front.
std::string_view TakeHost(std::string_view& address) {
  if (address.substr(0, 2) != "//") return {};
  address.remove_prefix(2);
  const std::string_view host = address.substr(0, address.find(PathSeparator));
  address.remove_prefix(host.size());
  return host;
}

bool IsHere(std::string_view host, std::string_view thisHost) {
  return host.empty() || SameName(host, "localhost") || SameName(host, thisHost);
}

}  // namespace

std::vector<std::string> FilesOfUriList(std::string_view list, std::string_view thisHost) {
  std::vector<std::string> files;
  while (!list.empty()) {
    std::string_view address = TakeLine(list);
    if (!SameName(address.substr(0, kScheme.size()), kScheme)) continue;
    address.remove_prefix(kScheme.size());
    if (!IsHere(TakeHost(address), thisHost)) continue;
    // A query or a fragment does not belong to the path.
    std::string path = PercentDecoded(address.substr(0, address.find_first_of("?#")));
    const bool usable = !path.empty() && path[0] == PathSeparator && path.find('\0') == std::string::npos;
    if (usable) files.push_back(std::move(path));
  }
  return files;
}

std::size_t CountOfUriList(std::string_view list) {
  std::size_t count = 0;
  while (!list.empty()) {
    const std::string_view address = TakeLine(list);
    if (!address.empty() && address.front() != '#') ++count;
  }
  return count;
}

}  // namespace folioweld
