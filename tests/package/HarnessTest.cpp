// The harness drives the real loop: these tests watch what objects receive
// and in which order, what the harness changes and puts back, and what a
// failed start tells on standard error.
#include "extras/Harness.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/Config.h"
#include "core/EventStep.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "world/EventPath.h"
#include "world/WorldManager.h"

namespace {

// Writes down every event it gets, as "step 0", "key 2 36", "mouse 1 0 5,3".
class Recorder : public vt::Object {
 public:
  Recorder() {
    setSolidness(vt::SPECTRAL);
    registerInterest(vt::STEP_EVENT);
    registerInterest(vt::KEYBOARD_EVENT);
    registerInterest(vt::MOUSE_EVENT);
  }
  int eventHandler(const vt::Event* p_event) override {
    const std::string type = p_event->getType();
    if (type == vt::STEP_EVENT) {
      const auto* p_step = static_cast<const vt::EventStep*>(p_event);
      seen.push_back("step " + std::to_string(p_step->getStepCount()));
      if (p_step->getStepCount() == stop_at) vt::GameManager::getInstance().setGameOver();
    } else if (type == vt::KEYBOARD_EVENT) {
      const auto* p_key = static_cast<const vt::EventKeyboard*>(p_event);
      seen.push_back("key " + std::to_string(p_key->getKeyboardAction()) + " " +
                     std::to_string(p_key->getKey()));
    } else if (type == vt::MOUSE_EVENT) {
      const auto* p_mouse = static_cast<const vt::EventMouse*>(p_event);
      const vt::Vector where = p_mouse->getMousePosition();
      seen.push_back("mouse " + std::to_string(p_mouse->getMouseAction()) + " " +
                     std::to_string(p_mouse->getMouseButton()) + " " +
                     std::to_string(static_cast<int>(where.getX())) + "," +
                     std::to_string(static_cast<int>(where.getY())));
    } else {
      return Object::eventHandler(p_event);
    }
    return 1;
  }
  std::vector<std::string> seen;
  int stop_at = -1;
};

// Sets an environment variable for one test and puts the old value back.
class ScopedVariable {
 public:
  ScopedVariable(const char* init_name, const char* value) : name(init_name) {
    const char* p_old = std::getenv(name);
    had_value = p_old != nullptr;
    if (had_value) old_value = p_old;
    if (value) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~ScopedVariable() {
    if (had_value) {
      setenv(name, old_value.c_str(), 1);
    } else {
      unsetenv(name);
    }
  }

 private:
  const char* name;
  bool had_value = false;
  std::string old_value;
};

const int SPACE = vt::Keyboard::SPACE;
const int A = vt::Keyboard::A;

TEST(Harness, InputArrivesInTheLoopsOrderAndHeldInputRepeats) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_recorder = new Recorder;
  harness.holdKey(SPACE);
  harness.holdMouse(vt::Mouse::LEFT, vt::Vector(5, 3));
  harness.pressKey(A);
  EXPECT_EQ(harness.step(2), 2);
  harness.releaseKey(SPACE);
  harness.releaseMouse(vt::Mouse::LEFT);
  harness.moveMouse(vt::Vector(7, 1));
  harness.step();
  const std::vector<std::string> expected = {
      "step 0",        "key 0 0", "mouse 0 0 5,3", "key 0 36",      "key 1 36",
      "mouse 1 0 5,3", "key 2 0", "step 1",        "mouse 1 0 5,3", "key 2 0",
      "step 2",        "key 1 0", "mouse 2 -1 7,1"};
  EXPECT_EQ(p_recorder->seen, expected);
  EXPECT_EQ(vt::GameManager::getInstance().getStepCount(), 3);
}

TEST(Harness, SteppingMovesObjectsRunsPathsAndStopsAtGameOver) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_mover = new vt::Object;
  p_mover->setPosition(vt::Vector(10, 10));
  p_mover->setVelocity(vt::Vector(1, 0));
  auto* p_walker = new vt::Object;
  p_walker->setSolidness(vt::SPECTRAL);
  p_walker->setPosition(vt::Vector(5, 20));
  p_walker->setSpeed(1);
  p_walker->pathTo(vt::Vector(30, 20));
  harness.step(4);
  EXPECT_EQ(p_mover->getPosition(), vt::Vector(14, 10));
  EXPECT_TRUE(
      harness.stepUntil([&] { return p_walker->getPosition() == vt::Vector(30, 20); }, 200));
  auto* p_recorder = new Recorder;
  p_recorder->stop_at = vt::GameManager::getInstance().getStepCount() + 2;
  EXPECT_EQ(harness.step(10), 3);
  EXPECT_FALSE(harness.stepUntil([] { return false; }, 10));
  EXPECT_EQ(p_recorder->seen.size(), 3u);
}

TEST(Harness, ForcesHeadlessAndItsLogThenRestoresWhatItChanged) {
  const std::string folder = testing::TempDir() + "harness-config";
  std::filesystem::create_directories(folder);
  const std::string config_file = folder + "/game-config.txt";
  std::ofstream(config_file) << "headless:false,\nwindow_horizontal_chars:40,\nlogfile:game.log,\n";
  const ScopedVariable config_variable("VANTOR_CONFIG", config_file.c_str());
  const ScopedVariable log_variable("VANTOR_LOG", "elsewhere.log");
  const std::string log_file = folder + "/harness.log";
  {
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(log_file), 0);
    EXPECT_EQ(harness.startUp(log_file), -1);
    vt::Harness second;
    EXPECT_EQ(second.startUp(), -1);
    EXPECT_EQ(vt::DisplayManager::getInstance().getWindow(), nullptr);
    EXPECT_EQ(vt::WorldManager::getInstance().getBoundary().getHorizontal(), 40);
    vt::LogManager::getInstance().writeLog("a line of the game");
    EXPECT_TRUE(harness.logContains("** Game engine started **"));
    EXPECT_TRUE(harness.logContains("a line of the game"));
    harness.shutDown();
    EXPECT_TRUE(harness.logContains("** Game engine stopped **"));
    EXPECT_EQ(harness.getLogFile(), log_file);
    EXPECT_EQ(std::string(std::getenv("VANTOR_CONFIG")), config_file);
    EXPECT_EQ(std::string(std::getenv("VANTOR_LOG")), "elsewhere.log");
    EXPECT_FALSE(vt::Config::getInstance().getHeadless());
    EXPECT_EQ(harness.step(), 0);
  }
  // A second run in the same process starts afresh.
  vt::Harness again;
  ASSERT_EQ(again.startUp(), 0);
  EXPECT_TRUE(vt::WorldManager::getInstance().getAllObjects(true).isEmpty());
  EXPECT_EQ(again.step(2), 2);
  std::filesystem::remove_all(folder);
}

TEST(GameManagerStart, AFailedStartSaysWhatAndWhereOnStandardError) {
  const std::string folder = testing::TempDir() + "harness-start";
  std::filesystem::create_directories(folder);
  const std::string config_file = folder + "/vt-config.txt";
  std::ofstream(config_file) << "headless:false,\nlogfile:" << folder << "/start.log,\n";
  const ScopedVariable config_variable("VANTOR_CONFIG", config_file.c_str());
  const ScopedVariable log_variable("VANTOR_LOG", nullptr);
  const ScopedVariable display_variable("DISPLAY", nullptr);
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  testing::internal::CaptureStderr();
  EXPECT_EQ(game_manager.startUp(), -1);
  game_manager.shutDown();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "vantor: cannot start the display manager: DisplayManager::startUp(): Error! Cannot "
            "open X display ''.; see " +
                folder + "/start.log\n");

  const ScopedVariable bad_log("VANTOR_LOG", "no-such-folder/start.log");
  testing::internal::CaptureStderr();
  EXPECT_EQ(game_manager.startUp(), -1);
  game_manager.shutDown();
  const std::string error = testing::internal::GetCapturedStderr();
  EXPECT_NE(error.find("vantor: cannot start the log manager: cannot write " +
                       std::filesystem::current_path().string() + "/no-such-folder/start.log\n"),
            std::string::npos)
      << error;
  vt::Config::getInstance().setHeadless(false);
  std::filesystem::remove_all(folder);
}

}  // namespace
