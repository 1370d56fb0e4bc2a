#include "media/TerminalControls.h"

#include <algorithm>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"

namespace vt {

void TerminalControls::take(const TerminalEvent& event, long now_ms) {
  if (event.type == TerminalEvent::KEY) takeKey(event, now_ms);
  if (event.type == TerminalEvent::MOUSE) takeMouse(event);
}

void TerminalControls::takeKey(const TerminalEvent& event, long now_ms) {
  releaseSilentKeys(now_ms);
  const auto found = held_keys.find(event.key);
  const bool held = found != held_keys.end();
  switch (event.phase) {
    case TerminalEvent::PRESS:
    case TerminalEvent::REPEAT:
      if (!held) press(event.key, {true, false, now_ms});
      break;
    case TerminalEvent::RELEASE:
      if (held) release(event.key);
      break;
    case TerminalEvent::TYPED:
      if (held) {
        found->second.repeating = true;
        found->second.last_ms = now_ms;
      } else {
        releaseTypedKeys();
        press(event.key, {false, false, now_ms});
      }
      break;
  }
}

void TerminalControls::takeMouse(const TerminalEvent& event) {
  mouse_position = Vector(static_cast<float>(event.column), static_cast<float>(event.row));
  const auto held = std::find(held_buttons.begin(), held_buttons.end(), event.button);
  if (event.action == TerminalEvent::RELEASED_BUTTON) {
    if (held != held_buttons.end()) held_buttons.erase(held);
    return;
  }
  step_input.push_back({InputRecord::MOUSE, event.action, event.button, mouse_position});
  if (event.action == CLICKED && held == held_buttons.end()) held_buttons.push_back(event.button);
}

void TerminalControls::press(int key, const HeldKey& held) {
  held_keys[key] = held;
  step_input.push_back({InputRecord::KEY, KEY_PRESSED, key, Vector()});
}

void TerminalControls::release(int key) {
  held_keys.erase(key);
  step_input.push_back({InputRecord::KEY, KEY_RELEASED, key, Vector()});
}

template <typename Condition>
void TerminalControls::releaseTypedKeysWhere(Condition condition) {
  for (auto held = held_keys.begin(); held != held_keys.end();) {
    const int code = held->first;
    const bool due = !held->second.reported && condition(held->second);
    ++held;
    if (due) release(code);
  }
}

void TerminalControls::releaseSilentKeys(long now_ms) {
  releaseTypedKeysWhere([now_ms](const HeldKey& key) {
    return now_ms - key.last_ms > (key.repeating ? REPEAT_GAP_MS : FIRST_REPEAT_WAIT_MS);
  });
}

void TerminalControls::releaseTypedKeys() {
  releaseTypedKeysWhere([](const HeldKey&) { return true; });
}

std::vector<InputRecord> TerminalControls::takeEvents(long now_ms) {
  releaseSilentKeys(now_ms);
  std::vector<InputRecord> events = std::move(step_input);
  step_input.clear();
  return events;
}

std::vector<InputRecord> TerminalControls::heldInput() const {
  std::vector<InputRecord> input;
  for (const int button : held_buttons) {
    input.push_back({InputRecord::MOUSE, PRESSED, button, mouse_position});
  }
  for (const auto& held : held_keys) {
    input.push_back({InputRecord::KEY, KEY_DOWN, held.first, Vector()});
  }
  return input;
}

void TerminalControls::clear() {
  step_input.clear();
  held_keys.clear();
  held_buttons.clear();
}

}  // namespace vt
