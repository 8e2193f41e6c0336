// Output pass #3 of PdfBuilder: one page tree, one catalog, the trailer.

#include "engine/entry_walk.h"
#include "engine/lexer.h"
#include "engine/pass_guard.h"
#include "engine/pdf_builder.h"

namespace folioweld {

namespace {

/// The dates are fixed on purpose: the same inputs always give the same output.
constexpr char kInformationDictionary[] =
    "<<\r/CreationDate (D:20080101010101)\r/ModDate (D:20080101010101)\r/Producer (Folioweld)\r>>\r";

std::string_view TrimDictionaryLine(std::string_view line) {
  return TrimRightBlanks(kLineEndSet.Trim(line));
}

struct Reference {
  std::int32_t Number = -1;
  std::int32_t Generation = -1;
};

std::string Text(std::int32_t value) {
  return std::to_string(value);
}

/// Works through the pass; a broken rule is raised.
class PagePasting {
 public:
  PagePasting(MergeState& state, PdfBuilder& builder, PdfReader& reader, MergeShell& shell)
      : state_(state), builder_(builder), reader_(reader), shell_(shell) {}

  void Run() {
    const std::int32_t catalog1 = CatalogSlot(1);
    const Reference pages1 = PagesOf(1, catalog1);
    state_.DocRootNumber(3) = state_.DocRootNumber(1);
    // A reference beyond the document's own objects leads nowhere there; here it would lead into the other
    // one.
    for (const std::int16_t slot : {std::int16_t{1}, std::int16_t{2}}) {
      const std::int32_t objects = slot == 1 ? state_.ObjectsInDoc1 : state_.ObjectsInDoc2;
      if (state_.DocInfoNumber(slot) >= objects) state_.DocInfoNumber(slot) = -1;
    }
    state_.DocInfoNumber(3) = state_.DocInfoNumber(1);
    MakeTrailer();
    ReplaceInformation(1);
    if (!state_.DocUsed(2)) return;

    const std::int32_t count1 = PageCount(1, pages1);
    const std::int32_t catalog2 = CatalogSlot(2);
    const Reference pages2 = PagesOf(2, catalog2);
    const std::int32_t count2 = PageCount(2, pages2);
    MakeRoot(catalog2, pages1, pages2, CheckedAdd(count1, count2));
    const std::string parent = " " + Text(catalog2) + " " + Text(state_.Objects[catalog2].Generation) + " R ";
    RedirectCatalog(catalog1, parent);
    Adopt(1, pages1.Number, parent);
    Adopt(2, pages2.Number, parent);
    ReplaceInformation(2);
  }

  /// All that is done to the pages of an input, in either place.
  void Try() {
    const std::int32_t catalog = CatalogSlot(1);
    const Reference pages = PagesOf(1, catalog);
    static_cast<void>(PageCount(1, pages));
    // The root stands in for a new one, so that the catalog keeps its pages.
    const std::string parent = " " + Text(pages.Number) + " " + Text(pages.Generation) + " R ";
    RedirectCatalog(catalog, parent);
    Adopt(1, pages.Number, parent);
  }

 private:
  [[noreturn]] void Fail(std::int16_t slot, std::int32_t index, std::string rule) const {
    const std::int32_t own = slot == 2 ? index - state_.ObjectsInDoc1 : index;
    // A dictionary that was not parsed because of a cancel looks like a broken one.
    throw RuleBroken({slot, own, -1, state_.AbortRequested ? kCancelled : std::move(rule)});
  }

  void CheckAbort(std::int16_t slot, std::int32_t index) const {
    if (YieldAndCheckAbort(shell_, state_)) Fail(slot, index, kCancelled);
  }

  [[nodiscard]] std::int32_t CatalogSlot(std::int16_t slot) const {
    const std::int32_t number = state_.DocRootNumber(slot);
    const std::int32_t objects = slot == 1 ? state_.ObjectsInDoc1 : state_.ObjectsInDoc2;
    if (number < 0) throw RuleBroken({slot, -1, -1, "the trailer names no catalog (/Root)"});
    if (number >= objects) throw RuleBroken({slot, number, -1, "the catalog (/Root) is not in the document"});
    return slot == 1 ? number : CheckedAdd(state_.ObjectsInDoc1, number);
  }

  [[nodiscard]] Reference PagesOf(std::int16_t slot, std::int32_t catalog) {
    Reference pages;
    if (!builder_.FindPagesReference(catalog, pages.Number, pages.Generation)) {
      Fail(slot, catalog,
           RootEndsALine(slot)
               ? "/Root ends a line of the trailer and its value stands on the next, which are "
                 "joined without a blank between them"
               : "the catalog has no page tree (/Pages)");
    }
    const std::int32_t first = slot == 1 ? 0 : state_.ObjectsInDoc1;
    const std::int32_t end = slot == 1 ? state_.ObjectsInDoc1 : state_.ObjectsTotal;
    if (pages.Number < first || pages.Number >= end) {
      Fail(slot, catalog, "the root of the page tree (/Pages) is not in the document");
    }
    return pages;
  }

  [[nodiscard]] std::string_view LastLineOf(std::int32_t index) const {
    return state_.ObjLines[state_.Objects[index].LastLine];
  }

  void SetLastLine(std::int32_t index, std::string_view text) {
    state_.ObjLines[state_.Objects[index].LastLine] = state_.Texts.Keep(text);
  }

  void MakeTrailer() {
    const std::int32_t root = state_.DocRootNumber(3);
    const std::int32_t info = state_.DocInfoNumber(3);
    // Without an information dictionary slot 0 stands in: a reference to a free object counts as absent.
    const std::int32_t infoSlot = info < 0 ? 0 : info;
    state_.OutputTrailerText = "trailer\r\n<< /Size " + Text(state_.ObjectsTotal) + "\r/Root " + Text(root) +
                               " " + Text(state_.Objects[root].Generation) + " R\r/Info " + Text(infoSlot) +
                               " " + Text(state_.Objects[infoSlot].Generation) + " R\r>>\r\nstartxref\r\n";
  }

  /// The second document's number becomes the one in the output.
  void ReplaceInformation(std::int16_t slot) {
    std::int32_t& number = state_.DocInfoNumber(slot);
    if (number <= 0) return;
    if (slot == 2) number = CheckedAdd(number, state_.ObjectsInDoc1);
    const ObjectEntry& entry = state_.Objects[number];
    if (entry.ObjNumber == number && entry.LastLine >= 0) SetLastLine(number, kInformationDictionary);
  }

  /// Whether /Root ends a line of one of the document's trailers, so that its number stands on the next one
  /// and is lost when the lines are joined.
  [[nodiscard]] bool RootEndsALine(std::int16_t slot) const {
    const std::int32_t second = state_.PageKidsLast < 0 ? state_.PageKidsCount : state_.PageKidsLast;
    const std::int32_t end = slot == 1 ? second : state_.PageKidsCount;
    for (std::int32_t i = slot == 1 ? 0 : second; i < end; ++i) {
      if (state_.PageKids[i].ends_with("/Root")) return true;
    }
    return false;
  }

  [[nodiscard]] std::int32_t PageCount(std::int16_t slot, const Reference& pages) {
    if (state_.Objects[pages.Number].LastLine < 0) {
      Fail(slot, pages.Number, "the root of the page tree is a free object");
    }
    EntryWalk walk(InnerText(TrimDictionaryLine(LastLineOf(pages.Number))).value_or(""));
    bool isDictionary = false;
    while (walk.Next()) {
      CheckAbort(slot, pages.Number);
      isDictionary = true;
      if (walk.Key() != "/Count") continue;
      std::string room;
      const std::int32_t count = builder_.ResolveIntegerValue(walk.Value(room));
      if (count < 0) Fail(slot, pages.Number, "the page tree's /Count is no number of 0 or more");
      return count;
    }
    Fail(slot, pages.Number,
         isDictionary ? "the root of the page tree has no /Count"
                      : "the root of the page tree is no dictionary");
  }

  /// The second catalog's slot becomes the new root, so that no object has to be added.
  void MakeRoot(std::int32_t index, const Reference& pages1, const Reference& pages2, std::int32_t count) {
    SetLastLine(index, "<<\r/Type /Pages /Kids [ " + Text(pages1.Number) + " " + Text(pages1.Generation) +
                           " R " + Text(pages2.Number) + " " + Text(pages2.Generation) + " R ] /Count " +
                           Text(count) + "\r>>\r");
    state_.Objects[index].ObjState = kWithoutStream;
    state_.Objects[index].ObjAux = -1;
  }

  void RedirectCatalog(std::int32_t catalog, const std::string& root) {
    std::int32_t first = -1;
    reader_.ParseDictionary(TrimDictionaryLine(LastLineOf(catalog)), 1, first);
    for (std::int32_t row = first; row >= 1; row = state_.NameEntries[row].NameId) {
      CheckAbort(1, catalog);
      if (state_.NameEntries[row].NameText != "/Pages") continue;
      state_.NameEntries[row].NameValue = state_.Texts.Keep(root);
      state_.NameEntries[row].NameFlag = 0;
      break;
    }
    const std::string text = builder_.RebuildDictionaryText(first);
    if (text.empty()) Fail(1, catalog, "the catalog cannot be rewritten");
    SetLastLine(catalog, text);
  }

  /// Gives an old root its new parent; an old "/Parent" is not removed.
  void Adopt(std::int16_t slot, std::int32_t index, const std::string& parent) {
    const std::string_view line = TrimDictionaryLine(LastLineOf(index));
    const std::size_t end = line.rfind(">>");
    if (end == std::string_view::npos)
      Fail(slot, index, "the root of the page tree does not end with \">>\"");
    SetLastLine(index, std::string(line.substr(0, end)) + "/Parent" + parent + ">>\r");
  }

  MergeState& state_;
  PdfBuilder& builder_;
  PdfReader& reader_;
  MergeShell& shell_;
};

/// Beside one of these no space is needed.
constexpr CharacterSet kOpenSet{" \r\n/"};

bool EndsOpen(const std::string& text) {
  return !text.empty() && kOpenSet.Has(text.back());
}

bool BeginsOpen(std::string_view piece) {
  return !piece.empty() && kOpenSet.Has(piece.front());
}

void AppendPiece(std::string& text, std::string_view piece) {
  if (!EndsOpen(text) && !BeginsOpen(piece)) text += ' ';
  text += piece;
}

}  // namespace

bool PdfBuilder::PastePageCatalogs() {
  shell_.AppendStatusText(2, "Pass #3 of building output file:");
  shell_.AppendStatusText(2, " paste catalogs of pages together");
  PdfReader reader(state_, files_, shell_);
  const bool pasted = RunGuarded(state_, 1, [&] {
    PagePasting(state_, *this, reader, shell_).Run();
    return true;
  });
  if (pasted) shell_.AppendStatusText(2, state_.DocUsed(2) ? "   -> OK\r\n" : " -> OK \r\n");
  return pasted;
}

bool PdfBuilder::TryPageCatalog() {
  PdfReader reader(state_, files_, shell_);
  return RunGuarded(state_, 1, [&] {
    PagePasting(state_, *this, reader, shell_).Try();
    return true;
  });
}

bool PdfBuilder::FindPagesReference(std::int32_t catalogSlot, std::int32_t& number,
                                    std::int32_t& generation) {
  number = -1;
  generation = -1;
  if (catalogSlot < 0 || catalogSlot >= state_.ObjectsTotal) return false;
  const ObjectEntry& entry = state_.Objects[catalogSlot];
  if (entry.ObjNumber != catalogSlot || entry.LastLine < 0) return false;
  const auto value = FindValue(TrimDictionaryLine(state_.ObjLines[entry.LastLine]), "/Pages");
  if (!value) return false;
  // The value itself has to be the reference. One from inside a page tree that stands in the catalog would
  // lead to a part of the pages, and the others would be lost.
  NumberPair pages;
  if (!ReadNumberPair(*value, 0, kReferenceKeyword, pages)) return false;
  number = pages.Number;
  generation = pages.Generation;
  return true;
}

std::int32_t PdfBuilder::ResolveIntegerValue(std::string_view text) const {
  const std::string_view trimmed = TrimBlanks(text);
  const std::int32_t value = NumberOf(trimmed);
  if (value >= 0) return value;
  NumberPair found;
  if (!FindReference(trimmed, 0, kReferenceKeyword, found) || found.Number >= state_.ObjectsTotal) return -1;
  return NumberOf(state_.Objects[found.Number].ValueText);
}

std::string PdfBuilder::RebuildDictionaryText(std::int32_t firstRow) {
  std::string text;
  return AppendDictionary(firstRow, text) ? text : std::string();
}

/// Into one text for all nested dictionaries: handing the text of each on to the one around it would copy it
/// a hundred times, with nobody looking at the user's wishes meanwhile.
bool PdfBuilder::AppendDictionary(std::int32_t firstRow, std::string& text) {
  if (firstRow < 0 || firstRow >= state_.NameEntryCount) return true;
  text += "<<\r";
  for (std::int32_t row = firstRow; row >= 1; row = state_.NameEntries[row].NameId) {
    if (YieldAndCheckAbort(shell_, state_)) return false;
    const NameEntry& entry = state_.NameEntries[row];
    AppendPiece(text, entry.NameText);
    AppendPiece(text, entry.NameFlag != 0 ? std::string_view() : entry.NameValue);
    if (entry.NameFlag != 0 && !AppendDictionary(entry.NameRef, text)) return false;
  }
  text += "\r>>";
  return true;
}

}  // namespace folioweld
