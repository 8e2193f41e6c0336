#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace folioweld {

/// The local files of a list of the type "text/uri-list", which is what desktops hand over when files are
/// dropped: one "file:" address a line, percent-encoded. The paths are the bytes that the addresses stand for
/// and need not be UTF-8. Left out are comments, addresses of another kind or of another machine than
/// `thisHost`, and paths that no file can have.
[[nodiscard]] std::vector<std::string> FilesOfUriList(std::string_view list, std::string_view thisHost);

/// How many addresses of any kind the list has.
[[nodiscard]] std::size_t CountOfUriList(std::string_view list);

}  // namespace folioweld
