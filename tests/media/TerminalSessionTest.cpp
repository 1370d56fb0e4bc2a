#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "support/HeadlessEngine.h"
#include "support/TmuxSession.h"

namespace {

using test::TmuxSession;

// The modes a game takes over, as tmux reports them: alternate screen,
// cursor shown, mouse reporting (any kind, SGR form), wrapping.
const char* const MODES =
    "#{alternate_on}#{cursor_flag}#{mouse_any_flag}#{mouse_sgr_flag}#{wrap_flag}";
const char* const MODES_OF_A_SHELL = "01001";
const char* const MODES_OF_A_GAME = "10110";

struct WayOut {
  const char* name;
  // How the probe game ends by itself ("end", "throw"), or "wait" for the test or "hang" in a step.
  const char* ending;
  // Keys typed, or a signal sent, to end it.
  const char* keys;
  const char* signal;
  int status;
};

const WayOut WAYS_OUT[] = {
    {"the game's own end", "end", "", "", 0},
    {"Q", "wait", "q", "", 0},
    {"Ctrl-C", "wait", "C-c", "", 0},
    {"SIGINT", "wait", "", "INT", 0},
    {"SIGTERM", "wait", "", "TERM", 0},
    {"SIGHUP", "wait", "", "HUP", 0},
    {"a crash signal", "wait", "", "SEGV", 128 + 11},
    {"a second interrupt to a game stuck in a step", "hang", "", "INT", 128 + 2},
    {"an uncaught exception", "throw", "", "", 128 + 6},
};

// The probe's 80x24 in a terminal resized under it: cropped with a notice,
// then whole again, each time drawn afresh.
void expectResizesShowTheGameAfresh(const TmuxSession& session) {
  ASSERT_TRUE(session.resize(40, 10));
  EXPECT_TRUE(
      test::waitFor([&] { return session.shows("The terminal is 40x10, the game 80x24: s"); }, 10));
  EXPECT_TRUE(session.shows("probe step"));
  ASSERT_TRUE(session.resize(90, 26));
  EXPECT_TRUE(test::waitFor([&] { return !session.shows("The terminal is"); }, 10));
  EXPECT_TRUE(session.shows("probe step"));
  EXPECT_EQ(session.screenText().size(), 26u);
}

// The probe's box, line and circle, from its fourth row.
const std::vector<std::string> DRAWING = {"  |-----| \\", "  |     |  \\   o", "  |     |   \\",
                                          "  |------    \\"};

// The probe's drawing shows each time; before Q ends it, the terminal is resized under it.
TEST(TerminalSession, EveryWayOutGivesTheTerminalItsModesBack) {
  for (const WayOut& way : WAYS_OUT) {
    SCOPED_TRACE(way.name);
    const std::string folder = test::makeTempDir();
    TmuxSession session("cd " + folder +
                            " && stty -g > before; VANTOR_DISPLAY=terminal " VANTOR_TERMINAL_PROBE
                            " " +
                            way.ending + " pid; status=$?; stty -g > after; (exit $status)",
                        80, 24);
    ASSERT_TRUE(session.isRunning());
    ASSERT_TRUE(test::waitFor([&] { return session.shows("probe step"); }, 30))
        << test::readFile(folder + "/vantor.log");
    const std::vector<std::string> screen = session.screenText();
    ASSERT_GE(screen.size(), 7u);
    EXPECT_EQ(std::vector<std::string>(screen.begin() + 3, screen.begin() + 7), DRAWING);
    EXPECT_EQ(session.paneFormat(MODES), MODES_OF_A_GAME);
    if (std::string(way.keys) == "q") expectResizesShowTheGameAfresh(session);
    EXPECT_TRUE(*way.keys == '\0' || session.sendKeys(way.keys));
    // Stuck at the start of its 30th step, before that step shows what the 29th drew, the probe
    // shows its 28th for good; it does not notice the first interrupt.
    const bool stuck = std::string(way.ending) == "hang";
    ASSERT_TRUE(!stuck || test::waitFor([&] { return session.shows("probe step 28"); }, 30));
    for (int sent = 0; *way.signal != '\0' && sent < (stuck ? 2 : 1); sent++) {
      const std::string kill =
          "kill -" + std::string(way.signal) + " " + test::readFile(folder + "/pid");
      EXPECT_EQ(std::system(kill.c_str()), 0);
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    ASSERT_TRUE(test::waitFor([&] { return session.exitStatus() >= 0; }, 30));
    EXPECT_EQ(session.exitStatus(), way.status);
    EXPECT_EQ(session.paneFormat(MODES), MODES_OF_A_SHELL);
    EXPECT_EQ(test::readFile(folder + "/after"), test::readFile(folder + "/before"))
        << "the line discipline's settings";
  }
}

}  // namespace
