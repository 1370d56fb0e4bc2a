#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Points.h"
#include "Setup.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

namespace {

const std::string SESSIONS = VANTOR_SESSIONS_DIR;

// A look at a replayed session: at the end of the step, the screen matches
// the golden frame and the score display shows the score (-1: none shown).
struct Look {
  int step;
  const char* frame;
  int score;
};

struct Session {
  const char* recording;
  std::vector<Look> looks;
};

int shownScore() {
  const vt::ObjectList shown = vt::WorldManager::getInstance().objectsOfType("Points");
  return shown.isEmpty() ? -1 : static_cast<Points*>(shown[0])->getValue();
}

// Sessions played in a window under a scripted player with the recorder on.
const Session SESSIONS_PLAYED[] = {
    {"defeat.vrec",
     {{23, "defeat-23-title.frame", -1},
      {44, "defeat-44-moved.frame", 0},
      {97, "defeat-97-kills.frame", 62},
      {99, "defeat-99-wiped.frame", -138},
      {133, "defeat-133-game-over.frame", 3},
      {317, "defeat-317-title-again.frame", 9}}},
    {"splash-runs-out.vrec", {{40, "splash-40.frame", -1}, {91, "splash-91-title.frame", -1}}},
};

TEST(ShooterReplay, RecordedSessionsUnfoldAsPlayed) {
  ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
  for (const Session& session : SESSIONS_PLAYED) {
    SCOPED_TRACE(session.recording);
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    ASSERT_EQ(harness.replay(SESSIONS + "/" + session.recording), 0) << harness.logText();
    for (const Look& look : session.looks) {
      harness.atStep(look.step, [&harness, &look] {
        EXPECT_EQ(harness.checkFrame(SESSIONS + "/" + look.frame), "") << "step " << look.step;
        EXPECT_EQ(shownScore(), look.score) << "step " << look.step;
      });
    }
    playGame();
    EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
  }
}

// The shooter itself, replaying from the environment headless (with more
// settings before it, if given): its exit status and what it says on stderr.
int replayShooter(const std::string& recording, std::string& said,
                  const std::string& settings = "") {
  const std::string folder = test::makeTempDir();
  std::ofstream(folder + "/vt-config.txt")
      << settings << test::readFile(VANTOR_GAME_DIR "/vt-config.txt");
  const std::string command =
      "cd " VANTOR_GAME_DIR " && VANTOR_HEADLESS=1 VANTOR_CONFIG=" + folder +
      "/vt-config.txt VANTOR_LOG=" + folder + "/vantor.log VANTOR_REPLAY=" + recording +
      " ./shooter 2> " + folder + "/stderr";
  const int status = std::system(command.c_str());
  said = test::readFile(folder + "/stderr");
  std::filesystem::remove_all(folder);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ShooterReplay, TheGameReplaysFromTheEnvironmentAndNamesWhereItDiverged) {
  std::string said;
  EXPECT_EQ(replayShooter(SESSIONS + "/defeat.vrec", said), 0);
  EXPECT_EQ(said, "");
  // The recording's grid and frame time stand in for other settings.
  EXPECT_EQ(
      replayShooter(SESSIONS + "/defeat.vrec", said,
                    "window_horizontal_chars:40,\nwindow_vertical_chars:12,\nframe_time:20,\n"),
      0)
      << said;
  // A world that differs at its fingerprint of step 149, and no recording.
  std::string tampered = test::readFile(SESSIONS + "/defeat.vrec");
  const std::size_t digit = tampered.find("149 world:") + 10;
  tampered[digit] = tampered[digit] == '0' ? '1' : '0';
  const std::string tampered_folder = test::makeTempDir();
  const std::string tampered_file = tampered_folder + "/tampered.vrec";
  std::ofstream(tampered_file) << tampered;
  EXPECT_EQ(replayShooter(tampered_file, said), vt::REPLAY_FAILED_STATUS);
  EXPECT_EQ(said, "vantor: the replay of " + tampered_file +
                      " diverged at step 149: the world's 20 objects differ from the recording in "
                      "type, position, velocity or frame\n");
  EXPECT_EQ(replayShooter("/nonexistent.vrec", said), 1);
  EXPECT_EQ(said.rfind("vantor: cannot start the recorder: Recorder::startReplay(): Error! Cannot "
                       "open '/nonexistent.vrec'.",
                       0),
            0u)
      << said;
  std::filesystem::remove_all(tampered_folder);
}

}  // namespace
