#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <tuple>

#include "extras/Harness.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

// A small game: a walker that the D key and mouse clicks move, that
// wanders at random every step and looks for a path round a wall.
class Walker : public vt::Object {
 public:
  explicit Walker(float new_stride) : stride(new_stride) {
    setType("Walker");
    setPosition(Vector(10, 10));
    for (const std::string& type : {vt::KEYBOARD_EVENT, vt::MOUSE_EVENT, vt::STEP_EVENT})
      registerInterest(type);
  }
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() == vt::STEP_EVENT) {
      setVelocity(Vector(0, static_cast<float>(std::rand() % 3 - 1) * 0.01f));
      return 1;
    }
    if (const auto* p_key = dynamic_cast<const vt::EventKeyboard*>(p_event)) {
      if (p_key->getKeyboardAction() == vt::KEY_DOWN)
        setPosition(getPosition() + Vector(stride, 0));
      if (p_key->getKey() == vt::Keyboard::P) pathTo(Vector(40, 10));
      return 1;
    }
    if (const auto* p_mouse = dynamic_cast<const vt::EventMouse*>(p_event)) {
      if (p_mouse->getMouseAction() == vt::CLICKED) setPosition(p_mouse->getMousePosition());
      return 1;
    }
    return Object::eventHandler(p_event);
  }
  int draw() override {
    vt::DisplayManager& display = vt::DisplayManager::getInstance();
    display.drawCh(getPosition() + Vector(2, 0), '*', 200, 100, 0);
    return display.drawString(getPosition(), "Hi", vt::LEFT_JUSTIFIED, vt::WHITE);
  }

 private:
  float stride;
};

void makeWorld(float stride) {
  new Walker(stride);
  (new vt::Object)->setPosition(Vector(30, 10));  // a wall
}

Vector walkerPosition() {
  return vt::WorldManager::getInstance().objectsOfType("Walker")[0]->getPosition();
}

class RecorderTest : public testing::Test {
 protected:
  // Records the session with a walker of stride 1; returns where it ended.
  Vector recordSession() {
    vt::Harness harness;
    EXPECT_EQ(harness.startUp(), 0);
    makeWorld(1);
    EXPECT_EQ(harness.record(recording), 0);
    // 90 steps: a click, held D, a path search, and nothing.
    harness.clickMouse(vt::Mouse::LEFT, Vector(12.5f, 7.25f));
    harness.step(3);
    harness.holdKey(vt::Keyboard::D);
    harness.step(5);
    harness.releaseKey(vt::Keyboard::D);
    harness.tapKey(vt::Keyboard::P);
    harness.tapKey(vt::Keyboard::BACKSPACE + 1);  // a key without a name
    harness.step(82);
    const Vector end = walkerPosition();
    EXPECT_EQ(harness.finishReplay(), 0);
    return end;
  }
  const std::string folder = test::makeTempDir();
  const std::string recording = folder + "/session.vrec";
};

TEST_F(RecorderTest, ASessionReplaysAsPlayedAndTheFirstDifferenceIsNamed) {
  // The file's format is fixed by the shooter's recorded sessions; steps alike make one line.
  const Vector end = recordSession();
  EXPECT_NE(test::readFile(recording).find("\n4-7 down:D\n"), std::string::npos);
  // The same game replayed, nothing fed by hand, ends where it did with its checks at their steps.
  // A game that strides twice as far searches another path; a replay run past its end or stopped
  // short fails. (A world that differs from its fingerprint fails the shooter's replay.) The
  // walker's stride, the steps replayed and the failure ("" for none).
  const std::tuple<float, int, const char*> CASES[] = {
      {1, 90, ""},
      {2, 90, "step 8: path searches ran "},
      {1, 91, "step 90: the recording ends here, the game goes on"},
      {1, 60, "step 60: the game ended, the recording goes on to step 90"},
  };
  for (const auto& [stride, steps, failure] : CASES) {
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    makeWorld(stride);
    ASSERT_EQ(harness.replay(recording), 0);
    Vector at_step_0;
    harness.atStep(0, [&] { at_step_0 = walkerPosition(); });
    harness.step(steps);
    const bool as_played = *failure == '\0';
    EXPECT_EQ(harness.finishReplay(), as_played ? 0 : -1) << harness.replayFailure();
    if (as_played) {
      EXPECT_EQ(at_step_0.getX(), 12.5f);
      EXPECT_NEAR(at_step_0.getY(), 7.25f, 0.011f);
      EXPECT_EQ(walkerPosition(), end);
      continue;
    }
    EXPECT_EQ(harness.replayFailure().rfind(failure, 0), 0u) << harness.replayFailure();
    EXPECT_TRUE(harness.logContains("Recorder: Error! The replay of '" + recording +
                                    "' diverged at " + failure));
  }
}

TEST_F(RecorderTest, BadRecordingsAreRefusedWithTheirReason) {
  recordSession();
  {
    // One thing at a time.
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    ASSERT_EQ(harness.record(folder + "/other.vrec"), 0);
    EXPECT_EQ(harness.replay(recording), -1);
    EXPECT_EQ(harness.record(folder + "/third.vrec"), -1);
    EXPECT_TRUE(
        harness.logContains("Recorder::startReplay(): Error! A recording is already under way."));
  }
  const std::string good = test::readFile(recording);
  const std::string header = good.substr(0, good.find("0 click"));
  // The text, and the reason it is refused.
  const std::pair<std::string, const char*> CASES[] = {
      {"", "empty recording"},
      {"\x01\xff garbage\n", "not a recording"},
      {"vantor-recording 2\n", "version '2' is not supported (this engine reads 1)"},
      {"vantor-recording 1\nengine 4.17\nframe_time fast\n", "line 3: the header is incomplete"},
      {header + "3 press:D\n", "line 7: the recording is cut short (no end line)"},
      {header + "3 jump:D\nend 9\n", "line 7: unknown event 'jump:D'"},
      {header + "3 press:\nend 9\n", "line 7: unknown event 'press:'"},
      {header + "3 click:left@nan,1\nend 9\n", "unknown event 'click:left@nan,1'"},
      {header + "3 move@,1\nend 9\n", "unknown event 'move@,1'"},
      {header + "3 world:0123456789abcdef0/2\nend 9\n",
       "unknown event 'world:0123456789abcdef0/2'"},
      {header + "3 press:D\n2 press:D\nend 9\n", "line 8: steps out of order"},
      {header + "5-3 press:D\nend 9\n", "line 7: '5-3' is not a step"},
      {header + "3x press:D\nend 9\n", "line 7: '3x' is not a step"},
      {header + "3\nend 9\n", "line 7: a step with nothing in it"},
      {header + "3 press:D\nend 2\n", "line 8: a bad end line"},
      {header + "end 9\nend 10\n", "line 8: text after the end line"},
      {"vantor-recording 1\nengine 4.17\nframe_time 33\ngrid 40 12\nseed 1\nhash_every 30\nend 1\n",
       "was recorded at 33 ms on 40x12 cells; this game runs at 33 ms on 80x24"},
  };
  for (const auto& [text, reason] : CASES) {
    std::ofstream(recording) << text;
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    EXPECT_EQ(harness.replay(recording), -1) << reason;
    EXPECT_TRUE(harness.logContains(reason)) << reason << "\n" << harness.logText();
    // Nothing replays: the harness's own input still works.
    makeWorld(1);
    harness.holdKey(vt::Keyboard::D);
    harness.step(2);
    EXPECT_EQ(walkerPosition().getX(), 12) << reason;
  }
}

TEST_F(RecorderTest, GoldenFramesShowEachCellAndNameWhatDiffers) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  makeWorld(1);
  harness.step();
  const std::string golden = folder + "/walker.frame";
  // No golden frame yet: the frame is written beside it as .new.
  EXPECT_NE(harness.checkFrame(golden).find("no golden frame"), std::string::npos);
  const std::string drawn = test::readFile(golden + ".new");
  // "Hi*" at (10, 10 +- 0.01): the nearest cells, in white and a colour
  // of the legend; the rest undrawn.
  const std::string row_10 = std::string(10, ' ') + "Hi*" + std::string(67, ' ') + "|\n";
  const std::string colors_10 = std::string(10, '.') + "ww0" + std::string(67, '.') + "|\n";
  EXPECT_EQ(drawn.rfind("frame 80x24 background Black\nchars:\n", 0), 0u);
  EXPECT_NE(drawn.find(row_10), std::string::npos) << drawn;
  EXPECT_NE(drawn.find(colors_10), std::string::npos) << drawn;
  EXPECT_NE(drawn.find("\nlegend: 0=#c86400\n"), std::string::npos) << drawn;
  setenv("VANTOR_UPDATE_GOLDEN", "1", 1);
  EXPECT_EQ(harness.checkFrame(golden), "");
  unsetenv("VANTOR_UPDATE_GOLDEN");
  EXPECT_EQ(test::readFile(golden), drawn);
  harness.step();
  EXPECT_EQ(harness.checkFrame(golden), "");
  // Moved one cell right: four cells differ in the characters, three in the colours.
  harness.clickMouse(vt::Mouse::LEFT, Vector(11, 10));
  harness.step();
  const std::string differences = harness.checkFrame(golden);
  for (const char* line :
       {"row 10, column 10: ' ' where the expected frame has 'H'",
        "row 10, column 12: 'i' where the expected frame has '*'",
        "row 10, column 10: nothing drawn where the expected frame has White",
        "row 10, column 12: White where the expected frame has #c86400",
        "row 10, column 13: #c86400 where the expected frame has nothing drawn"}) {
    EXPECT_NE(differences.find(line), std::string::npos) << line << " in\n" << differences;
  }
  EXPECT_NE(test::readFile(golden + ".diff").find("row 10, column 13"), std::string::npos);
  EXPECT_EQ(differences.find("row 10, column 11: White"), std::string::npos);
  // Headless and not capturing, drawing reports that nothing was drawn.
  vt::DisplayManager& display = vt::DisplayManager::getInstance();
  display.setCapture(false);
  EXPECT_EQ(display.drawCh(Vector(1, 1), 'x', vt::RED) + display.drawCh(Vector(), 'x', 1, 2, 3) +
                display.drawLine(Vector(), Vector(3, 0)) +
                display.drawString(Vector(), "x", vt::LEFT_JUSTIFIED, vt::RED),
            -4);
  display.setCapture(true);
  EXPECT_EQ(display.drawCh(Vector(1, 1), 'x', vt::RED) + display.drawLine(Vector(), Vector(3, 0)),
            -1)
      << "a line is pixels, not cells";
}

}  // namespace
