#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "prepare/libqpdf.h"
#include "prepare/serialiser.h"

namespace folioweld {

/// Which objects of a document a copy holds, and under which numbers: what the roots lead to, in the order
/// that the document numbers it. A value that is referred to once and that nothing asks to be an object of
/// its own stands where it is referred to, and so does every number, name and logical value.
class ObjectPlan : public References {
 public:
  /// The object becomes one of its own, however often it is referred to.
  void KeepOwn(const QPDFObjectHandle& object);
  /// Goes through everything that the two lead to; to be called once. The catalog is an indirect object, the
  /// information dictionary a direct one that becomes the last object, or nothing.
  void Explore(const QPDFObjectHandle& catalog, const QPDFObjectHandle& information);

  [[nodiscard]] int NumberOf(const QPDFObjectHandle& object) const override;
  /// The objects with a number: the first has 1.
  [[nodiscard]] const std::vector<QPDFObjectHandle>& Numbered() const { return numbered_; }

  /// Dictionaries that sign a range of the document's bytes.
  [[nodiscard]] std::size_t Signatures() const { return signatures_; }
  /// Objects of the document that stand where they are referred to.
  [[nodiscard]] std::size_t InPlace() const;

 private:
  struct Found {
    QPDFObjectHandle Object;
    std::size_t Referrer = 0;  ///< index of the first one; the catalog has itself
    std::size_t References = 0;
    bool Own = false;
    int Depth = 0;  ///< objects that it stands in
    int Number = kInPlace;
  };

  void Refer(const QPDFObjectHandle& object, std::size_t referrer);
  void Look(QPDFObjectHandle value, std::size_t referrer);
  void LookAtDictionary(QPDFObjectHandle dictionary, std::size_t referrer);
  void PlaceAll(bool annotationsToo);
  [[nodiscard]] bool IsOwn(const Found& object, bool annotationsToo) const;
  void GiveNumbers(const QPDFObjectHandle& information);

  std::vector<Found> found_;  ///< in the order of the first references
  std::map<QPDFObjGen, std::size_t> index_;
  std::set<QPDFObjGen> own_;
  std::vector<QPDFObjectHandle> numbered_;
  std::size_t signatures_ = 0;
};

}  // namespace folioweld
