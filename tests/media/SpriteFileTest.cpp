#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "world/Object.h"

using Lines = std::vector<std::string>;

namespace {

vt::ResourceManager& rm = vt::ResourceManager::getInstance();

std::string section(const std::string& tag, const Lines& lines) {
  std::string text = "<" + tag + ">\n";
  for (const std::string& line : lines) text += line + "\n";
  return text + "</" + tag + ">\n";
}

std::string robust(const Lines& header, const Lines& body, const Lines& footer = {"version 1"}) {
  return section("HEADER", header) + section("BODY", body) + section("FOOTER", footer);
}

std::string crlf(const std::string& text) {
  return std::regex_replace(text, std::regex("\n"), "\r\n");
}

// Size, slowdown, colour, transparency ("-" for none) and frames of a sprite.
std::string describe(const vt::Sprite& sprite) {
  std::ostringstream text;
  const char transparency = sprite.getTransparency();
  text << sprite.getWidth() << "x" << sprite.getHeight() << " s" << sprite.getSlowdown() << " c"
       << sprite.getColor() << " t" << (transparency ? transparency : '-') << ":";
  for (int i = 0; i < sprite.getFrameCount(); i++) text << " " << sprite.getFrame(i).getString();
  return text.str();
}

const Lines TWO_BY_THREE = {"frames 2", "width 3", "height 2"};
const std::string EOF_LINE = "getLine(): Error! Unexpected end of file.";
const std::string SIMPLE_EOF = "RM::loadSimpleSprite(): Error! Unexpected end of file.";
const std::string UNKNOWN = "RM::loadSprite(): Error! Unknown sprite file format.";
const std::string NO_FRAME = "RM::loadRobustSprite(): Error! No frame data to add.";
const std::string SIMPLE_HEAD = "2\n3\n2\n0\nred\n";

// Files that load, and what they load as. The bare format: counts, size, slowdown and colour,
// then the rows. The sectioned one: tagged header lines in any order, frames that each close
// with "end", a footer with a version.
const std::pair<std::string, std::string> LOADED[] = {
    {crlf("+2 frames\n3 wide\n2\n4\ngreen\nabc\ndef\nghi\njkl\n"), "3x2 s4 c2 t-: abcdef ghijkl"},
    {"1\n3\n1\n0\nwhite\na\rc\n", "3x1 s0 c7 t-: a\rc"},
    {"1\n4096\n1\n0\nblack\n" + std::string(4096, 'w'),
     "4096x1 s0 c0 t-: " + std::string(4096, 'w')},
    {robust({"frames 2", "width 3", "height 2", "color blue", "transparency #", "slowdown 4"},
            {"a#c", "def", "end", "ghi", "j#l", "end"}),
     "3x2 s4 c4 t#: a#cdef ghij#l"},
    {crlf(robust({"transparency ..x", "height 2", "width 1", "frames 1", "color black"},
                 {".", "a", "end"})),
     "1x2 s0 c0 t.: .a"},
    // Colour, transparency and slowdown may be left out.
    {robust({"frames 1", "width 2", "height 1"}, {"xy", "end"}, {"version 2"}), "2x1 s0 c7 t-: xy"},
};

// Files refused, with the log lines between the opening one and the closing one.
const std::pair<std::string, Lines> REFUSED[] = {
    // The first line of the sectioned format is its header tag.
    {"", {EOF_LINE, UNKNOWN, "RM::loadSprite(): First line is ''."}},
    {"0\n3\n1\n0\nred\nabc\n", {UNKNOWN, "RM::loadSprite(): First line is '0'."}},
    {"2", {EOF_LINE, SIMPLE_EOF, "\tMissing width (an integer)."}},
    {"2\n0\n1\n", {"RM::loadSimpleSprite(): Error line 2! Width is '0'."}},
    {"2\n3\n0\n", {"RM::loadSimpleSprite(): Error line 3! Height is '0'."}},
    {"1\n1\n1\n0\nRed\n*\n",
     {"RM::loadSimpleSprite(): Error line 5! Unrecognized color 'Red'.",
      "  Valid colors are: black, red, green, yellow,",
      "                    blue, magenta, cyan and white."}},
    {SIMPLE_HEAD + "abc\ndef\nghi\n",
     {EOF_LINE, SIMPLE_EOF, "\tReading frame 2 of 2, row 2 of 2."}},
    // A blank row is a missing one: frames have no separator line.
    {SIMPLE_HEAD + "abc\ndef\n\nghi\njkl\n", {SIMPLE_EOF, "\tReading frame 2 of 2, row 1 of 2."}},
    {SIMPLE_HEAD + "abc\nde\nghi\njkl\n",
     {"RM::loadSimpleSprite(): Error line 7!", "\tWidth is 2, expected 3."}},
    {SIMPLE_HEAD + "abc\ndef\nghi\njkl\nmno\n",
     {"RM::loadSimpleSprite(): Error line 10!", "\tExtra file data: 'mno'"}},
    // A claim of far more frames than the file holds costs only its rows.
    {"2000000000\n1\n1\n0\nred\n" +
         std::regex_replace(std::string(200000, 'x'), std::regex("x"), "x\n"),
     {EOF_LINE, SIMPLE_EOF, "\tReading frame 200001 of 2000000000, row 1 of 1."}},
    {"1\n4097\n1\n0\nred\n" + std::string(4097, 'y'),
     {"getLine(): Error! Line longer than 4096 characters; reading stops there.",
      "RM::loadSimpleSprite(): Error line 7!", "\tExtra file data: ''"}},
    {robust({"frames 1", "width 1", "height 1", "color purple"}, {"x", "end"}),
     {"RM::loadRobustSprite(): Error! Unrecognized color 'purple'."}},
    {robust({}, {"x", "end"}), {}},
    {robust(TWO_BY_THREE, {}), {}},
    {robust(TWO_BY_THREE, {"abc", "def", "end", "ghi", "jkl", "end"}, {}), {}},
    {robust({"width 1", "height 1"}, {"x", "end"}),
     {"RM::loadRobustSprite(): Error! Missing 'frames' in header."}},
    {section("HEADER", {"frames 1", "width 1", "height 1"}) + section("BODY", {"x", "end"}),
     {EOF_LINE, "readData(): Error line 11! Expected '<FOOTER>', have ''."}},
    {robust({"frames 1", "width 1", "height 1"}, {"x", "end"}, {"version"}),
     {"RM::loadRobustSprite(): Error! Missing 'version' in FOOTER (line 14)."}},
    // The body is counted once as it is read and again as frames are taken
    // from it: the line numbers quoted follow that count.
    {robust(TWO_BY_THREE, {"abc", "de", "end", "ghi", "jkl", "end"}),
     {"\tError! Line 15: Line length is 2 (frame width is 3).", "\tLine 15: 'de'", NO_FRAME}},
    {robust(TWO_BY_THREE, {"abc", "def", "ghi", "jkl", "mno", "end"}),
     {"\tError! Line 16: Expected 'end'.", "\tLine 16: 'ghi'", NO_FRAME}},
    {robust(TWO_BY_THREE, {"abc", "def", "end", "ghi"}),
     {"\tError! Line 16: No more frame data before 'end'.", NO_FRAME}},
    {robust(TWO_BY_THREE, {"abc", "def", "end", "ghi", "jkl", "end", "xyz"}),
     {"RM::loadRobustSprite(): Error! Extra BODY:", "\tline 21: xyz"}},
};

}  // namespace

TEST(SpriteFile, EachFileLoadsAsItsSpriteOrIsRefusedWithItsMessages) {
  test::HeadlessEngine engine(test::HeadlessEngine::WORLD_AND_RESOURCES);
  ASSERT_EQ(rm.loadSprite(engine.writeFile("keep.txt", "2\n3\n1\n2\ncyan\nabc\ndef\n"), "keep"), 0);
  // Loads the text as sprite s: what it logs, after the line naming the file, and what it loads.
  const auto load = [&](const std::string& text, Lines log, const std::string& sprite) {
    SCOPED_TRACE(text.substr(0, 80));
    const std::string path = engine.writeFile("s.txt", text);
    log.insert(log.begin(), "RM::loadSprite(): Loading sprite '" + path + "'.");
    if (sprite.empty()) log.push_back("RM::loadSprite(): Sprite 's' NOT loaded.");
    engine.newLogLines();
    EXPECT_EQ(rm.loadSprite(path, "s"), sprite.empty() ? -1 : 0);
    EXPECT_EQ(engine.newLogLines(), log);
    EXPECT_EQ(rm.getSprite("s") ? describe(*rm.getSprite("s")) : "", sprite);
    EXPECT_EQ(rm.getSprite("keep")->getFrame(1).getString(), "def");
    rm.unloadSprite("s");
  };
  for (const auto& [text, sprite] : LOADED) load(text, {}, sprite);
  // The last of a repeated header line counts; one the loader does not
  // know is named, and the sprite loads.
  load(robust({"width 5", "height 1", "frames 1", "width 2", "colour red", "slowdown 3"},
              {"ab", "end"}, {"author me", "version 1", "version 2"}),
       {"RM::loadRobustSprite(): Warning! Unknown HEADER line 'colour red'; the names are frames, "
        "width, height, color, slowdown and transparency."},
       "2x1 s3 c7 t-: ab");
  for (const auto& [text, log] : REFUSED) load(text, log, "");
  // From log level 5 on the header is summed up; from 15 on the frames are written out too.
  vt::LogManager::getInstance().setLogLevel(15);
  load(robust({"frames 2", "width 1", "height 2", "transparency #"},
              {"a", "b", "end", "c", "d", "end"}),
       {"RM::loadSprite(): assuming robust sprite file format.",
        "RM::loadRobustSprite(): Warning! No 'color' in header.",
        "RM::loadRobustSprite(): Warning! No 'slowdown' in header.", "\t      Frames: 2",
        "\t       Width: 1", "\t      Height: 2", "\t    Slowdown: 0", "\tTransparency: #",
        "\t       Color: default", "RM::loadSprite(): Sprite 's' frames:", "\tFrame 1:", "\ta",
        "\tb", "\tFrame 2:", "\tc", "\td", "RM::loadSprite(): Sprite 's' loaded."},
       "1x2 s0 c7 t#: ab cd");
}

TEST(SpriteFile, SpritesByLabelUpToAThousandAndOnObjects) {
  test::HeadlessEngine engine(test::HeadlessEngine::WORLD_AND_RESOURCES);
  const std::string file = engine.writeFile("box.txt", "1\n5\n3\n0\nred\n.....\n.....\n.....\n");
  for (const char* label : {"a", "b", "c", "b"}) ASSERT_EQ(rm.loadSprite(file, label), 0);
  vt::Sprite* p_c = rm.getSprite("c");
  EXPECT_EQ(rm.getSprite("B"), nullptr);
  engine.newLogLines();
  const std::string missing = file + ".missing";
  EXPECT_EQ(rm.loadSprite(missing, "ghost"), -1);
  EXPECT_EQ(engine.newLogLines(),
            (Lines{"RM::loadSprite(): Loading sprite '" + missing + "'.",
                   "RM::loadSprite(): Error! Cannot open file '" + missing + "'.",
                   "RM::loadSprite(): Sprite 'ghost' not loaded."}));
  // The first of two equal labels goes first; the others keep their order.
  EXPECT_EQ(rm.unloadSprite("b") + rm.unloadSprite("b"), 0);
  EXPECT_EQ(rm.unloadSprite("b"), -1);
  EXPECT_EQ(std::pair(rm.getSprite("c"), rm.getSpriteCount()), std::pair(p_c, 2));
  for (int i = 2; i < vt::MAX_SPRITES; i++)
    ASSERT_EQ(rm.loadSprite(file, "box" + std::to_string(i)), 0) << i;
  engine.newLogLines();
  EXPECT_EQ(rm.loadSprite(file, "one-too-many"), -1);
  EXPECT_EQ(engine.newLogLines(),
            (Lines{"RM::loadRobustSprite(): Error! Cannot add more Sprites (max is 1000).",
                   "RM::loadRobustSprite(): Sprite 'one-too-many' not loaded."}));
  EXPECT_EQ(rm.unloadSprite("a"), 0);
  EXPECT_EQ(rm.loadSprite(file, "one-more"), 0);
  // An object takes a sprite and its box by label; an unknown label changes neither.
  auto* p_object = new vt::Object;
  EXPECT_EQ(p_object->setSprite("boat"), -1);
  EXPECT_EQ(p_object->getBox(), vt::Object().getBox());
  EXPECT_EQ(p_object->setSprite("c"), 0);
  EXPECT_EQ(p_object->getAnimation().getSprite(), p_c);
  auto* p_copy = new vt::Object;
  p_copy->deserialize(p_object->serialize("ALL"));
  EXPECT_EQ(p_copy->getAnimation().getSprite(), p_c) << "a copy made from its text";
  EXPECT_EQ(p_object->getBox(), vt::Box(vt::Vector(-2.5f, -1.5f), 5, 3));
  rm.shutDown();
  ASSERT_EQ(rm.startUp(), 0);
  EXPECT_EQ(rm.getSpriteCount(), 0);
}
