#include "prepare/carry/revision.h"

#include <new>
#include <utility>

namespace folioweld {

namespace {

/// Real files take a few for each of their objects.
constexpr std::size_t kMostSteps = 1'000'000;

}  // namespace

bool CarriedDocument::Has(const QPDFObjectHandle& object) const {
  QPDFObjectHandle handle = object;
  const int number = handle.getObjectID();
  return number > FirstObject && number < EndObject;
}

Revision::Revision(QPDF& file, std::vector<CarriedDocument> documents)
    : file_(file), documents_(std::move(documents)) {
  catalog_ = Add(file.getRoot().shallowCopy());
}

QPDFObjectHandle Revision::Add(const QPDFObjectHandle& value) {
  QPDFObjectHandle object = file_.makeIndirectObject(value);
  written_.insert(object.getObjectID());
  return object;
}

void Revision::Change(const QPDFObjectHandle& object) {
  QPDFObjectHandle handle = object;
  if (!handle.isIndirect()) throw std::logic_error("only indirect objects are written anew");
  written_.insert(handle.getObjectID());
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
      TellLost(document, part, broken.what());
    }
  }
}

void Revision::TellLost(const CarriedDocument& document, const std::string& part, const std::string& why) {
  losses_.push_back({document.Index, part, why});
}

void Revision::Spend() {
  if (++steps_ > kMostSteps) throw NotCarried("it has more than a million places to look at");
}

}  // namespace folioweld
