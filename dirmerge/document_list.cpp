#include "dirmerge/document_list.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <limits>
#include <optional>

#include "dirmerge/left_temporaries.h"
#include "dirmerge/paths.h"
#include "engine/document_check.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr std::int16_t kSearchedBytes = 1024;

std::string UpperCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

bool EndsInPdf(const std::string& name) {
  return name.size() >= 4 && UpperCased(name.substr(name.size() - 4)) == ".PDF";
}

/// Ends a search whatever ends its use; memory can run out in the middle.
class OpenSearch {
 public:
  OpenSearch(WindowsAPI& system, WindowsAPI::Search search) : system_(system), search_(search) {}
  OpenSearch(const OpenSearch&) = delete;
  OpenSearch& operator=(const OpenSearch&) = delete;
  ~OpenSearch() { system_.FindClose(search_); }

 private:
  WindowsAPI& system_;
  const WindowsAPI::Search search_;
};

class Listing {
 public:
  Listing(const Source& source, FileModule& files, MergeShell& shell, const ProgramState& program,
          const Logging& logging, const std::optional<FileIdentity>& output, DocumentList& list)
      : source_(source),
        files_(files),
        shell_(shell),
        program_(program),
        logging_(logging),
        output_(output),
        list_(list) {}

  ListOutcome Run() {
    if (!source_.IsFolder) return Take(source_.Name) ? ListOutcome::Complete : ListOutcome::TooMany;
    const auto search = RetryInterrupted([&] { return files_.System().FindFirstFile(source_.Path); });
    if (!search.Ok()) return Failed(search.Error());
    const OpenSearch open(files_.System(), search.Value());
    return TakeAll(search.Value());
  }

 private:
  [[nodiscard]] ListOutcome Failed(SystemError error) {
    list_.FolderError = error;
    return ListOutcome::FolderFailed;
  }

  ListOutcome TakeAll(WindowsAPI::Search search) {
    for (;;) {
      const auto next = RetryInterrupted([&] { return files_.System().FindNextFile(search); });
      if (!next.Ok()) return Failed(next.Error());
      if (!next.Value()) return ListOutcome::Complete;
      if (!Take(*next.Value())) return ListOutcome::TooMany;
      if (YieldAndCheckAbort(shell_, program_.Merge)) return ListOutcome::Cancelled;
    }
  }

  /// False when the list cannot grow.
  bool Take(const std::string& name) {
    if (source_.IsFolder && (name == "." || name == ".." || UpperCased(name) == "PAGEFILE.SYS")) return true;
    const ListedDocument document = DocumentOf(source_, name);
    const auto attributes = files_.System().GetFileAttributes(document.Path);
    if (!attributes.Ok()) {
      NoteUnknown(document, attributes.Error());
      return true;
    }
    if (attributes.Value().Kind != FileKind::Regular) return true;
    if (!source_.IsFolder) list_.Inputs.push_back({attributes.Value().Identity, document.Name});
    if (source_.IsFolder) NoteLeft(document, name, attributes.Value().Identity);
    PassFailure why;
    const FileIdentity& identity = attributes.Value().Identity;
    if (!IsThisDocumentApdf(files_, document.Path, &why) && !IsToBePrepared(document, identity)) {
      Refuse(document, identity, why);
      return true;
    }
    if (list_.Names.size() >= static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max()))
      return false;
    list_.Names.push_back(name);
    if (source_.IsFolder) list_.Inputs.push_back({attributes.Value().Identity, document.Name});
    return true;
  }

  [[nodiscard]] bool IsToBePrepared(const ListedDocument& document, const FileIdentity& identity) {
    return program_.Prepare && IsWanted(document, identity);
  }

  void NoteLeft(const ListedDocument& document, const std::string& name, const FileIdentity& identity) {
    if (identity == output_ || !IsLeftTemporary(files_, document.Path, name)) return;
    logging_.Notice("File: \"" + document.Name + "\"  was left by a run that was killed");
    list_.LeftTemporaries.push_back(document.Name);
  }

  /// What cannot even be looked at is passed over, but an output that may lack a document says so.
  void NoteUnknown(const ListedDocument& document, SystemError error) {
    // Gone since it was listed, or a link that leads nowhere.
    const bool isGone = error.Code == ENOENT || error.Code == ELOOP;
    if (source_.IsFolder && (isGone || !EndsInPdf(document.Name))) return;
    logging_.Notice("File: \"" + document.Name + "\"  cannot be looked at: " + error.Words());
    list_.RefusedDocuments.push_back(document);
  }

  void Refuse(const ListedDocument& document, const FileIdentity& identity, const PassFailure& why) {
    const std::string line = "File: \"" + document.Name + "\"  is not acceptable for merging";
    if (!IsWanted(document, identity)) {
      logging_.Log(line);
      return;
    }
    logging_.Notice(line);
    logging_.Notice("  because of " + why.Sentence({}) + " (\"" + document.Name + "\")");
    list_.RefusedDocuments.push_back(document);
  }

  /// Whoever names a file wants it in the output, whatever it is.
  [[nodiscard]] bool IsWanted(const ListedDocument& document, const FileIdentity& identity) {
    return !source_.IsFolder || (identity != output_ && LooksLikeDocument(files_, document.Path));
  }

  const Source& source_;
  FileModule& files_;
  MergeShell& shell_;
  const ProgramState& program_;
  const Logging& logging_;
  const std::optional<FileIdentity>& output_;
  DocumentList& list_;
};

}  // namespace

bool LooksLikeDocument(FileModule& files, const std::string& path) {
  if (EndsInPdf(path)) return true;
  const std::int16_t fileNumber = files.OpenForBinaryRead(path);
  std::string start;
  const bool read = files.ReadBlock(fileNumber, 1, kSearchedBytes, start) > 0;
  // It was only read.
  static_cast<void>(files.Close(fileNumber));
  return read && start.find("%PDF-") != std::string::npos;
}

ListedDocument DocumentOf(const Source& source, const std::string& name) {
  if (!source.IsFolder) return {name, source.Path};
  return {source.Name.empty() ? name : WithSeparator(source.Name) + name, source.Path + name};
}

ListOutcome ListDocuments(const Source& source, FileModule& files, MergeShell& shell,
                          const ProgramState& program, const Logging& logging,
                          const std::optional<FileIdentity>& output, DocumentList& list) {
  return Listing(source, files, shell, program, logging, output, list).Run();
}

}  // namespace folioweld
