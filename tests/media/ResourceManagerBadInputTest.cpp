#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <random>
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

std::string randomBytes(unsigned seed, int length) {
  std::mt19937 generator(seed);
  std::uniform_int_distribution<int> byte(0, 255);
  std::string bytes;
  for (int i = 0; i < length; i++) bytes.push_back(static_cast<char>(byte(generator)));
  return bytes;
}

// The sprite file text of a simple sprite header followed by the rows.
std::string simple(const std::string& frames, const std::string& width, const std::string& height,
                   const std::string& rows) {
  return frames + "\n" + width + "\n" + height + "\n0\nred\n" + rows;
}

const std::string NOT_LOADED = "RM::loadSprite(): Sprite 'bad' NOT loaded.";
const std::string OVERLONG =
    "getLine(): Error! Line longer than 4096 characters; reading stops there.";

}  // namespace

// Whatever a file holds, the load fails with a log line, and the sprite
// loaded before it is untouched.
TEST(SpriteBadInput, NothingCrashesAndNothingChanges) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("keep", "2\n3\n1\n2\ncyan\nabc\ndef\n"), 0);
  const vt::Sprite* p_kept = rm().getSprite("keep");
  const std::string long_line(100000, 'x');
  std::vector<std::string> files = {
      "",
      "\n\n\n",
      std::string("1\n1\n1\n0\nred\n\0\n", 15),
      long_line,
      simple("1", "3", "1", long_line + "\n"),
      simple("1", "4097", "1", std::string(4097, 'y') + "\n"),
      simple("1", "3", "1", "abc\n" + long_line),
      simple("1000000", "80", "24", std::string(80, '.') + "\n"),
      simple("2147483647", "2147483647", "2147483647", "abc\n"),
      simple("99999999999999999999", "3", "1", "abc\n"),
      "<HEADER>\n" + long_line + "\n</HEADER>\n",
      "<HEADER>\nframes 2147483647\nwidth 3\nheight 2147483647\n</HEADER>\n<BODY>\nabc\nend\n"
      "</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n",
      "<HEADER>\nframes -3\nwidth -1\nheight -5\n</HEADER>\n<BODY>\nabc\nend\n</BODY>\n"
      "<FOOTER>\nversion 1\n</FOOTER>\n",
      "<HEADER>\nframes 1\nwidth 0\nheight 0\n</HEADER>\n<BODY>\nend\n</BODY>\n"
      "<FOOTER>\nversion 1\n</FOOTER>\n",
      "<HEADER>\n<HEADER>\n<HEADER>\n",
  };
  for (unsigned seed = 1; seed <= 20; seed++) files.push_back(randomBytes(seed, 3000));
  for (unsigned seed = 1; seed <= 20; seed++) files.push_back("1\n" + randomBytes(seed, 3000));
  for (unsigned seed = 1; seed <= 20; seed++) {
    files.push_back("<HEADER>\n" + randomBytes(seed, 3000));
  }
  for (const std::string& text : files) {
    EXPECT_EQ(engine.loadSpriteText("bad", text), -1) << text.substr(0, 60);
    ASSERT_FALSE(engine.lastLoadLog().empty());
    EXPECT_EQ(engine.lastLoadLog().back(), NOT_LOADED) << text.substr(0, 60);
  }
  EXPECT_EQ(rm().getSpriteCount(), 1);
  EXPECT_EQ(rm().getSprite("keep"), p_kept);
  EXPECT_EQ(rm().getSprite("bad"), nullptr);
  EXPECT_EQ(p_kept->getFrameCount(), 2);
  EXPECT_EQ(p_kept->getFrame(1).getString(), "def");
  EXPECT_EQ(p_kept->getColor(), vt::CYAN);
}

TEST(SpriteBadInput, OverlongLinesStopTheReading) {
  test::ResourceEngine engine;
  const std::string long_line(100000, 'x');
  EXPECT_EQ(engine.loadSpriteText("bad", simple("1", "3", "1", long_line + "\n")), -1);
  EXPECT_EQ(engine.lastLoadLog(), (Lines{OVERLONG, "RM::loadSimpleSprite(): Error line 6!",
                                         "\tWidth is 4097, expected 3.", NOT_LOADED}));
  // Trailing data too long for a line is still extra data.
  EXPECT_EQ(engine.loadSpriteText("bad", simple("1", "3", "1", "abc\n" + long_line)), -1);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{OVERLONG, "RM::loadSimpleSprite(): Error line 7!",
                   "\tExtra file data: '" + std::string(4097, 'x') + "'", NOT_LOADED}));
  // A row one character too long fails even when the header asks for it,
  // and even as the file's last line; the longest length itself is fine.
  EXPECT_EQ(engine.loadSpriteText("bad", simple("1", "4097", "1", std::string(4097, 'y'))), -1);
  EXPECT_EQ(engine.lastLoadLog(), (Lines{OVERLONG, "RM::loadSimpleSprite(): Error line 7!",
                                         "\tExtra file data: ''", NOT_LOADED}));
  EXPECT_EQ(engine.loadSpriteText("wide", simple("1", "4096", "1", std::string(4096, 'w'))), 0);
  EXPECT_EQ(rm().getSprite("wide")->getFrame(0).getString(), std::string(4096, 'w'));

  // The reader gives the cut line, then nothing, without claiming the end
  // of the file; rewinding reads again from the start.
  vt::LineReader reader;
  ASSERT_TRUE(reader.open(engine.writeFile("lines.txt", "ab\r\n" + long_line + "\ncd\n")));
  EXPECT_EQ(reader.getLine(true), "ab");
  EXPECT_EQ(reader.getLine(true), std::string(4097, 'x'));
  EXPECT_EQ(reader.getLine(true), "");
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(reader.getLineNumber(), 2);
  reader.rewind();
  EXPECT_EQ(reader.getLine(false), "ab");
}

TEST(SpriteBadInput, AbsurdFrameCountsFailAtTheEndOfTheFile) {
  test::ResourceEngine engine;
  EXPECT_EQ(engine.loadSpriteText("bad", simple("1000000", "3", "1", "abc\n")), -1);
  EXPECT_EQ(engine.lastLoadLog(), (Lines{"getLine(): Error! Unexpected end of file.",
                                         "RM::loadSimpleSprite(): Error! Unexpected end of file.",
                                         "\tReading frame 2 of 1000000, row 1 of 1.", NOT_LOADED}));
  EXPECT_EQ(engine.loadSpriteText(
                "bad",
                "<HEADER>\nframes 1000000\nwidth 1\nheight 1\n</HEADER>\n<BODY>\nx\nend\n"
                "</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n"),
            -1);
  EXPECT_EQ(engine.lastLoadLog(),
            (Lines{"\tError! Line 12: No more frame data before 'end'.",
                   "RM::loadRobustSprite(): Error! No frame data to add.", NOT_LOADED}));
}

TEST(SpriteBadInput, FilesThatCannotBeOpened) {
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
  EXPECT_EQ(rm().getSpriteCount(), 0);
}

TEST(SpriteBadInput, ReadErrorsStopTheReading) {
  test::ResourceEngine engine;
  // Reading this process's memory from address 0 fails with an I/O error.
  EXPECT_EQ(rm().loadSprite("/proc/self/mem", "bad"), -1);
  const Lines log = engine.newLogLines();
  ASSERT_EQ(log.size(), 6u);
  EXPECT_EQ(log[1].rfind("getLine(): Error! ", 0), 0u) << log[1];
  EXPECT_NE(log[1].find("; reading stops there."), std::string::npos) << log[1];
  EXPECT_EQ(log[2], "getLine(): Error! Unexpected end of file.");
  EXPECT_EQ(log[3], "RM::loadSprite(): Error! Unknown sprite file format.");
  EXPECT_EQ(log[5], NOT_LOADED);
}
