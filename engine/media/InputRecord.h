#pragma once

#include "core/Vector.h"

namespace vt {

// One piece of input from outside the program, as the input manager
// delivered it in a step: a key, a mouse event or the window's close request.
struct InputRecord {
  enum Kind { KEY, MOUSE, CLOSE };

  Kind kind = CLOSE;
  // EventKeyboardAction or EventMouseAction.
  int action = -1;
  // The engine key code, or the mouse button.
  int code = -1;
  // Mouse events only, in window cells.
  Vector position;

  bool operator==(const InputRecord& other) const {
    return kind == other.kind && action == other.action && code == other.code &&
           position == other.position;
  }
};

}  // namespace vt
