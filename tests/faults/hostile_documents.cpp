#include "tests/faults/hostile_documents.h"

#include <algorithm>
#include <cstdio>

#include "tests/support/document_builder.h"

namespace folioweld::testing {

namespace {

constexpr char kHeader[] = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";

std::string Times(const std::string& text, std::size_t count) {
  std::string repeated;
  repeated.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

std::string Entry(std::size_t offset) {
  char text[32];
  std::snprintf(text, sizeof text, "%010zu 00000 n \n", offset);
  return text;
}

/// The same in lines of some thousand bytes: longer ones than 100,000 are refused.
std::string TimesInLines(const std::string& text, std::size_t count) {
  std::string repeated;
  const std::size_t perLine = 2000 / text.size() + 1;
  for (std::size_t i = 0; i < count; ++i) {
    repeated += text;
    if (i % perLine == perLine - 1) repeated += '\n';
  }
  return repeated;
}

constexpr char kFreeEntry[] = "0000000000 65535 f \n";

/// Ends the bytes with a section of the offsets (objects 1 and up) and the tail that is looked for.
std::string WithSection(std::string bytes, const std::vector<std::size_t>& offsets,
                        const std::string& trailer = "") {
  const std::size_t xref = bytes.size();
  const std::string size = std::to_string(offsets.size() + 1);
  bytes += "xref\n0 " + size + "\n" + kFreeEntry;
  for (const std::size_t offset : offsets) bytes += Entry(offset);
  bytes += "trailer\n<</Size " + size + "/Root 1 0 R" + trailer + "\n>>\nstartxref\n" + std::to_string(xref) +
           "\n%%EOF\n";
  return bytes;
}

/// A document whose catalog holds the text as the value of one more key.
std::string WithCatalogValue(const std::string& value) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R/X " + value + ">>");
  builder.Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1/Y " + value + ">>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>");
  return builder.Build();
}

std::string EndlessTrailer(std::size_t bytes) {
  const std::string start = kHeader;
  return start + "xref\n0 1\n" + kFreeEntry + "trailer\n<<\n" + Times("/A 1\n", bytes / 5) + "  startxref\n" +
         std::to_string(start.size()) + "\n%%EOF\n";
}

std::string EndlessObject(std::size_t bytes) {
  // Everything after the section belongs to object 1, and nothing ends it.
  const std::string start = kHeader;
  std::string text = start + "xref\n0 2\n" + kFreeEntry;
  const std::string trailer = "trailer\n<</Size 2/Root 1 0 R\n>>\nstartxref\n0\n";
  text += Entry(text.size() + 20 + trailer.size()) + trailer + "1 0 obj\n" + Times("<</A 1\n", bytes / 7) +
          "  startxref\n" + std::to_string(start.size()) + "\n%%EOF\n";
  return text;
}

std::string ManySections(std::size_t bytes) {
  std::string text = kHeader;
  std::size_t previous = 0;
  do {
    const std::size_t here = text.size();
    text += std::string("xref\n0 1\n") + kFreeEntry + "trailer\n<</Size 1/Root 0 0 R" +
            (previous > 0 ? "/Prev " + std::to_string(previous) : "") + "\n>>\nstartxref\n";
    previous = here;
  } while (text.size() < bytes);
  return text + std::to_string(previous) + "\n%%EOF\n";
}

std::string SectionsInEachOther(std::size_t bytes) {
  // Headers without an end of their own: each section runs to the one "startxref" at the end, and leads to
  // the next one within itself.
  const std::string start = kHeader;
  constexpr std::size_t kLength = 80;
  std::string text = start;
  do {
    std::string section = std::string("xref\n0 1\n") + kFreeEntry + "<</Size 1/Root 0 0 R/Prev " +
                          std::to_string(text.size() + kLength);
    section.resize(kLength - 3, ' ');
    text += section + ">>\n";
  } while (text.size() < bytes);
  return text + "startxref\n" + std::to_string(start.size()) + "\n%%EOF\n";
}

std::string DeepArrays(std::size_t bytes) {
  return WithCatalogValue(TimesInLines("[", bytes / 4) + TimesInLines("]", bytes / 4));
}

std::string DeepUnclosedBrackets(std::size_t bytes) {
  return WithCatalogValue(TimesInLines("[(<", bytes / 6));
}

std::string DeepDictionaries(std::size_t bytes) {
  return WithCatalogValue(TimesInLines("<</A ", bytes / 14) + "1" + TimesInLines(">>", bytes / 14));
}

std::string DeepUnnamedDictionaries(std::size_t bytes) {
  return WithCatalogValue(TimesInLines("<<", bytes / 8) + TimesInLines(">>", bytes / 8));
}

std::string ManyComments(std::size_t bytes) {
  return WithCatalogValue(TimesInLines("%\r/A%%%%/B", bytes / 20));
}

std::string ManyReferences(std::size_t bytes) {
  return WithCatalogValue("[" + TimesInLines("1 0 1 0 1 0 R ", bytes / 28) + "]");
}

std::string ManyKeys(std::size_t bytes) {
  return WithCatalogValue("<<" + TimesInLines("/A", bytes / 4) + ">>");
}

std::string ManySlashes(std::size_t bytes) {
  return WithCatalogValue("<<" + TimesInLines("/", bytes / 2) + ">>");
}

std::string ManyHexStrings(std::size_t bytes) {
  return WithCatalogValue("[" + TimesInLines("1 <", bytes / 6) + "]");
}

std::string ManyStrings(std::size_t bytes) {
  return WithCatalogValue("[" + TimesInLines("1 0 R(", bytes / 12) + "]");
}

std::string ManyKids(std::size_t bytes) {
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R>>");
  builder.Object(2, "<</Type/Pages/Count 1/Kids[" + TimesInLines("3 0 R ", bytes / 6) + "]>>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>");
  return builder.Build();
}

std::string ManyMissingObjects(std::size_t bytes) {
  return WithCatalogValue("[" + TimesInLines("9 0 R%\n", bytes / 14) + "]");
}

std::string ManyOddReferences(std::size_t bytes) {
  return WithCatalogValue("[" + TimesInLines("1\t0 R 00000000001 0 R ", bytes / 44) + "]");
}

std::string StringsOverManyLines(std::size_t bytes) {
  return WithCatalogValue("(" + Times("a line of it\r\n", bytes / 28) + ")");
}

/// Nobody hides a layer, so that all of them are looked at.
std::string ManyLayers(std::size_t bytes) {
  const std::string layers = "[" + TimesInLines("2 0 R 3 0 R ", bytes / 24) + "]";
  DocumentBuilder builder;
  builder.Object(1, "<</Type/Catalog/Pages 2 0 R/OCProperties<</OCGs" + layers + "/D<</AS[" +
                        TimesInLines("<</Category[/View/Print]/OCGs[3 0 R]>>", bytes / 76) + "]>>>>>>");
  builder.Object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
  builder.Object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>");
  return builder.Build();
}

std::string ManyEntries(std::size_t bytes) {
  const std::size_t count = std::min<std::size_t>(bytes / 20, 350000);
  std::string text = std::string(kHeader) + "1 0 obj\n<</Type/Catalog/Pages 2 0 R>>\nendobj\n";
  std::vector<std::size_t> offsets = {std::string(kHeader).size(), text.size()};
  text += "2 0 obj\n<</Type/Pages/Kids[]/Count 0>>\nendobj\n";
  const std::size_t xref = text.size();
  text += "xref\n0 " + std::to_string(count) + "\n" + kFreeEntry + Entry(offsets[0]) + Entry(offsets[1]);
  text += Times(kFreeEntry, count - 3);
  return text + "trailer\n<</Size " + std::to_string(count) + "/Root 1 0 R\n>>\nstartxref\n" +
         std::to_string(xref) + "\n%%EOF\n";
}

std::string LongLines(std::size_t bytes) {
  const std::string line = "(" + std::string(99996, 'x') + ")\n";
  return WithCatalogValue("[\n" + Times(line, bytes / line.size() / 2 + 1) + "]");
}

std::string LineEndsOnly(std::size_t bytes) {
  std::string text = kHeader + std::string(bytes, '\n');
  return WithSection(std::move(text), {std::string(kHeader).size()});
}

std::string ObjectsBetweenLineEnds(std::size_t bytes) {
  // Every object runs through all that follow, whose headers stand far from each other.
  std::string text = kHeader;
  std::vector<std::size_t> offsets;
  const std::size_t gap = 400;
  for (std::size_t number = 1; text.size() < bytes; ++number) {
    offsets.push_back(text.size());
    text += std::to_string(number) + " 0 obj\n" + std::string(gap, '\n');
  }
  return WithSection(text + "endobj\n", offsets);
}

std::string ObjectsInEachOther(std::size_t bytes) {
  std::string text = kHeader;
  std::vector<std::size_t> offsets;
  for (std::size_t number = 1; text.size() < bytes; ++number) {
    offsets.push_back(text.size());
    text += std::to_string(number) + " 0 obj 1\n";
  }
  return WithSection(text + "endobj\n", offsets);
}

std::string ManyLines(std::size_t bytes) {
  return WithCatalogValue("[" + Times("\n1", bytes / 4) + "]");
}

std::string OneByteTrailerLines(std::size_t bytes) {
  std::string text = kHeader;
  const std::size_t xref = text.size();
  text += std::string("xref\n0 1\n") + kFreeEntry + "trailer\n<</Size 1/Root 0 0 R\n/A[\n" +
          Times("1\n", bytes / 2) + "]>>\n";
  return text + "startxref\n" + std::to_string(xref) + "\n%%EOF\n";
}

std::string StreamsThatClaimTheSameBytes(std::size_t bytes) {
  std::string text = std::string(kHeader);
  std::vector<std::size_t> offsets = {text.size()};
  text += "1 0 obj\n<</Type/Catalog/Pages 2 0 R>>\nendobj\n";
  offsets.push_back(text.size());
  text += "2 0 obj\n<</Type/Pages/Kids[]/Count 0>>\nendobj\n";
  const std::size_t claim = bytes / 2;
  const std::size_t count = std::min<std::size_t>(bytes / 160, 16000);
  for (std::size_t number = 3; number < 3 + count; ++number) {
    offsets.push_back(text.size());
    text += std::to_string(number) + " 0 obj\n<</Length " + std::to_string(claim) + ">>\nstream\nx\n";
  }
  return WithSection(text + std::string(claim + 100, 'x') + "\n", offsets);
}

/// How many objects or sections that all run to one end, so many bytes of each being the same, may be read
/// before the document is refused.
std::size_t MostThatShare(std::size_t bytes, std::size_t file) {
  return (std::size_t{16} * 1024 * 1024 + 3 * file) / bytes;
}

/// A catalog, the root of the page tree with the objects from 3 to `last` as its kids, and their offsets.
std::string DocumentStart(std::size_t last, std::vector<std::size_t>& offsets) {
  std::string text = kHeader;
  offsets.push_back(text.size());
  text += "1 0 obj\n<</Type/Catalog/Pages 2 0 R>>\nendobj\n";
  offsets.push_back(text.size());
  text += "2 0 obj\n<</Type/Pages/Count 1/Kids[";
  for (std::size_t number = 3; number <= last; ++number) text += std::to_string(number) + " 0 R\n";
  return text + "]>>\nendobj\n";
}

/// Each level holds a comment that only a parser which is that deep sees: to the ones above it, it stands in
/// a hex string.
constexpr char kLevelOfComment[] = "<<%\n<4/A ";
constexpr std::size_t kLevels = 100;

std::string NestedComments(std::size_t bytes) {
  return WithCatalogValue(Times(kLevelOfComment, kLevels) + TimesInLines("x", bytes / 2) + ">" +
                          Times(">>", kLevels));
}

std::string ObjectsThatShareNestedComments(std::size_t bytes) {
  const std::size_t count = std::min(MostThatShare(bytes, bytes), bytes / 100);
  std::vector<std::size_t> offsets;
  std::string text = DocumentStart(2, offsets) + "%";
  for (std::size_t number = 3; number < 3 + count; ++number) {
    offsets.push_back(text.size());
    text += std::to_string(number) + " 0 obj\n" + kLevelOfComment + "%";
  }
  text += "\n" + Times(kLevelOfComment, kLevels);
  if (text.size() < bytes) text += TimesInLines("x", bytes - text.size());
  return WithSection(text + ">" + Times(">>", kLevels + count) + "\nendobj\n", offsets);
}

/// Objects that run through all that follow. The outermost has the lowest number, or the highest one.
std::string ObjectsThatShare(const std::string& filler, std::size_t bytes, bool outermostFirst) {
  const std::size_t count = std::min(MostThatShare(bytes, bytes), bytes / 60);
  std::vector<std::size_t> offsets;
  std::string text = DocumentStart(2 + count, offsets);
  offsets.resize(2 + count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t number = outermostFirst ? 3 + i : 2 + count - i;
    offsets[number - 1] = text.size();
    text += std::to_string(number) + " 0 obj\n<<\t\n";
  }
  if (text.size() < bytes) text += TimesInLines(filler, (bytes - text.size()) / filler.size());
  return WithSection(text + "\n>>\nendobj\n", offsets);
}

std::string ObjectsThatShareKeys(std::size_t bytes) {
  return ObjectsThatShare("/", bytes, true);
}

std::string ObjectsThatShareReferences(std::size_t bytes) {
  return ObjectsThatShare("/A 0 0 R", bytes, false);
}

std::string NodesThatShareKids(std::size_t bytes) {
  return ObjectsThatShare("/Kids[%\r0 0 R]/Subtype/Widget%\r", bytes, false);
}

std::string SectionsThatShareLines(std::size_t bytes) {
  constexpr std::size_t kLength = 48;
  const std::size_t count = std::min(MostThatShare(bytes, bytes), bytes / 200);
  const std::string start = kHeader;
  std::string text = start;
  for (std::size_t i = 1; i <= count; ++i) {
    std::string section = "xref\n0 0\n<</Size 1/Root 0 0 R";
    if (i < count) section += "/Prev " + std::to_string(text.size() + kLength);
    section.resize(kLength - 1, ' ');
    text += section + "\n";
  }
  if (text.size() < bytes) text += Times("/\n", (bytes - text.size()) / 2);
  return text + ">>\nstartxref\n" + std::to_string(start.size()) + "\n%%EOF\n";
}

}  // namespace

const std::vector<HostileDocument>& HostileDocuments() {
  static const std::vector<HostileDocument> documents = {
      {"a trailer that never ends", EndlessTrailer},
      {"an object that never ends", EndlessObject},
      {"a long chain of sections", ManySections},
      {"sections in each other", SectionsInEachOther},
      {"arrays nested deeply", DeepArrays},
      {"brackets that are never closed", DeepUnclosedBrackets},
      {"dictionaries nested deeply", DeepDictionaries},
      {"dictionaries without keys nested deeply", DeepUnnamedDictionaries},
      {"many comments", ManyComments},
      {"many references", ManyReferences},
      {"many keys", ManyKeys},
      {"names that are no keys", ManySlashes},
      {"hex strings that are never closed", ManyHexStrings},
      {"strings that are never closed", ManyStrings},
      {"many kids", ManyKids},
      {"many missing objects", ManyMissingObjects},
      {"many odd references", ManyOddReferences},
      {"strings over many lines", StringsOverManyLines},
      {"many layers", ManyLayers},
      {"many entries", ManyEntries},
      {"lines of 100,000 bytes", LongLines},
      {"line ends only", LineEndsOnly},
      {"objects between line ends", ObjectsBetweenLineEnds},
      {"objects in each other", ObjectsInEachOther},
      {"an object in many lines", ManyLines},
      {"one-byte trailer lines", OneByteTrailerLines},
      {"streams that claim the same bytes", StreamsThatClaimTheSameBytes},
      {"nested comments", NestedComments},
  };
  return documents;
}

const std::vector<HostileDocument>& SharingDocuments() {
  static const std::vector<HostileDocument> documents = {
      {"objects that share nested comments", ObjectsThatShareNestedComments},
      {"objects that share keys", ObjectsThatShareKeys},
      {"objects that share references", ObjectsThatShareReferences},
      {"nodes that share kids", NodesThatShareKids},
      {"sections that share lines", SectionsThatShareLines},
  };
  return documents;
}

}  // namespace folioweld::testing
