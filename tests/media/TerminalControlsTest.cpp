#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/TerminalControls.h"

namespace {

using vt::TerminalEvent;

TerminalEvent key(int code, TerminalEvent::Phase phase) {
  TerminalEvent event;
  event.key = code;
  event.phase = phase;
  return event;
}

TerminalEvent mouse(int action, int button, int column, int row) {
  TerminalEvent event;
  event.type = TerminalEvent::MOUSE;
  event.action = action;
  event.button = button;
  event.column = column;
  event.row = row;
  return event;
}

// A step's input as the words a test reads: "pressed D", "down D",
// "released D", "clicked 0 at 3,4", "held 0 at 3,4", "moved at 5,6".
std::string said(const std::vector<vt::InputRecord>& input) {
  std::string text;
  for (const vt::InputRecord& record : input) {
    if (!text.empty()) text += ", ";
    if (record.kind == vt::InputRecord::KEY) {
      const char* action[] = {"pressed", "released", "down"};
      text += std::string(action[record.action]) + " " +
              static_cast<char>('A' + record.code - vt::Keyboard::A);
      continue;
    }
    const char* action[] = {"clicked ", "held ", "moved"};
    text += action[record.action];
    if (record.action != vt::MOVED) text += std::to_string(record.code);
    text += " at " + std::to_string(static_cast<int>(record.position.getX())) + "," +
            std::to_string(static_cast<int>(record.position.getY()));
  }
  return text;
}

// What arrives at a time, and what the step at a later time delivers.
struct Moment {
  long at_ms;
  std::vector<TerminalEvent> arriving;
  long step_ms;
  const char* delivered;
};

void play(const std::vector<Moment>& moments) {
  vt::TerminalControls controls;
  for (const Moment& moment : moments) {
    for (const TerminalEvent& event : moment.arriving) controls.take(event, moment.at_ms);
    std::vector<vt::InputRecord> input = controls.takeEvents(moment.step_ms);
    for (const vt::InputRecord& held : controls.heldInput()) input.push_back(held);
    EXPECT_EQ(said(input), moment.delivered) << "at " << moment.step_ms << " ms";
  }
}

const int D = vt::Keyboard::D;
const int S = vt::Keyboard::S;
const int A = vt::Keyboard::A;

TEST(TerminalControls, AKeyTypedIsHeldWhileItsRepeatsComeAndReleasedAfterASilence) {
  const long first_wait = vt::TerminalControls::FIRST_REPEAT_WAIT_MS;
  const long gap = vt::TerminalControls::REPEAT_GAP_MS;
  play({{0, {key(D, TerminalEvent::TYPED)}, 10, "pressed D, down D"},
        {0, {}, first_wait, "down D"},
        {first_wait, {key(D, TerminalEvent::TYPED)}, first_wait + gap, "down D"},
        {0, {}, first_wait + gap + 1, "released D"},
        {0, {}, first_wait + 2 * gap, ""}});
  // Never repeated: released once the wait for the first repeat is over.
  // Another key typed releases the first at once: only the last key pressed
  // repeats. A key the protocol reports stays held.
  play({{0, {key(D, TerminalEvent::TYPED)}, 0, "pressed D, down D"},
        {0, {}, first_wait + 1, "released D"},
        {800,
         {key(D, TerminalEvent::TYPED), key(A, TerminalEvent::PRESS)},
         800,
         "pressed D, pressed A, down A, down D"},
        {900, {key(S, TerminalEvent::TYPED)}, 900, "released D, pressed S, down A, down S"}});
}

TEST(TerminalControls, TheKeyboardProtocolSaysWhenAKeyGoesDownAndUp) {
  play({{0, {key(D, TerminalEvent::PRESS)}, 0, "pressed D, down D"},
        {40, {key(D, TerminalEvent::REPEAT)}, 5000, "down D"},
        {5000,
         {key(D, TerminalEvent::RELEASE), key(S, TerminalEvent::PRESS)},
         5000,
         "released D, pressed S, down S"},
        // A repeat whose press was lost still presses.
        {5001,
         {key(D, TerminalEvent::REPEAT), key(S, TerminalEvent::RELEASE)},
         5001,
         "pressed D, released S, down D"}});
}

TEST(TerminalControls, AMouseButtonIsHeldFromItsClickToItsRelease) {
  const int left = vt::Mouse::LEFT;
  play({{0, {mouse(vt::CLICKED, left, 3, 4)}, 0, "clicked 0 at 3,4, held 0 at 3,4"},
        {1, {mouse(vt::MOVED, left, 5, 6)}, 1, "moved at 5,6, held 0 at 5,6"},
        {2, {}, 2, "held 0 at 5,6"},
        {3, {mouse(TerminalEvent::RELEASED_BUTTON, left, 5, 6)}, 3, ""},
        {4, {mouse(vt::MOVED, vt::Mouse::UNDEFINED_MOUSE_BUTTON, 7, 1)}, 4, "moved at 7,1"}});
}

}  // namespace
