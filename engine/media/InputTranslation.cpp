#include "media/InputTranslation.h"

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"

namespace vt {

namespace {

// Keys polled one by one before the runs of F keys, letters and digits.
const sf::Keyboard::Key POLLED_SINGLE_KEYS[] = {
    sf::Keyboard::Up,        sf::Keyboard::Down,     sf::Keyboard::Left,   sf::Keyboard::Right,
    sf::Keyboard::Space,     sf::Keyboard::Enter,    sf::Keyboard::Tab,    sf::Keyboard::Escape,
    sf::Keyboard::Pause,     sf::Keyboard::Subtract, sf::Keyboard::Add,    sf::Keyboard::Tilde,
    sf::Keyboard::Period,    sf::Keyboard::Comma,    sf::Keyboard::Slash,  sf::Keyboard::Equal,
    sf::Keyboard::Backslash, sf::Keyboard::Multiply, sf::Keyboard::Quote,  sf::Keyboard::Semicolon,
    sf::Keyboard::LControl,  sf::Keyboard::RControl, sf::Keyboard::LShift, sf::Keyboard::RShift,
};

// Keys whose engine codes do not follow from a run of SFML codes.
const KeyBinding SINGLE_KEYS[] = {
    {sf::Keyboard::Space, Keyboard::SPACE},
    {sf::Keyboard::Enter, Keyboard::RETURN},
    {sf::Keyboard::Escape, Keyboard::ESCAPE},
    {sf::Keyboard::Tab, Keyboard::TAB},
    {sf::Keyboard::Left, Keyboard::LEFTARROW},
    {sf::Keyboard::Right, Keyboard::RIGHTARROW},
    {sf::Keyboard::Up, Keyboard::UPARROW},
    {sf::Keyboard::Down, Keyboard::DOWNARROW},
    {sf::Keyboard::Pause, Keyboard::PAUSE},
    {sf::Keyboard::Subtract, Keyboard::MINUS},
    {sf::Keyboard::Add, Keyboard::PLUS},
    {sf::Keyboard::Tilde, Keyboard::TILDE},
    {sf::Keyboard::Period, Keyboard::PERIOD},
    {sf::Keyboard::Comma, Keyboard::COMMA},
    {sf::Keyboard::Slash, Keyboard::SLASH},
    {sf::Keyboard::Equal, Keyboard::EQUAL},
    {sf::Keyboard::Backslash, Keyboard::BACKSLASH},
    {sf::Keyboard::Multiply, Keyboard::MULTIPLY},
    {sf::Keyboard::Quote, Keyboard::QUOTE},
    {sf::Keyboard::Semicolon, Keyboard::SEMICOLON},
    {sf::Keyboard::LControl, Keyboard::LEFTCONTROL},
    {sf::Keyboard::RControl, Keyboard::RIGHTCONTROL},
    {sf::Keyboard::LShift, Keyboard::LEFTSHIFT},
    {sf::Keyboard::RShift, Keyboard::RIGHTSHIFT},
    {sf::Keyboard::Num0, Keyboard::NUM0},
    {sf::Keyboard::Backspace, Keyboard::BACKSPACE},
};

// A run of consecutive SFML keys mapped onto consecutive engine codes.
struct KeyRun {
  sf::Keyboard::Key first;
  sf::Keyboard::Key last;
  int first_engine_key;
};

const KeyRun F_KEYS{sf::Keyboard::F1, sf::Keyboard::F12, Keyboard::F1};
const KeyRun LETTERS{sf::Keyboard::A, sf::Keyboard::Z, Keyboard::A};
const KeyRun DIGITS{sf::Keyboard::Num1, sf::Keyboard::Num9, Keyboard::NUM1};
// Only F1 to F10 are polled.
const KeyRun POLLED_F_KEYS{sf::Keyboard::F1, sf::Keyboard::F10, Keyboard::F1};

bool inRun(const KeyRun& run, sf::Keyboard::Key key) {
  return key >= run.first && key <= run.last;
}

int keyInRun(const KeyRun& run, sf::Keyboard::Key key) {
  return run.first_engine_key + (key - run.first);
}

void appendRun(std::vector<KeyBinding>& keys, const KeyRun& run) {
  for (int key = run.first; key <= run.last; key++) {
    const auto sfml_key = static_cast<sf::Keyboard::Key>(key);
    keys.push_back({sfml_key, keyInRun(run, sfml_key)});
  }
}

std::vector<KeyBinding> buildKeyBindings() {
  std::vector<KeyBinding> keys;
  for (const sf::Keyboard::Key key : POLLED_SINGLE_KEYS) keys.push_back({key, keyFromSFML(key)});
  appendRun(keys, POLLED_F_KEYS);
  appendRun(keys, LETTERS);
  appendRun(keys, DIGITS);
  keys.push_back({sf::Keyboard::Num0, Keyboard::NUM0});
  keys.push_back({sf::Keyboard::Num0, Keyboard::BACKSPACE});
  return keys;
}

}  // namespace

int keyFromSFML(sf::Keyboard::Key key) {
  for (const KeyRun* p_run : {&F_KEYS, &LETTERS, &DIGITS}) {
    if (inRun(*p_run, key)) return keyInRun(*p_run, key);
  }
  for (const KeyBinding& single : SINGLE_KEYS) {
    if (single.sfml_key == key) return single.engine_key;
  }
  return key + UNLISTED_KEY_OFFSET;
}

int buttonFromSFML(sf::Mouse::Button button) {
  switch (button) {
    case sf::Mouse::Left:
      return Mouse::LEFT;
    case sf::Mouse::Right:
      return Mouse::RIGHT;
    case sf::Mouse::Middle:
      return Mouse::MIDDLE;
    default:
      return Mouse::UNDEFINED_MOUSE_BUTTON;
  }
}

const std::vector<KeyBinding>& polledKeys() {
  static const std::vector<KeyBinding> keys = buildKeyBindings();
  return keys;
}

}  // namespace vt
