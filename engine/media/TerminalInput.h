#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vt {

// One thing a terminal said, decoded from its bytes.
struct TerminalEvent {
  enum Type {
    // A key; key holds the engine key code (Keyboard::Key).
    KEY,
    // A mouse button or move; action holds the EventMouseAction for a press
    // (CLICKED) or a move (MOVED), or RELEASED_BUTTON for a release.
    MOUSE,
    // Ctrl-C: the player asks to quit.
    QUIT,
    // The answer to the keyboard protocol query (ESC [ ? flags u).
    KEYBOARD_PROTOCOL,
    // The answer to the primary device attributes query (ESC [ ? ... c),
    // which every terminal gives: it closes the wait for the other answers.
    DEVICE_ATTRIBUTES,
  };
  // How a key arrived. Plain terminals send a key's bytes on each press and
  // each auto-repeat alike (TYPED); the keyboard protocol tells press,
  // repeat and release apart.
  enum Phase { TYPED, PRESS, REPEAT, RELEASE };
  // A mouse action of its own: the button went up.
  static const int RELEASED_BUTTON = 100;

  Type type = KEY;
  int key = -1;
  Phase phase = TYPED;
  int action = -1;
  // Mouse::Button, or Mouse::UNDEFINED_MOUSE_BUTTON for a move with no
  // button held.
  int button = -1;
  // The cell, counted from 0 at the top-left.
  int column = 0;
  int row = 0;
  // KEYBOARD_PROTOCOL only: the flags the terminal reports as set.
  int flags = 0;

  bool operator==(const TerminalEvent& other) const;
};

// A readable form of an event, for logs and test messages.
std::string toString(const TerminalEvent& event);

// Turns the bytes a terminal sends into events: plain keys, the escape
// sequences of arrows and function keys, the keyboard protocol's press,
// repeat and release, and SGR mouse reports. Bytes may arrive in any
// pieces: an unfinished sequence waits for the rest. What it does not know
// is skipped whole, and it never holds more than a short sequence.
class TerminalInput {
 public:
  // The events the bytes complete, in order.
  std::vector<TerminalEvent> feed(const char* bytes, std::size_t count);
  // Called when the terminal has been silent a moment: a lone ESC is the
  // Escape key, and an unfinished sequence will not be finished.
  std::vector<TerminalEvent> flush();
  // True while bytes wait for the rest of their sequence.
  bool hasPending() const { return !pending.empty(); }

 private:
  std::string pending;
};

}  // namespace vt
