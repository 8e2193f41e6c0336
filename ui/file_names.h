#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace folioweld {

// File names are the system's bytes. They become characters only to be shown, and to be handed to a dialog.

/// Bytes as a person reads them: UTF-8 where they are that, and one character a byte where they are not.
/// Line ends stay.
[[nodiscard]] QString ShownText(std::string_view bytes);

/// A path for a label: as `ShownText`, on one line, and its two ends around " ... " when it is longer than
/// `mostBytes`.
[[nodiscard]] QString ShownPath(const std::string& path, int mostBytes);

/// A line of the activity log: UTF-8 when the whole line is valid, else one character a byte. Then everything
/// that could disturb a text box or that lies outside Latin-1 becomes U+00BF.
[[nodiscard]] QString ShownLogLine(std::string_view line);

/// The text of the log, line by line.
[[nodiscard]] QString ShownLog(std::string_view text);

/// A path for a dialog. Bytes that are no UTF-8 are lost here; see `PathFromDialog`.
[[nodiscard]] QString PathForDialog(const std::string& path);

/// The bytes of a dialog's answer. The name that the dialog was given comes back as the very bytes it was.
[[nodiscard]] std::string PathFromDialog(const QString& answer, const std::string& given);

}  // namespace folioweld
