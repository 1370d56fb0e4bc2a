#include "media/TerminalInput.h"

#include <algorithm>
#include <climits>
#include <sstream>
#include <tuple>
#include <utility>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"

namespace vt {

const int TerminalEvent::RELEASED_BUTTON;

namespace {

using Events = std::vector<TerminalEvent>;
// The parameters of a control sequence: fields split at ';', each split at
// ':' into sub-parameters, with -1 for a number left out.
using Fields = std::vector<std::vector<int>>;
using KeyTable = std::pair<int, int>;

const char ESC = '\x1b';
const char BEL = '\x07';
const unsigned char CTRL_C = 0x03;
// An unfinished sequence is given up at this length, so junk cannot pile up.
const std::size_t MAX_PENDING = 64;
// The keyboard protocol sends modifiers as 1 + bits; this is ctrl's bit.
const int CTRL_BIT = 4;
// Mouse report button codes: 32 marks a move, 64 and up the wheel and the
// extra buttons.
const int MOUSE_MOTION_BIT = 32;
const int MOUSE_WHEEL_CODES = 64;
// The keyboard protocol's event types 1, 2 and 3.
const TerminalEvent::Phase PROTOCOL_PHASES[] = {TerminalEvent::PRESS, TerminalEvent::REPEAT,
                                                TerminalEvent::RELEASE};
const char* const PHASE_NAMES[] = {"typed", "press", "repeat", "release"};
// What follows ESC to open OSC, DCS, APC and PM strings.
const std::string STRING_INTRODUCERS = "]P_^";
const int MOUSE_BUTTONS[] = {Mouse::LEFT, Mouse::MIDDLE, Mouse::RIGHT,
                             Mouse::UNDEFINED_MOUSE_BUTTON};

// Bytes that are keys besides the letters and digits.
const KeyTable PLAIN_KEYS[] = {
    {' ', Keyboard::SPACE},  {'\r', Keyboard::RETURN},    {'\n', Keyboard::RETURN},
    {'\t', Keyboard::TAB},   {0x7f, Keyboard::BACKSPACE}, {'\b', Keyboard::BACKSPACE},
    {'-', Keyboard::MINUS},  {'+', Keyboard::PLUS},       {'~', Keyboard::TILDE},
    {'.', Keyboard::PERIOD}, {',', Keyboard::COMMA},      {'/', Keyboard::SLASH},
    {'=', Keyboard::EQUAL},  {'\\', Keyboard::BACKSLASH}, {'*', Keyboard::MULTIPLY},
    {'\'', Keyboard::QUOTE}, {';', Keyboard::SEMICOLON},
};

// Keyboard protocol code points that are not the key's own character.
const KeyTable PROTOCOL_KEYS[] = {
    {27, Keyboard::ESCAPE},        {57441, Keyboard::LEFTSHIFT},    {57442, Keyboard::LEFTCONTROL},
    {57447, Keyboard::RIGHTSHIFT}, {57448, Keyboard::RIGHTCONTROL},
};

// The numbers of ESC [ number ~ that are function keys.
const KeyTable TILDE_KEYS[] = {
    {11, Keyboard::F1}, {12, Keyboard::F2},  {13, Keyboard::F3},  {14, Keyboard::F4},
    {15, Keyboard::F5}, {17, Keyboard::F6},  {18, Keyboard::F7},  {19, Keyboard::F8},
    {20, Keyboard::F9}, {21, Keyboard::F10}, {23, Keyboard::F11}, {24, Keyboard::F12},
};

// The final bytes of ESC [ 1 ; ... final and ESC O final that are keys.
const KeyTable FINAL_KEYS[] = {
    {'A', Keyboard::UPARROW},   {'B', Keyboard::DOWNARROW}, {'C', Keyboard::RIGHTARROW},
    {'D', Keyboard::LEFTARROW}, {'P', Keyboard::F1},        {'Q', Keyboard::F2},
    {'R', Keyboard::F3},        {'S', Keyboard::F4},
};

template <std::size_t N>
int lookUp(const KeyTable (&table)[N], int wanted) {
  for (const KeyTable& entry : table) {
    if (entry.first == wanted) return entry.second;
  }
  return Keyboard::UNDEFINED_KEY;
}

// The key of a character typed as it is, or UNDEFINED_KEY.
int plainKey(int character) {
  if (character >= 'a' && character <= 'z') return Keyboard::A + (character - 'a');
  if (character >= 'A' && character <= 'Z') return Keyboard::A + (character - 'A');
  if (character == '0') return Keyboard::NUM0;
  if (character >= '1' && character <= '9') return Keyboard::NUM1 + (character - '1');
  return lookUp(PLAIN_KEYS, character);
}

int protocolKey(int code) {
  const int key = lookUp(PROTOCOL_KEYS, code);
  return key != Keyboard::UNDEFINED_KEY ? key : plainKey(code);
}

TerminalEvent eventOfType(TerminalEvent::Type type) {
  TerminalEvent event;
  event.type = type;
  return event;
}

// Adds the key unless the engine has no code for it or the phase is unknown.
void addKey(int key, int phase, Events& events) {
  if (key == Keyboard::UNDEFINED_KEY || phase < 0) return;
  TerminalEvent event;
  event.key = key;
  event.phase = static_cast<TerminalEvent::Phase>(phase);
  events.push_back(event);
}

void decodeByte(unsigned char byte, Events& events) {
  if (byte == CTRL_C) events.push_back(eventOfType(TerminalEvent::QUIT));
  addKey(plainKey(byte), TerminalEvent::TYPED, events);
}

// False when the text holds anything but digits, ';' and ':'.
bool parseFields(const std::string& text, Fields& fields) {
  fields.assign(1, {-1});
  for (const char ch : text) {
    if (ch == ':') {
      fields.back().push_back(-1);
    } else if (ch == ';') {
      fields.push_back({-1});
    } else if (ch >= '0' && ch <= '9') {
      const int digit = ch - '0';
      const int number = std::max(fields.back().back(), 0);
      fields.back().back() = number > (INT_MAX - digit) / 10 ? INT_MAX : number * 10 + digit;
    } else {
      return false;
    }
  }
  return true;
}

int parameter(const Fields& fields, std::size_t field, std::size_t sub, int fallback) {
  if (field >= fields.size() || sub >= fields[field].size()) return fallback;
  return fields[field][sub] < 0 ? fallback : fields[field][sub];
}

// The phase named by the event type after the modifiers, the fallback when
// there is none, or -1 for a type the protocol does not have.
int phaseOf(const Fields& fields, TerminalEvent::Phase fallback) {
  const int type = parameter(fields, 1, 1, 0);
  if (type == 0) return fallback;
  return type <= 3 ? PROTOCOL_PHASES[type - 1] : -1;
}

// ESC [ code[:alternates] [; modifiers[:event] [; text]] u
void decodeProtocolKey(const Fields& fields, Events& events) {
  const int code = parameter(fields, 0, 0, -1);
  const int modifiers = parameter(fields, 1, 0, 1);
  const int phase = phaseOf(fields, TerminalEvent::PRESS);
  const bool ctrl = modifiers > 0 && ((modifiers - 1) & CTRL_BIT) != 0;
  if (code == 'c' && ctrl) {
    if (phase == TerminalEvent::PRESS) events.push_back(eventOfType(TerminalEvent::QUIT));
    return;
  }
  addKey(protocolKey(code), phase, events);
}

// ESC [ number [; modifiers[:event]] ~ and ESC [ [1 ; modifiers[:event]] final.
// A first number other than 1 before a letter is no key: ESC [ row ; column R
// reports the cursor, not F3.
void decodeLegacyKey(const Fields& fields, char final, Events& events) {
  const int first = parameter(fields, 0, 0, 1);
  const int key = final == '~' ? lookUp(TILDE_KEYS, first)
                  : first == 1 ? lookUp(FINAL_KEYS, final)
                               : Keyboard::UNDEFINED_KEY;
  addKey(key, phaseOf(fields, TerminalEvent::TYPED), events);
}

// ESC [ < code ; x ; y M for a press or a move, m for a release.
void decodeMouse(const std::string& text, char final, Events& events) {
  Fields fields;
  if (!parseFields(text, fields) || fields.size() != 3) return;
  const int code = parameter(fields, 0, 0, -1);
  const int x = parameter(fields, 1, 0, -1);
  const int y = parameter(fields, 2, 0, -1);
  if (code < 0 || x < 0 || y < 0 || code >= MOUSE_WHEEL_CODES) return;
  TerminalEvent event = eventOfType(TerminalEvent::MOUSE);
  event.button = MOUSE_BUTTONS[code & 3];
  event.column = std::max(x - 1, 0);
  event.row = std::max(y - 1, 0);
  const bool moved = (code & MOUSE_MOTION_BIT) != 0;
  if (!moved && event.button == Mouse::UNDEFINED_MOUSE_BUTTON) return;
  event.action = moved ? MOVED : final == 'M' ? CLICKED : TerminalEvent::RELEASED_BUTTON;
  events.push_back(event);
}

// A whole control sequence, given its parameter text and final byte.
void decodeControlSequence(const std::string& text, char final, Events& events) {
  const char marker = text.empty() ? '\0' : text[0];
  Fields fields;
  if (marker == '<' && (final == 'M' || final == 'm')) {
    decodeMouse(text.substr(1), final, events);
  } else if (marker == '?' && final == 'c') {
    events.push_back(eventOfType(TerminalEvent::DEVICE_ATTRIBUTES));
  } else if (marker == '?' && final == 'u') {
    if (!parseFields(text.substr(1), fields)) return;
    TerminalEvent event = eventOfType(TerminalEvent::KEYBOARD_PROTOCOL);
    event.flags = parameter(fields, 0, 0, 0);
    events.push_back(event);
  } else if (parseFields(text, fields)) {
    if (final == 'u') {
      decodeProtocolKey(fields, events);
    } else {
      decodeLegacyKey(fields, final, events);
    }
  }
}

// The decoders below get bytes that start with the sequence they read and
// return how many bytes it takes up, or 0 while it is unfinished.

// ESC [ parameters final. A byte that cannot be in one breaks the sequence
// off, and is read anew.
std::size_t decodeControlSequenceBytes(const std::string& bytes, Events& events) {
  for (std::size_t end = 2; end < bytes.size(); end++) {
    const auto byte = static_cast<unsigned char>(bytes[end]);
    if (byte >= 0x40 && byte <= 0x7e) {
      decodeControlSequence(bytes.substr(2, end - 2), static_cast<char>(byte), events);
      return end + 1;
    }
    if (byte < 0x20 || byte > 0x3f) return end;
  }
  return 0;
}

// ESC O final, sent for arrows and F1-F4 in the application cursor mode.
std::size_t decodeShiftThree(const std::string& bytes, Events& events) {
  if (bytes.size() < 3) return 0;
  const auto byte = static_cast<unsigned char>(bytes[2]);
  if (byte < 0x40 || byte > 0x7e) return 2;
  addKey(lookUp(FINAL_KEYS, byte), TerminalEvent::TYPED, events);
  return 3;
}

// OSC, DCS and the other strings, skipped up to BEL or ESC \. Any other
// escape ends the string and starts a sequence of its own.
std::size_t skipString(const std::string& bytes) {
  for (std::size_t end = 2; end < bytes.size(); end++) {
    if (bytes[end] == BEL) return end + 1;
    if (bytes[end] != ESC) continue;
    if (end + 1 == bytes.size()) return 0;
    return bytes[end + 1] == '\\' ? end + 2 : end;
  }
  return 0;
}

std::size_t decodeEscape(const std::string& bytes, Events& events) {
  if (bytes.size() < 2) return 0;
  const char kind = bytes[1];
  if (kind == '[') return decodeControlSequenceBytes(bytes, events);
  if (kind == 'O') return decodeShiftThree(bytes, events);
  if (STRING_INTRODUCERS.find(kind) != std::string::npos) return skipString(bytes);
  if (kind == ESC) {
    addKey(Keyboard::ESCAPE, TerminalEvent::TYPED, events);
    return 1;
  }
  decodeByte(static_cast<unsigned char>(kind), events);  // Alt held with a key
  return 2;
}

// Decodes what it can from the front of pending. Bytes of 0x80 and up are
// no key, so skipping them one by one skips a UTF-8 character whole.
void decodePending(std::string& pending, Events& events) {
  while (!pending.empty()) {
    std::size_t used = 1;
    if (pending[0] == ESC) {
      used = decodeEscape(pending, events);
    } else {
      decodeByte(static_cast<unsigned char>(pending[0]), events);
    }
    if (used == 0) {
      if (pending.size() >= MAX_PENDING) pending.clear();
      return;
    }
    pending.erase(0, used);
  }
}

std::string phaseName(TerminalEvent::Phase phase) {
  if (phase >= TerminalEvent::TYPED && phase <= TerminalEvent::RELEASE) return PHASE_NAMES[phase];
  return "phase " + std::to_string(phase);
}

std::string actionName(int action) {
  if (action == CLICKED) return "clicked";
  if (action == MOVED) return "moved";
  if (action == TerminalEvent::RELEASED_BUTTON) return "released";
  return "action " + std::to_string(action);
}

}  // namespace

bool TerminalEvent::operator==(const TerminalEvent& other) const {
  return std::tie(type, key, phase, action, button, column, row, flags) ==
         std::tie(other.type, other.key, other.phase, other.action, other.button, other.column,
                  other.row, other.flags);
}

std::string toString(const TerminalEvent& event) {
  std::ostringstream text;
  if (event.type == TerminalEvent::KEY) {
    text << "key " << event.key << " " << phaseName(event.phase);
  } else if (event.type == TerminalEvent::MOUSE) {
    text << "mouse " << actionName(event.action) << " " << event.button << " at " << event.column
         << "," << event.row;
  } else if (event.type == TerminalEvent::QUIT) {
    text << "quit";
  } else if (event.type == TerminalEvent::KEYBOARD_PROTOCOL) {
    text << "keyboard protocol " << event.flags;
  } else {
    text << "device attributes";
  }
  return text.str();
}

// Byte by byte, so that where the pieces are cut can never change the events.
std::vector<TerminalEvent> TerminalInput::feed(const char* bytes, std::size_t count) {
  std::vector<TerminalEvent> events;
  for (std::size_t i = 0; i < count; i++) {
    pending.push_back(bytes[i]);
    decodePending(pending, events);
  }
  return events;
}

std::vector<TerminalEvent> TerminalInput::flush() {
  std::vector<TerminalEvent> events;
  if (pending.size() == 1 && pending[0] == ESC) {
    addKey(Keyboard::ESCAPE, TerminalEvent::TYPED, events);
  }
  pending.clear();
  return events;
}

}  // namespace vt
