#include "dirmerge/document_list.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <limits>
#include <optional>

#include "engine/document_check.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

using Log = std::function<void(const std::string&)>;

std::string UpperCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

bool EndsInPdf(const std::string& name) {
  return name.size() >= 4 && UpperCased(name.substr(name.size() - 4)) == ".PDF";
}

/// Whether a refused file is a document after all: it begins as one, or cannot be read and is named like one.
bool LooksLikeDocument(FileModule& files, const std::string& path) {
  const std::int16_t fileNumber = files.OpenForBinaryRead(path);
  if (fileNumber < 1) return EndsInPdf(path);
  std::string start;
  const bool read = files.ReadBlock(fileNumber, 1, 5, start) > 0;
  const bool failed = !read && files.FileLength(fileNumber) != 0;
  static_cast<void>(files.Close(fileNumber));
  return start == "%PDF-" || (failed && EndsInPdf(path));
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
  Listing(const std::string& folder, FileModule& files, MergeShell& shell, const MergeState& state,
          const Log& log, const Log& notice, DocumentList& list)
      : folder_(folder),
        files_(files),
        shell_(shell),
        state_(state),
        log_(log),
        notice_(notice),
        list_(list) {}

  ListOutcome Run() {
    const auto search = RetryInterrupted([&] { return files_.System().FindFirstFile(folder_); });
    if (!search.Ok()) return ListOutcome::FolderFailed;
    const OpenSearch open(files_.System(), search.Value());
    return TakeAll(search.Value());
  }

 private:
  ListOutcome TakeAll(WindowsAPI::Search search) {
    for (;;) {
      const auto next = RetryInterrupted([&] { return files_.System().FindNextFile(search); });
      if (!next.Ok()) return ListOutcome::FolderFailed;
      if (!next.Value()) return ListOutcome::Complete;
      if (!Take(*next.Value())) return ListOutcome::TooMany;
      if (YieldAndCheckAbort(shell_, state_)) return ListOutcome::Cancelled;
    }
  }

  /// False when the list cannot grow.
  bool Take(const std::string& name) {
    if (name == "." || name == ".." || UpperCased(name) == "PAGEFILE.SYS") return true;
    const std::string path = folder_ + name;
    const auto attributes = files_.System().GetFileAttributes(path);
    if (!attributes.Ok()) {
      NoteUnknown(name, attributes.Error());
      return true;
    }
    if (attributes.Value().Kind != FileKind::Regular) return true;
    PassFailure why;
    if (!IsThisDocumentApdf(files_, path, &why)) {
      Refuse(name, path, why);
      return true;
    }
    if (list_.Names.size() >= static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max()))
      return false;
    list_.Names.push_back(name);
    list_.Identities.push_back(attributes.Value().Identity);
    return true;
  }

  /// What cannot even be looked at is passed over, but an output that may lack a document says so.
  void NoteUnknown(const std::string& name, SystemError error) {
    // Gone since it was listed, or a link that leads nowhere.
    if (error.Code == ENOENT || error.Code == ELOOP || !EndsInPdf(name)) return;
    notice_("File: \"" + name + "\"  cannot be looked at: " + error.Words());
    list_.RefusedDocuments.push_back(name);
  }

  void Refuse(const std::string& name, const std::string& path, const PassFailure& why) {
    const std::string line = "File: \"" + name + "\"  is not acceptable for merging";
    log_(line);
    if (!LooksLikeDocument(files_, path)) return;
    const std::string reason = "  because of " + why.Sentence({}) + " (\"" + name + "\")";
    log_(reason);
    notice_(line);
    notice_(reason);
    list_.RefusedDocuments.push_back(name);
  }

  const std::string& folder_;
  FileModule& files_;
  MergeShell& shell_;
  const MergeState& state_;
  const Log& log_;
  const Log& notice_;
  DocumentList& list_;
};

}  // namespace

ListOutcome ListDocuments(const std::string& folder, FileModule& files, MergeShell& shell,
                          const MergeState& state, const std::function<void(const std::string&)>& log,
                          const std::function<void(const std::string&)>& notice, DocumentList& list) {
  return Listing(folder, files, shell, state, log, notice, list).Run();
}

}  // namespace folioweld
