// The key table, and real keys and mouse (by xdotool) on a window, a round per step.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/Config.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputManager.h"
#include "media/InputTranslation.h"
#include "support/RecordingObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

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
  return "mouse " + std::to_string(action) + " " + std::to_string(button) + " (" +
         std::to_string(x) + ", " + std::to_string(y) + ")";
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

class InputWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(vt::test::startProcessXvfb());
    vt::Config::getInstance().setWindowTitle(TITLE);
    ASSERT_EQ(vt::DisplayManager::getInstance().startUp(), 0);
    ASSERT_EQ(vt::WorldManager::getInstance().startUp(), 0);
    ASSERT_EQ(InputManager::getInstance().startUp(), 0);
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

  // Runs xdotool; a round trip on the window's own connection then queues
  // everything it did for the window.
  static int xdotool(const std::string& arguments) {
    const int status = std::system(("xdotool " + arguments).c_str());
    window().getPosition();
    return status;
  }

  // One round of input; returns what the recorder received in it.
  const Events& step() {
    steps.emplace_back();
    InputManager::getInstance().getInput();
    return steps.back();
  }

  vt::test::TestConfig config{false};
  std::vector<Events> steps;
};

}  // namespace

TEST_F(InputWindowTest, KeysAndMouseArriveStepByStep) {
  const std::string on_window = "search --name " + TITLE + " mousemove --window %1 ";
  const auto at = [](int action, int button) { return mouse(action, button, 5, 3); };
  const std::string left_held = at(vt::PRESSED, vt::Mouse::LEFT);
  const int no_button = vt::Mouse::UNDEFINED_MOUSE_BUTTON;
  // Held Num0 is polled twice, held Backspace and F11 not at all; mouse
  // releases are not reported and cells are not rounded.
  const std::pair<std::string, Events> rounds[] = {
      {"key p Prior", {press(K::P), release(K::P), press(158), release(158)}},
      {"keydown space", {press(K::SPACE), held(K::SPACE)}},
      {"", {held(K::SPACE)}},
      {"keyup space", {release(K::SPACE)}},
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
  for (const auto& [input, events] : rounds) {
    ASSERT_EQ(input.empty() ? 0 : xdotool(input), 0);
    EXPECT_EQ(step(), events) << input;
  }
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
