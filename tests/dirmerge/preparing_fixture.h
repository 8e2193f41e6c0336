#pragma once

#include <string>

#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"
#include "tests/support/preparing_script.h"

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
    return CopyingCommands(copy_, status);
  }
  void Script(const std::string& commands) const {
    WritePreparingScript(folder_, "bin/folioweld-prepare", commands);
  }
  void AddOther(const std::string& name) const { folder_.Write("docs/" + name, kOtherDocument); }

  std::string copy_;
};

}  // namespace folioweld::testing
