#pragma once

#include <string>

#include "tests/support/preparing_script.h"

namespace folioweld::testing {

/// Writes a shell script that stands in for the program which carries over. The commands find the joined file
/// in "$joined" and the list of its documents in "$list".
inline void WriteCarryingScript(const TempFolder& folder, const std::string& name,
                                const std::string& commands) {
  WritePreparingScript(folder, name, "joined=$in list=$out\n" + commands);
}

/// Commands that append what the acceptance test looks for: a table, and an end of the file that leads to it.
inline std::string AppendingCommands(const std::string& status = "0") {
  return "size=$(wc -c < $joined); printf 'xref\\r\\n%%appended after byte %s, for a test\\r\\n"
         "startxref\\r\\n%s\\r\\n%%%%EOF\\r\\n' $size $size >> $joined; exit " +
         status;
}

/// The file with what these append to it.
inline std::string WithAppended(const std::string& file) {
  const std::string size = std::to_string(file.size());
  return file + "xref\r\n%appended after byte " + size + ", for a test\r\nstartxref\r\n" + size +
         "\r\n%%EOF\r\n";
}

}  // namespace folioweld::testing
