#include "dirmerge/document_list.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

#include "tests/dirmerge/crowded_system.h"
#include "tests/dirmerge/directory_merge_fixture.h"
#include "tests/support/document_builder.h"

namespace folioweld {
namespace {

using testing::FaultingSystem;
using testing::Names;
using testing::SimpleDocument;

class DocumentListTest : public testing::DirectoryMergeFixture {
 protected:
  ListOutcome List() {
    list_ = {};
    logged_.clear();
    noticed_.clear();
    const ListOutcome outcome =
        ListDocuments({"", Docs(), true}, files_, shell_, program_, logging_, output_, list_);
    std::sort(list_.Names.begin(), list_.Names.end());
    refused_.clear();
    for (const ListedDocument& document : list_.RefusedDocuments) refused_.push_back(document.Name);
    std::sort(refused_.begin(), refused_.end());
    return outcome;
  }

  void Fail(const std::string& call, const std::string& path, int error) {
    system_.Decide = [=](const FaultingSystem::Call& made, std::size_t) {
      return FaultingSystem::Fault{made.Name == call && made.Path == path ? error : 0, 0};
    };
  }

  DocumentList list_;
  Names refused_;
  Names logged_;
  Names noticed_;
  std::optional<FileIdentity> output_;
  const Logging logging_{[this](const std::string& line) { logged_.push_back(line); },
                         [this](const std::string& line) {
                           logged_.push_back(line);
                           noticed_.push_back(line);
                         }};
};

TEST_F(DocumentListTest, TakesEveryAcceptableFile) {
  AddDocument("b.pdf");
  AddDocument("a.pdf");
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.Names, (Names{"a.pdf", "b.pdf"}));
  EXPECT_TRUE(logged_.empty());
}

TEST_F(DocumentListTest, TakesHiddenNamesAndNamesWithoutADot) {
  for (const char* name : {".hidden", "nodot", "report.txt", "...", "UPPER.PDF"}) AddDocument(name, "x");
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.Names, (Names{"...", ".hidden", "UPPER.PDF", "nodot", "report.txt"}));
}

TEST_F(DocumentListTest, PassesOverThePageFileInAnyCase) {
  for (const char* name : {"PAGEFILE.SYS", "pagefile.sys", "PageFile.Sys"}) AddDocument(name);
  AddDocument("PAGEFILE.SYS2");
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.Names, Names{"PAGEFILE.SYS2"});
  EXPECT_TRUE(logged_.empty());
}

TEST_F(DocumentListTest, PassesOverFoldersAndLinksToFolders) {
  folder_.MakeFolder("docs/folder.pdf");
  std::filesystem::create_directory_symlink(Doc("folder.pdf"), Doc("link.pdf"));
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(list_.Names.empty());
  EXPECT_TRUE(logged_.empty());
}

TEST_F(DocumentListTest, FollowsLinksToFiles) {
  folder_.Write("elsewhere", SimpleDocument(1));
  std::filesystem::create_symlink(folder_.File("elsewhere"), Doc("link.pdf"));
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.Names, Names{"link.pdf"});
}

TEST_F(DocumentListTest, PassesOverDanglingAndCircularLinksInSilence) {
  std::filesystem::create_symlink("missing", Doc("dangling.pdf"));
  std::filesystem::create_symlink("circle.pdf", Doc("circle.pdf"));
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(list_.Names.empty());
  EXPECT_TRUE(logged_.empty());
}

TEST_F(DocumentListTest, ADocumentThatCannotBeLookedAtIsToldAndCounted) {
  AddDocument("a.pdf");
  AddDocument("b.pdf");
  Fail("GetFileAttributes", Doc("a.pdf"), EIO);
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.Names, Names{"b.pdf"});
  EXPECT_EQ(noticed_, Names{"File: \"a.pdf\"  cannot be looked at: Input/output error"});
  EXPECT_EQ(refused_, Names{"a.pdf"});
}

/// Files as a run leaves them that was killed.
class LeftTemporariesTest : public DocumentListTest {
 protected:
  void Leave(const std::string& name, const std::string& bytes, unsigned mode = 0600) const {
    ASSERT_EQ(::chmod(folder_.Write("docs/" + name, bytes).c_str(), mode), 0);
  }

  /// What the program itself writes.
  [[nodiscard]] std::string Joined() {
    AddDocument("a");
    AddDocument("b");
    EXPECT_TRUE(Merge().OutputWritten);
    return testing::ReadFile(Output());
  }

  static std::string Told(const std::string& name) {
    return "File: \"" + name + "\"  was left by a run that was killed";
  }
};

TEST_F(LeftTemporariesTest, AnEmptyOneIsToldAndCounted) {
  AddDocument("a");
  Leave("Pdf09AF.tmp", "");
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.LeftTemporaries, Names{"Pdf09AF.tmp"});
  EXPECT_EQ(noticed_, Names{Told("Pdf09AF.tmp")});
  EXPECT_EQ(list_.Names, Names{"a"});
}

TEST_F(LeftTemporariesTest, AJoinedDocumentIsToldAndCountedAndStillTaken) {
  Leave("Pdf1234.tmp", Joined());
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.LeftTemporaries, Names{"Pdf1234.tmp"});
  EXPECT_EQ(noticed_, Names{Told("Pdf1234.tmp")});
  EXPECT_EQ(list_.Names, (Names{"Pdf1234.tmp", "a", "b"}));
}

TEST_F(LeftTemporariesTest, APreparedCopyIsToldAndCounted) {
  Leave("Pdf1234.tmp",
        "%PDF-1.4\n%\xE2\xE3\xCF\xD3\nxref\n0 1\n0000000000 65535 f \ntrailer\n<< /Size 1\n/Root 1 0 R\n>>\n"
        "startxref\n15\n%%EOF\n");
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.LeftTemporaries, Names{"Pdf1234.tmp"});
}

TEST_F(LeftTemporariesTest, OtherFilesAreNone) {
  const std::string joined = Joined();
  for (const char* name : {"Pdf123.tmp", "Pdf12345.tmp", "pdf1234.tmp", "Pdf12g4.tmp", "Pdf123a.tmp",
                           "Pdf1234.pdf", "xPdf1234.tmp", "Pdf1234.tmp~"}) {
    Leave(name, joined);
  }
  Leave("Pdf0001.tmp", joined, 0644);
  Leave("Pdf0002.tmp", SimpleDocument(1));
  Leave("Pdf0003.tmp", "text");
  Leave("Pdf0004.tmp", joined + "more");
  std::filesystem::create_symlink(Doc("Pdf123.tmp"), Doc("Pdf0005.tmp"));
  std::filesystem::create_directory(Doc("Pdf0006.tmp"));
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(list_.LeftTemporaries.empty()) << list_.LeftTemporaries[0];
}

TEST_F(LeftTemporariesTest, OneOfAnotherUserIsNone) {
  Leave("Pdf1234.tmp", "");
  if (::chown(Doc("Pdf1234.tmp").c_str(), 65534, 65534) != 0)
    GTEST_SKIP() << "files cannot be given away here";
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(list_.LeftTemporaries.empty());
}

TEST_F(LeftTemporariesTest, TheOutputIsNone) {
  Leave("Pdf1234.tmp", "");
  output_ = system_.GetFileAttributes(Doc("Pdf1234.tmp")).Value().Identity;
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(list_.LeftTemporaries.empty());
}

TEST_F(LeftTemporariesTest, TheMergeIsNotCompleteWithThem) {
  const std::string joined = Joined();
  EXPECT_TRUE(Merge().Complete());
  Leave("Pdf1234.tmp", joined);
  const DirectoryMergeReport& report = Merge();
  EXPECT_TRUE(report.OutputWritten);
  EXPECT_EQ(report.LeftTemporaries, Names{"Pdf1234.tmp"});
  EXPECT_EQ(StatusOf(report), kJoinedWithLosses);
}

TEST_F(DocumentListTest, AnotherFileThatCannotBeLookedAtIsPassedOver) {
  AddDocument("notes");
  Fail("GetFileAttributes", Doc("notes"), EIO);
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(noticed_.empty());
  EXPECT_TRUE(refused_.empty());
}

TEST_F(DocumentListTest, NeitherBlocksAtNorReadsPipesAndSockets) {
  ASSERT_EQ(::mkfifo(Doc("pipe.pdf").c_str(), 0600), 0);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  struct sockaddr_un address {};
  address.sun_family = AF_UNIX;
  ASSERT_LT(Doc("s.pdf").size(), sizeof address.sun_path);
  Doc("s.pdf").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(List(), ListOutcome::Complete);
  ::close(socket);
  EXPECT_TRUE(list_.Names.empty());
  EXPECT_TRUE(logged_.empty());
  for (const auto& call : system_.Calls) EXPECT_NE(call.Name, "CreateFile");
}

TEST_F(DocumentListTest, FileThatBecomesAPipeBeforeItIsOpenedIsRefused) {
  AddDocument("a.pdf");
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    if (call.Is("CreateFile") && std::filesystem::is_regular_file(Doc("a.pdf"))) {
      std::filesystem::remove(Doc("a.pdf"));
      EXPECT_EQ(::mkfifo(Doc("a.pdf").c_str(), 0600), 0);
    }
    return FaultingSystem::Fault{};
  };
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_TRUE(list_.Names.empty());
  EXPECT_EQ(logged_[0], "File: \"a.pdf\"  is not acceptable for merging");
}

TEST_F(DocumentListTest, LogsARefusedFileThatIsNoDocumentInOneLineAndTellsNobody) {
  folder_.Write("docs/notes.txt", "notes");
  folder_.Write("docs/empty", "");
  EXPECT_EQ(List(), ListOutcome::Complete);
  std::sort(logged_.begin(), logged_.end());
  EXPECT_EQ(logged_, (Names{"File: \"empty\"  is not acceptable for merging",
                            "File: \"notes.txt\"  is not acceptable for merging"}));
  EXPECT_TRUE(noticed_.empty());
  EXPECT_TRUE(refused_.empty());
}

TEST_F(DocumentListTest, TellsTheReasonOfARefusedFileThatBeginsAsADocument) {
  folder_.Write("docs/half", "%PDF-1.4\nno comment");
  EXPECT_EQ(List(), ListOutcome::Complete);
  const Names lines{
      "File: \"half\"  is not acceptable for merging",
      "  because of file offset 8: the second line is no comment of at least 5 characters (\"half\")"};
  EXPECT_EQ(logged_, lines);
  EXPECT_EQ(noticed_, lines);
  EXPECT_EQ(refused_, Names{"half"});
}

TEST_F(DocumentListTest, FiveBytesAmongTheFirst1024MakeARefusedFileADocument) {
  folder_.Write("docs/five", "%PDF-");
  folder_.Write("docs/four", "%PDF");
  folder_.Write("docs/line end", "\r\n" + SimpleDocument(1));
  folder_.Write("docs/mark", "\xEF\xBB\xBF" + SimpleDocument(1));
  folder_.Write("docs/just", std::string(1019, ' ') + "%PDF-1.4");
  folder_.Write("docs/too late", std::string(1020, ' ') + "%PDF-1.4");
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(refused_, (Names{"five", "just", "line end", "mark"}));
}

TEST_F(DocumentListTest, ItsNameMakesARefusedFileADocument) {
  for (const char* name : {"empty.pdf", "page.PDF", "notes.pdf.txt", "pdf"}) {
    folder_.Write(std::string("docs/") + name, name[0] == 'e' ? "" : "<!DOCTYPE html>");
  }
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(refused_, (Names{"empty.pdf", "page.PDF"}));
}

TEST_F(DocumentListTest, AnOutputThatIsNoDocumentIsNeitherToldNorCounted) {
  folder_.Write("docs/joined.pdf", "");
  output_ = system_.GetFileAttributes(Doc("joined.pdf")).Value().Identity;
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(logged_, Names{"File: \"joined.pdf\"  is not acceptable for merging"});
  EXPECT_TRUE(noticed_.empty());
  EXPECT_TRUE(refused_.empty());
}

TEST_F(DocumentListTest, UnreadableFileCountsAsADocumentWhenItIsNamedLikeOne) {
  AddDocument("a.PdF");
  Fail("CreateFile", Doc("a.PdF"), EACCES);
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(noticed_, (Names{"File: \"a.PdF\"  is not acceptable for merging",
                             "  because of the file cannot be opened: Permission denied (\"a.PdF\")"}));
  EXPECT_EQ(refused_, Names{"a.PdF"});
}

TEST_F(DocumentListTest, UnreadableFileOfAnotherNameIsLoggedOnly) {
  AddDocument("a.txt");
  Fail("CreateFile", Doc("a.txt"), EACCES);
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(logged_, Names{"File: \"a.txt\"  is not acceptable for merging"});
  EXPECT_TRUE(refused_.empty());
}

TEST_F(DocumentListTest, FileThatCannotBeReadCountsAsADocumentWhenItIsNamedLikeOne) {
  AddDocument("a.pdf");
  system_.Decide = FaultingSystem::Failing("ReadFile", EIO);
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(refused_, Names{"a.pdf"});
}

TEST_F(DocumentListTest, GivesTheIdentityOfEveryAcceptedFile) {
  AddDocument("a.pdf");
  ASSERT_EQ(List(), ListOutcome::Complete);
  struct stat status {};
  ASSERT_EQ(::stat(Doc("a.pdf").c_str(), &status), 0);
  ASSERT_EQ(list_.Inputs.size(), 1U);
  EXPECT_EQ(list_.Inputs[0].Identity, (FileIdentity{status.st_dev, status.st_ino}));
}

TEST_F(DocumentListTest, LeavesNoFileOpen) {
  AddDocument("a.pdf");
  folder_.Write("docs/half", "%PDF-1.4\nno comment");
  folder_.Write("docs/no.pdf", "text");
  ASSERT_EQ(List(), ListOutcome::Complete);
  const auto count = [&](const char* name) {
    return std::count_if(system_.Calls.begin(), system_.Calls.end(),
                         [&](const auto& call) { return call.Name == name; });
  };
  EXPECT_EQ(count("CreateFile"), count("CloseHandle"));
}

TEST_F(DocumentListTest, CancelEndsTheListing) {
  AddDocument("a.pdf");
  AddDocument("b.pdf");
  shell_.OnYield = [this] {
    if (!list_.Names.empty()) program_.Merge.AbortRequested = true;
  };
  EXPECT_EQ(List(), ListOutcome::Cancelled);
  EXPECT_EQ(list_.Names.size(), 1U);
}

TEST_F(DocumentListTest, CancelIsSeenAfterTheLastEntryToo) {
  AddDocument("a.pdf");
  long entries = 0;
  shell_.OnYield = [&] {
    // Two looks an entry: the file, "." and "..".
    if (++entries == 5) program_.Merge.AbortRequested = true;
  };
  EXPECT_EQ(List(), ListOutcome::Cancelled);
}

TEST_F(DocumentListTest, FolderThatCannotBeListedIsAFailure) {
  system_.Decide = FaultingSystem::Failing("FindFirstFile", EACCES);
  EXPECT_EQ(List(), ListOutcome::FolderFailed);
}

TEST_F(DocumentListTest, ListingThatBreaksOffIsAFailure) {
  AddDocument("a.pdf");
  int calls = 0;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{call.Is("FindNextFile") && ++calls == 2 ? EIO : 0, 0};
  };
  EXPECT_EQ(List(), ListOutcome::FolderFailed);
}

TEST_F(DocumentListTest, InterruptedListingGoesOn) {
  AddDocument("a.pdf");
  int calls = 0;
  system_.Decide = [&](const FaultingSystem::Call& call, std::size_t) {
    return FaultingSystem::Fault{call.Is("FindNextFile") && ++calls % 2 == 1 ? EINTR : 0, 0};
  };
  EXPECT_EQ(List(), ListOutcome::Complete);
  EXPECT_EQ(list_.Names, Names{"a.pdf"});
}

class CrowdedListing : public DocumentListTest {
 protected:
  ListOutcome ListCrowd(int count) {
    testing::CrowdedSystem crowd(folder_.Write("one", SimpleDocument(1)), count);
    FileModule files(crowd);
    const ListOutcome outcome =
        ListDocuments({"", "/anywhere/", true}, files, shell_, program_, logging_, output_, list_);
    EXPECT_TRUE(crowd.Closed);
    return outcome;
  }
};

TEST_F(CrowdedListing, MayHoldAsManyDocumentsAsSixteenBitsCount) {
  EXPECT_EQ(ListCrowd(32767), ListOutcome::Complete);
  EXPECT_EQ(list_.Names.size(), 32767U);
}

TEST_F(CrowdedListing, WithOneDocumentMoreIsTooMuch) {
  EXPECT_EQ(ListCrowd(32768), ListOutcome::TooMany);
}

}  // namespace
}  // namespace folioweld
