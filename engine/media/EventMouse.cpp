#include "media/EventMouse.h"

namespace vt {

EventMouse::EventMouse() {
  setType(MOUSE_EVENT);
}

void EventMouse::setMouseAction(int new_mouse_action) {
  mouse_action = new_mouse_action;
}

void EventMouse::setMouseButton(int new_mouse_button) {
  mouse_button = new_mouse_button;
}

void EventMouse::setMousePosition(Vector new_mouse_xy) {
  mouse_xy = new_mouse_xy;
}

}  // namespace vt
