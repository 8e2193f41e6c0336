// Every system call of watching and closing the viewer fails, in every way that it can.

#include <cerrno>

#include "tests/faults/fault_sweep.h"
#include "tests/support/merge_run.h"
#include "tests/ui/window_fixture.h"

namespace folioweld::testing {
namespace {

class ViewerFaultTest : public WindowFixture {
 protected:
  /// How the watching ends where no fault comes between.
  enum class End { TheViewerEnds, TheUserClosesIt, TheUserClosesOneWithoutWindows };

  void SetUp() override {
    Open();
    ChooseAll();
    first_ = ReadFile(FileName(1));
    second_ = ReadFile(FileName(2));
    MergeRun merge(first_, second_);
    merge.Run();
    whole_ = merge.Output();
    AtEveryTurn([this] {
      if (Caption("cmdCancel") != "Close display window" || ++turns_ < 3) return;
      if (end_ == End::TheViewerEnds) {
        system_.ViewerRuns = false;
      }
      // Also where a fault hides that the viewer has ended: the user always gets out.
      if (end_ != End::TheViewerEnds || turns_ > 20) Click("cmdCancel");
    });
  }

  void Merge() {
    turns_ = 0;
    ChooseAll();
    desktop_.HasWindows = end_ != End::TheUserClosesOneWithoutWindows;
    Click("cmdOK");
  }

  void CheckIdle() {
    EXPECT_EQ(Caption("cmdCancel"), "Exit");
    EXPECT_EQ(DefaultButton(), "cmdOK");
    EXPECT_EQ(Window().cursor().shape(), Qt::ArrowCursor);
    EXPECT_FALSE(Window().Program().ExternalBusy);
    EXPECT_FALSE(WindowFixture::Merge().AbortRequested);
    EXPECT_TRUE(dialogs_.Boxes.empty());
    EXPECT_FALSE(ended_);
    EXPECT_EQ(WindowFixture::Merge().MergeStatus, 2);
    EXPECT_TRUE(ReadFile(FileName(3)) == whole_);
    EXPECT_TRUE(ReadFile(FileName(1)) == first_ && ReadFile(FileName(2)) == second_);
  }

  void Sweep(End end, const std::set<std::string>& calls) {
    end_ = end;
    SweepFaults(calls, [this](FaultTrial& trial) {
      const std::size_t launched = desktop_.Launched.size();
      const auto decide = trial.Decide();
      std::size_t before = 0;
      // The merge has faults of its own; here they begin with the start of the viewer.
      system_.Decide = [&](const FaultingSystem::Call& call, std::size_t index) {
        if (desktop_.Launched.size() == launched) {
          before = index + 1;
          return FaultingSystem::Fault{};
        }
        return decide(call, index - before);
      };
      Merge();
      system_.Decide = nullptr;
      EXPECT_EQ(desktop_.Launched.size(), launched + 1);
      CheckIdle();
      // Only a call that is interrupted again and again tells nothing about the viewer.
      EXPECT_TRUE(end_ != End::TheViewerEnds || turns_ <= 20 || trial.Injected.Error == EINTR);

      Merge();
      EXPECT_EQ(desktop_.Launched.size(), launched + 2) << "the same without a fault starts no viewer";
      CheckIdle();
    });
  }

  End end_ = End::TheViewerEnds;
  int turns_ = 0;
  std::string first_;
  std::string second_;
  std::string whole_;
};

TEST_F(ViewerFaultTest, TheWindowComesBackFromAViewerThatEnds) {
  Sweep(End::TheViewerEnds, {"PollProcess"});
}

TEST_F(ViewerFaultTest, TheWindowComesBackFromAViewerThatIsClosed) {
  Sweep(End::TheUserClosesIt, {"PollProcess"});
}

TEST_F(ViewerFaultTest, TheWindowComesBackFromAViewerThatIsAskedToEnd) {
  Sweep(End::TheUserClosesOneWithoutWindows, {"PollProcess", "TerminateProcess"});
}

}  // namespace
}  // namespace folioweld::testing
