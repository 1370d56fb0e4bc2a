// Key and button tables and the input manager's start-up, without a window.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/Config.h"
#include "media/EventMouse.h"
#include "media/InputManager.h"
#include "media/InputTranslation.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

namespace K = vt::Keyboard;
using SK = sf::Keyboard;
using vt::InputManager;

namespace {

SK::Key sfKey(int code) {
  return static_cast<SK::Key>(code);
}

}  // namespace

TEST(Input, EverySfmlKeyHasItsEngineCode) {
  const std::pair<SK::Key, int> singles[] = {
      {SK::Space, 0},      {SK::Enter, 1},     {SK::Escape, 2},   {SK::Tab, 3},
      {SK::Left, 4},       {SK::Right, 5},     {SK::Up, 6},       {SK::Down, 7},
      {SK::Pause, 8},      {SK::Subtract, 9},  {SK::Add, 10},     {SK::Tilde, 11},
      {SK::Period, 12},    {SK::Comma, 13},    {SK::Slash, 14},   {SK::Equal, 15},
      {SK::Backslash, 16}, {SK::Multiply, 17}, {SK::Quote, 18},   {SK::Semicolon, 19},
      {SK::LControl, 20},  {SK::RControl, 21}, {SK::LShift, 22},  {SK::RShift, 23},
      {SK::F1, 24},        {SK::F10, 33},      {SK::F12, 35},     {SK::A, 36},
      {SK::Z, 61},         {SK::Num1, 62},     {SK::Num9, 70},    {SK::Num0, 71},
      {SK::Backspace, 72}, {SK::Unknown, 96},  {SK::LAlt, 136},   {SK::PageUp, 158},
      {SK::F13, 194},      {SK::Numpad0, 172}, {SK::Hyphen, 153}, {SK::Delete, 163}};
  for (const auto& [sfml_key, code] : singles) {
    EXPECT_EQ(vt::keyFromSFML(sfml_key), code) << "SFML key " << sfml_key;
  }
  // The 73 listed keys take the codes 0 to 72 once each; every other key is
  // its SFML code plus 97.
  std::multiset<int> listed;
  for (int code = SK::Unknown; code < SK::KeyCount; code++) {
    const int engine_key = vt::keyFromSFML(sfKey(code));
    if (engine_key == code + 97) {
      EXPECT_GT(engine_key, K::BACKSPACE);
    } else {
      listed.insert(engine_key);
    }
  }
  ASSERT_EQ(listed.size(), 73u);
  for (int code = K::SPACE; code <= K::BACKSPACE; code++) EXPECT_EQ(listed.count(code), 1u);

  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::XButton1), vt::Mouse::UNDEFINED_MOUSE_BUTTON);
}

TEST(Input, ManagerStartsAfterTheDisplayAndPassesInputEventsOn) {
  const test::HeadlessEngine engine;
  InputManager& input_manager = InputManager::getInstance();
  vt::Config::getInstance().setHeadless(false);
  EXPECT_EQ(input_manager.startUp(), -1);
  vt::Config::getInstance().setHeadless(true);
  ASSERT_EQ(input_manager.startUp(), 0);
  EXPECT_EQ(input_manager.startUp(), -1);
  auto* p_object = new test::RecordingObject;
  ASSERT_EQ(p_object->registerInterest(vt::MOUSE_EVENT), 0);
  EXPECT_FALSE(input_manager.isValid("vt-step") || input_manager.isValid("vt-keyboard-network"));
  const vt::EventMouse mouse_event;
  EXPECT_EQ(input_manager.onEvent(&mouse_event), 1);
  EXPECT_EQ(p_object->received, std::vector<std::string>{"vt-mouse"});
  input_manager.shutDown();
  EXPECT_FALSE(input_manager.isStarted());
}
