// Whether the number of pages that an input's root of the page tree gives, and that the output's root adds
// up, is the number of pages that readers reach.

#include <string>
#include <vector>

#include "engine/alteration_checks.h"
#include "engine/alteration_record.h"
#include "engine/array_walk.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

/// Follows /Kids from the root down, each node once. A page that several kids name is that many pages, as
/// readers take it.
class PageTreeWalk {
 public:
  PageTreeWalk(const ReadInput& input, MergeShell& shell)
      : input_(input),
        shell_(shell),
        known_(static_cast<std::size_t>(input.State.DocObjectCount(input.Slot)), Known::Nothing) {}

  /// The pages that are reached.
  [[nodiscard]] std::int32_t Run(std::int32_t root) {
    Reach(root, root);
    while (!open_.empty()) {
      const std::int32_t node = open_.back();
      open_.pop_back();
      CheckAbort(node);
      ReadObject object(input_, node);
      const std::string_view kids = object.Value("/Kids");
      const std::int32_t array = ReferencedNumber(kids);
      if (array < 0) {
        ReachAll(kids, node);
      } else if (IsNew(array, node)) {
        ReachAll(TextOf(input_, array), node);
      }
    }
    return pages_;
  }

  /// Every node was there, and once.
  [[nodiscard]] bool Whole() const { return whole_; }

 private:
  enum class Known : std::uint8_t { Nothing, NoNode, Node, Page };

  /// Whether the array of kids is there and was not gone through before.
  [[nodiscard]] bool IsNew(std::int32_t array, std::int32_t node) {
    const bool isThere = static_cast<std::size_t>(array) < known_.size();
    if (isThere && known_[static_cast<std::size_t>(array)] == Known::Nothing) {
      known_[static_cast<std::size_t>(array)] = Known::NoNode;
      return true;
    }
    Tell(isThere ? AlterationKind::PageTreeRepeated : AlterationKind::PageTreeIncomplete, array, node);
    return false;
  }

  /// A node that stands in the array itself is taken for a page.
  void ReachAll(std::string_view kids, std::int32_t parent) {
    ArrayWalk walk(kids);
    while (walk.Next()) {
      if (walk.Number() < 0) {
        ++pages_;
      } else {
        Reach(walk.Number(), parent);
      }
    }
  }

  void Reach(std::int32_t number, std::int32_t parent) {
    CheckAbort(number);
    if (static_cast<std::size_t>(number) >= known_.size()) {
      Tell(AlterationKind::PageTreeIncomplete, number, parent);
      return;
    }
    Known& known = known_[static_cast<std::size_t>(number)];
    if (known == Known::Node) Tell(AlterationKind::PageTreeRepeated, number, parent);
    if (known == Known::Nothing) {
      known = Look(number);
      if (known == Known::Node) open_.push_back(number);
    }
    if (known == Known::NoNode) Tell(AlterationKind::PageTreeIncomplete, number, parent);
    if (known == Known::Page) ++pages_;
  }

  void CheckAbort(std::int32_t number) const {
    if (YieldAndCheckAbort(shell_, input_.State)) throw RuleBroken({input_.Slot, number, -1, kCancelled});
  }

  [[nodiscard]] Known Look(std::int32_t number) const {
    const std::string_view text = TextOf(input_, number);
    if (!text.starts_with("<<")) return Known::NoNode;
    // Most are pages: to search the text takes less time than to go through the keys.
    const bool mayBeNode =
        text.find("Kids") != std::string_view::npos || text.find('#') != std::string_view::npos;
    return mayBeNode && !ReadObject(input_, number).Value("/Kids").empty() ? Known::Node : Known::Page;
  }

  void Tell(AlterationKind kind, std::int32_t number, std::int32_t parent) {
    whole_ = false;
    NoteAlteration(input_.State, input_.Slot, kind, parent, "object " + std::to_string(number));
  }

  const ReadInput& input_;
  MergeShell& shell_;
  std::vector<Known> known_;  ///< by object number
  std::vector<std::int32_t> open_;
  std::int32_t pages_ = 0;
  bool whole_ = true;
};

/// The root's /Count as the joining of the page trees will take it; -1 when that will fail.
std::int32_t JoinedCount(const ReadInput& input, std::int32_t root) {
  const MergeState& state = input.State;
  const std::int32_t line = state.Objects[TableIndexOf(state, root, input.Slot)].LastLine;
  const auto count = FindValue(TrimBlanks(state.ObjLines[line]), "/Count");
  if (!count) return -1;
  const std::string_view value = TrimBlanks(*count);
  const std::int32_t number = NumberOf(value);
  if (number >= 0) return number;
  NumberPair found;
  if (!FindReference(value, 0, kReferenceKeyword, found)) return -1;
  const std::int32_t index = TableIndexOf(state, found.Number, input.Slot);
  return index <= state.Objects.UpperBound() ? NumberOf(state.Objects[index].ValueText) : -1;
}

}  // namespace

void CheckPageTree(const ReadInput& input, MergeShell& shell) {
  // A file that holds several documents has a root of this run's making, which adds up what was checked.
  if (SourcesOf(input.State, input.Slot).size() > 1) return;
  ReadObject catalog(input, input.State.DocRootNumber(input.Slot));
  const std::int32_t number = ReferencedNumber(catalog.Value("/Pages"));
  ReadObject root(input, number);
  if (!root.IsDictionary()) return;
  if (!root.Value("/Parent").empty()) {
    NoteAlteration(input.State, input.Slot, AlterationKind::PageTreeHasParent, number);
  }
  const std::int32_t count = JoinedCount(input, number);
  if (count < 0) return;
  PageTreeWalk walk(input, shell);
  const std::int32_t pages = walk.Run(number);
  if (!walk.Whole() || pages == count) return;
  NoteAlteration(input.State, input.Slot, AlterationKind::PageCountWrong, number,
                 std::to_string(count) + " instead of " + std::to_string(pages));
}

}  // namespace folioweld
