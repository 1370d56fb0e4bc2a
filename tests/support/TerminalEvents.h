#pragma once

#include "media/TerminalInput.h"

namespace test {

// Terminal events as the decoder makes them.
inline vt::TerminalEvent key(int code, vt::TerminalEvent::Phase phase = vt::TerminalEvent::TYPED) {
  return {vt::TerminalEvent::KEY, code, phase};
}
inline vt::TerminalEvent press(int code) {
  return key(code, vt::TerminalEvent::PRESS);
}
inline vt::TerminalEvent mouse(int action, int button, int column, int row) {
  return {vt::TerminalEvent::MOUSE, -1, vt::TerminalEvent::TYPED, action, button, column, row};
}

}  // namespace test
