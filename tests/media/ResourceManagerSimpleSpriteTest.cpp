#include <gtest/gtest.h>

#include <list>
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

// Two 3x2 frames, slowdown 4, green, the way a sprite file is usually written.
const char* const TWO_FRAMES = "2\n3\n2\n4\ngreen\nabc\ndef\nghi\njkl\n";

}  // namespace

TEST(SimpleSprite, LoadsFramesAndAttributes) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("ship", TWO_FRAMES), 0);
  // At the default log level only the opening line is written.
  EXPECT_EQ(engine.lastLoadLog(), Lines{});
  const vt::Sprite* p_sprite = rm().getSprite("ship");
  ASSERT_NE(p_sprite, nullptr);
  EXPECT_EQ(p_sprite->getLabel(), "ship");
  EXPECT_EQ(p_sprite->getWidth(), 3);
  EXPECT_EQ(p_sprite->getHeight(), 2);
  EXPECT_EQ(p_sprite->getSlowdown(), 4);
  EXPECT_EQ(p_sprite->getColor(), vt::GREEN);
  EXPECT_EQ(p_sprite->getTransparency(), 0);
  EXPECT_EQ(p_sprite->getFrameCount(), 2);
  EXPECT_EQ(p_sprite->getMaxFrameCount(), 2);
  EXPECT_EQ(p_sprite->getFrame(0).getString(), "abcdef");
  EXPECT_EQ(p_sprite->getFrame(1).getString(), "ghijkl");
  EXPECT_EQ(p_sprite->getFrame(1).getWidth(), 3);
  EXPECT_EQ(p_sprite->getFrame(1).getHeight(), 2);

  vt::LogManager::getInstance().setLogLevel(15);
  engine.newLogLines();
  ASSERT_EQ(engine.loadSpriteText("ship2", "1\n2\n1\n0\nblack\nxy"), 0);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"RM::loadSprite(): assuming simple sprite file format.", "\t      Frames: 1",
                   "\t       Width: 2", "\t      Height: 1", "\t    Slowdown: 0",
                   "\t       Color: black", "RM::loadSimpleSprite(): Reading frame 0.",
                   "RM::loadSprite(): Sprite 'ship2' frames:", "\tFrame 1:", "\txy",
                   "RM::loadSprite(): Sprite 'ship2' loaded."}));
  EXPECT_EQ(rm().getSprite("ship2")->getColor(), vt::BLACK);
}

TEST(SimpleSprite, EveryColourNameAndNoOther) {
  test::ResourceEngine engine;
  const char* const names[] = {"black", "red",     "green", "yellow",
                               "blue",  "magenta", "cyan",  "white"};
  for (int color = vt::BLACK; color <= vt::WHITE; color++) {
    const std::string label = names[color];
    ASSERT_EQ(engine.loadSpriteText(label, "1\n1\n1\n0\n" + label + "\n*\n"), 0) << label;
    EXPECT_EQ(rm().getSprite(label)->getColor(), color);
  }
  EXPECT_EQ(engine.loadSpriteText("upper", "1\n1\n1\n0\nRed\n*\n"), -1);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"RM::loadSimpleSprite(): Error line 5! Unrecognized color 'Red'.",
                   "  Valid colors are: black, red, green, yellow,",
                   "                    blue, magenta, cyan and white.",
                   "RM::loadSprite(): Sprite 'upper' NOT loaded."}));
  EXPECT_EQ(rm().getSpriteCount(), 8);
}

TEST(SimpleSprite, HeaderErrors) {
  test::ResourceEngine engine;
  const std::string eof = "getLine(): Error! Unexpected end of file.";
  const std::string simple_eof = "RM::loadSimpleSprite(): Error! Unexpected end of file.";
  const std::string not_loaded = "RM::loadSprite(): Sprite 's' NOT loaded.";
  const std::string unknown = "RM::loadSprite(): Error! Unknown sprite file format.";
  struct Case {
    std::string text;
    Lines log;
  };
  const Case cases[] = {
      {"", {eof, unknown, "RM::loadSprite(): First line is ''.", not_loaded}},
      {"0\n3\n1\n0\nred\nabc\n", {unknown, "RM::loadSprite(): First line is '0'.", not_loaded}},
      {"ship\n", {unknown, "RM::loadSprite(): First line is 'ship'.", not_loaded}},
      {"\n3\n1\n0\nred\nabc\n", {unknown, "RM::loadSprite(): First line is ''.", not_loaded}},
      {"2", {eof, simple_eof, "\tMissing width (an integer).", not_loaded}},
      {"2\n", {eof, simple_eof, "\tMissing width (an integer).", not_loaded}},
      {"2\n\n1\n", {simple_eof, "\tMissing width (an integer).", not_loaded}},
      {"2\n3\n", {eof, simple_eof, "\tMissing height (an integer).", not_loaded}},
      {"2\n3\n1\n", {eof, simple_eof, "\tMissing slowdown (an integer).", not_loaded}},
      {"2\n3\n1\n0\n", {eof, simple_eof, "\tMissing color (a string).", not_loaded}},
      {"2\n0\n1\n", {"RM::loadSimpleSprite(): Error line 2! Width is '0'.", not_loaded}},
      {"2\nwide\n1\n", {"RM::loadSimpleSprite(): Error line 2! Width is 'wide'.", not_loaded}},
      {"2\n3\n-1\n", {"RM::loadSimpleSprite(): Error line 3! Height is '-1'.", not_loaded}},
      {"2\n3\n1\n-2\n", {"RM::loadSimpleSprite(): Error line 4! Slowdown is '-2'.", not_loaded}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("s", c.text), -1) << c.text;
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.text;
  }
  // A slowdown of 0 is allowed; leading digits count, as does a sign.
  EXPECT_EQ(engine.loadSpriteText("s", "+1 frame\n3 wide\n1\n0\nred\nabc\n"), 0);
  EXPECT_EQ(rm().getSpriteCount(), 1);
  EXPECT_EQ(rm().getSprite("s")->getWidth(), 3);
}

TEST(SimpleSprite, FrameCountBelowOneWhenReadDirectly) {
  test::ResourceEngine engine;
  vt::LineReader reader;
  ASSERT_TRUE(reader.open(engine.writeFile("zero.txt", "-4\n3\n1\n0\nred\nabc\n")));
  engine.newLogLines();
  EXPECT_EQ(vt::SpriteLoader(reader).loadSimpleSprite(), nullptr);
  EXPECT_EQ(engine.newLogLines(),
            Lines{"RM::loadSimpleSprite(): Error line 1! Number of frames is -4."});
}

TEST(SimpleSprite, RowErrors) {
  test::ResourceEngine engine;
  const std::string header = "2\n3\n2\n0\nred\n";
  const std::string not_loaded = "RM::loadSprite(): Sprite 's' NOT loaded.";
  struct Case {
    std::string rows;
    Lines log;
  };
  const Case cases[] = {
      // Cut off in the second frame.
      {"abc\ndef\nghi\n",
       {"getLine(): Error! Unexpected end of file.",
        "RM::loadSimpleSprite(): Error! Unexpected end of file.",
        "\tReading frame 2 of 2, row 2 of 2.", not_loaded}},
      // A blank row is read as a missing one.
      {"abc\n\nghi\njkl\n",
       {"RM::loadSimpleSprite(): Error! Unexpected end of file.",
        "\tReading frame 1 of 2, row 2 of 2.", not_loaded}},
      {"abc\nde\nghi\njkl\n",
       {"RM::loadSimpleSprite(): Error line 7!", "\tWidth is 2, expected 3.", not_loaded}},
      {"abc\ndef\nghi\njklm\n",
       {"RM::loadSimpleSprite(): Error line 9!", "\tWidth is 4, expected 3.", not_loaded}},
      // Frames follow each other with no separator line.
      {"abc\ndef\n\nghi\njkl\n",
       {"RM::loadSimpleSprite(): Error! Unexpected end of file.",
        "\tReading frame 2 of 2, row 1 of 2.", not_loaded}},
      {"abc\ndef\nghi\njkl\n\n",
       {"RM::loadSimpleSprite(): Error line 10!", "\tExtra file data: ''", not_loaded}},
      {"abc\ndef\nghi\njkl\nmno\n",
       {"RM::loadSimpleSprite(): Error line 10!", "\tExtra file data: 'mno'", not_loaded}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("s", header + c.rows), -1) << c.rows;
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.rows;
  }
  EXPECT_EQ(rm().getSpriteCount(), 0);
}

TEST(SimpleSprite, LineEnds) {
  test::ResourceEngine engine;
  // Without a final newline, and with carriage returns before every newline.
  ASSERT_EQ(engine.loadSpriteText("bare", "2\n3\n2\n4\ngreen\nabc\ndef\nghi\njkl"), 0);
  ASSERT_EQ(
      engine.loadSpriteText("crlf", "2\r\n3\r\n2\r\n4\r\ngreen\r\nabc\r\ndef\r\nghi\r\njkl\r\n"),
      0);
  for (const char* label : {"bare", "crlf"}) {
    const vt::Sprite* p_sprite = rm().getSprite(label);
    EXPECT_EQ(p_sprite->getColor(), vt::GREEN);
    EXPECT_EQ(p_sprite->getFrame(0).getString(), "abcdef");
    EXPECT_EQ(p_sprite->getFrame(1).getString(), "ghijkl");
  }
  // The line after the last row is read as it is; its carriage return is
  // dropped only in the message.
  EXPECT_EQ(engine.loadSpriteText("s", "1\r\n3\r\n1\r\n0\r\nred\r\nabc\r\n\r\n"), -1);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"RM::loadSimpleSprite(): Error line 7!", "\tExtra file data: ''",
                   "RM::loadSprite(): Sprite 's' NOT loaded."}));
  EXPECT_EQ(engine.loadSpriteText("s", "1\n3\n1\n0\nred\nabc\r\n\r"), -1);
  EXPECT_EQ(engine.lastLoadLog()[1], "\tExtra file data: ''");
  // A carriage return inside a row is part of the row.
  EXPECT_EQ(engine.loadSpriteText("s", "1\n3\n1\n0\nred\na\rc\n"), 0);
  EXPECT_EQ(rm().getSprite("s")->getFrame(0).getString(), "a\rc");
}
