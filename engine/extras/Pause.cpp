#include "extras/Pause.h"

#include <cmath>
#include <utility>

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/InputManager.h"
#include "world/WorldManager.h"

namespace vt {

Pause::Pause(int init_pause_key) : pause_key(init_pause_key) {
  LogManager::getInstance().writeLog(
      "Pause::Pause(): Pause enabled.  Press any other key to resume.");
  setSolidness(SPECTRAL);
  setType("Pause");
  registerInterest(KEYBOARD_EVENT);
}

int Pause::eventHandler(const Event* p_event) {
  LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(10, "Pause::eventHandler(): Got event");
  if (p_event->getType() != KEYBOARD_EVENT) return 0;
  // Press, hold and release of the key all pause.
  if (static_cast<const EventKeyboard*>(p_event)->getKey() != pause_key) return 1;
  log_manager.writeLog(1, "Pause::eventHandler(): Game paused.");
  if (!canWait()) {
    log_manager.writeLog(
        "Pause::eventHandler(): DisplayManager unexpectedly returned null window!  Cannot pause.");
    return 0;
  }
  showMessage();
  waitForKeyPress();
  GameManager::getInstance().restartFrame();
  log_manager.writeLog(1, "Pause::eventHandler(): Game resumed.");
  return 1;
}

void Pause::setMessage(std::string new_message, Color new_color) {
  message = std::move(new_message);
  message_color = new_color;
}

bool Pause::canWait() {
  const DisplayManager& display_manager = DisplayManager::getInstance();
  return InputManager::getInstance().isReplaying() || display_manager.getWindow() != nullptr ||
         display_manager.isTerminal();
}

void Pause::showMessage() const {
  if (message.empty()) return;
  DisplayManager& display_manager = DisplayManager::getInstance();
  const Box view = WorldManager::getInstance().getView();
  const Vector centre = view.getCorner() + Vector(std::floor(view.getHorizontal() / 2),
                                                  std::floor(view.getVertical() / 2));
  display_manager.drawString(centre, message, CENTER_JUSTIFIED, message_color);
  if (!InputManager::getInstance().isReplaying()) display_manager.swapBuffers();
}

void Pause::waitForKeyPress() {
  // A replay goes on at once: the recording holds what came after the pause.
  if (InputManager::getInstance().isReplaying()) return;
  InputManager::getInstance().waitForKeyPress();
}

}  // namespace vt
