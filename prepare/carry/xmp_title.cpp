#include "prepare/carry/xmp_title.h"

#include "engine/settings_text.h"
#include "prepare/carry/revision.h"

namespace folioweld {

namespace {

constexpr std::string_view kDublinCore = "http://purl.org/dc/elements/1.1/";
constexpr std::string_view kStart = "<dc:title>";
constexpr std::string_view kEnd = "</dc:title>";

bool Has(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// What XML takes; characters that it does not know become blanks.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '&')
      escaped += "&amp;";
    else if (c == '<')
      escaped += "&lt;";
    else if (c == '>')
      escaped += "&gt;";
    else
      escaped += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
  }
  return escaped;
}

}  // namespace

std::optional<std::string> WithTitle(std::string_view xmp, std::string_view title) {
  const bool isText = IsUtf8(xmp) && !Has(xmp, {"\0", 1});
  if (!isText) throw NotCarried("the XMP metadata are not in UTF-8");
  const bool hasName = Has(xmp, "dc:title");
  const bool isElsewhere = Has(xmp, kDublinCore) && !Has(xmp, "xmlns:dc=");
  if (!hasName && !isElsewhere) return std::nullopt;
  const std::size_t start = xmp.find(kStart);
  const std::size_t end = xmp.find(kEnd, start == std::string_view::npos ? 0 : start);
  const bool isClear = start != std::string_view::npos && end != std::string_view::npos &&
                       xmp.find("dc:title", start + kStart.size()) == end + 2 &&
                       !Has(xmp.substr(end + kEnd.size()), "dc:title") && Has(xmp, "xmlns:rdf=") &&
                       !Has(xmp, "<!--") && !Has(xmp, "<![CDATA[");
  if (!isClear) throw NotCarried("the title in the XMP metadata is not clear, and stays");
  std::string changed(xmp.substr(0, start + kStart.size()));
  changed += "<rdf:Alt><rdf:li xml:lang=\"x-default\">" + Escaped(title) + "</rdf:li></rdf:Alt>";
  changed += xmp.substr(end);
  return changed;
}

}  // namespace folioweld
