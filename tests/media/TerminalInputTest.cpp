// Terminal bytes to events: each table entry fed whole and byte by byte.
#include <gtest/gtest.h>

#include <climits>
#include <ostream>
#include <string>
#include <vector>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
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
  TerminalEvent event;
  event.key = code;
  event.phase = phase;
  return event;
}
TerminalEvent press(int code) {
  return key(code, TerminalEvent::PRESS);
}

TerminalEvent ofType(TerminalEvent::Type type, int flags = 0) {
  TerminalEvent event;
  event.type = type;
  event.flags = flags;
  return event;
}
const TerminalEvent QUIT = ofType(TerminalEvent::QUIT);

TerminalEvent mouse(int action, int button, int column, int row) {
  TerminalEvent event = ofType(TerminalEvent::MOUSE);
  event.action = action;
  event.button = button;
  event.column = column;
  event.row = row;
  return event;
}

Events feed(vt::TerminalInput& input, const std::string& bytes) {
  return input.feed(bytes.data(), bytes.size());
}

struct Case {
  std::string bytes;
  Events expected;
};

const Case CASES[] = {
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
     {press(K::A), key(K::A, TerminalEvent::REPEAT), key(K::A, TerminalEvent::RELEASE),
      press(K::A)}},
    {CSI + "13u" + CSI + "9u" + CSI + "127u" + CSI + "27u" + CSI + "32u" + CSI + "48u" + CSI +
         "59u",
     {press(K::RETURN), press(K::TAB), press(K::BACKSPACE), press(K::ESCAPE), press(K::SPACE),
      press(K::NUM0), press(K::SEMICOLON)}},
    {CSI + "57441;2u" + CSI + "57442;5:3u" + CSI + "57447;2:2u" + CSI + "57448;5u",
     {press(K::LEFTSHIFT), key(K::LEFTCONTROL, TerminalEvent::RELEASE),
      key(K::RIGHTSHIFT, TerminalEvent::REPEAT), press(K::RIGHTCONTROL)}},
    {CSI + "1;1:3A" + CSI + "1;5:1P" + CSI + "15;1:2~" + CSI + "1;1:9B",
     {key(K::UPARROW, TerminalEvent::RELEASE), press(K::F1), key(K::F5, TerminalEvent::REPEAT)}},
    {CSI + "99;5u" + CSI + "99;5:2u" + CSI + "99;5:3u" + CSI + "99u", {QUIT, press(K::C)}},
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
};

TEST(TerminalInputTest, DecodesWholeAndByteByByte) {
  for (const Case& test : CASES) {
    SCOPED_TRACE(::testing::PrintToString(test.bytes));
    vt::TerminalInput whole;
    EXPECT_EQ(feed(whole, test.bytes), test.expected);
    EXPECT_FALSE(whole.hasPending());
    EXPECT_TRUE(whole.flush().empty());

    vt::TerminalInput bytewise;
    Events events;
    for (const char byte : test.bytes) {
      for (const TerminalEvent& event : feed(bytewise, std::string(1, byte))) {
        events.push_back(event);
      }
    }
    EXPECT_EQ(events, test.expected);
  }
}

TEST(TerminalInputTest, LoneEscapeIsTheKeyOnlyWhenFlushed) {
  vt::TerminalInput input;
  EXPECT_TRUE(feed(input, ESC).empty());
  EXPECT_TRUE(input.hasPending());
  EXPECT_EQ(input.flush(), Events{key(K::ESCAPE)});
  EXPECT_FALSE(input.hasPending());

  EXPECT_TRUE(feed(input, CSI + "1;5").empty());
  EXPECT_TRUE(input.flush().empty());
  EXPECT_FALSE(input.hasPending());
  EXPECT_EQ(feed(input, "A"), Events{key(K::A)});
}

TEST(TerminalInputTest, OverlongSequenceIsDroppedAtSixtyFourBytes) {
  vt::TerminalInput input;
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

}  // namespace
