#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/LogManager.h"
#include "media/LineReader.h"
#include "media/ResourceManager.h"
#include "media/SpriteLoader.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;

namespace {

vt::ResourceManager& rm() {
  return vt::ResourceManager::getInstance();
}

const std::string NOT_LOADED = "RM::loadSprite(): Sprite 's' NOT loaded.";
const std::string EOF_LINE = "getLine(): Error! Unexpected end of file.";
const std::string SIMPLE_EOF = "RM::loadSimpleSprite(): Error! Unexpected end of file.";
const std::string UNKNOWN = "RM::loadSprite(): Error! Unknown sprite file format.";

}  // namespace

TEST(SimpleSprite, LoadsFramesAndAttributes) {
  test::ResourceEngine engine;
  // Without a final newline, with carriage returns, and with leading digits
  // (and a sign) read as numbers.
  const char* const files[] = {"2\n3\n2\n4\ngreen\nabc\ndef\nghi\njkl\n",
                               "2\n3\n2\n4\ngreen\nabc\ndef\nghi\njkl",
                               "2\r\n3\r\n2\r\n4\r\ngreen\r\nabc\r\ndef\r\nghi\r\njkl\r\n",
                               "+2 frames\n3 wide\n2\n4\ngreen\nabc\ndef\nghi\njkl\n"};
  for (const char* text : files) {
    ASSERT_EQ(engine.loadSpriteText("ship", text), 0) << text;
    EXPECT_EQ(engine.lastLoadLog(), Lines{});
    const vt::Sprite* p_sprite = rm().getSprite("ship");
    EXPECT_EQ(p_sprite->getLabel(), "ship");
    EXPECT_EQ(p_sprite->getWidth(), 3);
    EXPECT_EQ(p_sprite->getHeight(), 2);
    EXPECT_EQ(p_sprite->getSlowdown(), 4);
    EXPECT_EQ(p_sprite->getColor(), vt::GREEN);
    EXPECT_EQ(p_sprite->getTransparency(), 0);
    EXPECT_EQ(p_sprite->getMaxFrameCount(), 2);
    ASSERT_EQ(p_sprite->getFrameCount(), 2);
    EXPECT_EQ(p_sprite->getFrame(0).getString(), "abcdef");
    EXPECT_EQ(p_sprite->getFrame(1).getString(), "ghijkl");
    EXPECT_EQ(p_sprite->getFrame(1).getHeight(), 2);
    ASSERT_EQ(rm().unloadSprite("ship"), 0);
  }
  // Every colour name, exactly; a carriage return inside a row is kept.
  const char* const names[] = {"black", "red",     "green", "yellow",
                               "blue",  "magenta", "cyan",  "white"};
  for (int color = vt::BLACK; color <= vt::WHITE; color++) {
    const std::string label = names[color];
    ASSERT_EQ(engine.loadSpriteText(label, "1\n3\n1\n0\n" + label + "\na\rc\n"), 0);
    EXPECT_EQ(rm().getSprite(label)->getColor(), color);
    EXPECT_EQ(rm().getSprite(label)->getFrame(0).getString(), "a\rc");
  }

  vt::LogManager::getInstance().setLogLevel(15);
  ASSERT_EQ(engine.loadSpriteText("dot", "1\n2\n1\n0\nblack\nxy"), 0);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"RM::loadSprite(): assuming simple sprite file format.", "\t      Frames: 1",
                   "\t       Width: 2", "\t      Height: 1", "\t    Slowdown: 0",
                   "\t       Color: black", "RM::loadSimpleSprite(): Reading frame 0.",
                   "RM::loadSprite(): Sprite 'dot' frames:", "\tFrame 1:", "\txy",
                   "RM::loadSprite(): Sprite 'dot' loaded."}));
}

TEST(SimpleSprite, EveryFaultHasItsMessage) {
  test::ResourceEngine engine;
  const std::string head = "2\n3\n2\n0\nred\n";
  struct Case {
    std::string text;
    Lines log;
  };
  const Case cases[] = {
      {"", {EOF_LINE, UNKNOWN, "RM::loadSprite(): First line is ''.", NOT_LOADED}},
      {"0\n3\n1\n0\nred\nabc\n", {UNKNOWN, "RM::loadSprite(): First line is '0'.", NOT_LOADED}},
      {"ship\n", {UNKNOWN, "RM::loadSprite(): First line is 'ship'.", NOT_LOADED}},
      {"2", {EOF_LINE, SIMPLE_EOF, "\tMissing width (an integer).", NOT_LOADED}},
      {"2\n\n1\n", {SIMPLE_EOF, "\tMissing width (an integer).", NOT_LOADED}},
      {"2\n3\n", {EOF_LINE, SIMPLE_EOF, "\tMissing height (an integer).", NOT_LOADED}},
      {"2\n3\n1\n", {EOF_LINE, SIMPLE_EOF, "\tMissing slowdown (an integer).", NOT_LOADED}},
      {"2\n3\n1\n0\n", {EOF_LINE, SIMPLE_EOF, "\tMissing color (a string).", NOT_LOADED}},
      {"2\nwide\n1\n", {"RM::loadSimpleSprite(): Error line 2! Width is 'wide'.", NOT_LOADED}},
      {"2\n3\n-1\n", {"RM::loadSimpleSprite(): Error line 3! Height is '-1'.", NOT_LOADED}},
      {"2\n3\n1\n-2\n", {"RM::loadSimpleSprite(): Error line 4! Slowdown is '-2'.", NOT_LOADED}},
      {"1\n1\n1\n0\nRed\n*\n",
       {"RM::loadSimpleSprite(): Error line 5! Unrecognized color 'Red'.",
        "  Valid colors are: black, red, green, yellow,",
        "                    blue, magenta, cyan and white.", NOT_LOADED}},
      {head + "abc\ndef\nghi\n",
       {EOF_LINE, SIMPLE_EOF, "\tReading frame 2 of 2, row 2 of 2.", NOT_LOADED}},
      // A blank row is a missing one: frames have no separator line.
      {head + "abc\ndef\n\nghi\njkl\n",
       {SIMPLE_EOF, "\tReading frame 2 of 2, row 1 of 2.", NOT_LOADED}},
      {head + "abc\nde\nghi\njkl\n",
       {"RM::loadSimpleSprite(): Error line 7!", "\tWidth is 2, expected 3.", NOT_LOADED}},
      {head + "abc\ndef\nghi\njkl\n\n",
       {"RM::loadSimpleSprite(): Error line 10!", "\tExtra file data: ''", NOT_LOADED}},
      {head + "abc\ndef\nghi\njkl\nmno\n",
       {"RM::loadSimpleSprite(): Error line 10!", "\tExtra file data: 'mno'", NOT_LOADED}},
      // The line after the last row is read raw: only the message drops its
      // carriage return.
      {"1\r\n3\r\n1\r\n0\r\nred\r\nabc\r\n\r\n",
       {"RM::loadSimpleSprite(): Error line 7!", "\tExtra file data: ''", NOT_LOADED}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("s", c.text), -1) << c.text;
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.text;
  }
  EXPECT_EQ(rm().getSpriteCount(), 0);

  // A frame count below one, met by the bare loader itself.
  vt::LineReader reader;
  ASSERT_TRUE(reader.open(engine.writeFile("zero.txt", "-4\n3\n1\n0\nred\nabc\n")));
  engine.newLogLines();
  EXPECT_EQ(vt::SpriteLoader(reader).loadSimpleSprite(), nullptr);
  EXPECT_EQ(engine.newLogLines(),
            Lines{"RM::loadSimpleSprite(): Error line 1! Number of frames is -4."});
}
