#include "media/InputManager.h"

#include <SFML/Graphics/RenderWindow.hpp>
#include <SFML/Window/Keyboard.hpp>
#include <SFML/Window/Mouse.hpp>
#include <chrono>
#include <thread>

#include "core/Config.h"
#include "core/FrameStats.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/EventMouse.h"
#include "media/InputTranslation.h"
#include "media/Terminal.h"
#include "media/TerminalControls.h"
#include "media/TerminalInput.h"

namespace vt {

namespace {

// Polled for PRESSED events, in this order.
const sf::Mouse::Button POLLED_BUTTONS[] = {sf::Mouse::Left, sf::Mouse::Right, sf::Mouse::Middle};

long monotonicMilliseconds() {
  return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(
                               std::chrono::steady_clock::now().time_since_epoch())
                               .count());
}

Vector pixelsToCells(int pixel_x, int pixel_y) {
  return pixelsToSpaces(Vector(static_cast<float>(pixel_x), static_cast<float>(pixel_y)));
}

}  // namespace

InputManager::InputManager()
    : p_terminal_input(std::make_unique<TerminalInput>()),
      p_terminal_controls(std::make_unique<TerminalControls>()) {
  setType("InputManager");
}

InputManager::~InputManager() = default;

InputManager& InputManager::getInstance() {
  static InputManager input_manager;
  return input_manager;
}

bool InputManager::isValid(std::string event_type) const {
  return event_type == KEYBOARD_EVENT || event_type == MOUSE_EVENT;
}

int InputManager::startUp() {
  const LogManager& log_manager = LogManager::getInstance();
  if (alreadyStarted()) return -1;
  if (Config::getInstance().getHeadless()) {
    log_manager.writeLog(1, "InputManager::startUp(): not doing input since in headless mode.");
    return finishStartUp();
  }
  const DisplayManager& display_manager = DisplayManager::getInstance();
  if (!display_manager.isStarted()) {
    return failStart(log_manager.writeLogText(
        "InputManager::startUp(): Error starting InputManager. DisplayManager must be started "
        "first."));
  }
  if (display_manager.isTerminal()) return finishStartUp();
  sf::RenderWindow* p_window = display_manager.getWindow();
  if (p_window == nullptr) {
    log_manager.writeLog(
        "InputManager::startUp(): Warning - DisplayManager unexpectedly returned null window! "
        "Cannot disable keyboard repeat.");
  } else {
    p_window->setKeyRepeatEnabled(false);
    log_manager.writeLog(2, "InputManager::startUp(): Keyboard repeated disabled.");
  }
  return finishStartUp();
}

int InputManager::finishStartUp() {
  Manager::startUp();
  LogManager::getInstance().writeLog(5, "InputManager::startUp(): successfully started.");
  return 0;
}

void InputManager::shutDown() {
  const LogManager& log_manager = LogManager::getInstance();
  sf::RenderWindow* p_window = DisplayManager::getInstance().getWindow();
  if (p_window != nullptr) {
    p_window->setKeyRepeatEnabled(true);
    log_manager.writeLog(2, "InputManager::shutDown(): Keyboard repeat enabled.");
  }
  log_manager.writeLog(5, "InputManager::shutDown(): successfully stopped.");
  queued_events.clear();
  fed_input.clear();
  p_terminal_input->flush();
  p_terminal_controls->clear();
  Manager::shutDown();
}

void InputManager::getInput() {
  if (notStarted()) return;
  delivered_input.clear();
  sendQueuedEvents();
  if (!sendFedInput()) return;
  if (replaying) {
    watchWindowClose();
    return;
  }
  if (Config::getInstance().getHeadless()) return;
  if (DisplayManager::getInstance().isTerminal()) {
    sendTerminalInput();
    return;
  }
  sf::RenderWindow* p_window = DisplayManager::getInstance().getWindow();
  if (p_window == nullptr) {
    LogManager::getInstance().writeLog(
        "InputManager::getInput(): DisplayManager unexpectedly returned null window!");
    return;
  }
  if (!sendWindowEvents(*p_window)) return;
  sendHeldButtons(*p_window);
  sendHeldKeys();
}

void InputManager::queueEvent(const EventKeyboard& keyboard_event) {
  queued_events.emplace_back(keyboard_event);
}

void InputManager::queueEvent(const EventMouse& mouse_event) {
  queued_events.emplace_back(mouse_event);
}

void InputManager::setReplaying(bool new_replaying) {
  replaying = new_replaying;
}

void InputManager::feedInput(const InputRecord& input) {
  fed_input.push_back(input);
}

void InputManager::sendQueuedEvents() {
  // Handlers may queue more: those wait for the next step.
  const std::vector<std::variant<EventKeyboard, EventMouse>> sending = std::move(queued_events);
  queued_events.clear();
  for (const auto& queued : sending) {
    std::visit([this](const Event& event) { onEvent(&event); }, queued);
  }
}

bool InputManager::sendFedInput() {
  const std::vector<InputRecord> input = std::move(fed_input);
  fed_input.clear();
  for (const InputRecord& record : input) {
    if (record.kind == InputRecord::CLOSE) {
      closeWindow();
      return false;
    }
    sendRecord(record);
  }
  return true;
}

void InputManager::sendRecord(const InputRecord& record) {
  if (record.kind == InputRecord::KEY) {
    sendKey(record.code, record.action);
  } else if (record.kind == InputRecord::MOUSE) {
    sendMouse(record.action, record.code, record.position);
  }
}

void InputManager::sendTerminalInput() {
  const long now_ms = monotonicMilliseconds();
  for (const TerminalEvent& event : readTerminal()) {
    LogManager::getInstance().writeLog(15, "InputManager::getInput(): terminal %s",
                                       toString(event).c_str());
    if (event.type == TerminalEvent::QUIT) {
      closeWindow();
      return;
    }
    p_terminal_controls->take(event, now_ms);
  }
  for (const InputRecord& record : p_terminal_controls->takeEvents(now_ms)) sendRecord(record);
  // Held after the events: a pause while they were handled lets go of keys.
  for (const InputRecord& record : p_terminal_controls->heldInput()) sendRecord(record);
}

std::vector<TerminalEvent> InputManager::readTerminal() {
  Terminal& terminal = Terminal::getInstance();
  if (terminal.takeQuitRequest()) {
    TerminalEvent quit;
    quit.type = TerminalEvent::QUIT;
    return {quit};
  }
  const std::string bytes = terminal.read();
  std::vector<TerminalEvent> events = p_terminal_input->feed(bytes.data(), bytes.size());
  // A step with nothing new is silence enough to end a lone Escape.
  if (bytes.empty() && p_terminal_input->hasPending()) events = p_terminal_input->flush();
  return events;
}

// Replaying, the window's own input is left aside, but its close button
// still works.
void InputManager::watchWindowClose() {
  if (DisplayManager::getInstance().isTerminal()) {
    for (const TerminalEvent& event : readTerminal()) {
      if (event.type == TerminalEvent::QUIT) {
        closeWindow();
        return;
      }
    }
    return;
  }
  sf::RenderWindow* p_window = DisplayManager::getInstance().getWindow();
  sf::Event event;
  while (p_window != nullptr && p_window->pollEvent(event)) {
    if (event.type == sf::Event::Closed) {
      closeWindow();
      return;
    }
  }
}

void InputManager::closeWindow() {
  LogManager::getInstance().writeLog(
      1, "InputManager::getInput(): Window close event. Setting game over.");
  delivered_input.push_back(InputRecord());
  GameManager::getInstance().setGameOver(true);
}

bool InputManager::sendWindowEvents(sf::Window& window) {
  sf::Event event;
  while (window.pollEvent(event)) {
    if (event.type == sf::Event::Closed) {
      closeWindow();
      return false;
    }
    sendWindowEvent(event);
  }
  return true;
}

void InputManager::sendWindowEvent(const sf::Event& event) {
  switch (event.type) {
    case sf::Event::KeyPressed:
      sendKey(toEventKeyboard(event.key).getKey(), KEY_PRESSED);
      break;
    case sf::Event::KeyReleased:
      sendKey(toEventKeyboard(event.key).getKey(), KEY_RELEASED);
      break;
    case sf::Event::MouseMoved:
      sendMouse(MOVED, Mouse::UNDEFINED_MOUSE_BUTTON,
                pixelsToCells(event.mouseMove.x, event.mouseMove.y));
      break;
    case sf::Event::MouseButtonPressed:
      sendMouse(CLICKED, buttonFromSFML(event.mouseButton.button),
                pixelsToCells(event.mouseButton.x, event.mouseButton.y));
      break;
    default:
      break;
  }
}

void InputManager::waitForKeyPress() {
  if (DisplayManager::getInstance().isTerminal()) {
    waitForTerminalKey();
    return;
  }
  sf::RenderWindow* p_window = DisplayManager::getInstance().getWindow();
  while (p_window != nullptr) {
    sf::Event event;
    // Every pending event is drained; a close request is ignored.
    while (p_window->pollEvent(event)) {
      if (event.type != sf::Event::KeyPressed) continue;
      LogManager::getInstance().writeLog(10, "Pause::eventHandler(): Keypress (%d)",
                                         static_cast<int>(event.key.code));
      return;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(30));
  }
}

// A key counts when it is pressed anew: the repeats of a key still held
// (the pause key itself, say) do not end the wait.
void InputManager::waitForTerminalKey() {
  while (true) {
    const long now_ms = monotonicMilliseconds();
    for (const TerminalEvent& event : readTerminal()) {
      if (event.type == TerminalEvent::QUIT) {
        closeWindow();
        return;
      }
      p_terminal_controls->take(event, now_ms);
    }
    for (const InputRecord& record : p_terminal_controls->takeEvents(now_ms)) {
      if (record.kind == InputRecord::KEY && record.action == KEY_PRESSED) return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

EventKeyboard InputManager::toEventKeyboard(const sf::Event::KeyEvent& key_event) const {
  EventKeyboard keyboard_event;
  keyboard_event.setKey(keyFromSFML(key_event.code));
  LogManager::getInstance().writeLog(15,
                                     "InputManager::toEventKeyboard(): Keyboard event '%c' (%d)",
                                     keyboard_event.getKey(), static_cast<int>(key_event.code));
  return keyboard_event;
}

void InputManager::sendKey(int key, int action) {
  // The engine's own key reaches the engine first, then the game.
  if (key == Keyboard::F12 && action == KEY_PRESSED) FrameStats::getInstance().toggleOverlay();
  EventKeyboard keyboard_event;
  keyboard_event.setKey(key);
  keyboard_event.setKeyboardAction(action);
  delivered_input.push_back({InputRecord::KEY, action, key, Vector()});
  onEvent(&keyboard_event);
}

void InputManager::sendMouse(int action, int button, Vector position) {
  EventMouse mouse_event;
  mouse_event.setMouseAction(action);
  mouse_event.setMouseButton(button);
  mouse_event.setMousePosition(position);
  delivered_input.push_back({InputRecord::MOUSE, action, button, position});
  onEvent(&mouse_event);
}

void InputManager::sendHeldButtons(const sf::Window& window) {
  const sf::Vector2i pixels = sf::Mouse::getPosition(window);
  const Vector position = pixelsToCells(pixels.x, pixels.y);
  for (const sf::Mouse::Button button : POLLED_BUTTONS) {
    if (sf::Mouse::isButtonPressed(button)) sendMouse(PRESSED, buttonFromSFML(button), position);
  }
}

void InputManager::sendHeldKeys() {
  for (const KeyBinding& binding : polledKeys()) {
    if (sf::Keyboard::isKeyPressed(binding.sfml_key)) sendKey(binding.engine_key, KEY_DOWN);
  }
}

}  // namespace vt
