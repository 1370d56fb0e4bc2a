#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cstdlib>
#include <fstream>

#include "core/Config.h"
#include "core/Match.h"
#include "core/Utility.h"
#include "support/HeadlessEngine.h"

using vt::Config;

TEST(Config, ReadsTheFileNamedByTheEnvironmentOrKeepsTheDefaults) {
  test::HeadlessEngine engine;
  setenv("VANTOR_CONFIG", "/nonexistent/vt-config.txt", 1);
  Config& config = Config::getInstance();
  config.loadConfig();
  EXPECT_EQ(config.getFrameTime(), 33);
  const std::string path = engine.getDirectory() + "/my.cfg";
  std::ofstream(path) << "# a comment line, frame_time:99,\r\nframe_time : 16,\r\n\n"
                      << "window_title:My Game,\nwindow_style:fullscreen,\nheadless:true,\n"
                      << "random_seed:-1,\nfont_scale:1.5,\ngrid_width:3 # not a comment,\n";
  setenv("VANTOR_CONFIG", path.c_str(), 1);
  ASSERT_EQ(config.loadConfig(), 0);
  EXPECT_EQ(config.getFrameTime(), 16);
  EXPECT_EQ(config.getWindowTitle(), "MyGame");
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_FULLSCREEN);
  EXPECT_EQ(config.getRandomSeed(), -1);
  EXPECT_FLOAT_EQ(config.getFontScale(), 1.5f);
  EXPECT_EQ(config.getGridWidth(), 3);
}

TEST(Config, ValuesAreReadAsTheCLibraryReadsThemAndBadNamesWarn) {
  test::HeadlessEngine engine;
  Config& config = Config::getInstance();
  config.loadConfig(
      "frame_time:12ms,window_horizontal_chars:abc,window_vertical_chars:99999999999,"
      "show_mouse:yes,networking:yes,window_background_color:yellow,window_style:Fullscreen,");
  EXPECT_EQ(config.getFrameTime(), 12);
  EXPECT_EQ(config.getWindowHorizontalChars(), 0);
  EXPECT_EQ(config.getWindowVerticalChars(), INT_MAX);
  EXPECT_FALSE(config.getNetworking());
  // Yellow cannot be chosen: its row of the colour table tests "red".
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::BLACK);
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_DEFAULT);
  for (const char* line : {"loadConfig(): Unsupported window color 'yellow'\n",
                           "loadConfig(): Unsupported window style 'Fullscreen'\n"})
    EXPECT_NE(engine.logText().find(line), std::string::npos) << line;
  config.loadConfig("window_background_color:cyan,");
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::CYAN);
  EXPECT_EQ(config.getFrameTime(), 12);
  // Without commas only the first key is read, the rest being its value.
  config.loadConfig("frame_time:20window_vertical_chars:30");
  EXPECT_EQ(config.getFrameTime(), 20);
  EXPECT_EQ(config.getWindowVerticalChars(), INT_MAX);
}

TEST(Config, NumbersAreReadClampedAndColoursOnlyInTheirRange) {
  EXPECT_EQ(vt::readInt("2147483648"), INT_MAX);
  EXPECT_EQ(vt::readInt("-99999999999999999999"), INT_MIN);
  EXPECT_EQ(vt::readFloat("1e39"), FLT_MAX);
  EXPECT_EQ(vt::readFloat("-inf"), -FLT_MAX);
  EXPECT_EQ(vt::readFloat("nan"), 0.0f);
  vt::Color color = vt::WHITE;
  EXPECT_TRUE(vt::readColor("8", color));
  EXPECT_FALSE(vt::readColor("9", color));
  EXPECT_FALSE(vt::readColor("-1", color));
  EXPECT_EQ(color, vt::CUSTOM);
  EXPECT_TRUE(vt::readColor("0", color));
  EXPECT_EQ(color, vt::BLACK);
}

// Given an empty text, match searches the last text it was given again.
TEST(Config, MatchFindsTheFirstEntryOfAKeyAndKeepsTheLastText) {
  using vt::match, vt::matchKeepingBlanks;
  EXPECT_EQ(match("a : 1 , b : x y", "b"), "xy");
  EXPECT_EQ(match("", "a"), "1");
  EXPECT_EQ(match("a:1:2,a:3", "a"), "1");
  EXPECT_EQ(match("A:1,b", "a"), "");
  // A piece of colons only ends the entries; leading colons are skipped.
  EXPECT_EQ(match(":,b:2", "b"), "");
  EXPECT_EQ(match(",,::x:5,,c:2,", "x"), "5");
  EXPECT_EQ(matchKeepingBlanks("a : 1 , b : x  y ", "b"), "x  y");
  EXPECT_EQ(matchKeepingBlanks("", "a"), "");
  EXPECT_EQ(matchKeepingBlanks("k e y:v a l", "key"), "v a l");
  EXPECT_EQ(matchKeepingBlanks("a:1 2:3,a:4", "a"), "1 2");
  EXPECT_EQ(matchKeepingBlanks(" :: x : 5 6 ,b:2", "x"), "5 6");
  EXPECT_EQ(matchKeepingBlanks("a: ,b:2", "a"), "");
  EXPECT_EQ(match("", "c"), "2");
}
