#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/Pause.h"
#include "extras/Recorder.h"
#include "media/DisplayManager.h"
#include "media/InputManager.h"
#include "media/InputTranslation.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

// Last: Xlib defines macros (None, Status, Bool) that clash with other headers.
#include <X11/Xlib.h>

namespace K = vt::Keyboard;
using vt::InputManager;
using Events = std::vector<std::string>;
using SK = sf::Keyboard;

namespace {

const std::string TITLE = "vantor-input-test";

std::string key(int action, int code) {
  return "key " + std::to_string(action) + " " + std::to_string(code);
}

const auto press = [](int code) { return key(vt::KEY_PRESSED, code); };
const auto release = [](int code) { return key(vt::KEY_RELEASED, code); };
const auto held = [](int code) { return key(vt::KEY_DOWN, code); };

std::string mouse(int action, int button, float x, float y) {
  return "mouse " + std::to_string(action) + " " + std::to_string(button) + " " +
         vt::Vector(x, y).toString();
}

// Runs xdotool; a round trip on the window's own connection then queues
// everything it did for the window.
int xdotool(const std::string& arguments) {
  const int status = std::system(("xdotool " + arguments).c_str());
  vt::DisplayManager::getInstance().getWindow()->getPosition();
  return status;
}

vt::EventKeyboard keyEvent(int key) {
  vt::EventKeyboard event;
  event.setKey(key);
  event.setKeyboardAction(vt::KEY_PRESSED);
  return event;
}

// What a window manager sends when the window's close button is pressed: a WM_PROTOCOLS client
// message naming WM_DELETE_WINDOW, sent to the client that made the window. Sent on a connection of
// its own, which is then synchronised, so the server has passed it on before this returns.
bool sendCloseRequest(sf::WindowHandle window) {
  Display* p_display = XOpenDisplay(nullptr);
  if (p_display == nullptr) return false;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(p_display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(p_display, "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  const bool sent = XSendEvent(p_display, window, False, NoEventMask, &event) != 0;
  XSync(p_display, False);
  XCloseDisplay(p_display);
  return sent;
}

// A window titled TITLE, which has the focus, with the world and the input
// manager; the log in a temporary folder.
class InputWindow : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(vt::test::startProcessXvfb());
    vt::Config::getInstance().setWindowTitle(TITLE);
    ASSERT_EQ(vt::DisplayManager::getInstance().startUp(), 0);
    ASSERT_EQ(vt::WorldManager::getInstance().startUp(), 0);
    ASSERT_EQ(input.startUp(), 0);
    ASSERT_EQ(xdotool("search --name " + TITLE + " windowfocus --sync"), 0);
  }
  void TearDown() override {
    input.shutDown();
    vt::WorldManager::getInstance().shutDown();
    vt::DisplayManager::getInstance().shutDown();
  }
  test::HeadlessEngine log{test::HeadlessEngine::LOG_ONLY, false};
  InputManager& input = InputManager::getInstance();
};

}  // namespace

// The whole engine with a window, started by the game manager from a
// configuration file of its own, the log at level 1.
TEST(WindowedGame, CloseRequestFromTheServerEndsTheGameAndIsRecorded) {
  ASSERT_TRUE(vt::test::startProcessXvfb());
  const std::string directory = test::makeTempDir();
  test::writeConfig("font_file:" VANTOR_FONT_PATH ",\nlogfile:" + directory +
                    "/vantor.log,\nwindow_title:" + TITLE + ",\n");
  unsetenv("VANTOR_LOG");
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  ASSERT_EQ(game_manager.startUp(), 0);
  vt::LogManager::getInstance().setLogLevel(1);
  const std::string recording = directory + "/closed.vrec";
  ASSERT_EQ(vt::Recorder::getInstance().startRecording(recording), 0);
  // Steps without a request leave the game running.
  for (int i = 0; i < 5; i++) game_manager.step();
  ASSERT_FALSE(game_manager.getGameOver());
  ASSERT_TRUE(sendCloseRequest(vt::DisplayManager::getInstance().getWindow()->getSystemHandle()));
  // The request is on its way to the window's own connection; the loop
  // picks it up within a few steps.
  int steps = 0;
  EXPECT_TRUE(test::waitFor(
      [&] {
        game_manager.step();
        steps++;
        return game_manager.getGameOver();
      },
      20));
  game_manager.shutDown();
  const std::string log = test::readFile(directory + "/vantor.log");
  const std::string closed = "getInput(): Window close event. Setting";
  EXPECT_EQ(log.find(closed, log.find(closed) + 1), std::string::npos) << "logged once";
  EXPECT_NE(log.find("InputManager::" + closed + " game over."), std::string::npos);
  // The close ends the recording's last step, and ends its replay there too,
  // in a window whose own input is left aside.
  const std::string recorded = test::readFile(recording);
  EXPECT_NE(recorded.find(" close\nend " + std::to_string(steps + 5) + "\n"), std::string::npos)
      << recorded;
  ASSERT_EQ(game_manager.startUp(), 0);
  ASSERT_EQ(vt::Recorder::getInstance().startReplay(recording), 0);
  game_manager.run();
  EXPECT_EQ(vt::Recorder::getInstance().stop(), 0) << vt::Recorder::getInstance().getFailure();
  game_manager.shutDown();
  test::restoreEngineSettings();
}

TEST_F(InputWindow, KeysAndMouseArriveStepByStep) {
  auto* p_recorder = new test::RecordingObject({vt::KEYBOARD_EVENT, vt::MOUSE_EVENT});
  const std::string on_window = "search --name " + TITLE + " mousemove --window %1 ";
  const auto at = [](int action, int button) { return mouse(action, button, 5, 3); };
  const std::string left_held = at(vt::PRESSED, vt::Mouse::LEFT);
  const int no_button = vt::Mouse::UNDEFINED_MOUSE_BUTTON;
  // Held Num0 is polled twice, held Backspace and F11 not at all; mouse
  // releases are not reported and cells are not rounded.
  const std::pair<std::string, Events> rounds[] = {
      {"key p Prior", {press(K::P), release(K::P), press(158), release(158)}},
      {"keydown space", {press(K::SPACE), held(K::SPACE)}},
      {"keydown d 5", {press(K::D), press(K::NUM5), held(K::SPACE), held(K::D), held(K::NUM5)}},
      {"keyup space d 5", {release(K::SPACE), release(K::D), release(K::NUM5)}},
      {"keydown 0", {press(K::NUM0), held(K::NUM0), held(K::BACKSPACE)}},
      {"keyup 0 keydown BackSpace", {release(K::NUM0), press(K::BACKSPACE)}},
      {"keyup BackSpace keydown F11", {release(K::BACKSPACE), press(K::F11)}},
      {"keyup F11 " + on_window + "64 96", {release(K::F11), at(vt::MOVED, no_button)}},
      {"mousedown 1", {at(vt::CLICKED, vt::Mouse::LEFT), left_held}},
      {"mousedown 3",
       {at(vt::CLICKED, vt::Mouse::RIGHT), left_held, at(vt::PRESSED, vt::Mouse::RIGHT)}},
      {"mouseup 3 mouseup 1 mousedown 2",
       {at(vt::CLICKED, vt::Mouse::MIDDLE), at(vt::PRESSED, vt::Mouse::MIDDLE)}},
      {"mouseup 2 " + on_window + "640 400", {mouse(vt::MOVED, no_button, 50, 12.5f)}}};
  for (const auto& [typed, events] : rounds) {
    ASSERT_EQ(typed.empty() ? 0 : xdotool(typed), 0);
    p_recorder->seen.clear();
    input.getInput();
    EXPECT_EQ(p_recorder->seen, events) << typed;
  }
}

// The game is held inside the pause key's handler until a key is pressed in
// the window; other keys go through at once. (Without a window the game goes
// on: see Pause.ItsMessageIsShownInTheCentreOfTheScreen.)
TEST_F(InputWindow, ThePauseKeyHoldsTheGameUntilTheNextKeyPress) {
  vt::LogManager::getInstance().setLogLevel(1);
  new vt::Pause(K::F10);
  input.queueEvent(keyEvent(K::P));
  input.getInput();
  EXPECT_EQ(log.logText().find("Game paused."), std::string::npos);
  const std::string sent = log.getDirectory() + "/sent";
  // Typed into the window, which has the focus, once the file says the game was held.
  const std::string typed =
      "(sleep 0.3; touch " + sent + "; xdotool key a; touch " + sent + ".a) &";
  ASSERT_EQ(std::system(typed.c_str()), 0);
  input.queueEvent(keyEvent(K::F10));
  input.getInput();
  EXPECT_TRUE(std::filesystem::exists(sent));
  EXPECT_NE(log.logText().find("Game resumed."), std::string::npos);
  // The key is up again before the window goes: no later test finds it held.
  EXPECT_TRUE(test::waitFor([&] { return std::filesystem::exists(sent + ".a"); }));
}

// Engine codes 0 to 72 go, in order, to these keys, F1 to F12, A to Z, 1 to 9,
// 0 and Backspace; every other key is its SFML code plus 97.
TEST(Input, EverySfmlKeyHasItsEngineCode) {
  std::vector<int> listed = {SK::Space,    SK::Enter,     SK::Escape,   SK::Tab,   SK::Left,
                             SK::Right,    SK::Up,        SK::Down,     SK::Pause, SK::Subtract,
                             SK::Add,      SK::Tilde,     SK::Period,   SK::Comma, SK::Slash,
                             SK::Equal,    SK::Backslash, SK::Multiply, SK::Quote, SK::Semicolon,
                             SK::LControl, SK::RControl,  SK::LShift,   SK::RShift};
  for (const auto& [first, last] :
       {std::pair(SK::F1, SK::F12), {SK::A, SK::Z}, {SK::Num1, SK::Num9}}) {
    for (int key = first; key <= last; key++) listed.push_back(key);
  }
  listed.insert(listed.end(), {SK::Num0, SK::Backspace});
  for (int key = SK::Unknown; key < SK::KeyCount; key++) {
    const auto found = std::find(listed.begin(), listed.end(), key);
    EXPECT_EQ(vt::keyFromSFML(static_cast<SK::Key>(key)),
              found == listed.end() ? key + 97 : found - listed.begin())
        << "SFML key " << key;
  }
  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::XButton1), vt::Mouse::UNDEFINED_MOUSE_BUTTON);
}
