#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Setup.h"
#include "extras/Harness.h"
#include "media/DisplayManager.h"
#include "support/HeadlessEngine.h"
#include "support/TmuxSession.h"
#include "world/WorldManager.h"

namespace {

const int COLUMNS = 80;
const int ROWS = 24;
const char* const SHIP = "<-/\\->";

// A cell of the terminal's screen: its character and the red, green and
// blue of its foreground ("" for the terminal's default).
struct ShownCell {
  char ch = ' ';
  std::string color;
};

using Screen = std::vector<ShownCell>;

// Reads capture-pane -e: characters and the 24-bit foreground colours set
// before them.
Screen readScreen(const std::string& captured) {
  Screen screen(COLUMNS * ROWS);
  std::istringstream rows(captured);
  std::string line;
  std::string color;
  for (int row = 0; row < ROWS && std::getline(rows, line); row++) {
    int column = 0;
    for (std::size_t i = 0; i < line.size(); i++) {
      if (line[i] != '\x1b') {
        if (column < COLUMNS) screen[row * COLUMNS + column++] = {line[i], color};
        continue;
      }
      const std::size_t end = line.find('m', i);
      std::istringstream parameters(line.substr(i + 2, end - i - 2));
      for (std::string code; std::getline(parameters, code, ';');) {
        if (code == "0" || code == "39") color.clear();
        if (code != "38" && code != "48") continue;
        std::string kind, r, g, b;
        std::getline(parameters, kind, ';');
        std::getline(parameters, r, ';');
        std::getline(parameters, g, ';');
        std::getline(parameters, b, ';');
        if (code == "38") color = r + "," + g + "," + b;
      }
      i = end;
    }
  }
  return screen;
}

// The terminal shows the frame: every character, and every visible one in
// its colour.
bool showsFrame(const Screen& screen, const vt::CellFrame& frame) {
  for (int row = 0; row < ROWS; row++) {
    for (int column = 0; column < COLUMNS; column++) {
      const vt::CellFrame::Cell cell = frame.at(column, row);
      const ShownCell& shown = screen[row * COLUMNS + column];
      const char ch = cell.drawn ? cell.ch : ' ';
      if (shown.ch != ch) return false;
      if (ch != ' ' && shown.color != std::to_string(cell.r) + "," + std::to_string(cell.g) + "," +
                                          std::to_string(cell.b)) {
        return false;
      }
    }
  }
  return true;
}

// The ship's column on the screen, -1 when it is not there.
int shipColumn(const test::TmuxSession& session) {
  for (const std::string& row : session.screenText()) {
    const std::size_t found = row.find(SHIP);
    if (found != std::string::npos) return static_cast<int>(found);
  }
  return -1;
}

int recordedSteps(const std::string& recording) {
  const std::string text = test::readFile(recording);
  const std::size_t end = text.rfind("end ");
  return end == std::string::npos ? 0 : std::stoi(text.substr(end + 4));
}

void pauseMilliseconds(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// The real game in tmux, paused and resumed at the title, played with the
// mouse and a held key, the ship taken away with Q and the game ended with
// Ctrl-C; the session, recorded, is then replayed to find the frames the
// engine drew for every screen captured.
TEST(TerminalPlay, TheShooterIsPlayedInATerminalShowingTheFramesTheEngineDrew) {
  const std::string folder = test::makeTempDir();
  const std::string recording = folder + "/play.vrec";
  // A fixed seed, so that the drelks come the same way each time, and the
  // pause's lines in the log.
  const std::string config = folder + "/vt-config.txt";
  std::string settings = test::readFile(VANTOR_GAME_DIR "/vt-config.txt");
  settings.replace(settings.find("random_seed:0,"), 14, "random_seed:7,");
  std::ofstream(config) << settings;
  test::TmuxSession session("cd " VANTOR_GAME_DIR " && VANTOR_CONFIG=" + config +
                                " VANTOR_LOG_LEVEL=1 COLORTERM=truecolor VANTOR_DISPLAY=terminal "
                                "VANTOR_LOG=" +
                                folder + "/vantor.log VANTOR_RECORD=" + recording + " ./shooter",
                            COLUMNS, ROWS);
  ASSERT_TRUE(session.isRunning());
  std::vector<std::string> captured;
  ASSERT_TRUE(test::TmuxSession::waitFor([&] { return session.shows("[ P ]  PLAY"); }, 30));
  captured.push_back(session.screenWithColours());
  // F10 pauses until another key comes.
  session.sendKeys("F10");
  pauseMilliseconds(1500);
  session.sendKeys("x");
  session.sendKeys("p");
  ASSERT_TRUE(test::TmuxSession::waitFor([&] { return shipColumn(session) >= 0; }, 10));
  const int ship_at_start = shipColumn(session);
  // The mouse moves to a cell, and its left button is held there a moment.
  session.sendKeys("\x1b[<35;41;6M", true);
  session.sendKeys("\x1b[<0;41;6M", true);
  pauseMilliseconds(300);
  session.sendKeys("\x1b[<0;41;6m", true);
  // A held key, as a terminal without key releases sends it: again and
  // again while it is down, here until the ship has moved.
  EXPECT_TRUE(test::TmuxSession::waitFor(
      [&] { return session.sendKeys("d") && shipColumn(session) > ship_at_start + 5; }, 30))
      << "the ship stayed at " << shipColumn(session);
  captured.push_back(session.screenWithColours());
  // Q in play takes the ship away, and Ctrl-C ends the game.
  session.sendKeys("q");
  EXPECT_TRUE(test::TmuxSession::waitFor([&] { return shipColumn(session) < 0; }, 10));
  captured.push_back(session.screenWithColours());
  session.sendKeys("C-c");
  ASSERT_TRUE(test::TmuxSession::waitFor([&] { return session.exitStatus() >= 0; }, 30));
  EXPECT_EQ(session.exitStatus(), 0);
  EXPECT_EQ(session.paneFormat("#{alternate_on}#{cursor_flag}"), "01");
  const std::string logged = test::readFile(folder + "/vantor.log");
  const std::size_t paused = logged.find("Game paused.");
  const std::size_t resumed = logged.find("Game resumed.");
  ASSERT_TRUE(paused != std::string::npos && resumed != std::string::npos) << logged;
  EXPECT_NE(logged.substr(logged.rfind('\n', paused) + 1, 8),
            logged.substr(logged.rfind('\n', resumed) + 1, 8))
      << "the pause waited for the key a second and more";
  const std::string recorded = test::readFile(recording);
  EXPECT_NE(recorded.find("move@40,5"), std::string::npos) << recorded;
  EXPECT_EQ(recorded.find("press:X"), std::string::npos)
      << "the key that ends the pause is its own";
  EXPECT_NE(recorded.find("click:left@40,5 hold:left@40,5"), std::string::npos);

  ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  ASSERT_EQ(harness.replay(recording), 0) << harness.logText();
  std::vector<int> shown_at(captured.size(), -1);
  bool fired = false;
  for (int step = 1; step <= recordedSteps(recording); step++) {
    harness.atStep(step, [&, step] {
      fired = fired || !vt::WorldManager::getInstance().objectsOfType("Bullet").isEmpty();
      for (std::size_t i = 0; i < captured.size(); i++) {
        if (shown_at[i] < 0 &&
            showsFrame(readScreen(captured[i]), vt::DisplayManager::getInstance().getFrame())) {
          shown_at[i] = step;
        }
      }
    });
  }
  playGame();
  EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
  EXPECT_TRUE(fired) << "the held mouse button fires";
  for (std::size_t i = 0; i < captured.size(); i++) {
    EXPECT_GE(shown_at[i], 0) << "no frame the engine drew is the screen captured:\n"
                              << captured[i];
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
