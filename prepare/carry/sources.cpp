#include "prepare/carry/sources.h"

namespace folioweld {

namespace {

constexpr int kDeepestValue = 100;

/// Makes values of a source those of the joined file.
class Rebasing {
 public:
  Rebasing(QPDF& file, const CarriedDocument& document) : file_(file), document_(document) {}

  QPDFObjectHandle DictionaryOf(QPDFObjectHandle dictionary, int depth) {
    QPDFObjectHandle result = QPDFObjectHandle::newDictionary();
    for (const auto& [key, value] : dictionary.getDictAsMap()) result.replaceKey(key, Of(value, depth + 1));
    return result;
  }

 private:
  QPDFObjectHandle Of(QPDFObjectHandle value, int depth) {
    if (depth > kDeepestValue) throw NotCarried("its catalog is too deep");
    if (value.isIndirect()) return Reference(value);
    if (value.isDictionary()) return DictionaryOf(value, depth);
    if (!value.isArray()) return value.shallowCopy();
    QPDFObjectHandle result = QPDFObjectHandle::newArray();
    for (const QPDFObjectHandle& item : value.getArrayAsVector()) result.appendItem(Of(item, depth + 1));
    return result;
  }

  /// One beyond the document's own objects leads nowhere there; here it would lead into the next document.
  QPDFObjectHandle Reference(const QPDFObjectHandle& object) {
    const int objects = document_.EndObject - document_.FirstObject;
    const int number = object.getObjectID();
    if (number <= 0 || number >= objects) return QPDFObjectHandle::newNull();
    return file_.getObjectByID(number + document_.FirstObject, object.getGeneration());
  }

  QPDF& file_;
  const CarriedDocument& document_;
};

}  // namespace

void ReadSource(QPDF& source, QPDF& file, CarriedDocument& document) {
  QPDFObjectHandle catalog = source.getTrailer().getKey("/Root");
  if (!catalog.isDictionary()) throw NotCarried("its catalog is no dictionary");
  QPDFObjectHandle rebased = Rebasing(file, document).DictionaryOf(catalog, 0);
  QPDFObjectHandle information = source.getTrailer().getKey("/Info");
  QPDFObjectHandle title;
  if (information.isDictionary()) title = information.getKey("/Title");
  if (title.isInitialized() && title.isString()) {
    document.Title = QPDFObjectHandle::newString(title.getStringValue());
  }
  document.Catalog = rebased;
}

}  // namespace folioweld
