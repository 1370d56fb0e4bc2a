#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;

namespace {

vt::ResourceManager& rm() {
  return vt::ResourceManager::getInstance();
}

std::string section(const std::string& tag, const Lines& lines) {
  std::string text = "<" + tag + ">\n";
  for (const std::string& line : lines) text += line + "\n";
  return text + "</" + tag + ">\n";
}

std::string robust(const Lines& header, const Lines& body, const Lines& footer) {
  return section("HEADER", header) + section("BODY", body) + section("FOOTER", footer);
}

const Lines ONE_BY_ONE = {"frames 1", "width 1", "height 1"};
const Lines VERSION = {"version 1"};
const std::string NOT_LOADED = "RM::loadSprite(): Sprite 's' NOT loaded.";

}  // namespace

TEST(RobustSprite, LoadsSectionedFiles) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
  const std::string text =
      robust({"frames 2", "width 3", "height 2", "color blue", "transparency #", "slowdown 4"},
             {"a#c", "def", "end", "ghi", "j#l", "end"}, VERSION);
  std::string crlf;
  for (const char ch : text) crlf += ch == '\n' ? std::string("\r\n") : std::string(1, ch);
  for (const std::string& file : {text, crlf}) {
    ASSERT_EQ(engine.loadSpriteText("ship", file), 0);
    EXPECT_EQ(
        engine.lastLoadLog(),
        (Lines{"RM::loadSprite(): assuming robust sprite file format.", "\t      Frames: 2",
               "\t       Width: 3", "\t      Height: 2", "\t    Slowdown: 4", "\tTransparency: #",
               "\t       Color: blue", "RM::loadSprite(): Sprite 'ship' loaded."}));
    const vt::Sprite* p_sprite = rm().getSprite("ship");
    EXPECT_EQ(p_sprite->getWidth(), 3);
    EXPECT_EQ(p_sprite->getHeight(), 2);
    EXPECT_EQ(p_sprite->getSlowdown(), 4);
    EXPECT_EQ(p_sprite->getColor(), vt::BLUE);
    EXPECT_EQ(p_sprite->getTransparency(), '#');
    ASSERT_EQ(p_sprite->getFrameCount(), 2);
    EXPECT_EQ(p_sprite->getFrame(0).getString(), "a#cdef");
    EXPECT_EQ(p_sprite->getFrame(1).getString(), "ghij#l");
    rm().unloadSprite("ship");
  }
  // Colour, transparency and slowdown may be left out.
  ASSERT_EQ(engine.loadSpriteText(
                "plain", robust({"frames 1", "width 2", "height 1"}, {"xy", "end"}, {"version 2"})),
            0);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"RM::loadSprite(): assuming robust sprite file format.",
                   "RM::loadRobustSprite(): Warning! No 'color' in header.",
                   "RM::loadRobustSprite(): Warning! No 'transparency' in header.",
                   "RM::loadRobustSprite(): Warning! No 'slowdown' in header.", "\t      Frames: 1",
                   "\t       Width: 2", "\t      Height: 1", "\t    Slowdown: 0",
                   "\tTransparency: (none)", "\t       Color: default",
                   "RM::loadSprite(): Sprite 'plain' loaded."}));
  EXPECT_EQ(rm().getSprite("plain")->getColor(), vt::WHITE);
  EXPECT_EQ(rm().getSprite("plain")->getTransparency(), 0);
  // Only the first character of a transparency value counts.
  ASSERT_EQ(engine.loadSpriteText(
                "dot", robust({"transparency ..x", "height 1", "width 1", "frames 1", "color red"},
                              {".", "end"}, VERSION)),
            0);
  EXPECT_EQ(rm().getSprite("dot")->getTransparency(), '.');
  EXPECT_EQ(rm().getSprite("dot")->getColor(), vt::RED);
}

TEST(RobustSprite, RepeatedAndUnusedLines) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(1);
  ASSERT_EQ(
      engine.loadSpriteText("s", robust({"width 5", "height 1", "frames 1", "width 2", "colour red",
                                         "slowdown 2", "slowdown 3"},
                                        {"ab", "end"}, {"author me", "version 1", "version 2"})),
      0);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"RM::loadSprite(): assuming robust sprite file format.",
                   "matchLineInt(): Warning! 'width 2' matches multiple lines.",
                   "matchLineInt(): Warning! 'slowdown 3' matches multiple lines.",
                   "RM::loadRobustSprite(): Warning! Unused HEADER lines:", "\t'colour red'",
                   "matchLineStr(): Warning! 'version 2' matches multiple lines.",
                   "RM::loadRobustSprite(): Warning! Unused FOOTER lines:", "\t'author me'",
                   "RM::loadSprite(): Sprite 's' loaded."}));
  EXPECT_EQ(rm().getSprite("s")->getWidth(), 2);
  EXPECT_EQ(rm().getSprite("s")->getSlowdown(), 3);
}

TEST(RobustSprite, EveryFaultHasItsMessage) {
  test::ResourceEngine engine;
  const std::string eof = "getLine(): Error! Unexpected end of file.";
  const std::string no_frame = "RM::loadRobustSprite(): Error! No frame data to add.";
  const std::string body = section("BODY", {"x", "end"});
  const Lines two_by_three = {"frames 2", "width 3", "height 2"};
  struct Case {
    std::string text;
    Lines log;
  };
  // The body section is counted once as it is read and its lines again as
  // frames are taken from it: the line numbers quoted follow that count.
  const Case cases[] = {
      {robust({"width 1", "height 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Missing 'frames' in header.", NOT_LOADED}},
      {robust({"frames 1", "width 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Missing 'height' in header.", NOT_LOADED}},
      {"<HEADER>\nframes 1\nwidth 1\n",
       {eof, "readData(): Error! Never encountered '</HEADER>'.", NOT_LOADED}},
      {"<HEADER>\nframes 1\n\nwidth 1\nheight 1\n</HEADER>\n" + body,
       {"readData(): Error! Never encountered '</HEADER>'.", NOT_LOADED}},
      {"<HEADER>\n</HEADER>\n" + body, {NOT_LOADED}},
      {section("HEADER", ONE_BY_ONE) + section("FOOTER", VERSION),
       {"readData(): Error line 6! Expected '<BODY>', have '<FOOTER>'.", NOT_LOADED}},
      {section("HEADER", ONE_BY_ONE) + "<BODY>\nx\nend\n",
       {eof, "readData(): Error! Never encountered '</BODY>'.", NOT_LOADED}},
      {section("HEADER", ONE_BY_ONE) + "<BODY>\n</BODY>\n", {NOT_LOADED}},
      {robust({"frames 1", "width 1", "height 1", "color purple"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Unrecognized color 'purple'.", NOT_LOADED}},
      {section("HEADER", ONE_BY_ONE) + body,
       {eof, "readData(): Error line 11! Expected '<FOOTER>', have ''.", NOT_LOADED}},
      {robust(ONE_BY_ONE, {"x", "end"}, {"author me"}),
       {"RM::loadRobustSprite(): Error! Missing 'version' in FOOTER (line 14).", NOT_LOADED}},
      {robust(ONE_BY_ONE, {"x", "end"}, {"version"}),
       {"RM::loadRobustSprite(): Error! Missing 'version' in FOOTER (line 14).", NOT_LOADED}},
      // "frames3" matches "frames"; its value is read after the separator.
      {robust({"frames 0", "width 1", "height 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Extra BODY:", "\tline 10: x", "\tline 11: end",
        NOT_LOADED}},
      {robust({"frames3", "width 1", "height 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Extra BODY:", "\tline 10: x", "\tline 11: end",
        NOT_LOADED}},
      {robust(two_by_three, {"abc", "de", "end", "ghi", "jkl", "end"}, VERSION),
       {"\tError! Line 15: Line length is 2 (frame width is 3).", "\tLine 15: 'de'", no_frame,
        NOT_LOADED}},
      {robust(two_by_three, {"abc", "def", "ghi", "jkl", "mno", "end"}, VERSION),
       {"\tError! Line 16: Expected 'end'.", "\tLine 16: 'ghi'", no_frame, NOT_LOADED}},
      {robust(two_by_three, {"abc", "def", "end", "ghi"}, VERSION),
       {"\tError! Line 16: No more frame data before 'end'.", no_frame, NOT_LOADED}},
      {robust(two_by_three, {"abc", "def", "end", "ghi", "jkl", "end", "xyz"}, VERSION),
       {"RM::loadRobustSprite(): Error! Extra BODY:", "\tline 21: xyz", NOT_LOADED}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("s", c.text), -1) << c.text;
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.text;
  }
  EXPECT_EQ(rm().getSpriteCount(), 0);
}
