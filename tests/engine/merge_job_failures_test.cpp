// What happens when a pass, the output or the disk fails after the job has begun.

#include <cerrno>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

#include "engine/own_files.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/status_texts.h"

namespace folioweld::testing {
namespace {

using Events = std::vector<std::string>;

const std::string kPass1 = "Pass #1 of building output file: get missing lengths and relocate objects";
const std::string kPass2 =
    "   -> OK : the missing length of 0  object has been found\r\n"
    "Pass #2 for output file: compute new object numbers";
const std::string kBuilt = kPass1 + kPass2 + "   -> OK\r\n" + kPass3 + "   -> OK\r\n";
const std::string kPassLabel = "\r\nPass #1 (getting general document structure):    \r\n";

std::string Last(const std::string& text, std::size_t size) {
  return text.size() > size ? text.substr(text.size() - size) : text;
}

class MergeJobFailureTest : public ::testing::Test {
 protected:
  /// Runs the job over an existing output and checks what every failure after the first steps leaves.
  void RunAndFail(const std::string& first, const std::string& second) {
    run_.FirstPath = run_.Folder.Write("a.pdf", first);
    run_.SecondPath = run_.Folder.Write("b.pdf", second);
    run_.Folder.Write("out.pdf", "old");
    run_.State.DocFileName(1) = run_.FirstPath;
    run_.State.DocFileName(2) = run_.SecondPath;
    run_.State.DocFileName(3) = run_.OutputPath;
    run_.State.ShowOutputAfterMerge = true;
    const std::size_t handles = OpenHandles();
    run_.Run();
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_TRUE(run_.Failed());
    EXPECT_EQ(run_.State.DocFileName(3), "");
    EXPECT_EQ(run_.State.DocFileName(1), run_.FirstPath);
    EXPECT_EQ(run_.State.DocFileName(2), run_.SecondPath);
    for (std::int32_t slot = 1; slot <= 3; ++slot) EXPECT_EQ(run_.State.DocFileNumber(slot), -1) << slot;
    EXPECT_FALSE(run_.State.JobRunning);
    EXPECT_FALSE(run_.State.AbortRequested);
    EXPECT_TRUE(run_.Shell.ShownOutputs.empty());
    EXPECT_EQ(run_.Shell.Calls, (Events{"DisableInputPicking", "RefreshControls", "EnterRunningState",
                                        "LeaveRunningState", "RefreshControls"}));
    EXPECT_EQ(ReadFile(run_.FirstPath), first);
    EXPECT_EQ(ReadFile(run_.SecondPath), second);
    ASSERT_EQ(run_.LogLines().size(), logLines_);
    EXPECT_EQ(run_.Shell.Notices, run_.LogLines());
  }

  void ExpectOutputUntouched() {
    EXPECT_EQ(run_.Output(), "old");
    EXPECT_EQ(run_.Folder.Names(), (Events{"a.pdf", "b.pdf", "out.pdf"}));
    EXPECT_TRUE(run_.Shell.Messages.empty());
  }

  void ExpectOutputDeleted() {
    EXPECT_EQ(run_.Folder.Names(), (Events{"a.pdf", "b.pdf"}));
    EXPECT_TRUE(run_.Shell.Messages.empty());
  }

  void ExpectLogged(const std::string& sentence) {
    EXPECT_EQ(run_.LogLines(), Events{"[Folioweld-cmdOK]=>The merge failed: " + sentence});
  }

  /// Fails the calls of that name once the output is being written.
  void FailWhileWriting(const std::string& name, int error) {
    run_.System.Decide = [this, name, error](const FaultingSystem::Call& call, std::size_t) {
      const bool writing = run_.Status(2).find("Pass #4") != std::string::npos;
      return writing && call.Name == name ? FaultingSystem::Fault{error, 0} : FaultingSystem::Fault{};
    };
  }

  /// Does something once, when the output begins to be written.
  void WhenWriting(const std::function<void()>& act) {
    run_.Shell.OnStatus = [this, act, done = false](int) mutable {
      if (done || run_.Status(2).find(kPass4) == std::string::npos) return;
      done = true;
      act();
    };
  }

  MergeRun run_;
  std::size_t logLines_ = 1;
};

// The passes.

TEST_F(MergeJobFailureTest, InTheFirstPassOfTheFirstInput) {
  RunAndFail(DocumentBuilder().Object(1, "<<>>").Object(2, "<<>>").Trailer("/Size 2").Build(),
             SimpleDocument(1));
  EXPECT_EQ(run_.Status(0), "Parsing file #1: " + run_.FirstPath + kPassLabel + "+0-2" + kFailed);
  EXPECT_EQ(run_.Status(1), "");
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
  ExpectLogged("\"" + run_.FirstPath +
               "\": the cross-reference table lists objects beyond the trailer's /Size of 2");
}

TEST_F(MergeJobFailureTest, InTheSecondPassOfTheFirstInput) {
  DocumentBuilder builder;
  const std::string bytes = builder.Object(1, "<<>>").Object(2, "true").Build();
  RunAndFail(bytes, SimpleDocument(1));
  EXPECT_EQ(run_.Status(0), "Parsing file #1: " + run_.FirstPath + kPassLabel +
                                "+0-2   -> OK\r\nPass #2 (getting description of the objects):\r\n+ 0% (0)" +
                                kFailed);
  EXPECT_EQ(run_.Status(1), "");
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
  EXPECT_EQ(
      run_.LogLines()[0].find("[Folioweld-cmdOK]=>The merge failed: \"" + run_.FirstPath +
                              "\", object 2, file offset " + std::to_string(builder.OffsetOf(2)) + ": "),
      0U);
}

TEST_F(MergeJobFailureTest, InTheFirstPassOfTheSecondInput) {
  RunAndFail(SimpleDocument(1), DocumentBuilder().Object(1, "<<>>").Trailer("/Root 1 0 R").Build());
  EXPECT_EQ(Last(run_.Status(0), 11), "(6)   -> OK");
  EXPECT_EQ(run_.Status(1), "Parsing file #2: " + run_.SecondPath + kPassLabel + "+0-1" + kFailed);
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
}

TEST_F(MergeJobFailureTest, InTheSecondPassOfTheSecondInput) {
  RunAndFail(SimpleDocument(1), DocumentBuilder().Object(1, "null").Build());
  EXPECT_EQ(Last(run_.Status(1), kFailed.size()), kFailed);
  EXPECT_EQ(run_.Status(2), "");
  ExpectOutputUntouched();
}

TEST_F(MergeJobFailureTest, InTheFirstPassOfTheOutput) {
  RunAndFail(DocumentBuilder().Object(1, "<<>>").Stream(2, "", "data", "9 0 R").Build(), SimpleDocument(1));
  EXPECT_EQ(run_.Status(2), kPass1 + kFailed + "\r\n");
  ExpectOutputUntouched();
  ExpectLogged("\"" + run_.FirstPath +
               "\", object 2: the stream's /Length refers to object 9, which is no number of 0 or more");
}

TEST_F(MergeJobFailureTest, InTheSecondPassOfTheOutput) {
  RunAndFail(SimpleDocument(1), DocumentBuilder().Object(1, "<</A 2147483646 0 R>>").Build());
  EXPECT_EQ(run_.Status(2), kPass1 + kPass2 + kFailed + "\r\n")
      << "the pass has shown it, the job adds nothing";
  ExpectOutputUntouched();
}

TEST_F(MergeJobFailureTest, InTheThirdPassOfTheOutput) {
  RunAndFail(DocumentBuilder().Object(1, "<</Type/Catalog>>").Build(), SimpleDocument(1));
  EXPECT_EQ(run_.Status(2), kPass1 + kPass2 + "   -> OK\r\n" + kPass3 + kFailed + "\r\n");
  ExpectOutputUntouched();
  ExpectLogged("\"" + run_.FirstPath + "\", object 1: the catalog has no page tree (/Pages)");
}

TEST_F(MergeJobFailureTest, OfAPageTreeThatLeadsOutOfTheFirstInput) {
  RunAndFail(DocumentBuilder().Object(1, "<</Pages 4 0 R>>").Build(), SimpleDocument(1));
  ExpectOutputUntouched();
  ExpectLogged("\"" + run_.FirstPath +
               "\", object 1: the root of the page tree (/Pages) is not in the document");
}

TEST_F(MergeJobFailureTest, OfACatalogThatLeadsOutOfTheSecondInput) {
  RunAndFail(SimpleDocument(1), DocumentBuilder().Object(1, "<<>>").Trailer("/Size 2/Root 2 0 R").Build());
  ExpectOutputUntouched();
  ExpectLogged("\"" + run_.SecondPath + "\", object 2: the catalog (/Root) is not in the document");
}

TEST_F(MergeJobFailureTest, OfATrailerWithoutACatalog) {
  RunAndFail(DocumentBuilder().Object(1, "<<>>").Trailer("/Size 2").Build(), SimpleDocument(1));
  ExpectOutputUntouched();
  ExpectLogged("\"" + run_.FirstPath + "\": the trailer names no catalog (/Root)");
}

TEST_F(MergeJobFailureTest, OfAStreamBeyondTheEndOfItsFileBeforeTheOutputIsOpened) {
  RunAndFail(SimpleDocument(1), DocumentBuilder()
                                    .Object(1, "<</Pages 2 0 R>>")
                                    .Object(2, "<</Count 0>>")
                                    .Stream(3, "", "data", "100000")
                                    .Build());
  ExpectOutputUntouched();
  EXPECT_NE(run_.LogLines()[0].find("\"" + run_.SecondPath + "\", object 3, file offset "),
            std::string::npos);
  EXPECT_NE(run_.LogLines()[0].find("the stream of 100000 bytes goes beyond the end of the file"),
            std::string::npos);
}

// Opening the output.

class OutputOpenTest : public MergeJobFailureTest {
 protected:
  OutputOpenTest() { logLines_ = 2; }

  void ExpectMessage(const std::string& path, const std::string& words) {
    ASSERT_EQ(run_.Shell.Messages.size(), 1U);
    EXPECT_EQ(run_.Shell.Messages[0].Title, "Folioweld");
    EXPECT_EQ(run_.Shell.Messages[0].Icon, MessageIcon::Exclamation);
    EXPECT_EQ(run_.Shell.Messages[0].Text, "Could not open output file: " + path);
    EXPECT_EQ(run_.Status(2), kBuilt) << "every pass has its outcome already";
    EXPECT_EQ(run_.LogLines(),
              (Events{"[Folioweld-cmdOK]=>The merge failed: \"" + path + "\": the output cannot be opened",
                      "[Folioweld-cmdOK]=>  because of " + words}));
  }
};

TEST_F(OutputOpenTest, OfAReadOnlyFileIsAMessageAndLeavesItAlone) {
  run_.System.Decide = [this](const FaultingSystem::Call& call, std::size_t) {
    return call.Path == run_.OutputPath ? FaultingSystem::Fault{EACCES, 0} : FaultingSystem::Fault{};
  };
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  ExpectMessage(run_.OutputPath, "Permission denied");
  EXPECT_EQ(run_.Output(), "old");
}

TEST_F(OutputOpenTest, InAFolderThatDoesNotExist) {
  run_.OutputPath = run_.Folder.Path() + "/none/out.pdf";
  run_.FirstPath = run_.Folder.Write("a.pdf", SimpleDocument(1));
  run_.State.DocFileName(1) = run_.FirstPath;
  run_.State.DocFileName(3) = run_.OutputPath;
  run_.Run();
  EXPECT_TRUE(run_.Failed());
  EXPECT_EQ(run_.State.DocFileName(3), "");
  EXPECT_EQ(run_.Shell.Messages.size(), 1U);
}

TEST_F(OutputOpenTest, OfAFolder) {
  run_.FirstPath = run_.Folder.Write("a.pdf", SimpleDocument(1));
  run_.State.DocFileName(1) = run_.FirstPath;
  run_.State.DocFileName(3) = run_.Folder.MakeFolder("folder");
  run_.Run();
  EXPECT_TRUE(run_.Failed());
  EXPECT_TRUE(std::filesystem::is_directory(run_.Folder.File("folder")));
}

TEST_F(OutputOpenTest, IsNotAMessageWhenSilent) {
  run_.State.SilentMode = true;
  run_.System.Decide = [this](const FaultingSystem::Call& call, std::size_t) {
    return call.Path == run_.OutputPath ? FaultingSystem::Fault{EACCES, 0} : FaultingSystem::Fault{};
  };
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  ExpectOutputUntouched();
}

TEST_F(OutputOpenTest, WithoutANameFailsAtTheFirstWrite) {
  MergeRun run(SimpleDocument(1), SimpleDocument(1));
  run.State.DocFileName(3).clear();
  run.Run();
  EXPECT_TRUE(run.Failed());
  EXPECT_EQ(run.Status(2), kBuilt + kPass4 + kFailed + "\r\n");
  EXPECT_TRUE(run.Shell.Messages.empty());
  EXPECT_EQ(run.Folder.Names(), (Events{"a.pdf", "b.pdf"}));
  EXPECT_EQ(run.Shell.Calls.back(), "RefreshControls");
}

// The disk.

TEST_F(MergeJobFailureTest, OfAWriteOnAFullDisk) {
  FailWhileWriting("WriteFile", ENOSPC);
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  EXPECT_EQ(run_.Status(2), kBuilt + kPass4 + kFailed + "\r\n");
  ExpectOutputDeleted();
  EXPECT_EQ(run_.LogLines()[0].find("[Folioweld-cmdOK]=>The merge failed: \"" + run_.OutputPath + "\", "),
            0U);
  EXPECT_NE(run_.LogLines()[0].find("the output cannot be written: No space left on device"),
            std::string::npos);
}

TEST_F(MergeJobFailureTest, OfAWriteThatReportsNoProgress) {
  FailWhileWriting("WriteFile", EIO);
  RunAndFail(SimpleDocument(3), SimpleDocument(1));
  ExpectOutputDeleted();
}

TEST_F(MergeJobFailureTest, OfTheCloseOfTheOutput) {
  FailWhileWriting("CloseHandle", EDQUOT);
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  EXPECT_EQ(run_.Status(2), kBuilt + kPass4 + kFailed + "\r\n");
  ExpectOutputDeleted();
  ExpectLogged("\"" + run_.OutputPath + "\": the output cannot be finished: Disk quota exceeded");
}

TEST_F(MergeJobFailureTest, OfTheCutToTheBytesWritten) {
  FailWhileWriting("SetEndOfFile", ENOSPC);
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  EXPECT_EQ(run_.Status(2), kBuilt + kPass4 + kFailed + "\r\n");
  ExpectOutputDeleted();
  ExpectLogged("\"" + run_.OutputPath + "\": the output cannot be finished: No space left on device");
}

TEST_F(MergeJobFailureTest, OfAWriteWhoseFileCannotBeDeletedLeavesItEmptyAndSaysSo) {
  run_.System.Decide = [this](const FaultingSystem::Call& call, std::size_t) {
    const bool fails = call.Is("DeleteFile") ||
                       (call.Is("WriteFile") && run_.Status(2).find("Pass #4") != std::string::npos);
    return fails ? FaultingSystem::Fault{EIO, 0} : FaultingSystem::Fault{};
  };
  logLines_ = 2;
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  EXPECT_EQ(run_.Output(), "");
  EXPECT_EQ(run_.LogLines()[0], "[Folioweld-cmdOK]=>The output \"" + run_.OutputPath +
                                    "\" could not be removed and is not usable");
}

TEST_F(MergeJobFailureTest, OfAWriteSparesAFileThatTookTheOutputsPlace) {
  WhenWriting([this] {
    std::filesystem::remove(run_.OutputPath);
    run_.Folder.Write("out.pdf", "somebody else's");
  });
  FailWhileWriting("WriteFile", ENOSPC);
  RunAndFail(SimpleDocument(1), SimpleDocument(1));
  EXPECT_EQ(run_.Output(), "somebody else's");
}

TEST_F(MergeJobFailureTest, OfAnInputThatCannotBeReadAnyMore) {
  FailWhileWriting("ReadFile", EIO);
  RunAndFail(SimpleDocument(1), DocumentBuilder()
                                    .Object(1, "<</Pages 2 0 R>>")
                                    .Object(2, "<</Count 0>>")
                                    .Stream(3, "", std::string(500000, 'x'))
                                    .Build());
  EXPECT_EQ(run_.Status(2), kBuilt + kPass4 + kFailed + "\r\n");
  ExpectOutputDeleted();
  EXPECT_NE(run_.LogLines()[0].find("Input/output error"), std::string::npos);
}

// Inputs that change while they are being read.

class ChangedInputTest : public MergeJobFailureTest {
 protected:
  /// Runs the job and changes one input when the writing begins; its time of change differs for sure.
  void RunAndChange(const std::string& name, const std::string& first, const std::string& second,
                    const std::string& changed) {
    run_.FirstPath = run_.Folder.Write("a.pdf", first);
    run_.SecondPath = run_.Folder.Write("b.pdf", second);
    run_.State.DocFileName(1) = run_.FirstPath;
    run_.State.DocFileName(2) = run_.SecondPath;
    const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(run_.FirstPath, past);
    std::filesystem::last_write_time(run_.SecondPath, past);
    WhenWriting([this, name, changed] { run_.Folder.Write(name, changed); });
    const std::size_t handles = OpenHandles();
    run_.Run();
    EXPECT_EQ(OpenHandles(), handles);
    EXPECT_TRUE(run_.Failed());
    EXPECT_EQ(run_.State.DocFileName(3), "");
    EXPECT_EQ(run_.Status(2), kBuilt + kPass4 + kFailed + "\r\n");
    ExpectOutputDeleted();
  }
};

TEST_F(ChangedInputTest, ChangedBytesFailTheMerge) {
  std::string changed = SimpleDocument(1);
  changed[changed.find("page")] = 'P';
  RunAndChange("a.pdf", SimpleDocument(1), SimpleDocument(2), changed);
  ExpectLogged("\"" + run_.FirstPath +
               "\": the file was changed, or its name, links or permissions were, while it was being read");
}

TEST_F(ChangedInputTest, ChangedBytesOfTheSecondInputFailTheMerge) {
  std::string changed = SimpleDocument(2);
  changed[changed.find("page")] = 'P';
  RunAndChange("b.pdf", SimpleDocument(1), SimpleDocument(2), changed);
  ExpectLogged("\"" + run_.SecondPath +
               "\": the file was changed, or its name, links or permissions were, while it was being read");
}

TEST_F(ChangedInputTest, AnInputWhoseDateIsSetBackFailsTheMerge) {
  std::string changed = SimpleDocument(1);
  changed[changed.find("page")] = 'P';
  run_.Folder.Write("a.pdf", SimpleDocument(1));
  run_.Folder.Write("b.pdf", SimpleDocument(2));
  run_.State.DocFileName(1) = run_.FirstPath;
  run_.State.DocFileName(2) = run_.SecondPath;
  WhenWriting([this, changed] {
    const auto date = std::filesystem::last_write_time(run_.FirstPath);
    const FileInformation before = run_.System.GetFileAttributes(run_.FirstPath).Value();
    // The clock of the file system ticks every few milliseconds.
    do {
      run_.Folder.Write("a.pdf", changed);
      std::filesystem::last_write_time(run_.FirstPath, date);
    } while (IsSameState(run_.System.GetFileAttributes(run_.FirstPath).Value(), before));
  });
  run_.Run();
  EXPECT_TRUE(run_.Failed());
  ExpectOutputDeleted();
}

TEST_F(ChangedInputTest, ALongerInputFailsTheMerge) {
  RunAndChange("b.pdf", SimpleDocument(1), SimpleDocument(2), SimpleDocument(2) + "\n");
}

TEST_F(ChangedInputTest, ATruncatedInputFailsTheMerge) {
  const std::string large = DocumentBuilder()
                                .Object(1, "<</Pages 2 0 R>>")
                                .Object(2, "<</Count 0>>")
                                .Stream(3, "", std::string(300000, 'x'))
                                .Build();
  RunAndChange("b.pdf", SimpleDocument(1), large, large.substr(0, 1000));
}

TEST_F(ChangedInputTest, AnInputThatIsWhollyInMemoryMayNotShrinkEither) {
  const std::string small = SimpleDocument(20);
  RunAndChange("a.pdf", small, SimpleDocument(1), small.substr(0, small.size() - 1));
}

TEST_F(ChangedInputTest, AnEmptiedInputFailsTheMerge) {
  RunAndChange("a.pdf", SimpleDocument(1), SimpleDocument(2), "");
}

}  // namespace
}  // namespace folioweld::testing
