#include "prepare/carry/forms.h"

#include <optional>
#include <string>
#include <vector>

#include "prepare/carry/forms_actions.h"
#include "prepare/carry/forms_excluded.h"
#include "prepare/carry/forms_fonts.h"
#include "prepare/carry/forms_looks.h"
#include "prepare/carry/forms_names.h"
#include "prepare/carry/forms_read.h"

namespace folioweld {

namespace {

using Handles = std::vector<QPDFObjectHandle>;

/// Of /SigFlags. Its other flag lets programs only append to a file, which saves valid signatures alone.
constexpr long long kSignaturesExist = 1;

class MergedForm {
 public:
  explicit MergedForm(Revision& revision) : revision_(revision), names_(revision), resources_(revision) {
    for (const CarriedDocument& document : revision.Documents()) {
      mayHaveLaterForm_ |= document.Index > 1 && EntryOf(document.Catalog, "/AcroForm").isDictionary();
    }
  }

  /// Looks at all that can be wrong before it changes anything.
  void Add(CarriedDocument& document) {
    QPDFObjectHandle form = document.Catalog.getKey("/AcroForm");
    if (form.isNull()) return;
    if (!form.isDictionary()) throw NotCarried("its form is no dictionary");
    const DocumentForm read = ReadForm(revision_, document, form);
    const NewNames names = names_.Plan(read.Named, document.Index);
    const NewNames fonts = resources_.Plan(form, document.Index);
    std::optional<FieldMentions> mentions;
    if (mayHaveLaterForm_) mentions.emplace(revision_, document, names);
    // The first form has what there is one of.
    QPDFObjectHandle merged = merged_.isInitialized() ? merged_ : form.shallowCopy();
    const std::vector<NewEntry> looks = EntriesForLooks(revision_, read, fonts, merged);
    const Handles order = OrderOf(document, form);
    std::vector<ConfinedActions> confined;
    if (mentions) confined = ConfinedOf(*mentions, read);

    merged_ = merged;
    names_.Take(read.Named, names);
    if (mentions) TakeMentions(document, *mentions, !names.empty());
    confined_.insert(confined_.end(), confined.begin(), confined.end());
    allFields_.insert(allFields_.end(), read.Fields.begin(), read.Fields.end());
    resources_.Take(form, fonts);
    for (const NewEntry& entry : looks) {
      QPDFObjectHandle field = entry.Field;
      field.replaceKey(entry.Key, entry.Value);
      // One that is none is written with the new form.
      if (field.isIndirect()) revision_.Change(field);
    }
    fields_.insert(fields_.end(), read.Roots.begin(), read.Roots.end());
    order_.insert(order_.end(), order.begin(), order.end());
    TakeFlags(document, read);
    if (read.IsSigned) revision_.TellLost(document, "signatures", "its signatures are no longer valid");
    if (document.Index == 1) firstFields_ = read.Roots.size();
  }

  void Finish() {
    if (!hasLaterForm_) return;
    Set("/Fields", QPDFObjectHandle::newArray(fields_));
    if (!order_.empty()) Set("/CO", QPDFObjectHandle::newArray(order_));
    if (!resources_.Merged().getKeys().empty()) Set("/DR", resources_.Merged());
    Set("/NeedAppearances", QPDFObjectHandle::newBool(!asking_.empty()));
    if (!asking_.empty()) TellDrawnAnew();
    if (merged_.hasKey("/SigFlags") || signaturesExist_ != 0)
      Set("/SigFlags", QPDFObjectHandle::newInteger(signaturesExist_));
    DropOtherForms();
    ConfineActions();
    revision_.Catalog().replaceKey("/AcroForm", revision_.Add(merged_));
  }

 private:
  /// Actions that would reach the fields of other documents.
  struct ConfinedActions {
    std::vector<Place> Actions;
    Handles Fields;     ///< that they are for
    std::size_t Roots;  ///< fields of their document, without those below others
  };

  std::vector<ConfinedActions> ConfinedOf(const FieldMentions& mentions, const DocumentForm& read) {
    std::vector<ConfinedActions> confined = {{mentions.OnAllFields(), read.Roots, read.Roots.size()}};
    for (const Place& action : mentions.OnAllBut()) {
      const Handles fields = FieldsBut(revision_, read, EntryOf(action.Dictionary, "/Fields"));
      confined.push_back({{action}, fields, read.Roots.size()});
    }
    return confined;
  }

  /// The fields that are calculated.
  Handles OrderOf(const CarriedDocument& document, QPDFObjectHandle form) {
    Handles order;
    for (const QPDFObjectHandle& field : ItemsOf(revision_, form.getKey("/CO"))) {
      if (document.Has(field)) order.push_back(field);
    }
    return order;
  }

  void TakeMentions(const CarriedDocument& document, FieldMentions& mentions, bool areRenamed) {
    mentions.Rename();
    if (!areRenamed) return;
    if (mentions.HasScripts())
      revision_.TellLost(document, "scripts", "they may use the old names of renamed fields");
    if (mentions.HasExchange())
      revision_.TellLost(document, "names", "its renamed fields are sent and imported by their new names");
  }

  void TakeFlags(const CarriedDocument& document, const DocumentForm& read) {
    QPDFObjectHandle form = read.Form;
    hasLaterForm_ = hasLaterForm_ || document.Index > 1;
    bool isNeeded = false;
    const bool isAsked = form.getKey("/NeedAppearances").getValueAsBool(isNeeded) && isNeeded;
    // The fields of all documents are drawn anew then; without it, old values would be shown.
    if (!read.Roots.empty()) (isAsked ? asking_ : notAsking_).push_back(&document);
    long long flags = 0;
    if (form.getKey("/SigFlags").getValueAsInt(flags)) signaturesExist_ |= flags & kSignaturesExist;
    if (form.hasKey("/XFA")) withOtherForm_.push_back(&document);
  }

  void TellDrawnAnew() {
    for (const CarriedDocument* document : notAsking_) {
      revision_.TellLost(*document, "looks",
                         "its fields are drawn anew, as the form of document " +
                             std::to_string(asking_.front()->Index) + " asks for that");
    }
  }

  /// What resets or sends all fields of its document does not do so with those of others. Where there are
  /// none, all of the file are left out: some readers take an empty list for none.
  void ConfineActions() {
    QPDFObjectHandle all;
    for (const auto& [actions, fields, roots] : confined_) {
      if (actions.empty() || roots == fields_.size()) continue;
      if (fields.empty()) {
        if (!all.isInitialized()) all = revision_.Add(QPDFObjectHandle::newArray(allFields_));
        Confine(revision_, actions, all, Listed::LeftOut);
      } else {
        Confine(revision_, actions, revision_.Add(QPDFObjectHandle::newArray(fields)), Listed::Alone);
      }
    }
  }

  /// An XFA form is shown in the place of all pages, so only the first document may keep its one, and only
  /// where there are no other fields.
  void DropOtherForms() {
    const bool isFirstKept = fields_.size() == firstFields_;
    bool isKept = false;
    for (const CarriedDocument* document : withOtherForm_) {
      if (document->Index == 1 && isFirstKept) {
        isKept = true;
      } else {
        revision_.TellLost(*document, "form", "its XFA form is left out");
      }
    }
    if (isKept) return;
    merged_.removeKey("/XFA");
    revision_.Catalog().removeKey("/NeedsRendering");
  }

  void Set(const std::string& key, const QPDFObjectHandle& value) { merged_.replaceKey(key, value); }

  Revision& revision_;
  FieldNames names_;
  DefaultResources resources_;
  QPDFObjectHandle merged_;  ///< not initialised before the first form
  Handles fields_;
  Handles order_;
  Handles allFields_;  ///< and those below them
  std::vector<ConfinedActions> confined_;
  std::size_t firstFields_ = 0;  ///< of the first document
  long long signaturesExist_ = 0;
  // Documents with fields: those whose form has readers draw the fields anew, and the others.
  std::vector<const CarriedDocument*> asking_;
  std::vector<const CarriedDocument*> notAsking_;
  bool mayHaveLaterForm_ = false;
  bool hasLaterForm_ = false;
  std::vector<const CarriedDocument*> withOtherForm_;
};

}  // namespace

void CarryForms(Revision& revision) {
  MergedForm merged(revision);
  revision.ForEach("form", [&](CarriedDocument& document) { merged.Add(document); });
  merged.Finish();
}

}  // namespace folioweld
