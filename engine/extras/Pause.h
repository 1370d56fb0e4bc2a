#pragma once

#include <string>

#include "core/Color.h"
#include "world/Object.h"

namespace vt {

// Freezes the whole game when its key is pressed, until another key press
// arrives, showing its message meanwhile. It is never drawn otherwise.
class Pause : public Object {
 public:
  explicit Pause(int init_pause_key);

  int eventHandler(const Event* p_event) override;

  // A line of text shown in the centre of the screen while the game is
  // paused, alone on the screen; "" (the default) shows nothing and leaves
  // the last frame in view. A replay, which does not wait, draws it into
  // the frame of the step the key came in.
  void setMessage(std::string new_message, Color new_color = WHITE);
  std::string getMessage() const { return message; }

 private:
  // True when a key can end a pause: in a window, or at once in a replay.
  static bool canWait();
  // Draws the message in the centre of the view, and shows it when the
  // pause is to wait in a window.
  void showMessage() const;
  // Drains the window's events until a key is pressed; a replay goes on at once.
  static void waitForKeyPress();

  int pause_key;
  std::string message;
  Color message_color = WHITE;
};

}  // namespace vt
