#pragma once

#include <cstddef>
#include <map>
#include <qpdf/QPDFObjGen.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <vector>

#include "prepare/serialiser.h"

namespace folioweld {

/// Which objects of a document a copy holds, and under which numbers: what the roots lead to, in the order
/// that the document numbers it. A value that is referred to once and that nothing asks to be an object of
/// its own stands where it is referred to, and so does every number, name and logical value.
class ObjectPlan : public References {
 public:
  /// The object becomes one of its own, however often it is referred to.
  void KeepOwn(const QPDFObjectHandle& object);
  /// Goes through everything that the indirect objects lead to; to be called once.
  void Explore(const std::vector<QPDFObjectHandle>& roots);

  [[nodiscard]] int NumberOf(const QPDFObjectHandle& object) const override;
  /// The objects with a number: the first has 1.
  [[nodiscard]] const std::vector<QPDFObjectHandle>& Numbered() const { return numbered_; }

  /// Dictionaries that sign a range of the document's bytes.
  [[nodiscard]] std::size_t Signatures() const { return signatures_; }
  /// Objects of the document that stand where they are referred to.
  [[nodiscard]] std::size_t InPlace() const { return found_.size() - numbered_.size(); }

 private:
  struct Found {
    QPDFObjectHandle Object;
    std::size_t Referrer = 0;  ///< index of the first one; a root has itself
    std::size_t References = 0;
    bool Own = false;
    int Depth = 0;  ///< objects around it in whose place it stands
    int Number = kInPlace;
  };

  void Refer(const QPDFObjectHandle& object, std::size_t referrer);
  void Look(QPDFObjectHandle value, std::size_t referrer);
  void LookAtDictionary(QPDFObjectHandle dictionary, std::size_t referrer);
  void Place(Found& object);
  void GiveNumbers();

  std::vector<Found> found_;  ///< in the order of the first references
  std::map<QPDFObjGen, std::size_t> index_;
  std::map<QPDFObjGen, bool> own_;
  std::vector<QPDFObjectHandle> numbered_;
  std::size_t signatures_ = 0;
};

}  // namespace folioweld
