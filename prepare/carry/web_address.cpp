#include "prepare/carry/web_address.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace folioweld {

namespace {

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Up to the colon; 0 where there is no scheme.
std::size_t SchemeLength(std::string_view address) {
  const std::size_t end = address.find(':');
  if (end == std::string_view::npos || end == 0 || !IsLetter(address.front())) return 0;
  const std::string_view scheme = address.substr(0, end);
  const bool isScheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
  });
  return isScheme ? end : 0;
}

/// Where the parts of an address begin.
struct Parts {
  std::size_t Path = 0;  ///< after the scheme, and the authority where there is one
  std::size_t Query = 0;
  std::size_t Fragment = 0;
};

Parts PartsOf(std::string_view address) {
  Parts parts;
  parts.Fragment = std::min(address.find('#'), address.size());
  parts.Query = std::min(address.substr(0, parts.Fragment).find('?'), parts.Fragment);
  const std::size_t scheme = SchemeLength(address.substr(0, parts.Query));
  parts.Path = scheme == 0 ? 0 : scheme + 1;
  const std::string_view rest = address.substr(0, parts.Query).substr(parts.Path);
  if (rest.substr(0, 2) == "//") parts.Path += std::min(rest.find('/', 2), rest.size());
  return parts;
}

/// The path without "." and "..".
std::string Cleaned(std::string_view path) {
  std::vector<std::string_view> kept;
  const bool isAbsolute = path.substr(0, 1) == "/";
  if (isAbsolute) path.remove_prefix(1);
  for (bool isLast = false; !isLast;) {
    const std::size_t end = std::min(path.find('/'), path.size());
    isLast = end == path.size();
    const std::string_view segment = path.substr(0, end);
    const bool goesUp = segment == "..";
    const bool isName = !goesUp && segment != ".";
    if (goesUp && !kept.empty()) kept.pop_back();
    if (isName || isLast) kept.push_back(isName ? segment : std::string_view());
    path.remove_prefix(isLast ? end : end + 1);
  }
  std::string cleaned;
  for (const std::string_view segment : kept) {
    if (isAbsolute || !cleaned.empty()) cleaned += '/';
    cleaned += segment;
  }
  return cleaned;
}

}  // namespace

bool IsWholeAddress(const std::string& address) {
  return SchemeLength(address) > 0;
}

std::string WholeAddress(const std::string& base, const std::string& link) {
  if (IsWholeAddress(link)) return link;
  const Parts of = PartsOf(base);
  const Parts own = PartsOf(link);
  if (own.Path > 0) return base.substr(0, SchemeLength(base) + 1) + link;
  const std::string path = link.substr(0, own.Query);
  const std::string rest = link.substr(own.Query);
  if (!path.empty() && path.front() == '/') return base.substr(0, of.Path) + Cleaned(path) + rest;
  if (!path.empty()) {
    const std::string basePath = base.substr(of.Path, of.Query - of.Path);
    const std::size_t folder = basePath.rfind('/') + 1;
    return base.substr(0, of.Path) + Cleaned((folder == 0 ? "/" : basePath.substr(0, folder)) + path) + rest;
  }
  return base.substr(0, own.Query == own.Fragment ? of.Fragment : of.Query) + rest;
}

}  // namespace folioweld
