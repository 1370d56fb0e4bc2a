#include "media/EventKeyboard.h"

namespace vt {

EventKeyboard::EventKeyboard() {
  setType(KEYBOARD_EVENT);
}

void EventKeyboard::setKey(int new_key) {
  key_val = new_key;
}

int EventKeyboard::getKey() const {
  return key_val;
}

void EventKeyboard::setKeyboardAction(int new_keyboard_action) {
  keyboard_action = new_keyboard_action;
}

int EventKeyboard::getKeyboardAction() const {
  return keyboard_action;
}

}  // namespace vt
