#pragma once

#include "core/Event.h"
#include "core/Vector.h"

namespace vt {

enum EventMouseAction {
  UNDEFINED_MOUSE_ACTION = -1,
  // The button went down.
  CLICKED,
  // The button is held; sent every step.
  PRESSED,
  MOVED,
};

namespace Mouse {

enum Button {
  UNDEFINED_MOUSE_BUTTON = -1,
  LEFT,
  RIGHT,
  MIDDLE,
};

}  // namespace Mouse

// A mouse click, held button or move ("vt-mouse"), at a position in window
// cells (not world coordinates).
class EventMouse : public Event {
 public:
  EventMouse();

  void setMouseAction(int new_mouse_action);
  int getMouseAction() const { return mouse_action; }
  void setMouseButton(int new_mouse_button);
  int getMouseButton() const { return mouse_button; }
  void setMousePosition(Vector new_mouse_xy);
  Vector getMousePosition() const { return mouse_xy; }

 private:
  int mouse_action = UNDEFINED_MOUSE_ACTION;
  int mouse_button = Mouse::UNDEFINED_MOUSE_BUTTON;
  Vector mouse_xy;
};

}  // namespace vt
