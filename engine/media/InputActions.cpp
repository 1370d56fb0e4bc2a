#include "media/InputActions.h"

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"

namespace vt {

InputActions::InputActions() : last_step(GameManager::getInstance().getStepCount() - 1) {
  setType("InputActions");
  setSolidness(SPECTRAL);
  setVisible(false);
  registerInterest(KEYBOARD_EVENT);
  registerInterest(MOUSE_EVENT);
  registerInterest(STEP_EVENT);
}

int InputActions::bindKey(const std::string& action, int key) {
  if (key == Keyboard::UNDEFINED_KEY) {
    LogManager::getInstance().writeLog(
        "InputActions::bindKey(): Error! An undefined key cannot be bound to '%s'.",
        action.c_str());
    return -1;
  }
  return bind(action, {KEYBOARD, key});
}

int InputActions::bindButton(const std::string& action, int button) {
  if (button != Mouse::LEFT && button != Mouse::RIGHT && button != Mouse::MIDDLE) {
    LogManager::getInstance().writeLog(
        "InputActions::bindButton(): Error! %d is not a mouse button; not bound to '%s'.", button,
        action.c_str());
    return -1;
  }
  return bind(action, {MOUSE, button});
}

int InputActions::bind(const std::string& action, Input input) {
  if (action.empty()) {
    LogManager::getInstance().writeLog("InputActions::bind(): Error! An action needs a name.");
    return -1;
  }
  bindings[action].push_back(input);
  return 0;
}

int InputActions::eventHandler(const Event* p_event) {
  if (p_event->getType() == KEYBOARD_EVENT) {
    const auto* p_key = static_cast<const EventKeyboard*>(p_event);
    const int action = p_key->getKeyboardAction();
    if (action == KEY_PRESSED || action == KEY_DOWN) noteDown({KEYBOARD, p_key->getKey()});
    return 1;
  }
  if (p_event->getType() == MOUSE_EVENT) {
    const auto* p_mouse = static_cast<const EventMouse*>(p_event);
    const int action = p_mouse->getMouseAction();
    if (action == CLICKED || action == PRESSED) noteDown({MOUSE, p_mouse->getMouseButton()});
    return 1;
  }
  if (p_event->getType() == STEP_EVENT) {
    // The game manager counts from 0 again at each run: what was noted
    // before would be taken for the new steps of the same numbers.
    const int step = static_cast<const EventStep*>(p_event)->getStepCount();
    if (step <= last_step) downs.clear();
    last_step = step;
    return 1;
  }
  return Object::eventHandler(p_event);
}

void InputActions::noteDown(Input input) {
  const int step = GameManager::getInstance().getStepCount();
  DownSteps& steps = downs[input];
  if (steps.last == step) return;
  steps.before_last = steps.last;
  steps.last = step;
}

int InputActions::askedStep() {
  return GameManager::getInstance().getStepCount() - 1;
}

bool InputActions::heldIn(const std::string& action, int step) const {
  const auto bound = bindings.find(action);
  if (bound == bindings.end()) {
    if (unknown_reported.insert(action).second) {
      LogManager::getInstance().writeLog(
          "InputActions: Warning! Nothing is bound to the action '%s'.", action.c_str());
    }
    return false;
  }
  for (const Input& input : bound->second) {
    const auto noted = downs.find(input);
    if (noted != downs.end() && (noted->second.last == step || noted->second.before_last == step))
      return true;
  }
  return false;
}

bool InputActions::isHeld(const std::string& action) const {
  return heldIn(action, askedStep());
}

bool InputActions::isPressed(const std::string& action) const {
  const int step = askedStep();
  return heldIn(action, step) && !heldIn(action, step - 1);
}

bool InputActions::isReleased(const std::string& action) const {
  const int step = askedStep();
  return heldIn(action, step - 1) && !heldIn(action, step);
}

}  // namespace vt
