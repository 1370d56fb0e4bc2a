#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <vector>

#include "media/LineReader.h"
#include "media/ResourceManager.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;

namespace {

vt::ResourceManager& rm() {
  return vt::ResourceManager::getInstance();
}

std::string simple(const std::string& frames, const std::string& width, const std::string& rows) {
  return frames + "\n" + width + "\n1\n0\nred\n" + rows;
}

std::string repeated(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; i++) result += text;
  return result;
}

const std::string NOT_LOADED = "RM::loadSprite(): Sprite 'bad' NOT loaded.";
const std::string EOF_LINE = "getLine(): Error! Unexpected end of file.";
const std::string OVERLONG =
    "getLine(): Error! Line longer than 4096 characters; reading stops there.";

}  // namespace

// Files that claim far more than they hold are refused with the message of
// their first fault, and the sprite loaded before them is kept.
TEST(SpriteBadInput, HostileFilesAreRefusedAndNothingLoadedIsLost) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("keep", "2\n3\n1\n2\ncyan\nabc\ndef\n"), 0);
  const vt::Sprite* p_kept = rm().getSprite("keep");
  const std::string long_line(100000, 'x');
  struct Case {
    std::string text;
    Lines log;
  };
  const Case cases[] = {
      {simple("2000000000", "1", repeated("x\n", 200000)),
       {EOF_LINE, "RM::loadSimpleSprite(): Error! Unexpected end of file.",
        "\tReading frame 200001 of 2000000000, row 1 of 1.", NOT_LOADED}},
      {"<HEADER>\nframes 2000000000\nwidth 1\nheight 1\n</HEADER>\n<BODY>\n" +
           repeated("x\nend\n", 100000) + "</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n",
       {"\tError! Line 400008: No more frame data before 'end'.",
        "RM::loadRobustSprite(): Error! No frame data to add.", NOT_LOADED}},
      {simple("2147483647", "2147483647", "abc\n"),
       {"RM::loadSimpleSprite(): Error line 6!", "\tWidth is 3, expected 2147483647.", NOT_LOADED}},
      {simple("1", "3", long_line + "\n"),
       {OVERLONG, "RM::loadSimpleSprite(): Error line 6!", "\tWidth is 4097, expected 3.",
        NOT_LOADED}},
      // Trailing data too long for a line is still extra data.
      {simple("1", "3", "abc\n" + long_line),
       {OVERLONG, "RM::loadSimpleSprite(): Error line 7!",
        "\tExtra file data: '" + std::string(4097, 'x') + "'", NOT_LOADED}},
      // A row one character too long fails even when the header asks for it.
      {simple("1", "4097", std::string(4097, 'y')),
       {OVERLONG, "RM::loadSimpleSprite(): Error line 7!", "\tExtra file data: ''", NOT_LOADED}},
      {"<HEADER>\nframes -3\nwidth -2\nheight -5\n</HEADER>\n<BODY>\nabc\nend\n</BODY>\n"
       "<FOOTER>\nversion 1\n</FOOTER>\n",
       {"RM::loadRobustSprite(): Error! Extra BODY:", "\tline 10: abc", "\tline 11: end",
        NOT_LOADED}},
      {"<HEADER>\nframes 1\nwidth 0\nheight 0\n</HEADER>\n<BODY>\nend\n</BODY>\n"
       "<FOOTER>\nversion 1\n</FOOTER>\n",
       {"RM::loadRobustSprite(): Error! No frame data to add.", NOT_LOADED}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(engine.loadSpriteText("bad", c.text), -1) << c.text.substr(0, 60);
    EXPECT_EQ(engine.lastLoadLog(), c.log) << c.text.substr(0, 60);
  }
  EXPECT_EQ(rm().getSpriteCount(), 1);
  EXPECT_EQ(rm().getSprite("keep"), p_kept);
  EXPECT_EQ(p_kept->getFrame(1).getString(), "def");
  // The longest row there may be loads; a claimed capacity costs nothing
  // until frames are added.
  EXPECT_EQ(engine.loadSpriteText("wide", simple("1", "4096", std::string(4096, 'w'))), 0);
  vt::Sprite roomy(2000000000);
  EXPECT_EQ(roomy.getMaxFrameCount(), 2000000000);
  EXPECT_EQ(roomy.addFrame(vt::Frame(1, 1, "x")), 0);
  EXPECT_EQ(roomy.getFrame(0).getString(), "x");
}

TEST(SpriteBadInput, TheReaderStopsAtAnOverlongLine) {
  test::ResourceEngine engine;
  vt::LineReader reader;
  const std::string long_line(100000, 'x');
  ASSERT_TRUE(reader.open(engine.writeFile("lines.txt", "ab\r\n" + long_line + "\ncd\n")));
  EXPECT_EQ(reader.getLine(true), "ab");
  EXPECT_EQ(reader.getLine(true), std::string(4097, 'x'));
  EXPECT_EQ(reader.getLine(true), "");
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(reader.getLineNumber(), 2);
  reader.rewind();
  EXPECT_EQ(reader.getLine(false), "ab");
}

TEST(SpriteBadInput, FilesThatCannotBeReadAtAll) {
  test::ResourceEngine engine;
  const std::string folder = engine.writeFile("sub", "");
  std::remove(folder.c_str());
  ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
  for (const std::string& path : {folder + "/no-such-file.txt", folder}) {
    engine.newLogLines();
    EXPECT_EQ(rm().loadSprite(path, "bad"), -1);
    EXPECT_EQ(engine.newLogLines(),
              (Lines{"RM::loadSprite(): Loading sprite '" + path + "'.",
                     "RM::loadSprite(): Error! Cannot open file '" + path + "'.",
                     "RM::loadSprite(): Sprite 'bad' not loaded."}));
  }
  // Reading this process's memory from address 0 fails with an I/O error.
  EXPECT_EQ(rm().loadSprite("/proc/self/mem", "bad"), -1);
  const Lines log = engine.newLogLines();
  ASSERT_EQ(log.size(), 6u);
  EXPECT_EQ(log[1].rfind("getLine(): Error! ", 0), 0u) << log[1];
  EXPECT_NE(log[1].find("; reading stops there."), std::string::npos) << log[1];
  EXPECT_EQ(log[2], EOF_LINE);
  EXPECT_EQ(log[3], "RM::loadSprite(): Error! Unknown sprite file format.");
  EXPECT_EQ(log[5], NOT_LOADED);
  EXPECT_EQ(rm().getSpriteCount(), 0);
}
