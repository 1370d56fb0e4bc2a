#pragma once

#include "core/Event.h"

namespace vt {

namespace Keyboard {

// The engine's key codes. A key outside this list is reported as its SFML
// code plus UNLISTED_KEY_OFFSET (see InputTranslation.h).
enum Key {
  UNDEFINED_KEY = -1,
  SPACE,
  RETURN,
  ESCAPE,
  TAB,
  LEFTARROW,
  RIGHTARROW,
  UPARROW,
  DOWNARROW,
  PAUSE,
  MINUS,
  PLUS,
  TILDE,
  PERIOD,
  COMMA,
  SLASH,
  EQUAL,
  BACKSLASH,
  MULTIPLY,
  QUOTE,
  SEMICOLON,
  LEFTCONTROL,
  RIGHTCONTROL,
  LEFTSHIFT,
  RIGHTSHIFT,
  F1,
  F2,
  F3,
  F4,
  F5,
  F6,
  F7,
  F8,
  F9,
  F10,
  F11,
  F12,
  A,
  B,
  C,
  D,
  E,
  F,
  G,
  H,
  I,
  J,
  K,
  L,
  M,
  N,
  O,
  P,
  Q,
  R,
  S,
  T,
  U,
  V,
  W,
  X,
  Y,
  Z,
  NUM1,
  NUM2,
  NUM3,
  NUM4,
  NUM5,
  NUM6,
  NUM7,
  NUM8,
  NUM9,
  NUM0,
  BACKSPACE,
};

}  // namespace Keyboard

enum EventKeyboardAction {
  UNDEFINED_KEYBOARD_ACTION = -1,
  KEY_PRESSED,
  KEY_RELEASED,
  // Sent every step while the key is held.
  KEY_DOWN,
};

// A key pressed, released or held ("vt-keyboard").
class EventKeyboard : public Event {
 public:
  EventKeyboard();

  ~EventKeyboard() override = default;
  // An engine key code; codes outside Keyboard::Key are kept as they are.
  virtual void setKey(int new_key);
  virtual int getKey() const;
  virtual void setKeyboardAction(int new_keyboard_action);
  virtual int getKeyboardAction() const;

 private:
  int key_val = Keyboard::UNDEFINED_KEY;
  int keyboard_action = UNDEFINED_KEYBOARD_ACTION;
};

}  // namespace vt
