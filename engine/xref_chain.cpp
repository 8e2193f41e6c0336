#include "engine/xref_chain.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "engine/alteration_checks.h"
#include "engine/lexer.h"

namespace folioweld {

namespace {

class ChainWalk {
 public:
  ChainWalk(MergeState& state, const FileModule& files, MergeShell& shell, PdfReader& reader,
            std::int16_t slot)
      : state_(state),
        shell_(shell),
        reader_(reader),
        slot_(slot),
        mostBytes_(ByteAllowance(files.FileLength(state.DocFileNumber(slot)))) {}

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
    CheckTrailer({state_, shell_, slot_}, shell_, info);
    Store(info, section);
    if (!reader_.KeepsSections(slot_)) ForgetLines(info);
    if (state_.DocRootNumber(slot_) == -1) state_.DocRootNumber(slot_) = info.TrailerRoot;
    if (state_.DocInfoNumber(slot_) == -1) state_.DocInfoNumber(slot_) = info.TrailerInfo;
    state_.DocXrefStart(slot_) = info.TrailerPrev >= 1 ? info.TrailerPrev : -1;
    state_.DocXrefCount(slot_) = CheckedAdd(section, 1);
    shell_.Yield();
    if (state_.AbortRequested) Fail(kCancelled);
  }

  /// To follow a section that was read before would never end. Sections may overlap otherwise, as long as
  /// they do not make the same bytes be read again and again.
  void ClaimBytes(const XrefSectionInfo& info) {
    if (!sections_.insert(info.FirstByte).second) {
      Fail("/Prev leads to a cross-reference section that was read already", info.FirstByte);
    }
    if (state_.DocSectionBytes(slot_) > mostBytes_) {
      Fail("the cross-reference sections of the document run into each other", info.FirstByte);
    }
  }

  void TakeNewestSize(const XrefSectionInfo& info) {
    if (slot_ == 2) state_.PageKidsLast = info.TrailerFirstLine;
    if (info.TrailerEntry < 0) {
      Fail(CommentFollowsTrailer(info)
               ? "a comment follows the trailer's dictionary, which has to end with \">>\""
               : "no dictionary follows the cross-reference table (tables of several subsections are not "
                 "handled)",
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

  /// Whether the text of the trailer is a dictionary but for a comment after its end.
  [[nodiscard]] bool CommentFollowsTrailer(const XrefSectionInfo& info) const {
    if (TrimBlanks(state_.PageKids[info.TrailerFirstLine]).substr(0, 2) != "<<") return false;
    bool comment = false;
    for (std::int32_t i = info.TrailerLastLine; i >= info.TrailerFirstLine; --i) {
      const std::string_view line = TrimBlanks(state_.PageKids[i]);
      const std::size_t end = line.rfind(">>");
      if (end != std::string_view::npos) {
        const std::string_view rest = TrimBlanks(line.substr(end + 2));
        return rest.empty() ? comment : rest[0] == '%';
      }
      if (!line.empty() && line[0] != '%') return false;
      comment = true;
    }
    return false;
  }

  void Store(const XrefSectionInfo& info, std::int32_t section) {
    MakeRoom(section);
    state_.TrailerEntry(slot_, section) = info.TrailerEntry;
    state_.TrailerFirstLine(slot_, section) = info.TrailerFirstLine;
    state_.TrailerLastLine(slot_, section) = info.TrailerLastLine;
    state_.TrailerSize(slot_, section) = info.TrailerSize;
    state_.TrailerRoot(slot_, section) = info.TrailerRoot;
    state_.TrailerInfo(slot_, section) = info.TrailerInfo;
    state_.TrailerPrev(slot_, section) = info.TrailerPrev;
    state_.TrailerEncrypt(slot_, section) = info.TrailerEncrypt;
    state_.TrailerId(slot_, section) = info.TrailerId;
  }

  /// Lines that sections share are not kept for each of them, but for what tells why a /Root was not found.
  void ForgetLines(const XrefSectionInfo& info) {
    std::int32_t kept = info.TrailerFirstLine;
    for (std::int32_t i = info.TrailerFirstLine; i <= info.TrailerLastLine; ++i) {
      std::string line;
      line.swap(state_.PageKids[i]);
      if (kept == info.TrailerFirstLine && line.ends_with("/Root")) state_.PageKids[kept++] = "/Root";
    }
    state_.PageKidsCount = kept;
  }

  /// A growth sets every number of the document from section 1 on to -1. The cells that an earlier growth of
  /// this walk has set are not touched again, but for the one that was stored since.
  void MakeRoom(std::int32_t section) {
    if (section <= state_.TrailerSize.UpperBound()) return;
    state_.TrailerId.Grow(section);
    for (auto* table :
         {&state_.TrailerEntry, &state_.TrailerFirstLine, &state_.TrailerLastLine, &state_.TrailerSize,
          &state_.TrailerRoot, &state_.TrailerInfo, &state_.TrailerPrev, &state_.TrailerEncrypt}) {
      table->Grow(section);
      for (std::int32_t i = firstStored_; i <= section; ++i) (*table)(slot_, i) = -1;
    }
    firstStored_ = section;
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
  std::int64_t mostBytes_;           ///< of all sections
  std::set<std::int32_t> sections_;  ///< first byte of every section read
  std::int32_t firstStored_ = 1;     ///< cells from here on may hold numbers
};

}  // namespace

void WalkXrefChain(MergeState& state, const FileModule& files, MergeShell& shell, PdfReader& reader,
                   std::int16_t slot) {
  ChainWalk(state, files, shell, reader, slot).Run();
}

}  // namespace folioweld
