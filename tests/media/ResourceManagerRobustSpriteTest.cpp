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

// A sectioned sprite file of the three sections, in order.
std::string robust(const Lines& header, const Lines& body, const Lines& footer) {
  return section("HEADER", header) + section("BODY", body) + section("FOOTER", footer);
}

const Lines SMALL_HEADER = {"frames 2", "width 3", "height 2"};
const Lines VERSION = {"version 1"};
const std::string NOT_LOADED = "RM::loadSprite(): Sprite 's' NOT loaded.";

}  // namespace

TEST(RobustSprite, LoadsSectionedFile) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
  const std::string text =
      robust({"frames 2", "width 3", "height 2", "color blue", "transparency #", "slowdown 4"},
             {"a#c", "def", "end", "ghi", "j#l", "end"}, VERSION);
  ASSERT_EQ(engine.loadSpriteText("ship", text), 0);
  EXPECT_EQ(
      engine.lastLoadLog(),
      (Lines{"RM::loadSprite(): assuming robust sprite file format.", "\t      Frames: 2",
             "\t       Width: 3", "\t      Height: 2", "\t    Slowdown: 4", "\tTransparency: #",
             "\t       Color: blue", "RM::loadSprite(): Sprite 'ship' loaded."}));
  const vt::Sprite* p_sprite = rm().getSprite("ship");
  ASSERT_NE(p_sprite, nullptr);
  EXPECT_EQ(p_sprite->getWidth(), 3);
  EXPECT_EQ(p_sprite->getHeight(), 2);
  EXPECT_EQ(p_sprite->getSlowdown(), 4);
  EXPECT_EQ(p_sprite->getColor(), vt::BLUE);
  EXPECT_EQ(p_sprite->getTransparency(), '#');
  EXPECT_EQ(p_sprite->getFrameCount(), 2);
  EXPECT_EQ(p_sprite->getFrame(0).getString(), "a#cdef");
  EXPECT_EQ(p_sprite->getFrame(1).getString(), "ghij#l");

  // Carriage returns before the newlines change nothing.
  std::string crlf;
  for (const char ch : text) crlf += ch == '\n' ? std::string("\r\n") : std::string(1, ch);
  ASSERT_EQ(engine.loadSpriteText("crlf", crlf), 0);
  const vt::Sprite* p_crlf = rm().getSprite("crlf");
  EXPECT_EQ(p_crlf->getTransparency(), '#');
  EXPECT_EQ(p_crlf->getColor(), vt::BLUE);
  EXPECT_EQ(p_crlf->getFrame(1).getString(), "ghij#l");
}

TEST(RobustSprite, OptionalHeaderAttributes) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
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
  const vt::Sprite* p_sprite = rm().getSprite("plain");
  EXPECT_EQ(p_sprite->getColor(), vt::WHITE);
  EXPECT_EQ(p_sprite->getSlowdown(), 0);
  EXPECT_EQ(p_sprite->getTransparency(), 0);

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

TEST(RobustSprite, NoFramesLeavesTheBodyOver) {
  test::ResourceEngine engine;
  // "frames3" matches "frames"; its value is read after the separator, the 3.
  for (const char* frames : {"frames 0", "frames3"}) {
    EXPECT_EQ(
        engine.loadSpriteText("s", robust({frames, "width 1", "height 1"}, {"x", "end"}, VERSION)),
        -1);
    EXPECT_EQ(engine.lastLoadLog(), (Lines{"RM::loadRobustSprite(): Error! Extra BODY:",
                                           "\tline 10: x", "\tline 11: end", NOT_LOADED}));
  }
  EXPECT_EQ(rm().getSpriteCount(), 0);
}

TEST(RobustSprite, SectionErrors) {
  test::ResourceEngine engine;
  const std::string eof = "getLine(): Error! Unexpected end of file.";
  const std::string body = section("BODY", {"x", "end"});
  struct Case {
    std::string text;
    Lines log;
  };
  const Case cases[] = {
      {robust({"width 1", "height 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Missing 'frames' in header.", NOT_LOADED}},
      {robust({"frames 1", "height 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Missing 'width' in header.", NOT_LOADED}},
      {robust({"frames 1", "width 1"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Missing 'height' in header.", NOT_LOADED}},
      {"<HEADER>\nframes 1\nwidth 1\n",
       {eof, "readData(): Error! Never encountered '</HEADER>'.", NOT_LOADED}},
      {"<HEADER>\nframes 1\n\nwidth 1\nheight 1\n</HEADER>\n" + body,
       {"readData(): Error! Never encountered '</HEADER>'.", NOT_LOADED}},
      {"<HEADER>\n</HEADER>\n" + body, {NOT_LOADED}},
      {section("HEADER", {"frames 1", "width 1", "height 1"}) + section("FOOTER", VERSION),
       {"readData(): Error line 6! Expected '<BODY>', have '<FOOTER>'.", NOT_LOADED}},
      {section("HEADER", {"frames 1", "width 1", "height 1"}) + "<BODY>\nx\nend\n",
       {eof, "readData(): Error! Never encountered '</BODY>'.", NOT_LOADED}},
      {section("HEADER", {"frames 1", "width 1", "height 1"}) + "<BODY>\n</BODY>\n", {NOT_LOADED}},
      {robust({"frames 1", "width 1", "height 1", "color purple"}, {"x", "end"}, VERSION),
       {"RM::loadRobustSprite(): Error! Unrecognized color 'purple'.", NOT_LOADED}},
      {section("HEADER", {"frames 1", "width 1", "height 1"}) + body,
       {eof, "readData(): Error line 11! Expected '<FOOTER>', have ''.", NOT_LOADED}},
      {robust({"frames 1", "width 1", "height 1"}, {"x", "end"}, {"author me"}),
       {"RM::loadRobustSprite(): Error! Missing 'version' in FOOTER (line 14).", NOT_LOADED}},
      {robust({"frames 1", "width 1", "height 1"}, {"x", "end"}, {"version"}),
       {"RM::loadRobustSprite(): Error! Missing 'version' in FOOTER (line 14).", NOT_LOADED}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("s", c.text), -1) << c.text;
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.text;
  }
  EXPECT_EQ(rm().getSpriteCount(), 0);
}

TEST(RobustSprite, FrameErrors) {
  test::ResourceEngine engine;
  const std::string no_frame = "RM::loadRobustSprite(): Error! No frame data to add.";
  struct Case {
    Lines body;
    Lines log;
  };
  // The header takes lines 1 to 5 and the body section is counted once as
  // it is read; frame reading counts its lines again from there.
  const Case cases[] = {
      {{"abc", "de", "end", "ghi", "jkl", "end"},
       {"\tError! Line 15: Line length is 2 (frame width is 3).", "\tLine 15: 'de'", no_frame,
        NOT_LOADED}},
      {{"abc", "def", "ghi", "jkl", "mno", "end"},
       {"\tError! Line 16: Expected 'end'.", "\tLine 16: 'ghi'", no_frame, NOT_LOADED}},
      {{"abc", "def", "end", "ghi"},
       {"\tError! Line 16: No more frame data before 'end'.", no_frame, NOT_LOADED}},
      {{"abc", "def"},
       {"\tError! Line 12: No more frame data before 'end'.", no_frame, NOT_LOADED}},
      {{"abc", "def", "end", "ghi", "jkl", "end", "xyz"},
       {"RM::loadRobustSprite(): Error! Extra BODY:", "\tline 21: xyz", NOT_LOADED}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("s", robust(SMALL_HEADER, c.body, VERSION)), -1);
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.body.size();
  }
  EXPECT_EQ(rm().getSpriteCount(), 0);
}
