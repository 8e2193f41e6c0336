// Folders that hold more than documents.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

using testing::Exists;
using testing::ReadFile;

constexpr unsigned kNobody = 65534;

class MixedFolder : public testing::ProgramFixture {
 protected:
  /// The program runs as somebody whom file modes hold back; root is not.
  void RunWithoutPrivileges() {
    if (::geteuid() != 0) return;
    const std::string copy = folder_.File("program");
    std::filesystem::copy_file(setup_.Program, copy);
    setup_.Program = copy;
    ASSERT_EQ(::chown(folder_.Path().c_str(), kNobody, kNobody), 0);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path())) {
      ASSERT_EQ(::lchown(entry.path().c_str(), kNobody, kNobody), 0);
    }
    // Builds that count lines leave their counts where this user may write.
    setup_.Environment.emplace_back("GCOV_PREFIX", folder_.File("counts"));
    setup_.BeforeStart = [] {
      if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(125);
    };
  }
};

TEST_F(MixedFolder, PipesSocketsDevicesAndLinksAreNeitherReadNorWaitedFor) {
  AddDocument("a");
  ASSERT_EQ(::mkfifo(Doc("pipe.pdf").c_str(), 0600), 0);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  struct sockaddr_un address {};
  address.sun_family = AF_UNIX;
  ASSERT_LT(Doc("s.pdf").size(), sizeof address.sun_path);
  Doc("s.pdf").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
  std::filesystem::create_symlink("/dev/zero", Doc("endless.pdf"));
  std::filesystem::create_symlink("missing", Doc("dangling.pdf"));
  std::filesystem::create_directory_symlink(folder_.File("tmp"), Doc("folder.pdf"));
  std::filesystem::create_directory(Doc("real-folder.pdf"));
  ExpectRun({"out.pdf", "docs"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 1);
  ::close(socket);
}

TEST_F(MixedFolder, LinkedDocumentsHiddenOnesAndNamesWithoutADotAreJoined) {
  for (const char* name : {".hidden", "nodot"}) AddDocument(name);
  folder_.Write("elsewhere", testing::SimpleDocument(1));
  std::filesystem::create_symlink("../elsewhere", Doc("link"));
  ExpectRun({"out.pdf", "docs"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 3);
}

TEST_F(MixedFolder, FolderInTheFolderIsNotEntered) {
  AddDocument("a");
  std::filesystem::create_directory(Doc("inner"));
  AddDocument("inner/b");
  ExpectRun({"out.pdf", "docs"}, 0, "");
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 1);
}

TEST_F(MixedFolder, UnreadableDocumentIsNamed) {
  AddDocument("a.pdf");
  AddDocument("b.pdf");
  ASSERT_EQ(::chmod(Doc("b.pdf").c_str(), 0), 0);
  RunWithoutPrivileges();
  const Outcome outcome = Run({"out.pdf", "docs"});
  EXPECT_EQ(outcome.Status, 3);
  // Whether the program that it advises is there cannot be seen by everybody.
  const std::string told =
      "[Folioweld-MergeDirectory]=>File: \"b.pdf\"  is not acceptable for merging\n"
      "[Folioweld-MergeDirectory]=>  because of the file cannot be opened: Permission denied (\"b.pdf\")\n"
      "folioweld --prepare joins many of these";
  EXPECT_EQ(outcome.Errors.substr(0, told.size()), told);
  EXPECT_EQ(Pages(folder_.File("out.pdf")), 1);
}

TEST_F(MixedFolder, FolderThatMayBeEnteredButNotListedIsAMessage) {
  AddDocument("a.pdf");
  ASSERT_EQ(::chmod(folder_.File("docs").c_str(), 0100), 0);
  RunWithoutPrivileges();
  ExpectRun({"out.pdf", "docs"}, 1,
            "folioweld: Merge of documents ABORTed (could not reach intput directory)\n"
            "[Folioweld-MergeDirectory]=>  because of Permission denied\n");
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
}

TEST_F(MixedFolder, OutputFolderThatMayNotBeWrittenIsAMessage) {
  AddDocument("a.pdf");
  folder_.MakeFolder("closed");
  ASSERT_EQ(::chmod(folder_.File("closed").c_str(), 0500), 0);
  RunWithoutPrivileges();
  ExpectRun({"closed/out.pdf", "docs"}, 1,
            "folioweld: The output file " + folder_.File("closed/out.pdf") +
                " cannot be created. I cannot do this operation!\n"
                "[Folioweld-MergeDirectory]=>  because of Permission denied\n");
}

TEST_F(MixedFolder, FolderForTemporaryFilesThatMayNotBeWrittenIsTold) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  ASSERT_EQ(::chmod(folder_.File("tmp").c_str(), 0500), 0);
  RunWithoutPrivileges();
  ExpectRun({"out.pdf", "docs"}, 1,
            "[Folioweld-MergeDirectory]=> Temporary file allocation problem!\n"
            "[Folioweld-MergeDirectory]=>  because of Permission denied (\"" +
                folder_.File("tmp/") +
                "\")\n"
                "[Folioweld-MergeDirectory]=>File: \"a\"  is missing in the output\n"
                "[Folioweld-MergeDirectory]=>File: \"b\"  is missing in the output\n"
                "[Folioweld-MergeDirectory]=>File: \"c\"  is missing in the output\n"
                "folioweld: Unable to Merge and Create " +
                folder_.File("out.pdf") + "\n");
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
}

TEST_F(MixedFolder, DocumentsOfAFolderThatMayNotBeWrittenAreJoined) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  ASSERT_EQ(::chmod(folder_.File("docs").c_str(), 0500), 0);
  RunWithoutPrivileges();
  ExpectRun({"out.pdf", "docs"}, 0, "");
}

TEST_F(MixedFolder, OutputThatIsALinkIsRefusedAndItsTargetStays) {
  AddDocument("a");
  folder_.Write("target", "target");
  std::filesystem::create_symlink("target", folder_.File("out.pdf"));
  ExpectRun({"out.pdf", "docs"}, 1,
            "folioweld: The output file " + folder_.File("out.pdf") +
                " cannot be created. I cannot do this operation!\n"
                "[Folioweld-MergeDirectory]=>  because of it is a link\n");
  EXPECT_EQ(ReadFile(folder_.File("target")), "target");
}

}  // namespace
}  // namespace folioweld
