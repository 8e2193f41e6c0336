#include "dirmerge/source_list.h"

#include <string_view>

#include "dirmerge/paths.h"
#include "platform/retry.h"

namespace folioweld {

namespace {

constexpr std::size_t kBlockSize = 64 * 1024;

/// Why the source cannot be used; empty when it can.
std::string ProblemOf(const SystemResult<FileInformation>& found) {
  if (!found.Ok()) return found.Error().Words();
  const FileKind kind = found.Value().Kind;
  if (kind == FileKind::Regular || kind == FileKind::Directory) return {};
  return "it is neither a file nor a folder";
}

/// Everything that comes until the end.
SystemError ReadToEnd(WindowsAPI& system, WindowsAPI::Handle file, std::string& text) {
  std::string block(kBlockSize, '\0');
  for (;;) {
    const auto count = RetryInterrupted([&] { return system.ReadNext(file, block.data(), block.size()); });
    if (!count.Ok()) return count.Error();
    if (count.Value() == 0) return {};
    text.append(block, 0, count.Value());
  }
}

void AppendNames(std::string_view text, std::vector<std::string>& names) {
  while (!text.empty()) {
    const std::size_t end = text.find('\0');
    names.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
}

}  // namespace

std::vector<Source> FindSources(WindowsAPI& system, const std::vector<std::string>& names,
                                std::string& problem) {
  std::vector<Source> sources;
  for (const std::string& name : names) {
    Source source{name, FullPath(system, name), false};
    const auto found = system.GetFileAttributes(source.Path);
    const std::string why = ProblemOf(found);
    if (!why.empty()) {
      problem = "the source \"" + name;
      problem.append("\" cannot be joined: ").append(why);
      return {};
    }
    source.IsFolder = found.Value().Kind == FileKind::Directory;
    if (source.IsFolder) source.Path = WithSeparator(source.Path);
    sources.push_back(std::move(source));
  }
  return sources;
}

bool ReadSourceNames(WindowsAPI& system, Arguments& arguments, std::string& problem) {
  if (!arguments.SourcesFile) return true;
  const std::string& file = *arguments.SourcesFile;
  const bool isStandardInput = file == "-";
  const auto opened = isStandardInput ? SystemResult<WindowsAPI::Handle>(WindowsAPI::kStandardInput)
                                      : system.CreateFile(file, OpenMode::ReadSequence);
  std::string text;
  SystemError error = opened.Error();
  if (opened.Ok()) error = ReadToEnd(system, opened.Value(), text);
  // Nothing was written, so that closing can lose nothing.
  if (opened.Ok() && !isStandardInput) static_cast<void>(system.CloseHandle(opened.Value()));
  if (error) {
    problem = "the list of sources \"" + file + "\" cannot be read: " + error.Words();
    return false;
  }
  AppendNames(text, arguments.Sources);
  return true;
}

}  // namespace folioweld
