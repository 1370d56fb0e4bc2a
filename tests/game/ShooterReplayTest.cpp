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

#include "Boss.h"
#include "Bullet.h"
#include "GameStart.h"
#include "Points.h"
#include "Setup.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/EventKeyboard.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

namespace {

const std::string SESSIONS = VANTOR_SESSIONS_DIR;

// A look at a replayed session: at the end of the step, the screen matches
// the golden frame, the score display shows the score (-1: none shown) and
// the music plays.
struct Look {
  int step;
  const char* frame;
  int score;
  const char* music;
};

struct Session {
  const char* recording;
  std::vector<Look> looks;
};

int shownScore() {
  const vt::ObjectList shown = vt::WorldManager::getInstance().objectsOfType("Points");
  return shown.isEmpty() ? -1 : static_cast<Points*>(shown[0])->getValue();
}

// The labels of the game's musics that play, joined by blanks.
std::string playingMusic() {
  std::string playing;
  for (const char* label :
       {"start music", "InGameBGM", "Boss1BattleBGM", "GameDead", "VictoryBGM", "gameplay"}) {
    const vt::Music* p_music = vt::ResourceManager::getInstance().getMusic(label);
    if (p_music != nullptr && p_music->getStatus() == sf::SoundSource::Playing) {
      playing += (playing.empty() ? "" : " ") + std::string(label);
    }
  }
  return playing;
}

void expectLook(const vt::Harness& harness, const Look& look) {
  EXPECT_EQ(harness.checkFrame(SESSIONS + "/" + look.frame), "") << look.frame;
  EXPECT_EQ(shownScore(), look.score) << look.frame;
  EXPECT_EQ(playingMusic(), look.music) << look.frame;
}

// Sessions played in a window under a scripted player with the recorder on.
const Session SESSIONS_PLAYED[] = {
    {"defeat.vrec",
     {{23, "defeat-23-title.frame", -1, "start music"},
      {44, "defeat-44-moved.frame", 0, "InGameBGM"},
      {97, "defeat-97-kills.frame", 62, "InGameBGM"},
      {99, "defeat-99-wiped.frame", -138, "InGameBGM"},
      {133, "defeat-133-game-over.frame", 3, "GameDead"},
      {137, "defeat-137-burst.frame", 3, "GameDead"},
      {317, "defeat-317-title-again.frame", 9, "start music"}}},
    {"splash-runs-out.vrec",
     {{40, "splash-40.frame", -1, ""}, {91, "splash-91-title.frame", -1, "start music"}}},
};

TEST(ShooterReplay, RecordedSessionsUnfoldAsPlayed) {
  ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
  for (const Session& session : SESSIONS_PLAYED) {
    SCOPED_TRACE(session.recording);
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    ASSERT_EQ(harness.replay(SESSIONS + "/" + session.recording), 0) << harness.logText();
    for (const Look& look : session.looks) {
      harness.atStep(look.step, [&harness, &look] { expectLook(harness, look); });
    }
    playGame();
    EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
  }
}

// A won game, played through the engine from the title: the score set past
// 1000 brings the boss, which fires its fan and falls to bullets flown into
// it; the victory screen plays and the title comes back.
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
  static_cast<Points*>(world.objectsOfType("Points")[0])->setValue(1001);
  harness.step();
  expectLook(harness, {0, "won-boss-arrives.frame", 1111, "Boss1BattleBGM"});
  harness.step(25);
  expectLook(harness, {0, "won-boss-fan.frame", 1111, "Boss1BattleBGM"});
  const vt::Object* p_boss = world.objectsOfType("Boss")[0];
  for (int i = 0; i < 401; i++) {
    (new Bullet(p_boss->getPosition() + vt::Vector(-3, 4)))->setVelocity(vt::Vector(0, -1.2f));
  }
  harness.step();
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
  std::filesystem::remove_all(folder);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ShooterReplay, TheGameReplaysFromTheEnvironmentAndNamesWhereItDiverged) {
  std::string said;
  std::string logged;
  const std::string defeat = SESSIONS + "/defeat.vrec";
  EXPECT_EQ(replayShooter(defeat, said, logged), 0);
  EXPECT_EQ(said, "");
  // The pause key does not wait in a replay.
  EXPECT_NE(logged.find("replaying 319 steps of '" + defeat + "' as fast as the loop runs."),
            std::string::npos);
  EXPECT_EQ(logged.find("Cannot pause"), std::string::npos) << logged;
  // The recording's grid and frame time stand in for other settings.
  EXPECT_EQ(
      replayShooter(defeat, said, logged,
                    "window_horizontal_chars:40,\nwindow_vertical_chars:12,\nframe_time:20,\n"),
      0)
      << said;
  // At the recorded pace on request: three seconds of splash and title.
  EXPECT_EQ(
      replayShooter(SESSIONS + "/splash-runs-out.vrec", said, logged, "", "VANTOR_REPLAY_PACED=1"),
      0);
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
  EXPECT_EQ(said.rfind("vantor: cannot start the recorder: Recorder::startReplay(): Error! Cannot "
                       "open '/nonexistent.vrec'.",
                       0),
            0u)
      << said;
  EXPECT_EQ(replayShooter(defeat, said, logged, "", "VANTOR_RECORD=" + folder + "/new.vrec"), 1);
  EXPECT_NE(said.find("VANTOR_RECORD and VANTOR_REPLAY are both set."), std::string::npos) << said;
  std::filesystem::remove_all(folder);
}

}  // namespace
