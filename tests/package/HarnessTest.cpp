#include "extras/Harness.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "core/Config.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/WorldManager.h"

namespace {

// Records the steps, keys and mouse events it receives.
test::RecordingObject* newRecorder() {
  return new test::RecordingObject({vt::STEP_EVENT, vt::KEYBOARD_EVENT, vt::MOUSE_EVENT});
}

TEST(Harness, InputArrivesInTheLoopsOrderHeldInputRepeats) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_recorder = newRecorder();
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
  auto* p_fresh = newRecorder();
  harness.step(2);
  // A press is held down for a few steps, as a player's is.
  harness.pressKey(vt::Keyboard::A);
  harness.step(vt::KEY_PRESS_STEPS + 2);
  EXPECT_EQ(p_fresh->seen, (std::vector<std::string>{"step 0", "step 1", "step 2", "key 0 36",
                                                     "key 2 36", "step 3", "key 2 36", "step 4",
                                                     "key 2 36", "step 5", "key 1 36", "step 6"}));
}

TEST(Harness, ASecondStartFailsAndTheSettingsTheHarnessForcesAreRestored) {
  const std::string config_file =
      test::writeConfig("headless:false,\nwindow_horizontal_chars:40,\nlogfile:game.log,\n");
  const std::string log_file = testing::TempDir() + "harness-start.log";
  setenv("VANTOR_LOG", log_file.c_str(), 1);
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(testing::TempDir() + "harness.log"), 0);
  EXPECT_EQ(vt::Harness().startUp(), -1);
  EXPECT_EQ(vt::WorldManager::getInstance().getBoundary().getHorizontal(), 40);
  harness.shutDown();
  EXPECT_EQ(std::string(std::getenv("VANTOR_CONFIG")), config_file);
  EXPECT_EQ(std::string(std::getenv("VANTOR_LOG")), log_file);
  EXPECT_FALSE(vt::Config::getInstance().getHeadless());
  test::restoreEngineSettings();
}

}  // namespace
