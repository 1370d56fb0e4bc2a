#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/LogManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputManager.h"
#include "media/InputTranslation.h"
#include "support/HeadlessEngine.h"

namespace K = vt::Keyboard;
using SfKey = sf::Keyboard::Key;

namespace {

SfKey sfKey(int code) {
  return static_cast<SfKey>(code);
}

int occurrences(const std::string& text, const std::string& part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) count++;
  return count;
}

// The listed keys outside the runs of letters, digits and F keys, with the
// numeric engine codes of the key table.
const std::vector<std::pair<SfKey, int>> SINGLE_KEY_CODES = {
    {sf::Keyboard::Space, 0},     {sf::Keyboard::Enter, 1},      {sf::Keyboard::Escape, 2},
    {sf::Keyboard::Tab, 3},       {sf::Keyboard::Left, 4},       {sf::Keyboard::Right, 5},
    {sf::Keyboard::Up, 6},        {sf::Keyboard::Down, 7},       {sf::Keyboard::Pause, 8},
    {sf::Keyboard::Subtract, 9},  {sf::Keyboard::Add, 10},       {sf::Keyboard::Tilde, 11},
    {sf::Keyboard::Period, 12},   {sf::Keyboard::Comma, 13},     {sf::Keyboard::Slash, 14},
    {sf::Keyboard::Equal, 15},    {sf::Keyboard::Backslash, 16}, {sf::Keyboard::Multiply, 17},
    {sf::Keyboard::Quote, 18},    {sf::Keyboard::Semicolon, 19}, {sf::Keyboard::LControl, 20},
    {sf::Keyboard::RControl, 21}, {sf::Keyboard::LShift, 22},    {sf::Keyboard::RShift, 23},
    {sf::Keyboard::Num0, 71},     {sf::Keyboard::Backspace, 72},
};

}  // namespace

TEST(InputKeyTable, ListedKeysGetTheirEngineCodes) {
  for (const auto& [sfml_key, code] : SINGLE_KEY_CODES) {
    EXPECT_EQ(vt::keyFromSFML(sfml_key), code) << "SFML key " << sfml_key;
  }
  for (int i = 0; i < 12; i++) EXPECT_EQ(vt::keyFromSFML(sfKey(sf::Keyboard::F1 + i)), 24 + i);
  for (int i = 0; i < 26; i++) EXPECT_EQ(vt::keyFromSFML(sfKey(sf::Keyboard::A + i)), 36 + i);
  for (int i = 0; i < 9; i++) EXPECT_EQ(vt::keyFromSFML(sfKey(sf::Keyboard::Num1 + i)), 62 + i);
  // The code the game's pause object is bound to.
  EXPECT_EQ(vt::keyFromSFML(sf::Keyboard::F10), 33);
  EXPECT_EQ(K::F10, 33);
  EXPECT_EQ(K::BACKSPACE, 72);
}

TEST(InputKeyTable, UnlistedKeysKeepTheirSfmlCodePlus97) {
  EXPECT_EQ(vt::keyFromSFML(sf::Keyboard::PageUp), 158);
  EXPECT_EQ(vt::keyFromSFML(sf::Keyboard::Unknown), 96);
  const SfKey unlisted[] = {sf::Keyboard::LAlt,     sf::Keyboard::RSystem, sf::Keyboard::Menu,
                            sf::Keyboard::LBracket, sf::Keyboard::Hyphen,  sf::Keyboard::Delete,
                            sf::Keyboard::Divide,   sf::Keyboard::Numpad0, sf::Keyboard::Numpad9,
                            sf::Keyboard::F13,      sf::Keyboard::F15,     sf::Keyboard::Home};
  for (const SfKey key : unlisted) EXPECT_EQ(vt::keyFromSFML(key), key + 97) << "SFML key " << key;

  // Over every SFML key: the 73 listed keys cover the engine codes 0 to 72
  // once each, and every other key lands outside that range.
  std::multiset<int> listed_codes;
  for (int code = sf::Keyboard::Unknown; code < sf::Keyboard::KeyCount; code++) {
    const int engine_key = vt::keyFromSFML(sfKey(code));
    if (engine_key == code + vt::UNLISTED_KEY_OFFSET) {
      EXPECT_GT(engine_key, K::BACKSPACE);
    } else {
      listed_codes.insert(engine_key);
    }
  }
  ASSERT_EQ(listed_codes.size(), 73u);
  for (int code = K::SPACE; code <= K::BACKSPACE; code++) EXPECT_EQ(listed_codes.count(code), 1u);
}

TEST(InputKeyTable, PollingListIsExactlyTheSeventyOneKeysInOrder) {
  std::vector<SfKey> expected = {
      sf::Keyboard::Up,       sf::Keyboard::Down,      sf::Keyboard::Left,
      sf::Keyboard::Right,    sf::Keyboard::Space,     sf::Keyboard::Enter,
      sf::Keyboard::Tab,      sf::Keyboard::Escape,    sf::Keyboard::Pause,
      sf::Keyboard::Subtract, sf::Keyboard::Add,       sf::Keyboard::Tilde,
      sf::Keyboard::Period,   sf::Keyboard::Comma,     sf::Keyboard::Slash,
      sf::Keyboard::Equal,    sf::Keyboard::Backslash, sf::Keyboard::Multiply,
      sf::Keyboard::Quote,    sf::Keyboard::Semicolon, sf::Keyboard::LControl,
      sf::Keyboard::RControl, sf::Keyboard::LShift,    sf::Keyboard::RShift};
  for (int i = 0; i < 10; i++) expected.push_back(sfKey(sf::Keyboard::F1 + i));
  for (int i = 0; i < 26; i++) expected.push_back(sfKey(sf::Keyboard::A + i));
  for (int i = 0; i < 9; i++) expected.push_back(sfKey(sf::Keyboard::Num1 + i));
  expected.push_back(sf::Keyboard::Num0);
  expected.push_back(sf::Keyboard::Num0);

  const std::vector<vt::KeyBinding>& polled = vt::polledKeys();
  ASSERT_EQ(polled.size(), 71u);
  for (std::size_t i = 0; i < polled.size(); i++) {
    EXPECT_EQ(polled[i].sfml_key, expected[i]) << "entry " << i;
  }
  // Held keys report the same codes as presses, except that the second Num0
  // reports BACKSPACE.
  for (std::size_t i = 0; i + 1 < polled.size(); i++) {
    EXPECT_EQ(polled[i].engine_key, vt::keyFromSFML(polled[i].sfml_key)) << "entry " << i;
  }
  EXPECT_EQ(polled[69].engine_key, K::NUM0);
  EXPECT_EQ(polled[70].engine_key, K::BACKSPACE);
}

TEST(InputKeyTable, MouseButtonsAndEventDefaults) {
  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::Left), 0);
  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::Right), 1);
  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::Middle), 2);
  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::XButton1), -1);
  EXPECT_EQ(vt::buttonFromSFML(sf::Mouse::XButton2), -1);

  const vt::EventKeyboard keyboard_event;
  EXPECT_EQ(keyboard_event.getType(), "vt-keyboard");
  EXPECT_EQ(keyboard_event.getKey(), -1);
  EXPECT_EQ(keyboard_event.getKeyboardAction(), -1);
  const vt::EventMouse mouse_event;
  EXPECT_EQ(mouse_event.getType(), "vt-mouse");
  EXPECT_EQ(mouse_event.getMouseAction(), -1);
  EXPECT_EQ(mouse_event.getMouseButton(), -1);
  EXPECT_EQ(mouse_event.getMousePosition(), vt::Vector(0, 0));
}

TEST(InputKeyTable, KeyEventsAreTranslatedAndTraced) {
  const test::HeadlessEngine engine;
  const vt::InputManager& input_manager = vt::InputManager::getInstance();
  sf::Event::KeyEvent key_event{};
  key_event.code = sf::Keyboard::A;
  // Traced at level 15 only.
  EXPECT_EQ(input_manager.toEventKeyboard(key_event).getKey(), K::A);
  vt::LogManager::getInstance().setLogLevel(15);
  const vt::EventKeyboard letter = input_manager.toEventKeyboard(key_event);
  key_event.code = sf::Keyboard::PageUp;
  const vt::EventKeyboard page_up = input_manager.toEventKeyboard(key_event);
  vt::LogManager::getInstance().setLogLevel(0);

  EXPECT_EQ(letter.getType(), "vt-keyboard");
  EXPECT_EQ(letter.getKey(), 36);
  EXPECT_EQ(letter.getKeyboardAction(), vt::UNDEFINED_KEYBOARD_ACTION);
  EXPECT_EQ(page_up.getKey(), 158);
  const std::string log = engine.logText();
  const std::string trace = "InputManager::toEventKeyboard(): Keyboard event ";
  // The engine code printed as a character, then the SFML code.
  EXPECT_NE(log.find(trace + "'$' (0)\n"), std::string::npos);
  EXPECT_NE(log.find(trace + "'\x9e' (61)\n"), std::string::npos);
  EXPECT_EQ(occurrences(log, trace), 2);
}
