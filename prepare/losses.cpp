#include "prepare/losses.h"

#include <algorithm>
#include <new>
#include <set>

namespace folioweld {

namespace {

/// What a trailer has of its own, and what the dictionary of a cross-reference stream has besides.
const std::set<std::string> kOfTrailers = {"/Size",        "/Root",    "/Info", "/ID",    "/Encrypt",
                                           "/Prev",        "/XRefStm", "/Type", "/Index", "/Length",
                                           "/DecodeParms", "/Filter",  "/W"};

bool IsVersion(const std::string& text) {
  return text.size() == 3 && text[0] >= '1' && text[0] <= '9' && text[1] == '.' && text[2] >= '0' &&
         text[2] <= '9';
}

std::vector<QPDFObjectHandle> ItemsOf(QPDFObjectHandle value) {
  return value.isArray() ? value.getArrayAsVector() : std::vector<QPDFObjectHandle>{value};
}

}  // namespace

std::vector<std::string> Losses(QPDF& document, std::size_t signatures) {
  std::vector<std::string> lost;
  QPDFObjectHandle trailer = document.getTrailer();
  const bool isLinearized = document.isLinearized();
  if (document.isEncrypted()) lost.emplace_back("its protection");
  if (signatures > 0) {
    lost.push_back("the validity of " + std::to_string(signatures) +
                   (signatures == 1 ? " signature" : " signatures"));
  }
  // A linearized document has two sections and one revision.
  if (isLinearized) {
    lost.emplace_back("its order for being shown while it is loaded (linearization)");
  } else if (trailer.hasKey("/Prev")) {
    lost.emplace_back("its earlier revisions");
  }
  for (const std::string& key : trailer.getKeys()) {
    if (kOfTrailers.count(key) == 0) lost.push_back("the trailer's entry " + key);
  }
  return lost;
}

QPDFObjectHandle WithoutCryptFilters(QPDFObjectHandle dictionary) {
  const std::vector<QPDFObjectHandle> filters = ItemsOf(dictionary.getKey("/Filter"));
  const std::vector<QPDFObjectHandle> parameters = ItemsOf(dictionary.getKey("/DecodeParms"));
  const auto isCrypt = [](const QPDFObjectHandle& filter) {
    return QPDFObjectHandle(filter).isNameAndEquals("/Crypt");
  };
  if (std::none_of(filters.begin(), filters.end(), isCrypt)) return dictionary;
  std::vector<QPDFObjectHandle> filtersLeft;
  std::vector<QPDFObjectHandle> parametersLeft;
  for (std::size_t i = 0; i < filters.size(); ++i) {
    if (isCrypt(filters[i])) continue;
    filtersLeft.push_back(filters[i]);
    parametersLeft.push_back(i < parameters.size() ? parameters[i] : QPDFObjectHandle::newNull());
  }
  dictionary.replaceKey("/Filter", QPDFObjectHandle::newArray(filtersLeft));
  dictionary.replaceKey("/DecodeParms", QPDFObjectHandle::newArray(parametersLeft));
  return dictionary;
}

std::string VersionOf(QPDF& document) {
  std::string version = document.getPDFVersion();
  if (!IsVersion(version)) version = "1.7";
  std::string newer;
  const bool isName = document.getRoot().getKey("/Version").getValueAsName(newer);
  if (isName && IsVersion(newer.substr(1))) version = std::max(version, newer.substr(1));
  return version;
}

std::string Words(const QPDFExc& warning) {
  const std::string& words = warning.getMessageDetail();
  std::string place = warning.getObject();
  if (warning.getFilePosition() > 0) {
    place += (place.empty() ? "offset " : ", offset ") + std::to_string(warning.getFilePosition());
  }
  return place.empty() ? words : words + " (" + place + ")";
}

std::string WordsOf(const std::exception& raised) {
  if (const auto* broken = dynamic_cast<const QPDFExc*>(&raised)) return Words(*broken);
  const bool isMemory = dynamic_cast<const std::bad_alloc*>(&raised) != nullptr;
  return isMemory ? "there is not enough memory for it" : raised.what();
}

}  // namespace folioweld
