#pragma once

#include <filesystem>
#include <string>

#include "tests/support/temp_folder.h"

namespace folioweld::testing {

/// A document that is refused without being prepared.
inline constexpr char kOtherDocument[] =
    "%PDF-1.5\n%abcd\nno cross-reference table stands in this document\n";

/// Writes a shell script that stands in for the program which prepares documents. The commands find the
/// document in "$in" and the file for the copy in "$out".
inline void WritePreparingScript(const TempFolder& folder, const std::string& name,
                                 const std::string& commands) {
  const std::string path = folder.Write(name,
                                        "#!/bin/sh\n"
                                        "both=${1#--descriptors=}\n"
                                        "in=/proc/$$/fd/${both%,*} out=/proc/$$/fd/${both#*,}\n" +
                                            commands + "\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

/// Commands that write a copy of which the bytes are those of the file.
inline std::string CopyingCommands(const std::string& copy, const std::string& status = "0") {
  return "cat '" + copy + "' > $out; echo 'reason: cross-reference stream' >&2; exit " + status;
}

}  // namespace folioweld::testing
