#include "prepare/carry/title.h"

#include <optional>

#include "prepare/carry/text_string.h"
#include "prepare/carry/xmp_title.h"

namespace folioweld {

namespace {

constexpr std::size_t kLongestMetadata = 4 * 1024 * 1024;

/// Takes as many bytes as metadata may have.
class Gathering : public Pipeline {
 public:
  Gathering() : Pipeline("metadata", nullptr) {}
  void write(unsigned char const* bytes, size_t count) override {
    if (Bytes.size() + count > kLongestMetadata) throw NotCarried("the XMP metadata are too long");
    Bytes.append(reinterpret_cast<const char*>(bytes), count);
  }
  void finish() override {}

  std::string Bytes;
};

std::string BytesOf(QPDFObjectHandle stream) {
  Gathering bytes;
  bool filtered = false;
  const bool read = stream.pipeStreamData(&bytes, &filtered, 0, qpdf_dl_generalized, true, false);
  if (!read || !filtered) throw NotCarried("the XMP metadata cannot be read");
  return bytes.Bytes;
}

void SetInformation(Revision& revision, const std::string& title) {
  QPDFObjectHandle information = revision.Information();
  if (!information.isInitialized()) {
    information = revision.Add(QPDFObjectHandle::newDictionary());
    revision.SetInformation(information);
  }
  information.replaceKey("/Title", TextString(title));
  revision.Change(information);
}

void SetMetadata(Revision& revision, const std::string& title) {
  QPDFObjectHandle metadata = revision.Catalog().getKey("/Metadata");
  if (!metadata.isStream()) return;
  const std::optional<std::string> changed = WithTitle(BytesOf(metadata), AsUtf8(title));
  if (!changed) return;
  metadata.replaceStreamData(*changed, QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull());
  revision.Change(metadata);
}

}  // namespace

void SetTitle(Revision& revision, const std::string& title) {
  SetInformation(revision, title);
  revision.ForEach("title", [&](const CarriedDocument& document) {
    if (document.Index == revision.Documents().front().Index) SetMetadata(revision, title);
  });
}

}  // namespace folioweld
