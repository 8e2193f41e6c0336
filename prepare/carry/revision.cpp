#include "prepare/carry/revision.h"

#include <algorithm>
#include <new>
#include <utility>

#include "prepare/losses.h"

namespace folioweld {

namespace {

/// Real files take a few for each of their objects.
constexpr std::size_t kMostPlaces = 1'000'000;

}  // namespace

bool CarriedDocument::Has(const QPDFObjectHandle& object) const {
  const int number = object.getObjectID();
  return number > FirstObject && number < EndObject;
}

Revision::Revision(QPDF& file, std::vector<CarriedDocument> documents)
    : file_(file),
      documents_(std::move(documents)),
      nextNumber_(file.getTrailer().getKey("/Size").getIntValueAsInt()) {
  catalog_ = Add(file.getRoot().shallowCopy());
  QPDFObjectHandle information = file.getTrailer().getKey("/Info");
  if (information.isIndirect() && information.isDictionary()) information_ = information;
}

QPDFObjectHandle Revision::Add(const QPDFObjectHandle& value) {
  const int number = value.isIndirect() ? value.getObjectID() : nextNumber_;
  if (!value.isIndirect()) file_.replaceObject(number, 0, value);
  nextNumber_ = std::max(nextNumber_, number + 1);
  written_.insert(number);
  return file_.getObjectByID(number, 0);
}

void Revision::Change(const QPDFObjectHandle& object) {
  if (!object.isIndirect()) throw std::logic_error("only indirect objects are written anew");
  written_.insert(object.getObjectID());
}

void Revision::ForEach(const std::string& part, const std::function<void(CarriedDocument&)>& work) {
  for (CarriedDocument& document : documents_) {
    if (!document.Catalog.isInitialized()) continue;
    steps_ = 0;
    try {
      work(document);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& broken) {
      TellLost(document, part, WordsOf(broken));
    }
  }
}

void Revision::TellLost(const CarriedDocument& document, const std::string& part, const std::string& why) {
  losses_.push_back({document.Index, part, why});
}

void Revision::Spend() {
  if (++steps_ > kMostPlaces) throw NotCarried("it has more than a million places to look at");
}

}  // namespace folioweld
