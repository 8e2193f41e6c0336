#include "dirmerge/carrying.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <limits>
#include <utility>

#include "dirmerge/extra_programs.h"
#include "dirmerge/limited_child.h"
#include "dirmerge/paths.h"
#include "engine/alteration_record.h"
#include "engine/joined_documents.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

/// A program that is stuck in a disk's answer is gone after that.
constexpr std::int64_t kStuckMilliseconds = 10'000;

constexpr char kPrefix[] = "[Folioweld-Carrying]=>";
constexpr char kWithout[] = "The output is the joined file without what --carry adds: ";

/// The program's exit statuses; any other one means that nothing was carried over.
enum CarryStatus { kCarriedAll = 0, kCarriedWithLosses = 3 };

/// A document of which nothing could be read.
constexpr char kAllParts[] = "catalog";

/// The part whose loss brings this alteration.
const char* PartOf(AlterationKind kind) {
  switch (kind) {
    case AlterationKind::LayersShown:
      return "layers";
    case AlterationKind::OutputIntentLost:
      return "intent";
    default:
      return "form";
  }
}

/// A file in memory with these bytes, as long as it lives.
class MemoryFile {
 public:
  MemoryFile(WindowsAPI& system, const std::string& bytes) : system_(system) {
    const auto file = RetryInterrupted([&] { return system_.CreateMemoryFile(); });
    error_ = file.Error();
    if (!file.Ok()) return;
    file_ = file.Value();
    error_ = TransferAll(bytes.size(), [&](std::size_t done) {
      return system_.WriteFile(file_, static_cast<std::int64_t>(done), bytes.data() + done,
                               bytes.size() - done);
    });
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() {
    // Nothing of it is to be kept.
    if (file_ >= 0) static_cast<void>(system_.CloseHandle(file_));
  }

  [[nodiscard]] SystemError Error() const { return error_; }
  [[nodiscard]] WindowsAPI::Handle File() const { return file_; }

 private:
  WindowsAPI& system_;
  SystemError error_;
  WindowsAPI::Handle file_ = -1;
};

}  // namespace

Carrying::Carrying(ProgramState& program, FileModule& files, MergeShell& shell, ActivityLog& log)
    : program_(program), files_(files), shell_(shell), log_(log) {
  program_.Merge.CatalogsAreCarried = true;
}

Carrying::~Carrying() {
  program_.Merge.CatalogsAreCarried = false;
}

OutputSequel::Outcome Carrying::Run(const FileInformation& output, std::string& words) {
  // Whatever is left among the alterations after this is told.
  program_.Merge.CatalogsAreCarried = false;
  losses_.clear();
  RevisedOutput revised(files_, program_.Merge.DocFileName(3), output);
  LimitedChild child(files_.System(), "the program that carries over");
  std::string why;
  try {
    why = Carry(revised, child);
  } catch (const std::exception&) {
    // Memory is all that can run out here.
    why = kOutOfMemory;
  }
  // Nothing may be written after the cut.
  child.Kill();
  const bool ended = child.WaitForEnd(kStuckMilliseconds);
  failed_ = !why.empty() || !ended;
  if (!failed_) {
    ReplaceAlterations();
    return Outcome::Kept;
  }
  const Outcome outcome = ended ? revised.Restore(why) : revised.GiveUp();
  words = outcome == Outcome::Kept ? kWithout + why : why;
  return outcome;
}

std::string Carrying::Carry(RevisedOutput& output, LimitedChild& child) {
  std::string name;
  std::string folder;
  SplitPath(program_.Merge.DocFileName(3), name, folder);
  shell_.CarryingStarts(name);
  if (YieldAndCheckAbort(shell_, program_.Merge)) return kCancelled;
  std::string why = output.Open();
  if (!why.empty()) return why;
  const MemoryFile list(files_.System(), ListOfDocuments());
  if (list.Error()) return "the list of the documents cannot be written: " + list.Error().Words();
  child.Start({FindExtraProgram(files_.System(), kCarryProgram),
               {output.File(), list.File()},
               std::numeric_limits<std::int32_t>::max(),
               Options()});
  why = Watch(child);
  if (why.empty()) why = TakeWords(child);
  return why.empty() ? output.Finish() : why;
}

std::string Carrying::ListOfDocuments() const {
  std::vector<JoinedDocument> documents;
  for (const SourceDocument& source : program_.Merge.DocSources(3)) {
    const DocumentCopy* const copy = files_.Prepared().Find(source.Name);
    std::string name;
    std::string folder;
    SplitPath(source.Name, name, folder);
    documents.push_back(
        {copy == nullptr ? source.Name : copy->Path, source.Read, std::move(name), source.FirstObject});
  }
  return WriteJoinedDocuments(documents);
}

std::vector<std::string> Carrying::Options() const {
  std::vector<std::string> options;
  if (!program_.Carry.Bookmarks.empty()) options.push_back("--bookmarks=" + program_.Carry.Bookmarks);
  if (program_.Carry.Title) options.push_back("--title=" + *program_.Carry.Title);
  return options;
}

std::string Carrying::Watch(LimitedChild& child) {
  while (child.Running()) {
    // One that has said its last word ends in a moment.
    if (child.Errors() >= 0) {
      files_.System().WaitForInput({child.Errors()}, kLongestWait);
    } else {
      files_.System().WaitForInput({}, 1);
    }
    // A signal that stops the run from the terminal ends the program as well: that says nothing of it.
    if (YieldAndCheckAbort(shell_, program_.Merge)) return kCancelled;
    child.Look();
  }
  return child.Failure();
}

std::string Carrying::TakeWords(const LimitedChild& child) {
  if (child.SaidTooMuch()) return "it tells of more losses than can be kept";
  std::string failure;
  for (const ChildLine& line : child.Lines()) {
    if (line.Kind == "failed") failure = line.Text;
    if (line.Kind == "lost" && !TakeLoss(line.Text)) failure = "it speaks of no document: " + line.Text;
    if (line.Kind == "did" && program_.Merge.LogEnabled) log_.AddLogLine(kPrefix + line.Text);
  }
  const bool hasLost = child.Status() == kCarriedWithLosses && !losses_.empty();
  if (failure.empty() && !hasLost && child.Status() != kCarriedAll) failure = child.WhyEnded();
  return failure;
}

/// "2: outline: why".
bool Carrying::TakeLoss(const std::string& text) {
  Loss loss;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), loss.Document);
  const auto at = static_cast<std::size_t>(end - text.data());
  const std::size_t count = program_.Merge.DocSources(3).size();
  if (error != std::errc() || loss.Document < 1 || loss.Document > count) return false;
  if (text.compare(at, 2, ": ") != 0) return false;
  --loss.Document;
  loss.Words = text.substr(at + 2);
  loss.Part = loss.Words.substr(0, loss.Words.find(':'));
  losses_.push_back(std::move(loss));
  return true;
}

/// What was carried over is no alteration any more, and what was lost is one.
void Carrying::ReplaceAlterations() {
  std::vector<SourceDocument>& documents = program_.Merge.DocSources(3);
  for (std::size_t i = 0; i < documents.size(); ++i) {
    std::erase_if(documents[i].Alterations, [&](const Alteration& alteration) {
      return IsLostWithCatalog(alteration.Kind) &&
             std::none_of(losses_.begin(), losses_.end(), [&](const Loss& loss) {
               const bool isLost = loss.Part == PartOf(alteration.Kind) || loss.Part == kAllParts;
               return loss.Document == i && isLost;
             });
    });
  }
  for (const Loss& loss : losses_) {
    documents[loss.Document].Alterations.push_back(
        {AlterationKind::NotCarriedOver, -1, -1, 1, loss.Words, false});
  }
}

}  // namespace folioweld
