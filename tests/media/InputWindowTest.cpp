#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputManager.h"
#include "support/RecordingObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

// Last: Xlib defines macros (None, Status, Bool) that clash with other headers.
#include <X11/Xlib.h>

extern char** environ;

namespace K = vt::Keyboard;
using vt::InputManager;

namespace {

const std::string TITLE = "vantor-input-test";

std::string key(int action, int code) {
  return "key " + std::to_string(action) + " " + std::to_string(code);
}

std::string mouse(int action, int button, float x, float y) {
  char text[64];
  std::snprintf(text, sizeof(text), "mouse %d %d (%.2f, %.2f)", action, button,
                static_cast<double>(x), static_cast<double>(y));
  return text;
}

std::string describe(const vt::Event* p_event) {
  if (p_event->getType() == vt::KEYBOARD_EVENT) {
    const auto* p_key = static_cast<const vt::EventKeyboard*>(p_event);
    return key(p_key->getKeyboardAction(), p_key->getKey());
  }
  const auto* p_mouse = static_cast<const vt::EventMouse*>(p_event);
  const vt::Vector cell = p_mouse->getMousePosition();
  return mouse(p_mouse->getMouseAction(), p_mouse->getMouseButton(), cell.getX(), cell.getY());
}

// Asks the window to close as a window manager's close button does.
void requestClose(const sf::Window& window) {
  Display* p_display = XOpenDisplay(nullptr);
  ASSERT_NE(p_display, nullptr);
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window.getSystemHandle();
  event.xclient.message_type = XInternAtom(p_display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(p_display, "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(p_display, window.getSystemHandle(), False, NoEventMask, &event);
  XSync(p_display, False);
  XCloseDisplay(p_display);
}

// A shell command running beside the test; stopped if still running at the end.
class BackgroundCommand {
 public:
  explicit BackgroundCommand(const std::string& command) {
    const char* argv[] = {"sh", "-c", command.c_str(), nullptr};
    if (posix_spawnp(&pid, "sh", nullptr, nullptr, const_cast<char* const*>(argv), environ) != 0) {
      pid = -1;
    }
  }
  ~BackgroundCommand() {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
  }
  BackgroundCommand(const BackgroundCommand&) = delete;
  BackgroundCommand& operator=(const BackgroundCommand&) = delete;

  bool started() const { return pid > 0; }
  // True once the command has ended; its exit status is then in status.
  bool finished() {
    if (pid <= 0) return true;
    if (waitpid(pid, &status, WNOHANG) != pid) return false;
    pid = -1;
    return true;
  }
  int status = -1;

 private:
  pid_t pid = -1;
};

// A real window on a private X server, driven by xdotool; each getInput()
// is one step, and what the recorder receives is kept per step.
class InputWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(xvfb.isRunning());
    vt::Config::getInstance().setWindowTitle(TITLE);
    vt::LogManager::getInstance().setLogLevel(2);
    ASSERT_EQ(vt::DisplayManager::getInstance().startUp(), 0);
    ASSERT_EQ(vt::WorldManager::getInstance().startUp(), 0);
    ASSERT_EQ(InputManager::getInstance().startUp(), 0);
    vt::LogManager::getInstance().setLogLevel(0);
    auto* p_recorder = new test::RecordingObject;
    ASSERT_EQ(p_recorder->registerInterest(vt::KEYBOARD_EVENT), 0);
    ASSERT_EQ(p_recorder->registerInterest(vt::MOUSE_EVENT), 0);
    p_recorder->on_event = [this](const vt::Event* p_event) {
      steps.back().push_back(describe(p_event));
    };
    ASSERT_EQ(xdotool("search --name " + TITLE + " windowfocus --sync"), 0);
  }

  void TearDown() override {
    InputManager::getInstance().shutDown();
    vt::WorldManager::getInstance().shutDown();
    vt::DisplayManager::getInstance().shutDown();
  }

  static sf::RenderWindow& window() { return *vt::DisplayManager::getInstance().getWindow(); }

  // Runs xdotool to its end; everything it did has then reached the window's
  // connection. Returns xdotool's exit status.
  static int xdotool(const std::string& arguments) {
    const int status = std::system(("xdotool " + arguments).c_str());
    // A round trip on the window's own connection: the server's events from
    // before it are then queued for the window.
    window().getPosition();
    return status;
  }

  void step() {
    steps.emplace_back();
    InputManager::getInstance().getInput();
  }

  // The steps in which the recorder received this event.
  std::vector<int> stepsWith(const std::string& received) const {
    std::vector<int> found;
    for (int i = 0; i < static_cast<int>(steps.size()); i++) {
      const auto& events = steps[static_cast<std::size_t>(i)];
      if (std::find(events.begin(), events.end(), received) != events.end()) found.push_back(i);
    }
    return found;
  }

  int count(const std::string& received) const {
    int total = 0;
    for (const auto& events : steps) total += std::count(events.begin(), events.end(), received);
    return total;
  }

  const vt::test::XvfbServer& xvfb = vt::test::processXvfb();
  vt::test::TestConfig config{false};
  std::vector<std::vector<std::string>> steps;
};

using Events = std::vector<std::string>;

}  // namespace

TEST_F(InputWindowTest, KeyPressesAndReleasesArriveInQueueOrder) {
  ASSERT_EQ(xdotool("key p Prior"), 0);
  step();
  EXPECT_EQ(steps[0], (Events{key(vt::KEY_PRESSED, K::P), key(vt::KEY_RELEASED, K::P),
                              key(vt::KEY_PRESSED, 158), key(vt::KEY_RELEASED, 158)}));
  EXPECT_NE(config.logText().find("InputManager::startUp(): Keyboard repeated disabled.\n"),
            std::string::npos);
}

TEST_F(InputWindowTest, HeldKeysAreReportedEveryStepFromThePollingList) {
  ASSERT_EQ(xdotool("keydown space"), 0);
  step();
  step();
  step();
  ASSERT_EQ(xdotool("keyup space"), 0);
  step();
  EXPECT_EQ(steps[0], (Events{key(vt::KEY_PRESSED, K::SPACE), key(vt::KEY_DOWN, K::SPACE)}));
  EXPECT_EQ(steps[1], Events{key(vt::KEY_DOWN, K::SPACE)});
  EXPECT_EQ(steps[2], Events{key(vt::KEY_DOWN, K::SPACE)});
  EXPECT_EQ(steps[3], Events{key(vt::KEY_RELEASED, K::SPACE)});

  // Held Num0 is polled twice, held Backspace and F11 not at all.
  ASSERT_EQ(xdotool("keydown 0"), 0);
  step();
  ASSERT_EQ(xdotool("keyup 0 keydown BackSpace"), 0);
  step();
  ASSERT_EQ(xdotool("keyup BackSpace keydown F11"), 0);
  step();
  ASSERT_EQ(xdotool("keyup F11"), 0);
  EXPECT_EQ(steps[4], (Events{key(vt::KEY_PRESSED, K::NUM0), key(vt::KEY_DOWN, K::NUM0),
                              key(vt::KEY_DOWN, K::BACKSPACE)}));
  EXPECT_EQ(steps[5], (Events{key(vt::KEY_RELEASED, K::NUM0), key(vt::KEY_PRESSED, K::BACKSPACE)}));
  EXPECT_EQ(steps[6], (Events{key(vt::KEY_RELEASED, K::BACKSPACE), key(vt::KEY_PRESSED, K::F11)}));
}

TEST_F(InputWindowTest, KeyRepeatIsOffWhileRunningAndBackOnAfterShutDown) {
  // Held longer than the X server's auto-repeat delay.
  const std::string long_hold = "keydown x sleep 1 keyup x";
  ASSERT_EQ(xdotool(long_hold), 0);
  step();
  EXPECT_EQ(count(key(vt::KEY_PRESSED, K::X)), 1);
  EXPECT_EQ(count(key(vt::KEY_RELEASED, K::X)), 1);

  vt::LogManager::getInstance().setLogLevel(2);
  InputManager::getInstance().shutDown();
  EXPECT_NE(config.logText().find("InputManager::shutDown(): Keyboard repeat enabled.\n"),
            std::string::npos);
  ASSERT_EQ(xdotool(long_hold), 0);
  int presses = 0;
  sf::Event event;
  while (window().pollEvent(event)) presses += event.type == sf::Event::KeyPressed;
  EXPECT_GE(presses, 2);
}

TEST_F(InputWindowTest, MouseMovesClicksAndHeldButtonsReportCells) {
  const std::string on_window = "search --name " + TITLE + " mousemove --window %1 ";
  ASSERT_EQ(xdotool(on_window + "64 96"), 0);
  step();
  ASSERT_FALSE(steps[0].empty());
  EXPECT_EQ(steps[0].back(), mouse(vt::MOVED, vt::Mouse::UNDEFINED_MOUSE_BUTTON, 5, 3));

  ASSERT_EQ(xdotool("mousedown 1"), 0);
  step();
  step();
  ASSERT_EQ(xdotool("mousedown 3"), 0);
  step();
  ASSERT_EQ(xdotool("mouseup 3 mouseup 1 " + on_window + "640 400"), 0);
  step();
  const std::string left_held = mouse(vt::PRESSED, vt::Mouse::LEFT, 5, 3);
  EXPECT_EQ(steps[1], (Events{mouse(vt::CLICKED, vt::Mouse::LEFT, 5, 3), left_held}));
  EXPECT_EQ(steps[2], Events{left_held});
  EXPECT_EQ(steps[3], (Events{mouse(vt::CLICKED, vt::Mouse::RIGHT, 5, 3), left_held,
                              mouse(vt::PRESSED, vt::Mouse::RIGHT, 5, 3)}));
  // Releases are not reported; cells are not rounded.
  EXPECT_EQ(steps[4], Events{mouse(vt::MOVED, vt::Mouse::UNDEFINED_MOUSE_BUTTON, 50, 12.5f)});
}

TEST_F(InputWindowTest, HeldKeyAndButtonWhileTheLoopRuns) {
  BackgroundCommand command("xdotool search --name " + TITLE +
                            " mousemove --window %1 64 96 keydown space sleep 0.3 keyup space"
                            " mousedown 1 sleep 0.3 mouseup 1");
  ASSERT_TRUE(command.started());
  while (!command.finished()) {
    step();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_EQ(command.status, 0);
  window().getPosition();
  step();

  const std::vector<int> pressed = stepsWith(key(vt::KEY_PRESSED, K::SPACE));
  const std::vector<int> released = stepsWith(key(vt::KEY_RELEASED, K::SPACE));
  const std::vector<int> down = stepsWith(key(vt::KEY_DOWN, K::SPACE));
  ASSERT_EQ(count(key(vt::KEY_PRESSED, K::SPACE)), 1);
  ASSERT_EQ(count(key(vt::KEY_RELEASED, K::SPACE)), 1);
  ASSERT_GE(down.size(), 2u);
  EXPECT_EQ(count(key(vt::KEY_DOWN, K::SPACE)), static_cast<int>(down.size()));
  // Held in every step from the press until the release. The press may be
  // read one step after the key state shows it held, and the release one
  // step after the state shows it up.
  EXPECT_EQ(down.back() - down.front() + 1, static_cast<int>(down.size()));
  EXPECT_LE(pressed[0], down.front() + 1);
  EXPECT_GE(pressed[0], down.front());
  EXPECT_GT(released[0], down.back());

  const std::vector<int> clicked = stepsWith(mouse(vt::CLICKED, vt::Mouse::LEFT, 5, 3));
  const std::vector<int> held = stepsWith(mouse(vt::PRESSED, vt::Mouse::LEFT, 5, 3));
  ASSERT_EQ(count(mouse(vt::CLICKED, vt::Mouse::LEFT, 5, 3)), 1);
  ASSERT_GE(held.size(), 2u);
  EXPECT_EQ(count(mouse(vt::PRESSED, vt::Mouse::LEFT, 5, 3)), static_cast<int>(held.size()));
  EXPECT_EQ(held.back() - held.front() + 1, static_cast<int>(held.size()));
  EXPECT_LE(clicked[0], held.front() + 1);
  EXPECT_GE(held.front(), released[0]);
}

TEST_F(InputWindowTest, CloseRequestEndsTheGameAndLeavesTheRestOfTheQueue) {
  vt::LogManager::getInstance().setLogLevel(1);
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  game_manager.setGameOver(false);
  ASSERT_EQ(xdotool("key a keydown b"), 0);
  requestClose(window());
  ASSERT_EQ(xdotool("key c"), 0);
  step();
  // B is held, but the step ends at the close request.
  EXPECT_EQ(steps[0], (Events{key(vt::KEY_PRESSED, K::A), key(vt::KEY_RELEASED, K::A),
                              key(vt::KEY_PRESSED, K::B)}));
  EXPECT_TRUE(game_manager.getGameOver());
  EXPECT_NE(
      config.logText().find("InputManager::getInput(): Window close event. Setting game over.\n"),
      std::string::npos);

  game_manager.setGameOver(false);
  ASSERT_EQ(xdotool("keyup b"), 0);
  step();
  EXPECT_EQ(steps[1], (Events{key(vt::KEY_PRESSED, K::C), key(vt::KEY_RELEASED, K::C),
                              key(vt::KEY_RELEASED, K::B)}));
  EXPECT_FALSE(game_manager.getGameOver());
}
