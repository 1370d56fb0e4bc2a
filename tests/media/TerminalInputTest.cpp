#include <gtest/gtest.h>

#include <climits>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/TerminalControls.h"
#include "media/TerminalInput.h"

namespace K = vt::Keyboard;
using vt::TerminalEvent;
using Events = std::vector<TerminalEvent>;

namespace vt {
// Lets GoogleTest print events in failure messages.
static void PrintTo(const TerminalEvent& event, std::ostream* out) {
  *out << toString(event);
}
}  // namespace vt

namespace {

const std::string ESC = "\x1b";
const std::string CSI = ESC + "[";

TerminalEvent key(int code, TerminalEvent::Phase phase = TerminalEvent::TYPED) {
  return {TerminalEvent::KEY, code, phase};
}
const auto press = [](int code) { return key(code, TerminalEvent::PRESS); };
const auto repeat = [](int code) { return key(code, TerminalEvent::REPEAT); };
const auto release = [](int code) { return key(code, TerminalEvent::RELEASE); };
TerminalEvent mouse(int action, int button, int column, int row) {
  return {TerminalEvent::MOUSE, -1, TerminalEvent::TYPED, action, button, column, row};
}

TerminalEvent ofType(TerminalEvent::Type type, int flags = 0) {
  return {type, -1, TerminalEvent::TYPED, -1, -1, 0, 0, flags};
}
const TerminalEvent QUIT = ofType(TerminalEvent::QUIT);

Events feed(vt::TerminalInput& input, const std::string& bytes) {
  return input.feed(bytes.data(), bytes.size());
}

// Bytes, and the events they decode to.
const std::pair<std::string, Events> CASES[] = {
    // Plain bytes.
    {"aZ0 9\r\n\t\x7f\b",
     {key(K::A), key(K::Z), key(K::NUM0), key(K::SPACE), key(K::NUM9), key(K::RETURN),
      key(K::RETURN), key(K::TAB), key(K::BACKSPACE), key(K::BACKSPACE)}},
    {"-+~.,/=\\*';",
     {key(K::MINUS), key(K::PLUS), key(K::TILDE), key(K::PERIOD), key(K::COMMA), key(K::SLASH),
      key(K::EQUAL), key(K::BACKSLASH), key(K::MULTIPLY), key(K::QUOTE), key(K::SEMICOLON)}},
    {"\x01!@\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80q", {key(K::Q)}},
    {"\x03", {QUIT}},
    // Alt with a key, and a doubled escape.
    {ESC + "x" + ESC + ESC + "q", {key(K::X), key(K::ESCAPE), key(K::Q)}},
    // Arrows and function keys the old way.
    {CSI + "A" + CSI + "B" + ESC + "OC" + ESC + "OD" + CSI + "1;5A",
     {key(K::UPARROW), key(K::DOWNARROW), key(K::RIGHTARROW), key(K::LEFTARROW), key(K::UPARROW)}},
    {ESC + "OP" + ESC + "OQ" + ESC + "OR" + ESC + "OS" + CSI + "1;2P",
     {key(K::F1), key(K::F2), key(K::F3), key(K::F4), key(K::F1)}},
    {CSI + "11~" + CSI + "12~" + CSI + "13~" + CSI + "14~",
     {key(K::F1), key(K::F2), key(K::F3), key(K::F4)}},
    {CSI + "15~" + CSI + "17~" + CSI + "18~" + CSI + "19~" + CSI + "20~" + CSI + "21~" + CSI +
         "23~" + CSI + "24;5~",
     {key(K::F5), key(K::F6), key(K::F7), key(K::F8), key(K::F9), key(K::F10), key(K::F11),
      key(K::F12)}},
    // The keyboard protocol.
    {CSI + "97u" + CSI + "97;1:2u" + CSI + "97;1:3u" + CSI + "97:65;2;65u",
     {press(K::A), repeat(K::A), release(K::A), press(K::A)}},
    {CSI + "13u" + CSI + "9u" + CSI + "127u" + CSI + "27u" + CSI + "32u" + CSI + "48u" + CSI +
         "59u",
     {press(K::RETURN), press(K::TAB), press(K::BACKSPACE), press(K::ESCAPE), press(K::SPACE),
      press(K::NUM0), press(K::SEMICOLON)}},
    {CSI + "57441;2u" + CSI + "57442;5:3u" + CSI + "57447;2:2u" + CSI + "57448;5u",
     {press(K::LEFTSHIFT), release(K::LEFTCONTROL), repeat(K::RIGHTSHIFT), press(K::RIGHTCONTROL)}},
    {CSI + "1;1:3A" + CSI + "1;5:1P" + CSI + "15;1:2~" + CSI + "1;1:9B" + CSI + "1;1:4B",
     {release(K::UPARROW), press(K::F1), repeat(K::F5)}},
    {CSI + "99;5u" + CSI + "99;5:2u" + CSI + "99;5:3u" + CSI + "99u" + CSI + "99;3u" + CSI +
         "99;2u",
     {QUIT, press(K::C), press(K::C), press(K::C)}},
    {CSI + "57399u" + CSI + "2~" + CSI + "H" + CSI + "5A" + CSI + "12;40R" + "w", {key(K::W)}},
    // Answers to queries.
    {CSI + "?11u" + CSI + "?62;22c",
     {ofType(TerminalEvent::KEYBOARD_PROTOCOL, 11), ofType(TerminalEvent::DEVICE_ATTRIBUTES)}},
    // The mouse: presses, releases and moves; the wheel is let be.
    {CSI + "<0;5;8M" + CSI + "<2;1;1M" + CSI + "<1;3;2m" + CSI + "<20;0;0M",
     {mouse(vt::CLICKED, vt::Mouse::LEFT, 4, 7), mouse(vt::CLICKED, vt::Mouse::RIGHT, 0, 0),
      mouse(TerminalEvent::RELEASED_BUTTON, vt::Mouse::MIDDLE, 2, 1),
      mouse(vt::CLICKED, vt::Mouse::LEFT, 0, 0)}},
    {CSI + "<35;10;20M" + CSI + "<32;2;3M" + CSI + "<64;5;5M" + CSI + "<65;5;5M" + CSI + "<3;1;1M",
     {mouse(vt::MOVED, vt::Mouse::UNDEFINED_MOUSE_BUTTON, 9, 19),
      mouse(vt::MOVED, vt::Mouse::LEFT, 1, 2)}},
    {CSI + "<0;99999999999999999999;3M", {mouse(vt::CLICKED, vt::Mouse::LEFT, INT_MAX - 1, 2)}},
    // Sequences no one handles are skipped whole; the keys after them still count.
    {CSI + ">1;2;3c" + "q" + ESC + "]11;rgb:0000/ffff/0000" + "\x07" + "e" + ESC + "P>|term 1.0" +
         ESC + "\\" + "r" + ESC + "#" + "t" + CSI + " q" + "y",
     {key(K::Q), key(K::E), key(K::R), key(K::T), key(K::Y)}},
    {ESC + "]0;title" + ESC + "[B" + CSI + "1;" + ESC + "OA" + ESC + "O\x01" + "u",
     {key(K::DOWNARROW), key(K::UPARROW), key(K::U)}},
    {CSI + "<0;5;8;9M" + CSI + "<0;5M" + "w", {key(K::W)}},
};

TEST(TerminalInputTest, DecodesWholeAndByteByByte) {
  for (const auto& [bytes, expected] : CASES) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    vt::TerminalInput whole;
    EXPECT_EQ(feed(whole, bytes), expected);
    EXPECT_TRUE(!whole.hasPending() && whole.flush().empty());

    vt::TerminalInput bytewise;
    Events events;
    for (const char byte : bytes) {
      const Events more = feed(bytewise, std::string(1, byte));
      events.insert(events.end(), more.begin(), more.end());
    }
    EXPECT_EQ(events, expected);
  }
}

// A lone escape is the key only when flushed; a sequence that never ends is
// dropped at sixty-four bytes.
TEST(TerminalInputTest, PendingBytesWaitForAFlushOrGiveUpAtSixtyFourBytes) {
  vt::TerminalInput input;
  EXPECT_TRUE(feed(input, ESC).empty());
  EXPECT_TRUE(input.hasPending());
  EXPECT_EQ(input.flush(), Events{key(K::ESCAPE)});
  EXPECT_FALSE(input.hasPending());

  EXPECT_TRUE(feed(input, CSI + "1;5").empty());
  EXPECT_TRUE(input.flush().empty());
  EXPECT_FALSE(input.hasPending());
  EXPECT_EQ(feed(input, "A"), Events{key(K::A)});
  // 63 bytes of a string with no end still wait; the 64th gives it up.
  EXPECT_TRUE(feed(input, ESC + "]" + std::string(61, '!')).empty());
  EXPECT_TRUE(input.hasPending());
  EXPECT_TRUE(feed(input, "!").empty());
  EXPECT_FALSE(input.hasPending());
  EXPECT_EQ(feed(input, "z"), Events{key(K::Z)});

  // Parameters that never end: dropped likewise, and what follows is read anew.
  EXPECT_EQ(feed(input, CSI + std::string(500, '?') + "z"), Events{key(K::Z)});
  EXPECT_FALSE(input.hasPending());
  EXPECT_EQ(feed(input, CSI + "D"), Events{key(K::LEFTARROW)});
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
using Moment = std::tuple<long, Events, long, const char*>;

void play(const std::vector<Moment>& moments) {
  vt::TerminalControls controls;
  for (const auto& [at_ms, arriving, step_ms, delivered] : moments) {
    for (const TerminalEvent& event : arriving) controls.take(event, at_ms);
    std::vector<vt::InputRecord> input = controls.takeEvents(step_ms);
    for (const vt::InputRecord& held : controls.heldInput()) input.push_back(held);
    EXPECT_EQ(said(input), delivered) << "at " << step_ms << " ms";
  }
}

const int D = K::D, S = K::S, A = K::A;

// A key typed is held while its repeats come and released after a silence.
TEST(TerminalControls, KeysAndButtonsAreHeldUntilReleasedOrTheirRepeatsStop) {
  const long first_wait = vt::TerminalControls::FIRST_REPEAT_WAIT_MS;
  const long gap = vt::TerminalControls::REPEAT_GAP_MS;
  play({{0, {key(D)}, 10, "pressed D, down D"},
        {0, {}, first_wait, "down D"},
        {first_wait, {key(D)}, first_wait + gap, "down D"},
        {0, {}, first_wait + gap + 1, "released D"},
        {0, {}, first_wait + 2 * gap, ""}});
  // Never repeated: released once the wait for the first repeat is over. Another key typed releases
  // the first at once: only the last key pressed repeats. A key the protocol reports stays held.
  play({{0, {key(D)}, 0, "pressed D, down D"},
        {0, {}, first_wait + 1, "released D"},
        {800, {key(D), press(A)}, 800, "pressed D, pressed A, down A, down D"},
        {900, {key(S)}, 900, "released D, pressed S, down A, down S"}});
  // The keyboard protocol says when a key goes down and up.
  play({{0, {press(D)}, 0, "pressed D, down D"},
        {40, {repeat(D)}, 5000, "down D"},
        {5000, {release(D), press(S)}, 5000, "released D, pressed S, down S"},
        // A repeat whose press was lost still presses.
        {5001, {repeat(D), release(S)}, 5001, "pressed D, released S, down D"}});
  // A mouse button is held from its click to its release.
  const int left = vt::Mouse::LEFT;
  play({{0, {mouse(vt::CLICKED, left, 3, 4)}, 0, "clicked 0 at 3,4, held 0 at 3,4"},
        {1, {mouse(vt::MOVED, left, 5, 6)}, 1, "moved at 5,6, held 0 at 5,6"},
        {2, {}, 2, "held 0 at 5,6"},
        {3, {mouse(TerminalEvent::RELEASED_BUTTON, left, 5, 6)}, 3, ""},
        {4, {mouse(vt::MOVED, vt::Mouse::UNDEFINED_MOUSE_BUTTON, 7, 1)}, 4, "moved at 7,1"}});
}

}  // namespace
