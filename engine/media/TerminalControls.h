#pragma once

#include <map>
#include <vector>

#include "core/Vector.h"
#include "media/InputRecord.h"
#include "media/TerminalInput.h"

namespace vt {

// The keys and mouse buttons a player holds in a terminal, told from what
// the terminal reports, and turned into what a window reports: a press, the
// key held every step, a release.
//
// With the keyboard protocol the terminal says when a key goes down and up.
// Without it a key sends its bytes once when pressed and again at each
// auto-repeat: the key counts as held while they keep coming, and as
// released after a silence longer than the wait before the first repeat,
// or, once repeating, longer than the gap between repeats. Keyboards repeat
// only the last key pressed, so a new key releases the others at once.
class TerminalControls {
 public:
  // Most terminals start repeating after 500 to 660 ms, then repeat every
  // 30 to 50 ms.
  static const int FIRST_REPEAT_WAIT_MS = 700;
  static const int REPEAT_GAP_MS = 150;

  // Takes a key or mouse event that arrived at a time in milliseconds.
  void take(const TerminalEvent& event, long now_ms);
  // The presses, releases, clicks and moves that came since the last call,
  // in order; keys typed without the protocol whose repeats stopped are
  // released first.
  std::vector<InputRecord> takeEvents(long now_ms);
  // The mouse buttons held, then the keys held, as a window reports them
  // after its events each step.
  std::vector<InputRecord> heldInput() const;
  // Everything let go, as when the game loses the terminal.
  void clear();

 private:
  struct HeldKey {
    // Released by the terminal (the protocol), or by a silence.
    bool reported = false;
    bool repeating = false;
    long last_ms = 0;
  };

  void takeKey(const TerminalEvent& event, long now_ms);
  void takeMouse(const TerminalEvent& event);
  void press(int key, const HeldKey& held);
  void release(int key);
  // Releases the keys typed without the protocol that meet the condition.
  template <typename Condition>
  void releaseTypedKeysWhere(Condition condition);
  void releaseSilentKeys(long now_ms);
  void releaseTypedKeys();

  std::vector<InputRecord> step_input;
  std::map<int, HeldKey> held_keys;
  std::vector<int> held_buttons;
  Vector mouse_position;
};

}  // namespace vt
