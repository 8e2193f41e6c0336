#include "prepare/prepared_copy.h"

#include "prepare/libqpdf.h"
#include "prepare/losses.h"
#include "prepare/not_prepared.h"
#include "prepare/object_plan.h"
#include "prepare/page_tree.h"
#include "prepare/serialiser.h"

namespace folioweld {

namespace {

/// More are never read.
constexpr std::size_t kMostObjects = 349'999;
constexpr std::size_t kLongestIdentifier = 64;
constexpr std::size_t kMostRepairsTold = 10;

class Copying {
 public:
  Copying(QPDF& document, ByteSink& sink) : document_(document), serialiser_(sink, plan_) {}

  CopyReport Run() {
    PageTree pages = SetPageTreeRight(document_);
    report_.Repaired = std::move(pages.Repairs);
    for (const QPDFObjectHandle& node : pages.Nodes) plan_.KeepOwn(node);
    const QPDFObjectHandle information = TakeInformation();
    plan_.Explore(document_.getRoot(), information);
    if (plan_.Numbered().size() > kMostObjects) throw NotPrepared("it has more than 349,999 objects");
    WriteObjects();
    Trailer trailer{{plan_.NumberOf(document_.getRoot())}, {}, Identifiers()};
    if (information.isInitialized()) trailer.Information.Number = static_cast<int>(plan_.Numbered().size());
    serialiser_.WriteTableAndTrailer(trailer);
    report_.Done.push_back(std::to_string(plan_.Numbered().size()) + " objects written, " +
                           std::to_string(plan_.InPlace()) + " put where they were referred to");
    report_.Lost = Losses(document_, plan_.Signatures());
    TellRepairs();
    return std::move(report_);
  }

 private:
  /// A copy that nothing else refers to, which the engine can replace without replacing anything else.
  QPDFObjectHandle TakeInformation() {
    QPDFObjectHandle information = document_.getTrailer().getKey("/Info");
    if (information.isNull()) return {};
    QPDFObjectHandle type = information.isDictionary() ? information.getKey("/Type") : QPDFObjectHandle();
    if (!type.isInitialized() || !(type.isNull() || type.isNameAndEquals("/Info"))) {
      report_.Repaired.push_back("/Info, which names no information dictionary, was left out");
      return {};
    }
    return information.shallowCopy();
  }

  void WriteObjects() {
    serialiser_.WriteHeader(VersionOf(document_));
    int number = 0;
    for (QPDFObjectHandle object : plan_.Numbered()) {
      ++number;
      if (object.isStream()) {
        WriteStream(number, object);
      } else {
        serialiser_.WriteObject({number}, object);
      }
    }
  }

  void WriteStream(int number, QPDFObjectHandle stream) {
    QPDFObjectHandle dictionary = stream.getDict();
    if (document_.isEncrypted()) dictionary = WithoutCryptFilters(dictionary.shallowCopy());
    const auto bytes = stream.getRawStreamData();
    serialiser_.WriteStream({number}, dictionary,
                            {reinterpret_cast<const char*>(bytes->getBuffer()), bytes->getSize()});
  }

  [[nodiscard]] std::vector<std::string> Identifiers() {
    std::vector<std::string> identifiers;
    QPDFObjectHandle id = document_.getTrailer().getKey("/ID");
    if (!id.isArray() || id.getArrayNItems() != 2) return {};
    for (QPDFObjectHandle part : id.getArrayAsVector()) {
      if (!part.isString() || part.getStringValue().size() > kLongestIdentifier) return {};
      identifiers.push_back(part.getStringValue());
    }
    return identifiers;
  }

  void TellRepairs() {
    for (const QPDFExc& warning : document_.getWarnings()) {
      const std::string words = Words(warning);
      // libqpdf reads some objects twice.
      if (!report_.Repaired.empty() && report_.Repaired.back() == words) continue;
      report_.Repaired.push_back(words);
    }
    const std::size_t found = report_.Repaired.size();
    if (found <= kMostRepairsTold) return;
    report_.Repaired.resize(kMostRepairsTold);
    report_.Repaired.push_back("and " + std::to_string(found - kMostRepairsTold) + " places more");
  }

  QPDF& document_;
  ObjectPlan plan_;
  Serialiser serialiser_;
  CopyReport report_;
};

}  // namespace

CopyReport WriteCopy(QPDF& document, ByteSink& sink) {
  return Copying(document, sink).Run();
}

}  // namespace folioweld
