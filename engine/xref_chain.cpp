#include "engine/xref_chain.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "engine/alteration_checks.h"

namespace folioweld {

namespace {

class ChainWalk {
 public:
  ChainWalk(MergeState& state, MergeShell& shell, PdfReader& reader, std::int16_t slot)
      : state_(state), shell_(shell), reader_(reader), slot_(slot) {}

  void Run() {
    while (state_.DocXrefStart(slot_) >= 1) {
      shell_.AppendStatusText(slot_ - 1, "+");
      const XrefSectionInfo info = reader_.ReadXrefSection(slot_, state_.DocXrefStart(slot_));
      if (!info.SectionOk) throw RuleBroken(state_.Failure);
      TakeSection(info);
    }
    CheckSizes();
  }

 private:
  [[noreturn]] void Fail(std::string rule, std::int64_t offset = -1) const {
    // A dictionary that was not parsed because of a cancel looks like a broken one.
    throw RuleBroken({slot_, -1, offset, state_.AbortRequested ? kCancelled : std::move(rule)});
  }

  void TakeSection(const XrefSectionInfo& info) {
    ClaimBytes(info);
    const std::int32_t section = state_.DocXrefCount(slot_);
    if (section == 0) {
      TakeNewestSize(info);
    } else if (info.TrailerSize > state_.DocObjectCount(slot_)) {
      Fail("an older trailer's /Size is above the newest one's", info.FirstByte);
    }
    CheckTrailer({state_, reader_, slot_}, shell_, info);
    Store(info, section);
    if (state_.DocRootNumber(slot_) == -1) state_.DocRootNumber(slot_) = info.TrailerRoot;
    if (state_.DocInfoNumber(slot_) == -1) state_.DocInfoNumber(slot_) = info.TrailerInfo;
    state_.DocXrefStart(slot_) = info.TrailerPrev >= 1 ? info.TrailerPrev : -1;
    state_.DocXrefCount(slot_) = CheckedAdd(section, 1);
    shell_.Yield();
    if (state_.AbortRequested) Fail(kCancelled);
  }

  /// Sections stand beside each other; one that begins within another was read before, and following it
  /// would never end.
  void ClaimBytes(const XrefSectionInfo& info) {
    auto next = sections_.upper_bound(info.FirstByte);
    const bool overlapsNext = next != sections_.end() && next->first <= info.LastByte;
    const bool overlapsPrevious = next != sections_.begin() && std::prev(next)->second >= info.FirstByte;
    if (overlapsNext || overlapsPrevious) {
      Fail("/Prev leads to a cross-reference section that was read already", info.FirstByte);
    }
    sections_.emplace_hint(next, info.FirstByte, info.LastByte);
  }

  void TakeNewestSize(const XrefSectionInfo& info) {
    if (slot_ == 2) state_.PageKidsLast = info.TrailerFirstLine;
    if (info.TrailerEntry < 0) {
      Fail("no dictionary follows the cross-reference table (tables of several subsections are not handled)",
           info.FirstByte);
    }
    if (info.TrailerSize <= 0) Fail("the newest trailer gives no /Size above 0", info.FirstByte);
    // No scan could succeed, and no table of that size is to be allocated.
    if (info.TrailerSize > kMostObjects) {
      Fail("the trailer's /Size is above " + std::to_string(kMostObjects), info.FirstByte);
    }
    state_.DocObjectCount(slot_) = std::max(state_.DocObjectCount(slot_), info.TrailerSize);
    if (!reader_.GrowObjectTable(slot_)) Fail("the object table cannot grow");
  }

  void Store(const XrefSectionInfo& info, std::int32_t section) {
    StoreIn(state_.TrailerEntry, section, info.TrailerEntry);
    StoreIn(state_.TrailerFirstLine, section, info.TrailerFirstLine);
    StoreIn(state_.TrailerLastLine, section, info.TrailerLastLine);
    StoreIn(state_.TrailerSize, section, info.TrailerSize);
    StoreIn(state_.TrailerRoot, section, info.TrailerRoot);
    StoreIn(state_.TrailerInfo, section, info.TrailerInfo);
    StoreIn(state_.TrailerPrev, section, info.TrailerPrev);
    StoreIn(state_.TrailerEncrypt, section, info.TrailerEncrypt);
    state_.TrailerId.Grow(section);
    state_.TrailerId(slot_, section) = info.TrailerId;
  }

  void StoreIn(SectionTable<std::int32_t>& table, std::int32_t section, std::int32_t value) {
    const std::int32_t old = table.UpperBound();
    if (section > old) {
      table.Grow(section);
      // A growth sets every cell of the document from section 1 on to -1. Those before the last one were
      // set by the growths before, so only the last ones can differ.
      for (std::int32_t i = std::max(old, 1); i <= section; ++i) table(slot_, i) = -1;
    }
    table(slot_, section) = value;
  }

  void CheckSizes() const {
    const std::int32_t sections = state_.DocXrefCount(slot_);
    if (sections == 0) Fail("no cross-reference section was found");
    const std::int32_t newest = state_.TrailerSize(slot_, 0);
    for (std::int32_t i = 1; i < sections; ++i) {
      if (state_.TrailerSize(slot_, i) > newest) Fail("an older trailer's /Size is above the newest one's");
    }
    if (state_.DocObjectCount(slot_) != newest) {
      Fail("the cross-reference table lists objects beyond the trailer's /Size of " + std::to_string(newest));
    }
  }

  MergeState& state_;
  MergeShell& shell_;
  PdfReader& reader_;
  std::int16_t slot_;
  std::map<std::int32_t, std::int32_t> sections_;  ///< first and last byte of every section read
};

}  // namespace

void WalkXrefChain(MergeState& state, MergeShell& shell, PdfReader& reader, std::int16_t slot) {
  ChainWalk(state, shell, reader, slot).Run();
}

}  // namespace folioweld
