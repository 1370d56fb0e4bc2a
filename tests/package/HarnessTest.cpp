#include "extras/Harness.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "core/Config.h"
#include "core/EventStep.h"
#include "core/GameManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "world/WorldManager.h"

namespace {

class Recorder : public vt::Object {
 public:
  Recorder() {
    for (const auto& type : {vt::STEP_EVENT, vt::KEYBOARD_EVENT, vt::MOUSE_EVENT})
      registerInterest(type);
  }
  int eventHandler(const vt::Event* p_event) override {
    std::ostringstream line;
    if (const auto* p_step = dynamic_cast<const vt::EventStep*>(p_event)) {
      line << "step " << p_step->getStepCount();
    } else if (const auto* p_key = dynamic_cast<const vt::EventKeyboard*>(p_event)) {
      line << "key " << p_key->getKeyboardAction() << " " << p_key->getKey();
    } else if (const auto* p_mouse = dynamic_cast<const vt::EventMouse*>(p_event)) {
      line << "mouse " << p_mouse->getMouseAction() << " " << p_mouse->getMouseButton() << " "
           << p_mouse->getMousePosition().toString();
    }
    seen.push_back(line.str());
    return 1;
  }
  std::vector<std::string> seen;
};

struct ScopedVariable {
  ScopedVariable(const char* init_name, const char* value) : name(init_name) {
    if (const char* p_old = std::getenv(name)) old_value = p_old;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedVariable() { old_value ? setenv(name, old_value->c_str(), 1) : unsetenv(name); }
  const char* name;
  std::optional<std::string> old_value;
};

TEST(Harness, InputArrivesInTheLoopsOrderHeldInputRepeats) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_recorder = new Recorder;
  harness.holdKey(vt::Keyboard::SPACE);
  harness.holdMouse(vt::Mouse::LEFT, vt::Vector(5, 3));
  harness.tapKey(vt::Keyboard::A);
  EXPECT_EQ(harness.step(2), 2);
  harness.releaseKey(vt::Keyboard::SPACE);
  harness.releaseMouse(vt::Mouse::LEFT);
  harness.moveMouse(vt::Vector(7, 1));
  // A condition met at once takes no step; one never met stops at the limit.
  EXPECT_TRUE(harness.stepUntil([] { return true; }, 5));
  EXPECT_FALSE(harness.stepUntil([] { return false; }, 1));
  EXPECT_EQ(p_recorder->seen, (std::vector<std::string>{
                                  "step 0", "key 0 0", "mouse 0 0 (5,3)", "key 0 36", "key 1 36",
                                  "mouse 1 0 (5,3)", "key 2 0", "step 1", "mouse 1 0 (5,3)",
                                  "key 2 0", "step 2", "key 1 0", "mouse 2 -1 (7,1)"}));
  // What was held when the harness stopped is not held after a new start.
  harness.holdKey(vt::Keyboard::B);
  harness.holdMouse(vt::Mouse::RIGHT, vt::Vector(1, 1));
  harness.shutDown();
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_fresh = new Recorder;
  harness.step(2);
  // A press is held down for a few steps, as a player's is.
  harness.pressKey(vt::Keyboard::A);
  harness.step(vt::KEY_PRESS_STEPS + 2);
  EXPECT_EQ(p_fresh->seen, (std::vector<std::string>{"step 0", "step 1", "step 2", "key 0 36",
                                                     "key 2 36", "step 3", "key 2 36", "step 4",
                                                     "key 2 36", "step 5", "key 1 36", "step 6"}));
}

TEST(Harness, AFailedStartSaysWhereAndTheHarnessRestoresTheSettingsItForces) {
  const std::string config_file = testing::TempDir() + "harness-config.txt";
  const std::string log_file = testing::TempDir() + "harness-start.log";
  std::ofstream(config_file) << "headless:false,\nwindow_horizontal_chars:40,\nlogfile:game.log,\n";
  const ScopedVariable config_variable("VANTOR_CONFIG", config_file.c_str());
  const ScopedVariable log_variable("VANTOR_LOG", log_file.c_str());
  const ScopedVariable display_variable("DISPLAY", nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(vt::GameManager::getInstance().startUp(), -1);
  vt::GameManager::getInstance().shutDown();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "vantor: cannot start the display manager: DisplayManager::startUp(): Error! Cannot "
            "open X display ''. See " +
                log_file + "\nvantor: missing from the working folder " +
                std::filesystem::current_path().string() +
                ": the font file vt-font.ttf; start the game from its own folder\n");

  vt::Harness harness;
  ASSERT_EQ(harness.startUp(testing::TempDir() + "harness.log"), 0);
  EXPECT_EQ(vt::Harness().startUp(), -1);
  EXPECT_TRUE(vt::Config::getInstance().getHeadless());
  EXPECT_EQ(vt::WorldManager::getInstance().getBoundary().getHorizontal(), 40);
  harness.shutDown();
  EXPECT_FALSE(vt::GameManager::getInstance().isStarted());
  EXPECT_EQ(std::string(std::getenv("VANTOR_CONFIG")), config_file);
  EXPECT_EQ(std::string(std::getenv("VANTOR_LOG")), log_file);
  EXPECT_FALSE(vt::Config::getInstance().getHeadless());
  std::remove(config_file.c_str());
}

}  // namespace
