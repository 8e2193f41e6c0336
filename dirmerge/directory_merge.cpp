#include "dirmerge/directory_merge.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "dirmerge/carrying.h"
#include "dirmerge/document_list.h"
#include "dirmerge/document_preparation.h"
#include "dirmerge/file_ordering.h"
#include "dirmerge/merge_rounds.h"
#include "dirmerge/output_probe.h"
#include "dirmerge/paths.h"
#include "dirmerge/tmp_directory.h"
#include "engine/output_refusal.h"

namespace folioweld {

namespace {

constexpr char kMessageTitle[] = "Folioweld";
constexpr char kDirectoryTitle[] = "File Tallowby - Folioweld";
constexpr char kFolderPrefix[] = "[Folioweld-MergeDirectory]=>";
constexpr char kFolderSetting[] = "MergeCurDir";
/// Anything shorter cannot be a document.
constexpr std::int64_t kShortestOutput = 11;

/// One run of the job.
class DirectoryJob {
 public:
  DirectoryJob(ProgramState& program, FileModule& files, SettingsStore& settings, MergeShell& shell,
               ActivityLog& log, DirectoryMergeReport& report)
      : program_(program),
        files_(files),
        settings_(settings),
        shell_(shell),
        log_(log),
        logging_(LoggingOf(kFolderPrefix, program.Merge, shell, log)),
        report_(report),
        keeper_(files.System()) {
    program_.ExternalBusy = true;
    program_.Merge.AbortRequested = false;
    program_.Merge.CancelSeen = false;
  }

  DirectoryJob(const DirectoryJob&) = delete;
  DirectoryJob& operator=(const DirectoryJob&) = delete;

  ~DirectoryJob() {
    report_.Cancelled = report_.Cancelled || program_.Merge.AbortRequested;
    program_.ExternalBusy = false;
    program_.Merge.SilentMode = false;
    program_.Merge.AbortRequested = false;
    shell_.LeaveRunningState();
    shell_.RefreshControls();
  }

  void Run(const std::vector<Source>& sources) {
    for (const Source& source : sources) {
      if (!source.IsFolder) continue;
      const SystemError error = files_.System().SetCurrentDirectory(source.Path);
      if (!error) continue;
      ShowFolderFailure(error);
      return;
    }
    shell_.EnterRunningState();
    if (!Enumerate(sources)) return;
    const std::string output = ChooseOutput();
    if (output.empty()) return;
    NoteRefusedDocuments(program_.CommandLineOutput.empty() ? IdentityOf(output) : std::nullopt);
    OutputProbe probe(files_, output);
    if (!probe.Open(InputIdentities())) {
      shell_.ShowMessage(
          MessageIcon::Exclamation, kMessageTitle,
          "The output file\r\n" + output + "\r\n cannot be created.\r\nI cannot do this operation!");
      TellReason(WhyNoOutput(files_.System(), output, probe.Error(), found_.Inputs));
      return;
    }
    Join(sources, output, probe);
  }

 private:
  [[nodiscard]] std::optional<FileIdentity> IdentityOf(const std::string& path) const {
    const auto attributes = files_.System().GetFileAttributes(path);
    return attributes.Ok() ? std::optional(attributes.Value().Identity) : std::nullopt;
  }

  /// An output that is asked for is known only after the listing: of a folder it is no lost document.
  void NoteRefusedDocuments(const std::optional<FileIdentity>& output) {
    for (const ListedDocument& document : found_.RefusedDocuments) {
      if (!output || IdentityOf(document.Path) != output) report_.RefusedDocuments.push_back(document.Name);
    }
  }

  void ShowFolderFailure(SystemError error) {
    shell_.ShowMessage(MessageIcon::Critical, kDirectoryTitle,
                       "Merge of documents ABORTed\r(could not reach intput directory)");
    TellReason(error.Words());
  }

  /// After a message whose text is fixed and gives no cause.
  void TellReason(const std::string& reason) { logging_.Notice("  because of " + reason); }

  [[nodiscard]] std::vector<FileIdentity> InputIdentities() const {
    std::vector<FileIdentity> identities;
    for (const NamedDocument& input : found_.Inputs) identities.push_back(input.Identity);
    return identities;
  }

  /// Finds the documents of all sources; false when the job ends here.
  bool Enumerate(const std::vector<Source>& sources) {
    const auto output = IdentityOf(program_.CommandLineOutput);
    for (const Source& source : sources) {
      const std::size_t before = found_.Names.size();
      if (!Take(ListDocuments(source, files_, shell_, program_, logging_, output, found_))) return false;
      ends_.push_back(found_.Names.size());
      if (source.IsFolder && !source.Name.empty() && ends_.back() == before) NoteEmptyFolder(source);
    }
    report_.LeftTemporaries = found_.LeftTemporaries;
    if (!found_.Names.empty()) return true;
    NoteRefusedDocuments(std::nullopt);
    ShowNoInput();
    return false;
  }

  void ShowNoInput() {
    shell_.ShowMessage(MessageIcon::Exclamation, kMessageTitle, "NO INPUT FILE!  I DIDN'T DO ANYTHING");
  }

  /// Whether the listing goes on.
  bool Take(ListOutcome outcome) {
    if (outcome == ListOutcome::TooMany) logging_.Notice("Out of memory - Could not extend filesToMerge()");
    // A listing that broke off would give an output that silently lacks documents.
    if (outcome == ListOutcome::FolderFailed) ShowFolderFailure(found_.FolderError);
    return outcome == ListOutcome::Complete;
  }

  void NoteEmptyFolder(const Source& source) {
    report_.EmptyFolders.push_back(source.Name);
    logging_.Notice("Folder: \"" + source.Name + "\"  holds no document that can be joined");
  }

  [[nodiscard]] std::string ChooseOutput() {
    if (!program_.CommandLineOutput.empty()) return program_.CommandLineOutput;
    return shell_.AskForOutputFile(
        {"Folioweld: Choose the OUTPUT FILE", kDialogExtension, kDialogFilter, ""});
  }

  void Join(const std::vector<Source>& sources, const std::string& output, OutputProbe& probe) {
    logging_.Log("Request to merge towards: \"" + output + "\"  the following files:");
    std::vector<ListedDocument> documents;
    if (!Order(sources, documents)) return;
    std::optional<DocumentPreparation> preparation;
    if (program_.Prepare) preparation.emplace(files_, shell_, program_.Merge, logging_);
    if (preparation && !Prepare(*preparation, documents)) return;
    // Two documents need no temporary file; the setting gets its default all the same.
    const bool needsFolder = documents.size() > 2;
    std::string why;
    const std::string tmpFolder =
        needsFolder ? SafeFolder(why) : TmpDirectory(files_.System(), settings_, shell_).GetTmpDirectory();
    if (needsFolder && tmpFolder.empty()) {
      logging_.Notice("Unable to get a temporary directory");
      TellReason(why);
      return;
    }
    std::optional<Carrying> carrying;
    if (program_.Carry.Wanted) carrying.emplace(program_, files_, shell_, log_);
    JoinInRounds(documents, output, tmpFolder, carrying ? &*carrying : nullptr);
    report_.CarryingFailed = carrying && carrying->Failed();
    // The last line of the log is about the output and not about the copies.
    preparation.reset();
    // Whoever cancelled needs no message about an output that was never begun.
    if (report_.Cancelled) probe.RemoveEmpty();
    Finish(output);
  }

  /// Whether there is something to be joined afterwards, and not too much.
  bool Prepare(DocumentPreparation& preparation, std::vector<ListedDocument>& documents) {
    const auto folder = [this](std::string& why) { return SafeFolder(why); };
    if (!preparation.Run(documents, folder, report_)) return false;
    const std::string tooMany = preparation.WhyTooMany();
    if (documents.empty()) ShowNoInput();
    if (!tooMany.empty()) shell_.ShowMessage(MessageIcon::Exclamation, kMessageTitle, tooMany);
    return !documents.empty() && tooMany.empty();
  }

  /// The folder for temporary files, looked for once; empty, with the reason, when there is none.
  std::string SafeFolder(std::string& why) {
    if (!tmpFolder_) {
      tmpFolder_ =
          TmpDirectory(files_.System(), settings_, shell_).SafeTmpDirectory(logging_.Notice, noFolder_);
    }
    why = noFolder_;
    return *tmpFolder_;
  }

  /// The documents of all sources in the order in which they are joined; false when the user cancelled.
  bool Order(const std::vector<Source>& sources, std::vector<ListedDocument>& documents) {
    FileOrdering ordering(files_.System(), shell_, program_.Merge, logging_.Log);
    const std::int16_t sortOrder = program_.SortOrder;
    auto begin = found_.Names.begin();
    for (std::size_t i = 0; i < sources.size(); ++i) {
      const auto end = found_.Names.begin() + static_cast<std::ptrdiff_t>(ends_[i]);
      std::vector<std::string> names(begin, end);
      begin = end;
      if (sources[i].IsFolder && !OrderFolder(ordering, sources[i], names, sortOrder)) return false;
      for (const std::string& name : names) documents.push_back(DocumentOf(sources[i], name));
    }
    return true;
  }

  /// By their dates the documents are asked for by name, in the current folder.
  bool OrderFolder(FileOrdering& ordering, const Source& source, std::vector<std::string>& names,
                   std::int16_t sortOrder) {
    static_cast<void>(files_.System().SetCurrentDirectory(source.Path));
    return ordering.Order(names, sortOrder);
  }

  void JoinInRounds(const std::vector<ListedDocument>& documents, const std::string& output,
                    const std::string& tmpFolder, OutputSequel* sequel) {
    MergeRounds rounds(program_, files_, shell_, log_, logging_);
    rounds.Run(documents, output, tmpFolder, report_, sequel);
  }

  void Finish(const std::string& output) {
    for (std::int32_t slot = 1; slot <= 3; ++slot) program_.Merge.DocFileName(slot).clear();
    // No viewer after a directory merge, nor for the rest of the run; the menu keeps its mark. Kept on
    // purpose.
    program_.Merge.ShowOutputAfterMerge = false;
    program_.Merge.SilentMode = false;
    const auto written = files_.System().GetFileAttributes(output);
    if (written.Ok() && written.Value().Size < kShortestOutput) {
      report_.OutputWritten = false;
      shell_.ShowMessage(MessageIcon::Exclamation, kMessageTitle, "Unable to Merge and Create " + output);
    }
    if (report_.OutputWritten && written.Ok()) LogOutput(output, written.Value().Size);
  }

  /// The places and their status lines are empty by now.
  void LogOutput(const std::string& output, std::int64_t bytes) {
    try {
      const std::string documents = report_.JoinedDocuments == 1 ? " document" : " documents";
      logging_.Log("Output: \"" + output + "\"  holds " + std::to_string(report_.JoinedDocuments) +
                   documents + " in " + std::to_string(bytes) + " bytes");
    } catch (const std::exception&) {
      // Without memory for the news the output is as good.
    }
  }

  ProgramState& program_;
  FileModule& files_;
  SettingsStore& settings_;
  MergeShell& shell_;
  ActivityLog& log_;
  const Logging logging_;
  DirectoryMergeReport& report_;
  CurrentDirectoryKeeper keeper_;
  DocumentList found_;  ///< of all sources, one after the other
  std::optional<std::string> tmpFolder_;
  std::string noFolder_;           ///< why there is none
  std::vector<std::size_t> ends_;  ///< of each source's documents in that list
};

}  // namespace

DirectoryMerge::DirectoryMerge(ProgramState& program, FileModule& files, SettingsStore& settings,
                               MergeShell& shell, ActivityLog& log)
    : program_(program), files_(files), settings_(settings), shell_(shell), log_(log) {}

void DirectoryMerge::MenuPdfMergeDir_Click() {
  report_ = {};
  if (program_.Merge.LogEnabled) {
    log_.AddLogLine("[Folioweld-MenuPdfMergeDir_Click]=>");
  }
  WindowsAPI& system = files_.System();
  const CurrentDirectoryKeeper keeper(system);
  const auto current = system.GetCurrentDirectory();
  const std::string currentFolder = current.Ok() ? WithSeparator(current.Value()) : std::string();
  std::string stored;
  static_cast<void>(settings_.ReadSettingOrDefault(kFolderSetting, stored, currentFolder));
  if (system.SetCurrentDirectory(stored)) {
    stored = currentFolder;
    static_cast<void>(settings_.WriteSetting(kFolderSetting, stored));
  }
  std::string directory = program_.CommandLineDirectory;
  if (directory.empty()) directory = shell_.BrowseForFolder("Folioweld: Choose FOLDER TO MERGE", stored);
  if (directory.empty()) {
    shell_.ShowMessage(MessageIcon::Plain, kDirectoryTitle, "Merge of documents cancelled");
    return;
  }
  directory = WithSeparator(directory);
  static_cast<void>(settings_.WriteSetting(kFolderSetting, directory));
  MergeDirectory(directory);
}

void DirectoryMerge::TellAtTheEnd(std::function<void(const std::string&)> Logging::*where, const char* line) {
  try {
    (LoggingOf(kFolderPrefix, program_.Merge, shell_, log_).*where)(line);
  } catch (const std::exception&) {
    // Nor is there memory for the news; the report tells all the same.
  }
}

void DirectoryMerge::MergeDirectory(const std::string& directory) {
  Guard([&] { Run({{"", directory, true}}); });
}

void DirectoryMerge::MergeSources(const std::vector<Source>& sources, const std::string& problem) {
  report_ = {};
  if (problem.empty()) return Guard([&] { Run(sources); });
  shell_.ShowMessage(MessageIcon::Exclamation, kMessageTitle, problem);
}

void DirectoryMerge::Run(const std::vector<Source>& sources) {
  DirectoryJob(program_, files_, settings_, shell_, log_, report_).Run(sources);
}

void DirectoryMerge::Guard(const std::function<void()>& run) {
  report_ = {};
  try {
    run();
  } catch (const std::exception&) {
    // Memory is all that can run out here; the job has cleaned up on its way.
    report_.OutputWritten = false;
    TellAtTheEnd(&Logging::Notice, "out of memory");
  }
  // A windowless run is cancelled by a signal, and says itself by which one it ends.
  if (report_.Cancelled && !report_.OutputWritten) TellAtTheEnd(&Logging::Log, "The merge was cancelled");
}

}  // namespace folioweld
