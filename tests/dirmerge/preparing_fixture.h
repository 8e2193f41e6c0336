#pragma once

#include <filesystem>
#include <string>

#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld::testing {

/// A directory merge that prepares documents, with a script in the place of the program for that.
class PreparingFixture : public DirectoryMergeFixture {
 protected:
  PreparingFixture() {
    program_.Prepare = true;
    folder_.MakeFolder("bin");
    system_.ModulePath = folder_.File("bin/folioweld");
    copy_ = folder_.Write("good-copy", SimpleDocument(1, "copy"));
    Script(GoodScript());
  }

  /// What writes a copy that can be joined.
  [[nodiscard]] std::string GoodScript(const std::string& status = "0") const {
    return "cat '" + copy_ + "' > $out; echo 'reason: cross-reference stream' >&2; exit " + status;
  }

  /// The commands find the document in "$in" and the file for the copy in "$out".
  void Script(const std::string& commands) const {
    const std::string path = folder_.Write("bin/folioweld-prepare",
                                           "#!/bin/sh\n"
                                           "both=${1#--descriptors=}\n"
                                           "in=/proc/$$/fd/${both%,*} out=/proc/$$/fd/${both#*,}\n" +
                                               commands + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }

  /// Writes a document that is refused without being prepared.
  void AddOther(const std::string& name) const { folder_.Write("docs/" + name, kOther); }

  static constexpr char kOther[] = "%PDF-1.5\n%abcd\nno cross-reference table stands in this document\n";
  std::string copy_;
};

}  // namespace folioweld::testing
