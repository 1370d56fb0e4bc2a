#include "extras/Pause.h"

#include <ctime>

#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/InputManager.h"

namespace vt {

namespace {

void sleepMicroseconds(long microseconds) {
  const timespec span{0, microseconds * 1000};
  nanosleep(&span, nullptr);
}

}  // namespace

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
  if (!waitForKeyPress()) {
    log_manager.writeLog(
        "Pause::eventHandler(): DisplayManager unexpectedly returned null window!  Cannot pause.");
    return 0;
  }
  log_manager.writeLog(1, "Pause::eventHandler(): Game resumed.");
  return 1;
}

bool Pause::waitForKeyPress() {
  // A replay goes on at once: the recording holds what came after the pause.
  if (InputManager::getInstance().isReplaying()) return true;
  sf::RenderWindow* p_window = DisplayManager::getInstance().getWindow();
  if (p_window == nullptr) return false;
  bool paused = true;
  while (paused) {
    sf::Event event;
    // Every pending event is drained; a close request is ignored.
    while (p_window->pollEvent(event)) {
      if (event.type != sf::Event::KeyPressed) continue;
      LogManager::getInstance().writeLog(10, "Pause::eventHandler(): Keypress (%d)",
                                         static_cast<int>(event.key.code));
      paused = false;
    }
    sleepMicroseconds(30);
  }
  return true;
}

}  // namespace vt
