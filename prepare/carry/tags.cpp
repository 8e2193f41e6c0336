#include "prepare/carry/tags.h"

#include <algorithm>
#include <climits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "prepare/carry/name_tree.h"
#include "prepare/carry/name_tree_new.h"
#include "prepare/carry/tags_maps.h"
#include "prepare/carry/tags_numbers.h"

namespace folioweld {

namespace {

constexpr char kTagsPart[] = "tags";
const std::string kTreeOfNumbers = "the tree of the numbers of its structure elements ";
constexpr char kRoot[] = "/StructTreeRoot";

/// The items of an array, or the only one where there is no array.
std::vector<QPDFObjectHandle> KidsOf(QPDFObjectHandle value) {
  if (value.isArray()) return value.getArrayAsVector();
  if (value.isNull()) return {};
  return {value};
}

void Append(std::vector<QPDFObjectHandle>& items, const std::vector<QPDFObjectHandle>& more) {
  items.insert(items.end(), more.begin(), more.end());
}

/// A document's tree by number, and what is added to each number in the joined file.
struct NumberedTags {
  std::map<int, QPDFObjectHandle> Parents;
  std::string Flaw;  ///< of the tree
  int Offset = 0;
};

class Tags {
 public:
  explicit Tags(Revision& revision) : revision_(revision) {}

  void Run() {
    revision_.ForEach(kTagsPart, [&](const CarriedDocument& document) { Number(document); });
    revision_.ForEach(kTagsPart, [&](const CarriedDocument& document) { Take(document); });
    if (!laterElements_.empty()) Write();
  }

 private:
  QPDFObjectHandle RootOf(const CarriedDocument& document) {
    return EntryOf(CatalogOf(revision_, document), kRoot);
  }

  /// Gives a later document numbers that no document before it has.
  void Number(const CarriedDocument& document) {
    if (document.Index > 1 && numbered_.count(1) == 0) {
      if (!RootOf(document).isNull()) throw NotCarried("the tags in the first document cannot be read");
      return;
    }
    QPDFObjectHandle tree = EntryOf(RootOf(document), "/ParentTree");
    TreeValues<int> parents = ReadNumberTree(revision_, document, tree);
    const std::vector<TagNumber> numbers = FindTagNumbers(revision_, document);
    long long end = parents.Values.empty() ? 0 : parents.Values.rbegin()->first + 1LL;
    for (const TagNumber& number : numbers) end = std::max(end, number.Number + 1LL);
    if (end + next_ > INT_MAX) throw NotCarried("its structure tree has numbers that are too high");
    for (const TagNumber& number : numbers) {
      if (next_ == 0) break;
      SetEntry(revision_, number.Where, number.Key, QPDFObjectHandle::newInteger(number.Number + next_));
    }
    const std::string flaw = tree.isNull() && !numbers.empty() ? "is missing" : parents.Flaw;
    numbered_[document.Index] = {std::move(parents.Values), flaw, next_};
    next_ += static_cast<int>(end);
  }

  void Take(const CarriedDocument& document) {
    const auto numbered = numbered_.find(document.Index);
    QPDFObjectHandle root = RootOf(document);
    if (numbered == numbered_.end() || !root.isDictionary()) return;
    const std::vector<QPDFObjectHandle> top = KidsOf(root.getKey("/K"));
    if (document.Index > 1) CheckLater(numbered->second, top);
    NameMap roles = roles_;
    NameMap classes = classes_;
    const auto newRoles = MergeMap(revision_, roles, root.getKey("/RoleMap"), document.Index);
    const auto newClasses = MergeMap(revision_, classes, root.getKey("/ClassMap"), document.Index);
    std::vector<Place> changed;
    if (!newRoles.empty() || !newClasses.empty()) changed = ElementsOf(revision_, document, top);
    TakeIdentifiers(document, ReadNameTree(revision_, document, root.getKey("/IDTree")));
    RenameInElements(revision_, changed, newRoles, newClasses);
    roles_ = std::move(roles);
    classes_ = std::move(classes);
    for (auto& [key, items] : lists_) Append(items, KidsOf(root.getKey(key)));
    const int offset = numbered->second.Offset;
    for (const auto& [number, parent] : numbered->second.Parents) parents_[number + offset] = parent;
    if (document.Index == 1) {
      firstElements_ = top;
    } else {
      TakeElements(document, top);
    }
  }

  static void CheckLater(const NumberedTags& numbers, const std::vector<QPDFObjectHandle>& top) {
    if (!numbers.Flaw.empty()) throw NotCarried(kTreeOfNumbers + numbers.Flaw);
    const bool areElements = std::all_of(top.begin(), top.end(), [](const QPDFObjectHandle& element) {
      return QPDFObjectHandle(element).isDictionary();
    });
    if (!areElements) throw NotCarried("the root of its structure tree has a kid that is no element");
  }

  void TakeIdentifiers(const CarriedDocument& document, const TreeValues<std::string>& own) {
    const bool isFree = std::none_of(own.Values.begin(), own.Values.end(),
                                     [&](const auto& value) { return identifiers_.count(value.first) > 0; });
    if (isFree) {
      identifiers_.insert(own.Values.begin(), own.Values.end());
    } else {
      revision_.TellLost(document, kTagsPart, "an earlier document has the same identifiers of elements");
    }
  }

  /// A language holds for all below it; the empty one says that it is not known.
  void TakeElements(const CarriedDocument& document, const std::vector<QPDFObjectHandle>& top) {
    QPDFObjectHandle fileLanguage = revision_.Catalog().getKey("/Lang");
    QPDFObjectHandle language = EntryOf(document.Catalog, "/Lang");
    if (!language.isString()) language = QPDFObjectHandle::newString("");
    const std::string before = fileLanguage.isString() ? fileLanguage.getStringValue() : std::string();
    for (const QPDFObjectHandle& kid : top) {
      QPDFObjectHandle element = kid;
      if (!element.isIndirect()) element = revision_.Add(element);
      const bool isOther = language.getStringValue() != before && !element.hasKey("/Lang");
      if (isOther) element.replaceKey("/Lang", language);
      laterElements_.push_back(element);
    }
  }

  /// The first document's root where it is an object, which its elements name as their parent.
  QPDFObjectHandle NewRoot() {
    QPDFObjectHandle root = EntryOf(revision_.Catalog(), kRoot);
    if (root.isIndirect() && root.isDictionary()) {
      revision_.Change(root);
      return root;
    }
    root = revision_.Add(root.isDictionary() ? root.shallowCopy() : QPDFObjectHandle::newDictionary());
    root.replaceKey("/Type", QPDFObjectHandle::newName(kRoot));
    revision_.Catalog().replaceKey(kRoot, root);
    return root;
  }

  void Write() {
    const std::string& flaw = numbered_[1].Flaw;
    if (!flaw.empty()) revision_.TellLost(revision_.Documents().front(), kTagsPart, kTreeOfNumbers + flaw);
    QPDFObjectHandle root = NewRoot();
    for (QPDFObjectHandle element : laterElements_) {
      element.replaceKey("/P", root);
      revision_.Change(element);
    }
    std::vector<QPDFObjectHandle> elements = firstElements_;
    Append(elements, laterElements_);
    root.replaceKey("/K", QPDFObjectHandle::newArray(elements));
    root.replaceKey("/ParentTree", NewNumberTree(revision_, parents_));
    root.replaceKey("/ParentTreeNextKey", QPDFObjectHandle::newInteger(next_));
    if (!identifiers_.empty()) root.replaceKey("/IDTree", NewNameTree(revision_, identifiers_));
    if (!roles_.empty()) root.replaceKey("/RoleMap", QPDFObjectHandle::newDictionary(roles_));
    if (!classes_.empty()) root.replaceKey("/ClassMap", QPDFObjectHandle::newDictionary(classes_));
    for (const auto& [key, items] : lists_) {
      if (!items.empty()) root.replaceKey(key, QPDFObjectHandle::newArray(items));
    }
  }

  Revision& revision_;
  std::map<int, NumberedTags> numbered_;  ///< by the document's index
  int next_ = 0;                          ///< number that nothing has yet
  std::vector<QPDFObjectHandle> firstElements_;
  std::vector<QPDFObjectHandle> laterElements_;
  std::map<int, QPDFObjectHandle> parents_;
  std::map<std::string, QPDFObjectHandle> identifiers_;
  NameMap roles_;
  NameMap classes_;
  /// What the root has lists of.
  std::map<std::string, std::vector<QPDFObjectHandle>> lists_ = {
      {"/AF", {}}, {"/Namespaces", {}}, {"/PronunciationLexicon", {}}};
};

}  // namespace

void CarryTags(Revision& revision) {
  std::vector<CarriedDocument>& documents = revision.Documents();
  const bool areTagged =
      std::any_of(documents.begin(), documents.end(), [&](const CarriedDocument& document) {
        return !EntryOf(EntryOf(CatalogOf(revision, document), kRoot), "/K").isNull();
      });
  if (documents.size() > 1 && areTagged) Tags(revision).Run();
}

}  // namespace folioweld
