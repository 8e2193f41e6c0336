// The program on a real pseudo-terminal.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/batch/program_fixture.h"

namespace folioweld {
namespace {

using testing::ChildProgram;
using testing::Exists;
using testing::WaitUntil;

/// What a person sees: as much of a terminal as the program uses.
class Screen {
 public:
  explicit Screen(int columns) : columns_(static_cast<std::size_t>(columns)) {}

  void Feed(const std::string& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (bytes[i] == '\r') {
        column_ = 0;
      } else if (bytes[i] == '\n') {
        ++row_;
        Highest = std::max(Highest, row_);
      } else if (bytes[i] == '\x1b' && i + 1 == bytes.size()) {
        // What has been read so far may end within a command.
        return;
      } else if (bytes.compare(i, 2, "\x1b[") == 0) {
        const std::size_t end = bytes.find_first_not_of("0123456789", i + 2);
        if (end == std::string::npos) return;
        Command(bytes[end], std::atoi(bytes.c_str() + i + 2));
        i = end;
      } else {
        Put(bytes[i]);
      }
    }
  }

  [[nodiscard]] std::string Row(std::size_t row) const { return row < rows_.size() ? rows_[row] : ""; }
  /// The rows up to the last one that is not empty.
  [[nodiscard]] std::vector<std::string> Rows() const {
    std::vector<std::string> rows = rows_;
    while (!rows.empty() && rows.back().empty()) rows.pop_back();
    return rows;
  }

  std::size_t Highest = 0;  ///< how many rows the cursor went down from the first one
  bool Overflowed = false;  ///< a row was longer than the terminal is wide
  bool Unknown = false;     ///< a command or control that the program has no business with

 private:
  void Command(char command, int count) {
    const auto rows = static_cast<std::size_t>(count);
    if (command == 'A') {
      Unknown = Unknown || rows > row_;
      row_ -= std::min(rows, row_);
    } else if (command == 'K' || command == 'J') {
      Current().resize(std::min(column_, Current().size()));
      if (command == 'J') rows_.resize(row_ + 1);
    } else {
      Unknown = true;
    }
  }

  void Put(char c) {
    Unknown = Unknown || static_cast<unsigned char>(c) < 32;
    std::string& row = Current();
    row.resize(std::max(row.size(), column_ + 1), ' ');
    row[column_++] = c;
    Overflowed = Overflowed || column_ >= columns_;
  }

  std::string& Current() {
    if (rows_.size() <= row_) rows_.resize(row_ + 1);
    return rows_[row_];
  }

  std::size_t columns_;
  std::vector<std::string> rows_;
  std::size_t row_ = 0;
  std::size_t column_ = 0;
};

class OnTerminal : public testing::ProgramFixture {
 protected:
  OnTerminal() {
    setup_.TerminalColumns = 100;
    // On one that cannot move its cursor nothing is drawn, whoever runs the tests.
    setup_.Environment.emplace_back("TERM", "xterm");
    setup_.Arguments = {"out.pdf", "docs"};
  }

  /// Every picture that the program drew: what the screen showed after each set of four rows.
  static std::vector<std::vector<std::string>> Pictures(const std::string& bytes) {
    std::vector<std::vector<std::string>> pictures;
    for (std::size_t end = bytes.find("\x1b[4A"); end != std::string::npos;
         end = bytes.find("\x1b[4A", end + 1)) {
      Screen screen(100);
      screen.Feed(bytes.substr(0, end));
      pictures.push_back(screen.Rows());
    }
    return pictures;
  }

  [[nodiscard]] std::string CannotBeCreated() const {
    return "folioweld: The output file " + folder_.File("docs") +
           " cannot be created. I cannot do this operation!";
  }
};

TEST_F(OnTerminal, HeadlineAndThreeLinesAreShownLiveAndRewrittenInPlace) {
  AddLongMerge();
  ChildProgram program(setup_);
  EXPECT_TRUE(WaitUntil([&] {
    const auto pictures = Pictures(program.Errors());
    return pictures.size() > 5 && std::any_of(pictures.begin(), pictures.end(), [&](const auto& rows) {
             return rows.size() == 4 && rows[0].rfind("Merge ", 0) == 0 &&
                    rows[1].rfind("Parsing file #1: ", 0) == 0 &&
                    rows[2].rfind("Parsing file #2: ", 0) == 0 && rows[3].rfind("Pass #1 ", 0) == 0;
           });
  }));
  Screen screen(100);
  screen.Feed(program.Errors());
  EXPECT_LE(screen.Highest, 4U);
  EXPECT_FALSE(screen.Unknown);
  EXPECT_FALSE(screen.Overflowed);
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Wait(), 128 + SIGTERM);
  EXPECT_EQ(program.Output(), "");
}

TEST_F(OnTerminal, NothingIsLeftOnTheScreenAfterASuccess) {
  for (const char* name : {"a", "b", "c"}) AddDocument(name);
  ChildProgram program(setup_);
  EXPECT_EQ(program.Wait(), 0);
  EXPECT_NE(program.Errors(), "") << "the lines were shown";
  Screen screen(100);
  screen.Feed(program.Errors());
  EXPECT_EQ(screen.Rows(), std::vector<std::string>());
  EXPECT_EQ(screen.Highest, 4U);
  EXPECT_FALSE(screen.Unknown);
}

TEST_F(OnTerminal, ControlCCancels) {
  AddLongMerge();
  ChildProgram program(setup_);
  ASSERT_TRUE(WaitUntil([&] { return Temporaries().size() >= 2 && !Pictures(program.Errors()).empty(); }));
  program.Type("\x03");
  EXPECT_EQ(program.Wait(), 128 + SIGINT);
  EXPECT_TRUE(Temporaries().empty());
  EXPECT_FALSE(Exists(folder_.File("out.pdf")));
  Screen screen(100);
  screen.Feed(program.Errors());
  // What the terminal showed of the key stays where it stands, below the rows that were taken away.
  ASSERT_FALSE(screen.Rows().empty());
  EXPECT_EQ(screen.Row(0), "folioweld: ended by SIGINT; no output was written");
}

TEST_F(OnTerminal, MessageStandsWhereTheLinesWere) {
  AddDocument("a");
  AddBrokenDocument("b");
  ChildProgram program(setup_);
  EXPECT_EQ(program.Wait(), 1);
  Screen screen(10000);
  screen.Feed(program.Errors());
  const auto rows = screen.Rows();
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[0].rfind("[Folioweld-cmdOK]=>The merge failed: ", 0), 0U) << rows[0];
  EXPECT_EQ(rows[1], "[Folioweld-MergeDirectory]=>File: \"a\"  is missing in the output");
  EXPECT_EQ(rows[2], "[Folioweld-MergeDirectory]=>File: \"b\"  is missing in the output");
  EXPECT_EQ(rows[3], "folioweld: Unable to Merge and Create " + folder_.File("out.pdf"));
  EXPECT_EQ(rows[4] + "\n", Advice());
}

TEST_F(OnTerminal, NameOfAFileNeverCommandsTheTerminal) {
  AddDocument("a");
  folder_.Write("docs/\x1b[2Jx", "%PDF-1.4\nno comment");
  ChildProgram program(setup_);
  EXPECT_EQ(program.Wait(), 3);
  EXPECT_EQ(program.Errors().find("\x1b[2J"), std::string::npos);
  EXPECT_NE(program.Errors().find("File: \"?[2Jx\"  is not acceptable for merging"), std::string::npos);
}

TEST_F(OnTerminal, OnlyMessagesAreShownWhenNothingIsJoined) {
  AddDocument("a");
  setup_.Arguments = {"docs", "docs"};
  ChildProgram program(setup_);
  EXPECT_EQ(program.Wait(), 1);
  EXPECT_EQ(program.Errors(),
            CannotBeCreated() + "\r\n[Folioweld-MergeDirectory]=>  because of it is a folder\r\n");
}

}  // namespace
}  // namespace folioweld
