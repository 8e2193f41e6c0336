// Fields of a later document that are drawn by the form in its catalog, which the output does not have.

#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

constexpr int kDeepestField = 32;
constexpr std::int32_t kHiddenFlag = 2;
constexpr std::int32_t kRadioFlag = 1 << 15;
constexpr std::int32_t kPushButtonFlag = 1 << 16;
/// A default appearance names its font first, and is a line.
constexpr std::size_t kAppearanceStart = 1000;
/// Many buttons may refer to one dictionary, which is read for each. They take a line or two.
constexpr std::size_t kLongestCharacteristics = 1000;

/// What readers draw fields by.
struct Form {
  std::string DefaultAppearance;
  std::set<std::string> Fonts;
  bool NeedAppearances = false;  ///< fields are drawn anew, whatever they bring along
};

Form FormAt(const ReadInput& input, std::string_view value) {
  SeenDictionary dictionary = DictionaryAt(input, value);
  Form form{std::string(TextAt(input, dictionary.Value("/DA"))), {}, false};
  form.NeedAppearances = TextAt(input, dictionary.Value("/NeedAppearances")) == "true";
  SeenDictionary resources = DictionaryAt(input, dictionary.Value("/DR"));
  SeenDictionary fonts = DictionaryAt(input, resources.Value("/Font"));
  fonts.ForEachKey([&](std::string_view name) { form.Fonts.insert(PlainName(name)); });
  return form;
}

/// The name of the font in a default appearance such as "(/Helv 12 Tf 0 g)".
std::string_view FontOf(std::string_view appearance) {
  appearance = appearance.substr(0, kAppearanceStart);
  const std::size_t start = appearance.find('/');
  if (start == std::string_view::npos) return {};
  return appearance.substr(start, appearance.find_first_of(" \r\n\t()/", start + 1) - start);
}

bool IsText(std::string_view value) {
  return !value.empty() && value != "()" && value != "<>" && value != "[]";
}

bool IsHidden(ReadObject& widget) {
  const std::int32_t flags = FirstNumberOf(widget.Value("/F"));
  return flags >= 0 && (flags & kHiddenFlag) != 0;
}

/// Goes through the widgets of the document whose form is lost.
class FormCheck {
 public:
  FormCheck(const ReadInput& input, Form lost, Form kept)
      : input_(input),
        lost_(std::move(lost)),
        kept_(std::move(kept)),
        sameAppearance_(lost_.DefaultAppearance == kept_.DefaultAppearance) {}

  void Check(std::int32_t number) {
    ReadObject widget(input_, number);
    if (widget.Value("/Subtype") != "/Widget" || IsHidden(widget)) return;
    const std::string_view type = Inherited(number, &Field::Type);
    if (type != "/Tx" && type != "/Ch" && type != "/Btn") return;
    const bool hasAppearance = !widget.Value("/AP").empty();
    if (type == "/Btn" ? hasAppearance || !IsButtonDrawnOtherwise(number, widget)
                       : !IsTextDrawnOtherwise(number, hasAppearance)) {
      return;
    }
    NoteAlteration(input_.State, input_.Slot, AlterationKind::FieldsDrawnOtherwise, number);
  }

 private:
  struct Field {
    // As much of each as it takes to tell it from others.
    std::string Type;
    std::string Flags;
    std::string Value;
    std::string Appearance;
    std::int32_t Parent = -1;
  };

  [[nodiscard]] bool IsTextDrawnOtherwise(std::int32_t number, bool hasAppearance) {
    if (hasAppearance) return lost_.NeedAppearances != kept_.NeedAppearances;
    return IsText(Inherited(number, &Field::Value)) && !IsDrawnAlike(Inherited(number, &Field::Appearance));
  }

  /// Without an appearance of its own. Radio buttons are not drawn then.
  [[nodiscard]] bool IsButtonDrawnOtherwise(std::int32_t number, ReadObject& widget) {
    const std::string_view appearance = Inherited(number, &Field::Appearance);
    if (appearance.empty() && lost_.DefaultAppearance.empty()) return false;
    const std::int32_t flags = std::max(NumberOf(Inherited(number, &Field::Flags)), 0);
    if ((flags & kPushButtonFlag) != 0) {
      const std::string_view text = TrimBlanks(TextAt(input_, widget.Value("/MK")));
      if (text.size() > kLongestCharacteristics) return false;
      SeenDictionary characteristics(input_, text);
      return IsText(TextAt(input_, characteristics.Value("/CA"))) && !IsDrawnAlike(appearance);
    }
    // The tick in a box needs no font of the form.
    const std::string_view state = widget.Value("/AS");
    const bool isTicked = (flags & kRadioFlag) == 0 && !state.empty() && state != "/Off";
    return isTicked && appearance.empty() && !sameAppearance_;
  }

  /// By the first document's form, a field with this default appearance.
  [[nodiscard]] bool IsDrawnAlike(std::string_view appearance) const {
    if (appearance.empty() && !sameAppearance_) return false;
    return kept_.Fonts.count(PlainName(FontOf(appearance.empty() ? lost_.DefaultAppearance : appearance))) >
           0;
  }

  /// What the field gives, or one above it.
  [[nodiscard]] std::string_view Inherited(std::int32_t number, std::string Field::*entry) {
    for (int depth = 0; number >= 0 && depth < kDeepestField; ++depth) {
      const Field& field = FieldAt(number);
      if (!(field.*entry).empty()) return field.*entry;
      number = field.Parent;
    }
    return {};
  }

  /// Looked up once, however many fields are below.
  [[nodiscard]] const Field& FieldAt(std::int32_t number) {
    const auto [found, added] = fields_.try_emplace(number);
    if (added) {
      ReadObject object(input_, number);
      const auto start = [&](const char* key, std::size_t size) {
        return std::string(TextAt(input_, object.Value(key)).substr(0, size));
      };
      found->second = {std::string(object.Value("/FT").substr(0, 4)), start("/Ff", kMostDigits),
                       start("/V", 3), start("/DA", kAppearanceStart),
                       ReferencedNumber(object.Value("/Parent"))};
    }
    return found->second;
  }

  const ReadInput& input_;
  Form lost_;
  Form kept_;
  bool sameAppearance_;
  std::unordered_map<std::int32_t, Field> fields_;
};

}  // namespace

void CheckForm(const ReadInput& input, std::string_view form, const ReadInput& first,
               std::string_view firstForm, MergeShell& shell) {
  if (form.empty()) return;
  FormCheck check(input, FormAt(input, form), FormAt(first, firstForm));
  // The other documents of the file had their catalogs in an earlier step.
  const auto& sources = SourcesOf(input.State, input.Slot);
  const std::int32_t end =
      sources.size() > 1 ? sources[1].FirstObject : input.State.DocObjectCount(input.Slot);
  for (std::int32_t number = 0; number < end; ++number) {
    if (YieldAndCheckAbort(shell, input.State)) throw RuleBroken({input.Slot, number, -1, kCancelled});
    check.Check(number);
  }
}

}  // namespace folioweld
