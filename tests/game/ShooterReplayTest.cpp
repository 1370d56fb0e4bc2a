#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Bullet.h"
#include "Points.h"
#include "Setup.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "support/TestSupport.h"
#include "support/TmuxSession.h"
#include "support/VirtualTerminal.h"
#include "world/WorldManager.h"

namespace {

const std::string SESSIONS = VANTOR_SESSIONS_DIR;

// A look at a replayed session: at the end of the step, the screen matches the
// golden frame, the score display shows the score (-1: none) and the music plays.
struct Look {
  int step;
  std::string frame;
  int score;
  std::string music;
};

int shownScore() {
  const vt::ObjectList shown = vt::WorldManager::getInstance().objectsOfType("Points");
  return shown.isEmpty() ? -1 : static_cast<Points*>(shown[0])->getValue();
}

// The labels of the game's musics that play ("once" if not looping), joined by blanks.
std::string playingMusic() {
  std::string playing;
  for (const char* label :
       {"start music", "InGameBGM", "Boss1BattleBGM", "GameDead", "VictoryBGM", "gameplay"}) {
    const vt::Music* p_music = vt::ResourceManager::getInstance().getMusic(label);
    if (p_music != nullptr && p_music->getStatus() == sf::SoundSource::Playing)
      playing +=
          (playing.empty() ? "" : " ") + std::string(label) + (p_music->getLoop() ? "" : " once");
  }
  return playing;
}

void expectLook(const vt::Harness& harness, const Look& look) {
  EXPECT_EQ(harness.checkFrame(SESSIONS + "/" + look.frame), "") << look.frame;
  EXPECT_EQ(shownScore(), look.score) << look.frame;
  EXPECT_EQ(playingMusic(), look.music) << look.frame;
}

// Sessions played in a window under a scripted player with the recorder on, and
// the looks at them in looks.txt, a line each: recording, step, frame, score, music.
TEST(ShooterReplay, RecordedSessionsUnfoldAsPlayed) {
  ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
  std::map<std::string, std::vector<Look>> sessions;
  std::istringstream lines(test::readFile(SESSIONS + "/looks.txt"));
  for (std::string line, recording; std::getline(lines, line);) {
    std::istringstream fields(line);
    Look look;
    if (line[0] == '#' || !(fields >> recording >> look.step >> look.frame >> look.score)) continue;
    std::getline(fields >> std::ws, look.music);
    sessions[recording].push_back(look);
  }
  ASSERT_EQ(sessions.size(), 3u);
  for (const auto& [recording, looks] : sessions) {
    SCOPED_TRACE(recording);
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    ASSERT_EQ(harness.replay(SESSIONS + "/" + recording), 0) << harness.logText();
    for (const Look& look : looks)
      harness.atStep(look.step, [&harness, &look] { expectLook(harness, look); });
    playGame();
    EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
    // No error or warning, but for the music looked for before it is loaded.
    EXPECT_FALSE(std::regex_search(harness.logText(), std::regex("Error|Warning!(?! Music)")));
  }
}

// A won game, played through the engine from the title: the boss comes once the score is past 1000
// (its fight shows in the recorded boss fight) and falls on its 401st hit, however many come in
// that step; the victory screen plays and the title comes back.
TEST(ShooterReplay, AWonGameShowsTheBossItsFanTheVictoryAndTheTitle) {
  ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  std::srand(3);
  loadResources();
  populateWorld();
  harness.tapKey(vt::Keyboard::P);
  harness.step();
  vt::WorldManager& world = vt::WorldManager::getInstance();
  const auto countOf = [&world](const char* type) { return world.objectsOfType(type).getCount(); };
  for (const auto& [score, steps, bosses] : {std::tuple(1000, 1, 0), {1001, 24, 1}}) {
    static_cast<Points*>(world.objectsOfType("Points")[0])->setValue(score);
    harness.step(steps);
    EXPECT_EQ(countOf("Boss"), bosses) << score;
  }
  const vt::Object* p_boss = world.objectsOfType("Boss")[0];
  for (const int hits : {400, 2}) {
    EXPECT_EQ(countOf("GameOver"), 0);
    // From just below it: a bullet starts three cells right of where it is put.
    const vt::Vector below(-3, p_boss->getBox().getVertical() / 2 + 1);
    for (int i = 0; i < hits; i++)
      (new Bullet(p_boss->getPosition() + below))->setVelocity(vt::Vector(0, -1.2f));
    harness.step();
  }
  EXPECT_EQ(std::pair(countOf("GameOver"), countOf("Explosion")), std::pair(1, 1));
  expectLook(harness, {0, "won-victory.frame", 1111, "VictoryBGM"});
  const auto title_back = [&world] { return world.objectsOfType("GameOver").isEmpty(); };
  EXPECT_TRUE(harness.stepUntil(title_back, 1000));
  harness.step();
  expectLook(harness, {0, "won-title-again.frame", 1116, "start music"});
}

// The shooter itself, replaying from the environment headless (with more
// settings before it, if given): its exit status and what it says on stderr.
int replayShooter(const std::string& recording, std::string& said, std::string& logged,
                  const std::string& settings = "", const std::string& environment = "") {
  const std::string folder = test::makeTempDir();
  std::ofstream(folder + "/vt-config.txt")
      << settings << test::readFile(VANTOR_GAME_DIR "/vt-config.txt");
  const std::string command =
      "cd " VANTOR_GAME_DIR " && " + environment + " VANTOR_HEADLESS=1 VANTOR_CONFIG=" + folder +
      "/vt-config.txt VANTOR_LOG=" + folder + "/vantor.log VANTOR_REPLAY=" + recording +
      " ./shooter 2> " + folder + "/stderr";
  const int status = std::system(command.c_str());
  said = test::readFile(folder + "/stderr");
  logged = test::readFile(folder + "/vantor.log");
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ShooterReplay, TheGameReplaysFromTheEnvironmentAndNamesWhereItDiverged) {
  std::string said, logged;
  const std::string defeat = SESSIONS + "/defeat.vrec";
  // The recording's grid and frame time stand in for other settings, and the
  // pause key does not wait in a replay.
  const char* other_grid =
      "window_horizontal_chars:40,\nwindow_vertical_chars:12,\nframe_time:20,\n";
  EXPECT_EQ(replayShooter(defeat, said, logged, other_grid, "VANTOR_LOG_LEVEL=5"), 0);
  EXPECT_EQ(said, "");
  EXPECT_NE(logged.find("frame time is 33"), std::string::npos);
  EXPECT_NE(logged.find("replaying 319 steps of '" + defeat + "' as fast as the loop runs."),
            std::string::npos);
  EXPECT_EQ(logged.find("Cannot pause"), std::string::npos) << logged;
  // Every sound the game asked for, as often as it did.
  std::map<std::string, int> sounds;
  const std::regex asked("Looking for sound '([^']*)'");
  for (std::sregex_iterator at(logged.begin(), logged.end(), asked), end; at != end; ++at)
    sounds[(*at)[1]]++;
  EXPECT_EQ(sounds,
            (std::map<std::string, int>{
                {"enemydead", 9}, {"enemyhit", 15}, {"fire", 18}, {"game over", 1}, {"nuke", 1}}));
  // At the recorded pace on request: three seconds of splash and title.
  const std::string splash = SESSIONS + "/splash-runs-out.vrec";
  EXPECT_EQ(replayShooter(splash, said, logged, "", "VANTOR_REPLAY_PACED=1"), 0);
  EXPECT_NE(logged.find("at the recorded pace."), std::string::npos) << logged;
  const std::string folder = test::makeTempDir();
  // A world that differs at its fingerprint of step 149.
  std::string tampered = test::readFile(defeat);
  const std::size_t digit = tampered.find("149 world:") + 10;
  tampered[digit] = tampered[digit] == '0' ? '1' : '0';
  std::ofstream(folder + "/tampered.vrec") << tampered;
  EXPECT_EQ(replayShooter(folder + "/tampered.vrec", said, logged), vt::REPLAY_FAILED_STATUS);
  EXPECT_EQ(said, "vantor: the replay of " + folder +
                      "/tampered.vrec diverged at step 149: the world's 20 objects differ from the "
                      "recording in type, position, velocity or frame\n");
  // No recording, or two things asked at once: the game does not start.
  EXPECT_EQ(replayShooter("/nonexistent.vrec", said, logged), 1);
  EXPECT_EQ(said.substr(0, said.find(" See ")),
            "vantor: cannot start the recorder: Recorder::startReplay(): Error! Cannot open "
            "'/nonexistent.vrec'.");
  EXPECT_EQ(replayShooter(defeat, said, logged, "", "VANTOR_RECORD=" + folder + "/new.vrec"), 1);
  EXPECT_NE(said.find("VANTOR_RECORD and VANTOR_REPLAY are both set."), std::string::npos) << said;
}

// Started from a folder without its font and configuration, the game says
// on standard error which folder that was and what it lacked.
TEST(ShooterProcess, StartedFromAnotherFolderItNamesTheFolderAndWhatItLacks) {
  ASSERT_TRUE(vt::test::startProcessXvfb());
  const std::string folder = test::makeTempDir();
  const int status = std::system(("cd " + folder +
                                  " && env -u VANTOR_CONFIG -u VANTOR_LOG -u VANTOR_HEADLESS "
                                  "ALSOFT_DRIVERS=null " VANTOR_GAME_DIR "/shooter 2> said")
                                     .c_str());
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
  EXPECT_EQ(test::readFile(folder + "/said"),
            "vantor: cannot start the display manager: DisplayManager::startUp(): Unable to load "
            "font from file 'vt-font.ttf'. See " +
                folder + "/vantor.log\nvantor: missing from the working folder " + folder +
                ": the font file vt-font.ttf, vt-config.txt; start the game from its own "
                "folder\n");
}

const int COLUMNS = 80;
const int ROWS = 24;
const char* const SHIP = "<-/\\->";

// The screen read with capture-pane -e, each row written from its first column, shows the frame:
// every character, and every visible one in its 24-bit colour.
bool showsFrame(const std::string& captured, const vt::CellFrame& frame) {
  test::VirtualTerminal screen(COLUMNS, ROWS);
  std::istringstream rows(captured);
  std::string line;
  for (int row = 1; row <= ROWS && std::getline(rows, line); row++)
    screen.apply("\x1b[" + std::to_string(row) + ";1H" + line);
  for (int i = 0; i < COLUMNS * ROWS; i++) {
    const vt::CellFrame::Cell cell = frame.at(i % COLUMNS, i / COLUMNS);
    const test::VirtualTerminal::Cell& shown = screen.at(i % COLUMNS, i / COLUMNS);
    const std::string color = "\x1b[38;2;" + std::to_string(cell.r) + ";" + std::to_string(cell.g) +
                              ";" + std::to_string(cell.b) + "m";
    const bool blank = !cell.drawn || cell.ch == ' ';
    if (blank ? shown.ch > ' ' : shown.ch != cell.ch || shown.foreground != color) return false;
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

// The real game in tmux, paused and resumed at the title, played with the mouse and a held key, the
// ship taken away with Q and the game ended with Ctrl-C; the session, recorded, is then replayed to
// find the frames the engine drew for every screen captured.
TEST(TerminalPlay, TheShooterIsPlayedInATerminalShowingTheFramesTheEngineDrew) {
  const std::string folder = test::makeTempDir();
  const std::string recording = folder + "/play.vrec";
  // A fixed seed (the first entry of a key is the one read), so that the
  // drelks come the same way each time, and the pause's lines in the log.
  const std::string config = folder + "/vt-config.txt";
  std::ofstream(config) << "random_seed:7,\n" << test::readFile(VANTOR_GAME_DIR "/vt-config.txt");
  test::TmuxSession session("cd " VANTOR_GAME_DIR " && VANTOR_CONFIG=" + config +
                                " VANTOR_LOG_LEVEL=1 COLORTERM=truecolor VANTOR_DISPLAY=terminal "
                                "VANTOR_LOG=" +
                                folder + "/vantor.log VANTOR_RECORD=" + recording + " ./shooter",
                            COLUMNS, ROWS);
  ASSERT_TRUE(session.isRunning());
  std::vector<std::string> captured;
  ASSERT_TRUE(test::waitFor([&] { return session.shows("[ P ]  PLAY"); }, 30));
  captured.push_back(session.screenWithColours());
  // F10 pauses until another key comes.
  session.sendKeys("F10");
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  session.sendKeys("x");
  session.sendKeys("p");
  ASSERT_TRUE(test::waitFor([&] { return shipColumn(session) >= 0; }, 10));
  const int ship_at_start = shipColumn(session);
  // The mouse moves to a cell, and its left button is held there a moment.
  session.sendKeys("\x1b[<35;41;6M", true);
  session.sendKeys("\x1b[<0;41;6M", true);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  session.sendKeys("\x1b[<0;41;6m", true);
  // A held key, as a terminal without key releases sends it: again and
  // again while it is down, here until the ship has moved.
  EXPECT_TRUE(test::waitFor(
      [&] { return session.sendKeys("d") && shipColumn(session) > ship_at_start + 5; }, 30))
      << "the ship stayed at " << shipColumn(session);
  captured.push_back(session.screenWithColours());
  // Q in play takes the ship away, and Ctrl-C ends the game.
  session.sendKeys("q");
  EXPECT_TRUE(test::waitFor([&] { return shipColumn(session) < 0; }, 10));
  captured.push_back(session.screenWithColours());
  session.sendKeys("C-c");
  ASSERT_TRUE(test::waitFor([&] { return session.exitStatus() >= 0; }, 30));
  EXPECT_EQ(session.exitStatus(), 0);
  const std::string logged = test::readFile(folder + "/vantor.log");
  EXPECT_NE(logged.find("a terminal of 80x24 cells for a game of 80x24.\n"), std::string::npos);
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
  bool fired = false;
  const int steps = std::stoi(recorded.substr(recorded.rfind("end ") + 4));
  // Each screen captured is struck off once a step's frame matches it.
  for (int step = 1; step <= steps; step++) {
    harness.atStep(step, [&] {
      fired = fired || !vt::WorldManager::getInstance().objectsOfType("Bullet").isEmpty();
      const vt::CellFrame& frame = vt::DisplayManager::getInstance().getFrame();
      captured.erase(std::remove_if(captured.begin(), captured.end(),
                                    [&](const auto& screen) { return showsFrame(screen, frame); }),
                     captured.end());
    });
  }
  playGame();
  EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
  EXPECT_TRUE(fired) << "the held mouse button fires";
  EXPECT_EQ(captured, std::vector<std::string>()) << "screens no frame the engine drew shows";
}

}  // namespace
