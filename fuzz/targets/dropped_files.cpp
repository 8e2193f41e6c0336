// The list that a desktop hands over when files are dropped on the window.

#include "dirmerge/uri_list.h"
#include "fuzz/numbered_document.h"

namespace {

/// The list that stands for the files.
std::string ListOf(const std::vector<std::string>& files) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string list;
  for (const std::string& file : files) {
    list += "file://";
    for (const char c : file) {
      const auto byte = static_cast<unsigned char>(c);
      list += c == '/' ? std::string(1, c) : std::string{'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
    }
    list += "\r\n";
  }
  return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace folioweld;
  const std::vector<std::string> files = FilesOfUriList(fuzz::TextOf(data, size), "here");
  std::size_t bytes = 0;
  for (const std::string& file : files) {
    fuzz::Require(file.substr(0, 1) == "/", "a dropped file has a full path");
    fuzz::Require(file.find('\0') == std::string::npos, "no path holds a NUL");
    bytes += file.size();
  }
  fuzz::Require(bytes <= size, "decoding only shortens");
  fuzz::Require(FilesOfUriList(ListOf(files), "here") == files, "encoded again it is the same list");
  return 0;
}
