// Fields of a later document that are drawn by the form in its catalog, which the output does not have.

#include "engine/alteration.h"
#include "engine/alteration_checks.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

constexpr int kDeepestField = 32;
constexpr std::int32_t kHiddenFlag = 2;

/// What readers draw fields by.
struct Form {
  std::string_view DefaultAppearance;
  std::int32_t Fonts = -1;       ///< row of the dictionary
  bool NeedAppearances = false;  ///< fields are drawn anew, whatever they bring along
};

Form FormAt(const ReadInput& input, std::string_view value) {
  const MergeState& state = input.State;
  const std::int32_t row = DictionaryAt(input, value);
  const std::int32_t resources = DictionaryAt(input, ValueOf(state, row, "/DR"));
  return {TextAt(input, ValueOf(state, row, "/DA")), DictionaryAt(input, ValueOf(state, resources, "/Font")),
          TextAt(input, ValueOf(state, row, "/NeedAppearances")) == "true"};
}

/// The name of the font in a default appearance such as "(/Helv 12 Tf 0 g)".
std::string_view FontOf(std::string_view appearance) {
  const std::size_t start = appearance.find('/');
  if (start == std::string_view::npos) return {};
  return appearance.substr(start, appearance.find_first_of(" \r\n\t()/", start + 1) - start);
}

/// The value of a field's key, its own or that of a field above it.
std::string_view Inherited(const ReadInput& input, std::int32_t number, std::string_view key) {
  for (int depth = 0; number >= 0 && depth < kDeepestField; ++depth) {
    const ReadObject field(input, number);
    const std::string_view value = field.Value(key);
    if (!value.empty()) return value;
    number = ReferencedNumber(field.Value("/Parent"));
  }
  return {};
}

bool IsHidden(const ReadObject& widget) {
  const std::int32_t flags = FirstNumberOf(widget.Value("/F"));
  return flags >= 0 && (flags & kHiddenFlag) != 0;
}

bool IsText(std::string_view value) {
  return !value.empty() && value != "()" && value != "<>" && value != "[]";
}

/// Whether a field that brings no appearance along is drawn alike by the first document's form.
bool IsDrawnAlike(const ReadInput& first, const Form& other, std::string_view ownAppearance,
                  const Form& form) {
  const bool isOwn = !ownAppearance.empty();
  if (!isOwn && form.DefaultAppearance != other.DefaultAppearance) return false;
  const std::string_view font = FontOf(isOwn ? ownAppearance : form.DefaultAppearance);
  return !font.empty() && !ValueOf(first.State, other.Fonts, font).empty();
}

}  // namespace

void CheckForm(const ReadInput& input, std::string_view form, const ReadInput& first,
               std::string_view firstForm, MergeShell& shell) {
  if (form.empty()) return;
  const Form lost = FormAt(input, form);
  const Form kept = FormAt(first, firstForm);
  const auto& sources = SourcesOf(input.State, input.Slot);
  const std::int32_t end =
      sources.size() > 1 ? sources[1].FirstObject : input.State.DocObjectCount(input.Slot);
  for (std::int32_t number = 0; number < end; ++number) {
    if (YieldAndCheckAbort(shell, input.State)) throw RuleBroken({input.Slot, number, -1, kCancelled});
    const ReadObject widget(input, number);
    if (!widget.IsDictionary() || widget.Value("/Subtype") != "/Widget") continue;
    if (IsHidden(widget)) continue;
    const std::string_view type = Inherited(input, number, "/FT");
    if (type != "/Tx" && type != "/Ch") continue;
    const bool differs =
        widget.Value("/AP").empty()
            ? IsText(TextAt(input, Inherited(input, number, "/V"))) &&
                  !IsDrawnAlike(first, kept, TextAt(input, Inherited(input, number, "/DA")), lost)
            : lost.NeedAppearances != kept.NeedAppearances;
    if (differs) NoteAlteration(input.State, input.Slot, AlterationKind::FieldsDrawnOtherwise, number);
  }
}

}  // namespace folioweld
