#pragma once

#include <SFML/Window/Event.hpp>
#include <SFML/Window/Window.hpp>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "core/Manager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputRecord.h"

namespace vt {

class TerminalControls;
class TerminalInput;
struct TerminalEvent;

// Once per step turns the window's events and the held keys and mouse
// buttons into "vt-keyboard" and "vt-mouse" events for the objects
// registered for them; the window's close button ends the game. In a
// terminal the same events come from the terminal's keys and mouse, and
// Ctrl-C or an interrupt, termination or hang-up signal ends the game.
class InputManager : public Manager {
 public:
  static InputManager& getInstance();
  ~InputManager() override;

  // Only "vt-keyboard" and "vt-mouse" are delivered by the input manager.
  bool isValid(std::string event_type) const override;
  // Needs the display manager started first, unless headless.
  int startUp() override;
  void shutDown() override;

  // Delivers the queued events, then the window's pending events, then the
  // held mouse buttons, then the held keys. Called by the game loop once per
  // step; headless, only the queued events are delivered.
  void getInput();

  // Input made by the program itself: delivered at the next getInput, in
  // queue order, and not recorded (a replayed game makes it again).
  void queueEvent(const EventKeyboard& keyboard_event);
  void queueEvent(const EventMouse& mouse_event);

  // Outside input handed in by a stand-in for the player (a replay, a test
  // harness): delivered at the next getInput after the queued events and
  // before the window's, and recorded as the window's is.
  void feedInput(const InputRecord& input);
  // Replaying, the window's input is left aside; its close request alone
  // is still obeyed.
  void setReplaying(bool new_replaying);
  bool isReplaying() const { return replaying; }
  // The outside input (fed or from the window, not the queued events) the
  // last getInput delivered, in delivery order.
  const std::vector<InputRecord>& getDeliveredInput() const { return delivered_input; }

  // Waits until the player presses a key, in the window or the terminal;
  // the input meanwhile is dropped. A quit request in a terminal ends the
  // wait and the game.
  void waitForKeyPress();

  // A keyboard event with the engine code of the SFML key; the action is
  // left for the caller.
  EventKeyboard toEventKeyboard(const sf::Event::KeyEvent& key_event) const;

 private:
  InputManager();

  int finishStartUp();
  // Delivers the queued window events; false when the window asked to close.
  bool sendWindowEvents(sf::Window& window);
  void sendWindowEvent(const sf::Event& event);
  void sendTerminalInput();
  void waitForTerminalKey();
  // The terminal's news since the last step, a quit request included.
  std::vector<TerminalEvent> readTerminal();
  void sendRecord(const InputRecord& record);
  void sendKey(int key, int action);
  void sendMouse(int action, int button, Vector position);
  void sendHeldButtons(const sf::Window& window);
  void sendHeldKeys();
  void sendQueuedEvents();
  // Delivers the fed input; false when it asked the window to close.
  bool sendFedInput();
  // Replaying, the window's close button and the terminal's quit still work.
  void watchWindowClose();
  // Ends the game at the window's close request.
  void closeWindow();

  std::vector<std::variant<EventKeyboard, EventMouse>> queued_events;
  bool replaying = false;
  std::vector<InputRecord> fed_input;
  std::vector<InputRecord> delivered_input;
  std::unique_ptr<TerminalInput> p_terminal_input;
  std::unique_ptr<TerminalControls> p_terminal_controls;
};

}  // namespace vt
