#pragma once

#include "world/Object.h"

namespace vt {

// Freezes the whole game when its key is pressed, until another key press
// arrives. It is never drawn.
class Pause : public Object {
 public:
  explicit Pause(int init_pause_key);

  int eventHandler(const Event* p_event) override;

 private:
  // Drains the window's events until a key is pressed; false without a window.
  static bool waitForKeyPress();

  int pause_key;
};

}  // namespace vt
