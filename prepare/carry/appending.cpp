#include "prepare/carry/appending.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/pdf_reader.h"
#include "prepare/serialiser.h"

namespace folioweld {

namespace {

constexpr std::int64_t kLongestOutput = std::numeric_limits<std::int32_t>::max() - 1;

/// Holds the revision until it is known that all of it can be appended.
class MemorySink : public ByteSink {
 public:
  explicit MemorySink(std::int64_t offset) : room_(kLongestOutput - offset) {}

  void Write(std::string_view bytes) override {
    room_ -= static_cast<std::int64_t>(bytes.size());
    if (room_ < 0) throw NotCarried("the file would be longer than 2,147,483,646 bytes");
    Bytes += bytes;
  }

  std::string Bytes;

 private:
  std::int64_t room_;
};

/// Objects keep their numbers and generations.
class KeptNumbers : public References {
 public:
  KeptNumbers(const std::vector<ObjectPlace>& places, const std::set<int>& written)
      : places_(places), written_(written) {}

  [[nodiscard]] int NumberOf(const QPDFObjectHandle& object) const override { return object.getObjectID(); }
  [[nodiscard]] int GenerationOf(const QPDFObjectHandle& object) const override {
    return object.getGeneration();
  }

  /// Does not read the object.
  [[nodiscard]] bool IsNull(const QPDFObjectHandle& value) const override {
    if (!value.isIndirect()) return QPDFObjectHandle(value).isNull();
    const auto number = static_cast<std::size_t>(value.getObjectID());
    if (written_.count(value.getObjectID()) != 0) return false;
    return number >= places_.size() || places_[number].Offset < 0 ||
           places_[number].Generation != value.getGeneration();
  }

 private:
  const std::vector<ObjectPlace>& places_;
  const std::set<int>& written_;
};

ObjectName NameOf(const QPDFObjectHandle& object) {
  return {object.getObjectID(), object.getGeneration()};
}

class Appending {
 public:
  Appending(Revision& revision, std::int64_t length)
      : revision_(revision),
        places_(PlacesOf(revision.File())),
        numbers_(places_, revision.Written()),
        sink_(length),
        serialiser_(sink_, numbers_, length) {}

  std::string Run() {
    const int highest = std::max(static_cast<int>(places_.size()) - 1, *revision_.Written().rbegin());
    if (highest >= kMostObjects) {
      throw NotCarried("the file would have more than " + std::to_string(kMostObjects) + " object numbers");
    }
    for (std::size_t i = 1; i < places_.size(); ++i) {
      const ObjectPlace& place = places_[i];
      if (place.Offset >= 0) serialiser_.SetOffset({static_cast<int>(i), place.Generation}, place.Offset);
    }
    for (const int number : revision_.Written()) WriteObject(number);
    Trailer trailer{NameOf(revision_.Catalog()), {}, {}};
    const QPDFObjectHandle information = revision_.Information();
    if (information.isInitialized()) trailer.Information = NameOf(information);
    serialiser_.WriteTableAndTrailer(trailer);
    return std::move(sink_.Bytes);
  }

 private:
  void WriteObject(int number) {
    const auto index = static_cast<std::size_t>(number);
    const bool isOld = index < places_.size() && places_[index].Offset >= 0;
    const ObjectName name{number, isOld ? places_[index].Generation : 0};
    QPDFObjectHandle object = revision_.File().getObjectByID(name.Number, name.Generation);
    if (!object.isStream()) return serialiser_.WriteObject(name, object);
    const auto bytes = object.getRawStreamData();
    serialiser_.WriteStream(name, object.getDict(),
                            {reinterpret_cast<const char*>(bytes->getBuffer()), bytes->getSize()});
  }

  Revision& revision_;
  std::vector<ObjectPlace> places_;
  KeptNumbers numbers_;
  MemorySink sink_;
  Serialiser serialiser_;
};

}  // namespace

std::vector<ObjectPlace> PlacesOf(QPDF& file) {
  std::vector<ObjectPlace> places;
  for (const auto& [object, entry] : file.getXRefTable()) {
    if (entry.getType() != 1 || object.getObj() <= 0) continue;
    const auto index = static_cast<std::size_t>(object.getObj());
    if (places.size() <= index) places.resize(index + 1);
    places[index] = {entry.getOffset(), object.getGen()};
  }
  return places;
}

std::string RevisionBytes(Revision& revision, std::int64_t length) {
  return Appending(revision, length).Run();
}

}  // namespace folioweld
