#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "core/FrameStats.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/EventKeyboard.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

// The overlay covers a view object on the top line while it is on; the game's
// own handler of F12 finds it already toggled.
TEST(FrameStats, F12ShowsTheLastStepOnTheTopLineOverEverything) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  (new vt::ViewObject)->setLocation(vt::TOP_LEFT);
  auto* p_game = new test::RecordingObject({vt::KEYBOARD_EVENT});
  std::vector<bool> shown_at_press;
  p_game->on_event = [&](const vt::Event* p_event) {
    if (static_cast<const vt::EventKeyboard*>(p_event)->getKeyboardAction() == vt::KEY_PRESSED)
      shown_at_press.push_back(vt::FrameStats::getInstance().isOverlayShown());
  };
  harness.step();
  const std::string world_row = harness.frameRow(0);
  harness.pressKey(vt::Keyboard::F12);
  harness.step();
  const std::regex overlay(
      "events [0-9.]+ input [0-9.]+ net [0-9.]+ update [0-9.]+ draw [0-9.]+ paths [0-9.]+ "
      "sleep [0-9.]+ objs 2 *");
  EXPECT_TRUE(std::regex_match(harness.frameRow(0), overlay)) << harness.frameRow(0);
  harness.step(vt::KEY_PRESS_STEPS);
  harness.pressKey(vt::Keyboard::F12);
  harness.step();
  EXPECT_EQ(harness.frameRow(0) + harness.frameRow(24), world_row) << "row 24 is past the frame";
  EXPECT_EQ(shown_at_press, (std::vector<bool>{true, false}));
}

// A header, then a row a step whose parts add up to no more than its whole. The loop run by the
// game sleeps out its frames: six steps take six frames at least, and no step sleeps much more than
// its frame (how closely it keeps its pace is bench_loop's to measure). A file that cannot be
// written leaves the game running.
TEST(FrameStats, VantorStatsWritesARowPerStepOfTheLoop) {
  const std::string folder = test::makeTempDir();
  setenv("VANTOR_STATS", (folder + "/stats.csv").c_str(), 1);
  {
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    new vt::ViewObject;
    test::RecordingObject::untilStep(5);
    vt::GameManager::getInstance().run();
  }
  std::ifstream csv(folder + "/stats.csv");
  std::string line;
  std::getline(csv, line);
  EXPECT_EQ(line,
            "step,step_events_us,input_us,network_us,update_us,draw_us,paths_us,sleep_us,"
            "frame_us,objects");
  long step = 0, frames_us = 0;
  std::vector<long> sleeps_us;
  for (; std::getline(csv, line); step++) {
    std::istringstream row(line);
    std::vector<long> values;
    for (std::string field; std::getline(row, field, ',');) values.push_back(std::stol(field));
    ASSERT_EQ(values.size(), 10u);
    EXPECT_EQ(values[0], step);
    EXPECT_LE(values[1] + values[2] + values[3] + values[4] + values[5] + values[6] + values[7],
              values[8]);
    EXPECT_EQ(values[9], 2);
    frames_us += values[8];
    sleeps_us.push_back(values[7]);
  }
  EXPECT_EQ(step, 6);
  EXPECT_GE(frames_us, 6 * 32000) << "six frames of 33 ms";
  // Each step sleeps what is left of its frame, not more: the middle of the
  // sleeps stays well under one and a half frames, however loaded the machine.
  std::sort(sleeps_us.begin(), sleeps_us.end());
  EXPECT_LT(sleeps_us[sleeps_us.size() / 2], 49500);
  setenv("VANTOR_STATS", (folder + "/no-such-folder/stats.csv").c_str(), 1);
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  EXPECT_EQ(harness.step(2), 2);
  EXPECT_TRUE(harness.logContains("Cannot write the frame stats to"));
  unsetenv("VANTOR_STATS");
}
