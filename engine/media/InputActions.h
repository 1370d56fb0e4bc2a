#pragma once

#include <climits>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "world/Object.h"

namespace vt {

// Names for what a player does ("left", "fire"), each bound to keys and
// mouse buttons, and asked whether it was pressed, held or released in a
// step. Fed by the keyboard and mouse events the input manager delivers.
//
// Every question is about the input of the step before the one under way:
// in a step handler, which runs before the step's input, that is the last
// input taken; between steps (in a test) it is the step just run. An action
// is held in a step when any of its keys or buttons is down in it, pressed
// in the first step it is held, released in the first step after that it
// is not. F11, F12 and Backspace, which the input manager does not report
// while held, count as held in the step they were pressed only.
class InputActions : public Object {
 public:
  // SPECTRAL, invisible, of type "InputActions".
  InputActions();

  // Binds a key (a Keyboard::Key code) or a mouse button (Mouse::Button)
  // to the action; an action takes any number. -1 with a log line for an
  // empty name, UNDEFINED_KEY, or a button other than left, right and middle.
  int bindKey(const std::string& action, int key);
  int bindButton(const std::string& action, int button);

  // False for an action that nothing is bound to, logged the first time.
  bool isPressed(const std::string& action) const;
  bool isHeld(const std::string& action) const;
  bool isReleased(const std::string& action) const;

  int eventHandler(const Event* p_event) override;

 private:
  // A key (KEYBOARD) or a mouse button (MOUSE), and its code.
  enum Device { KEYBOARD, MOUSE };
  using Input = std::pair<Device, int>;
  // The last two steps in which an input was down.
  struct DownSteps {
    int last = INT_MIN;
    int before_last = INT_MIN;
  };

  int bind(const std::string& action, Input input);
  void noteDown(Input input);
  // Whether any input bound to the action was down in the step; false,
  // logged once, for an action without inputs.
  bool heldIn(const std::string& action, int step) const;
  // The step the questions are about.
  static int askedStep();

  std::map<std::string, std::vector<Input>> bindings;
  std::map<Input, DownSteps> downs;
  mutable std::set<std::string> unknown_reported;
  int last_step;
};

}  // namespace vt
