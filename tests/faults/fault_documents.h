#pragma once

#include <string>

namespace folioweld::testing {

/// A document of one page with a stream too long to be gathered in memory, so that it is copied inside the
/// system.
[[nodiscard]] std::string DocumentWithLongStream(const std::string& text, std::size_t streamBytes);

/// What joining gives when nothing fails; an empty second text joins the first one alone.
[[nodiscard]] std::string Joined(const std::string& first, const std::string& second);

/// Whether `qpdf --check` has nothing to say about the file; false also where there is no qpdf.
[[nodiscard]] bool IsSound(const std::string& path);
[[nodiscard]] bool HaveQpdf();

/// Makes a file older than anything that a test does, so that every change shows in its time.
void MakeOld(const std::string& path);

}  // namespace folioweld::testing
