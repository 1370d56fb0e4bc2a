#pragma once

#include <SFML/Window/Event.hpp>
#include <SFML/Window/Window.hpp>
#include <string>
#include <variant>
#include <vector>

#include "core/Manager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"

namespace vt {

// Once per step turns the window's events and the held keys and mouse
// buttons into "vt-keyboard" and "vt-mouse" events for the objects
// registered for them; the window's close button ends the game.
class InputManager : public Manager {
 public:
  static InputManager& getInstance();

  // Only "vt-keyboard" and "vt-mouse" are delivered by the input manager.
  bool isValid(std::string event_type) const override;
  // Needs the display manager started first, unless headless.
  int startUp() override;
  void shutDown() override;

  // Delivers the queued events, then the window's pending events, then the
  // held mouse buttons, then the held keys. Called by the game loop once per
  // step; headless, only the queued events are delivered.
  void getInput();

  // Input made by the program rather than read from the window (a test
  // harness, a replay): delivered at the next getInput, in queue order.
  void queueEvent(const EventKeyboard& keyboard_event);
  void queueEvent(const EventMouse& mouse_event);

  // A keyboard event with the engine code of the SFML key; the action is
  // left for the caller.
  EventKeyboard toEventKeyboard(const sf::Event::KeyEvent& key_event) const;

 private:
  InputManager();

  int finishStartUp();
  // Delivers the queued window events; false when the window asked to close.
  bool sendWindowEvents(sf::Window& window);
  void sendWindowEvent(const sf::Event& event);
  void sendKey(const sf::Event::KeyEvent& key_event, EventKeyboardAction action);
  void sendMouse(int action, int button, int pixel_x, int pixel_y);
  void sendHeldButtons(const sf::Window& window);
  void sendHeldKeys();
  void sendQueuedEvents();

  std::vector<std::variant<EventKeyboard, EventMouse>> queued_events;
};

}  // namespace vt
