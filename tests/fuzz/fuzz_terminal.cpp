// Terminal input in pieces: the first byte picks the cuts, the rest is what the terminal sends. The
// pieces must decode to the same events as the bytes fed at once, every event must be one the
// engine knows, and an unfinished sequence must give way within a short run of further bytes.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/TerminalInput.h"

namespace {

using vt::TerminalEvent;
using Events = std::vector<TerminalEvent>;

// The longest sequence the parser may wait on.
const std::size_t MAX_PENDING = 64;

bool isKnown(const TerminalEvent& event) {
  switch (event.type) {
    case TerminalEvent::KEY:
      return event.key >= vt::Keyboard::SPACE && event.key <= vt::Keyboard::BACKSPACE &&
             event.phase >= TerminalEvent::TYPED && event.phase <= TerminalEvent::RELEASE;
    case TerminalEvent::MOUSE:
      return event.column >= 0 && event.row >= 0 &&
             event.button >= vt::Mouse::UNDEFINED_MOUSE_BUTTON &&
             event.button <= vt::Mouse::MIDDLE &&
             (event.action == vt::CLICKED || event.action == vt::MOVED ||
              event.action == TerminalEvent::RELEASED_BUTTON);
    case TerminalEvent::QUIT:
    case TerminalEvent::KEYBOARD_PROTOCOL:
    case TerminalEvent::DEVICE_ATTRIBUTES:
      return true;
  }
  return false;
}

// Whatever waits must be given up or finished within MAX_PENDING more
// bytes: a copy fed one letter more than that ends on that letter's key.
bool pendingIsShort(const vt::TerminalInput& input) {
  if (!input.hasPending()) return true;
  vt::TerminalInput probe = input;
  const std::string letters(MAX_PENDING + 1, 'a');
  const Events events = probe.feed(letters.data(), letters.size());
  TerminalEvent last_key;
  last_key.key = vt::Keyboard::A;
  return !probe.hasPending() && !events.empty() && events.back() == last_key;
}

void append(Events& events, const Events& more) {
  events.insert(events.end(), more.begin(), more.end());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const char* const bytes = reinterpret_cast<const char*>(data) + 1;
  const std::size_t count = size - 1;
  // Pieces of at most 1, 3, 17 or 80 bytes, their sizes drawn from the seed.
  const std::size_t largest[4] = {1, 3, 17, 80};
  const std::size_t most = largest[data[0] % 4];
  std::uint32_t state = data[0] * 2654435761u + 1;

  vt::TerminalInput in_pieces;
  Events events;
  for (std::size_t at = 0; at < count;) {
    state ^= state << 13, state ^= state >> 17, state ^= state << 5;
    const std::size_t length = std::min<std::size_t>(count - at, 1 + state % most);
    append(events, in_pieces.feed(bytes + at, length));
    if (!pendingIsShort(in_pieces)) __builtin_trap();
    at += length;
  }
  append(events, in_pieces.flush());

  vt::TerminalInput at_once;
  Events expected = at_once.feed(bytes, count);
  append(expected, at_once.flush());
  if (events != expected || in_pieces.hasPending() || at_once.hasPending()) __builtin_trap();
  if (!std::all_of(events.begin(), events.end(), isKnown)) __builtin_trap();
  return 0;
}
