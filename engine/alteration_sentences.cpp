// The words for alterations.

#include "engine/alteration.h"
#include "engine/pass_failure.h"

namespace folioweld {

namespace {

const char* Words(AlterationKind kind) {
  switch (kind) {
    case AlterationKind::Encrypted:
      return "is encrypted: its pages will not be readable in the output";
    case AlterationKind::InformationShared:
      return "/Info names an object that is more than an information dictionary, and the output has one in "
             "its place";
    case AlterationKind::PageCountWrong:
      return "/Count is not the number of pages that /Kids lead to, and pages of other documents can be "
             "missing for it";
    case AlterationKind::PageTreeRepeated:
      return "/Kids lead to an object that the page tree has led to before, and pages of other documents can "
             "be missing for it";
    case AlterationKind::PageTreeIncomplete:
      return "/Kids lead to an object that is no page, and pages of other documents can be missing for it";
    case AlterationKind::PageTreeHasParent:
      return "the root of the page tree has a /Parent already, and gets a second one";
    case AlterationKind::StartXrefDisputed:
      return "two \"startxref\" stand at the end of the file, and other programs take the last one";
    case AlterationKind::TrailerReadOtherwise:
      return "other programs read another value in the trailer";
    case AlterationKind::HybridPartLost:
      return "what only the cross-reference stream of its trailer lists is not in the output";
    case AlterationKind::KeyRepeated:
      return "a key is given twice, and programs differ in which one they take";
    case AlterationKind::LayersShown:
      return "layers that its catalog hides are shown";
    case AlterationKind::OutputIntentLost:
      return "the printing condition of its catalog is lost, and colours can look otherwise";
    case AlterationKind::FieldsDrawnOtherwise:
      return "a field is drawn by the form in its catalog, which is lost, and can look otherwise or empty";
    case AlterationKind::NotCarriedOver:
      return "not wholly carried over";
    case AlterationKind::StreamEndsElsewhere:
      return "\"endstream\" does not stand where the stream's /Length says: other programs look for it, and "
             "the output has what /Length says";
    case AlterationKind::StringLosesBytes:
      return "a string over several lines loses the blanks before their ends and its empty lines";
    case AlterationKind::ReferenceNotSeen:
      return "a reference with a tab, a form feed, a NUL, a comment or more than ten digits keeps its "
             "number, and leads to an object of another document";
    case AlterationKind::ReferenceToLater:
      return "a reference to an object that the document does not have leads to one of a later document";
    case AlterationKind::ReferenceToFiller:
      return "a reference to object 0, which is never one, leads to an object of the output";
    case AlterationKind::GenerationChanged:
      return "the object's header gives another generation than the cross-reference table, and the output "
             "has that of the table";
    case AlterationKind::ObjectLeftOut:
      return "the object is in use, but with the generation 65535 of free ones, and is not in the output";
    case AlterationKind::ObjectCutShort:
      return "\"endobj\" or \"stream\" at a line's end within a string, a comment or a name ends the object "
             "there";
  }
  return "";
}

}  // namespace

std::string Sentence(const Alteration& alteration, const std::string& documentName) {
  if (alteration.Kind == AlterationKind::Encrypted) {
    return "\"" + documentName + "\" " + Words(alteration.Kind);
  }
  std::string words = Words(alteration.Kind);
  if (!alteration.Detail.empty()) words += " (" + alteration.Detail + ")";
  if (alteration.Count > 1)
    words += std::string(", ") + "the first of " + std::to_string(alteration.Count) + " such places";
  return PassFailure{1, alteration.ObjectNumber, alteration.FileOffset, words}.Sentence(documentName);
}

std::string ShownPiece(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  std::string shown(text.substr(0, kLongest));
  for (char& c : shown) {
    if (c < ' ' || c > '~') c = '?';
  }
  return text.size() > kLongest ? shown + "..." : shown;
}

}  // namespace folioweld
