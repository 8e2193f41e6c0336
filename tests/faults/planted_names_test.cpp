// Somebody else puts files, links and pipes where the program is going to make its own.

#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "batch/batch_run.h"
#include "dirmerge/command_line.h"
#include "engine/settings_store.h"
#include "tests/faults/child.h"
#include "tests/faults/fault_sweep.h"
#include "tests/faults/quiet_system.h"
#include "tests/support/document_builder.h"
#include "tests/support/merge_run.h"
#include "tests/support/temp_folder.h"

namespace folioweld {
namespace {

namespace fs = std::filesystem;
using testing::Exists;
using testing::InChild;
using testing::ReadFile;

/// Whoever plants names knows which numbers the system is going to give.
class ForeseenSystem : public testing::QuietSystem {
 public:
  SystemResult<std::uint32_t> RandomNumber() override { return 0xABCDU; }
};

constexpr char kPrecious[] = "precious, and longer than nothing";

/// Something at a name that leads, if it leads anywhere, to the victim.
struct Plant {
  const char* What;
  std::function<void(const std::string& victim, const std::string& name)> Put;
};

const std::vector<Plant>& Plants() {
  static const std::vector<Plant> plants = {
      {"a link", [](const auto& victim, const auto& name) { fs::create_symlink(victim, name); }},
      {"a link that leads nowhere",
       [](const auto& victim, const auto& name) { fs::create_symlink(victim + ".missing", name); }},
      {"another name of a file",
       [](const auto& victim, const auto& name) { fs::create_hard_link(victim, name); }},
      {"a pipe", [](const auto&, const auto& name) { EXPECT_EQ(::mkfifo(name.c_str(), 0666), 0); }},
      {"a folder", [](const auto&, const auto& name) { fs::create_directory(name); }},
  };
  return plants;
}

class PlantedNames : public ::testing::Test {
 protected:
  PlantedNames() {
    for (const char* name : {"docs", "tmp", "config/folioweld", "out"}) folder_.MakeFolder(name);
    for (const char* name : {"a", "b", "c", "d", "e"}) {
      folder_.Write(std::string("docs/") + name + ".pdf",
                    testing::SimpleDocument(1, std::string("text of ") + name));
    }
    victim_ = folder_.Write("victim", kPrecious);
    testing::QuietSystem first;
    EXPECT_EQ(Run(first), kEverythingJoined) << first.Said;
    whole_ = ReadFile(Output());
    fs::remove(Output());
    // Again, now that there are settings.
    testing::QuietSystem system;
    EXPECT_EQ(Run(system), kEverythingJoined) << system.Said;
    for (std::size_t i = 0; i < system.Calls.size(); ++i) {
      if (system.Calls[i].Name == "SetEndOfFile") lastCut_ = i;
    }
    fs::remove(Output());
  }
  ~PlantedNames() override { fs::current_path(startFolder_); }

  [[nodiscard]] std::string Output() const { return folder_.File("out/joined.pdf"); }

  ExitStatus Run(testing::QuietSystem& system) const {
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}, {"TMPDIR", folder_.File("tmp")}};
    const ExitStatus status = RunBatch(system, ParseArguments({Output(), folder_.File("docs")}));
    fs::current_path(startFolder_);
    return status;
  }

  void CheckVictim() const {
    EXPECT_EQ(ReadFile(victim_), kPrecious);
    EXPECT_FALSE(Exists(victim_ + ".missing"));
  }

  void Clear(const std::string& name) const {
    for (const auto& entry : fs::directory_iterator(folder_.File(name))) fs::remove_all(entry);
  }

  testing::TempFolder folder_;
  const std::string startFolder_ = fs::current_path().string();
  std::string victim_;
  std::string whole_;
  const std::size_t stride_ = testing::FullRun() ? 1 : testing::kSanitized ? 7 : 2;
  std::size_t lastCut_ = 0;  ///< the call that ends an undisturbed merge
};

TEST_F(PlantedNames, ForTemporariesAreLeftAloneAndOthersAreTaken) {
  for (const Plant& plant : Plants()) {
    for (const char* name : {"tmp/PdfABCD.tmp", "tmp/PdfABCE.tmp", "tmp/PdfABD0.tmp"}) {
      plant.Put(victim_, folder_.File(name));
    }
    ForeseenSystem system;
    EXPECT_EQ(Run(system), kEverythingJoined) << plant.What << ": " << system.Said;
    EXPECT_TRUE(ReadFile(Output()) == whole_) << plant.What;
    CheckVictim();
    for (const char* name : {"tmp/PdfABCD.tmp", "tmp/PdfABCE.tmp", "tmp/PdfABD0.tmp"}) {
      EXPECT_TRUE(Exists(folder_.File(name))) << plant.What << " was removed";
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.File("tmp")), {}), 3) << plant.What;
    Clear("tmp");
    fs::remove(Output());
  }
}

TEST_F(PlantedNames, InPlaceOfATemporaryAtAnyMomentReachNothing) {
  for (const Plant& plant : Plants()) {
    for (std::size_t site = 0;; site += stride_) {
      testing::QuietSystem system;
      bool planted = false;
      system.Decide = [&](const testing::FaultingSystem::Call&, std::size_t index) {
        if (index < site || planted) return testing::FaultingSystem::Fault{};
        for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) {
          if (planted) break;
          planted = true;
          fs::remove(entry);
          plant.Put(victim_, entry.path().string());
        }
        return testing::FaultingSystem::Fault{};
      };
      static_cast<void>(Run(system));
      CheckVictim();
      Clear("tmp");
      ASSERT_FALSE(HasFailure()) << plant.What << " at call " << site;
      if (!planted) {
        EXPECT_GT(site, 100U);
        break;
      }
    }
  }
}

/// Somebody else who can write to the folder for temporaries: another document, readable for all, takes the
/// place of the first temporary file that is found, while the one who put it there keeps it open.
class Intruder {
 public:
  explicit Intruder(const testing::TempFolder& folder)
      : folder_(folder), path_(folder.Write("foreign", testing::SimpleDocument(1, "foreign text"))) {
    EXPECT_EQ(::chmod(path_.c_str(), 0644), 0);
    bytes_ = ReadFile(path_);
    file_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  }
  Intruder(const Intruder&) = delete;
  Intruder& operator=(const Intruder&) = delete;
  ~Intruder() { ::close(file_); }

  /// Takes the place if there is one to take; from then on nothing more.
  void Act() {
    if (!place_.empty()) return;
    for (const auto& entry : fs::directory_iterator(folder_.File("tmp"))) {
      place_ = entry.path().string();
      fs::rename(path_, place_);
      return;
    }
  }

  [[nodiscard]] bool HasActed() const { return !place_.empty(); }
  [[nodiscard]] bool StillStands() const { return Exists(place_) && ReadFile(place_) == bytes_; }
  /// Whether what it keeps open is what it put there.
  [[nodiscard]] bool HasLearntNothing() const {
    std::string now(bytes_.size() + 1, '\0');
    const ssize_t size = ::pread(file_, now.data(), now.size(), 0);
    return size == static_cast<ssize_t>(bytes_.size()) && now.compare(0, bytes_.size(), bytes_) == 0;
  }

 private:
  const testing::TempFolder& folder_;
  std::string path_;
  std::string bytes_;
  std::string place_;
  int file_ = -1;
};

TEST_F(PlantedNames, AnotherDocumentInATemporarysPlaceAtAnyMomentIsNeitherReadNorWrittenNorDeleted) {
  for (std::size_t site = 0;; site += stride_) {
    Intruder intruder(folder_);
    testing::QuietSystem system;
    std::string call;
    system.Decide = [&](const testing::FaultingSystem::Call& next, std::size_t index) {
      if (index < site || intruder.HasActed()) return testing::FaultingSystem::Fault{};
      intruder.Act();
      call = next.Name;
      return testing::FaultingSystem::Fault{};
    };
    const ExitStatus status = Run(system);
    EXPECT_TRUE(intruder.HasLearntNothing());
    if (Exists(Output())) {
      EXPECT_EQ(ReadFile(Output()).find("foreign text"), std::string::npos);
      EXPECT_TRUE(status == kJoinedWithLosses || ReadFile(Output()) == whole_) << status;
    }
    // A name can be taken between the last look and the deletion.
    EXPECT_TRUE(!intruder.HasActed() || intruder.StillStands() || call == "DeleteFile");
    Clear("tmp");
    fs::remove(Output());
    ASSERT_FALSE(HasFailure()) << "at call " << site << ", " << call << ": " << system.Said;
    if (!intruder.HasActed()) {
      EXPECT_GT(site, 100U);
      break;
    }
  }
}

TEST_F(PlantedNames, InTheOutputsPlaceAtAnyMomentReachNothing) {
  for (const Plant& plant : Plants()) {
    for (std::size_t site = 0;; site += stride_) {
      testing::QuietSystem system;
      bool planted = false;
      system.Decide = [&](const testing::FaultingSystem::Call&, std::size_t index) {
        if (index < site || planted) return testing::FaultingSystem::Fault{};
        planted = true;
        fs::remove(Output());
        plant.Put(victim_, Output());
        return testing::FaultingSystem::Fault{};
      };
      const ExitStatus status = Run(system);
      CheckVictim();
      // What stands there in the end is the whole output, or it was not said to be one. Nobody can tell what
      // happens after the last look.
      const bool whole = fs::is_regular_file(fs::symlink_status(Output())) && ReadFile(Output()) == whole_;
      EXPECT_TRUE(whole || status == kNoOutput || site >= lastCut_) << status;
      Clear("tmp");
      Clear("out");
      ASSERT_FALSE(HasFailure()) << plant.What << " at call " << site;
      if (!planted) {
        EXPECT_GT(site, 100U);
        break;
      }
    }
  }
}

TEST_F(PlantedNames, ForNewSettingsAreLeftAlone) {
  const std::string config = folder_.File("config/folioweld/");
  // One foreseen number only: the name is taken for good, and the change fails without harm.
  for (const Plant& plant : Plants()) {
    Clear("config/folioweld");
    ForeseenSystem system;
    system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}};
    SettingsStore settings(system);
    ASSERT_EQ(settings.WriteSetting("MenuSort", "1"), 0);
    const std::string planted = config + "settings.ini." + std::to_string(0xABCD) + ".tmp";
    plant.Put(victim_, planted);
    EXPECT_NE(settings.WriteSetting("MenuSort", "2"), 0) << plant.What;
    EXPECT_EQ(settings.ReadSetting("MenuSort"), "1") << plant.What;
    EXPECT_TRUE(Exists(planted)) << plant.What << " was removed";
    CheckVictim();
  }
}

TEST_F(PlantedNames, InTheSettingsLocksPlaceReachNothing) {
  for (const Plant& plant : Plants()) {
    Clear("config/folioweld");
    plant.Put(victim_, folder_.File("config/folioweld/settings.ini.lock"));
    const testing::ChildEnd end = InChild([&] {
      testing::QuietSystem system;
      system.Environment = {{"XDG_CONFIG_HOME", folder_.File("config")}};
      static_cast<void>(SettingsStore(system).WriteSetting("MenuSort", "2"));
      return 0;
    });
    EXPECT_EQ(end.Status, 0) << plant.What;
    CheckVictim();
  }
}

/// A temporary folder as systems have it, in which everybody may make files and nobody remove those of
/// others.
class StickyFolder : public PlantedNames {
 protected:
  StickyFolder() {
    EXPECT_EQ(::chmod(folder_.Path().c_str(), 0755), 0);
    for (const char* name : {"tmp", "out", "config/folioweld"}) {
      EXPECT_EQ(::chmod(folder_.File(name).c_str(), 01777), 0);
    }
    EXPECT_EQ(::chmod(folder_.File("config/folioweld/settings.ini").c_str(), 0666), 0);
    EXPECT_EQ(::chmod(folder_.File("config/folioweld/settings.ini.lock").c_str(), 0666), 0);
  }

  /// Runs the body as a user who is nobody; skips where users cannot be changed, or this one cannot get at
  /// the test's folder.
  void AsNobody(const std::function<void()>& body) const {
    constexpr unsigned kNobody = 65534;
    const testing::ChildEnd end = InChild([&] {
      if (::setgid(kNobody) < 0 || ::setuid(kNobody) < 0) return testing::kChildSkips;
      if (::access(folder_.Path().c_str(), X_OK) < 0) return testing::kChildSkips;
      body();
      return 0;
    });
    if (end.Status == testing::kChildSkips) GTEST_SKIP() << "another user cannot be played here";
    EXPECT_EQ(end.Status, 0);
    EXPECT_EQ(end.Signal, 0);
  }
};

TEST_F(StickyFolder, WithNamesOfAnotherUserServesForTemporaries) {
  for (const Plant& plant : Plants()) {
    for (const char* name : {"tmp/PdfABCD.tmp", "tmp/PdfABCE.tmp"}) plant.Put(victim_, folder_.File(name));
    AsNobody([&] {
      ForeseenSystem system;
      EXPECT_EQ(Run(system), kEverythingJoined) << plant.What << ": " << system.Said;
    });
    if (IsSkipped()) return;
    EXPECT_TRUE(ReadFile(Output()) == whole_) << plant.What;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.File("tmp")), {}), 2) << plant.What;
    CheckVictim();
    Clear("tmp");
    Clear("out");
  }
}

TEST_F(StickyFolder, ADocumentThatMayNotBeReadIsNamedAndTheOthersAreJoined) {
  ASSERT_EQ(::chmod(folder_.File("docs/b.pdf").c_str(), 0), 0);
  folder_.MakeFolder("docs/closed.pdf");
  ASSERT_EQ(::chmod(folder_.File("docs/closed.pdf").c_str(), 0), 0);
  AsNobody([&] {
    testing::QuietSystem system;
    EXPECT_EQ(Run(system), kJoinedWithLosses) << system.Said;
    EXPECT_NE(system.Said.find("b.pdf"), std::string::npos) << system.Said;
    EXPECT_EQ(system.Said.find("closed.pdf"), std::string::npos) << system.Said;
  });
  if (IsSkipped()) return;
  const std::string output = ReadFile(Output());
  for (const char* text : {"text of a", "text of c", "text of d", "text of e"}) {
    EXPECT_NE(output.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(output.find("text of b"), std::string::npos);
}

TEST_F(StickyFolder, KeepsAnotherUsersFileInTheOutputsPlace) {
  folder_.Write("out/joined.pdf", kPrecious);
  for (const mode_t mode : {0600U, 0644U, 0666U}) {
    ASSERT_EQ(::chmod(Output().c_str(), mode), 0);
    AsNobody([&] {
      testing::QuietSystem system;
      const ExitStatus status = Run(system);
      // Who lets everybody write a file has it written, as a whole.
      EXPECT_TRUE(status == kNoOutput || (mode == 0666 && status == kEverythingJoined)) << system.Said;
    });
    if (IsSkipped()) return;
    EXPECT_TRUE(ReadFile(Output()) == kPrecious || (mode == 0666 && ReadFile(Output()) == whole_));
    EXPECT_TRUE(fs::is_empty(folder_.File("tmp")));
  }
}

}  // namespace
}  // namespace folioweld
