#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <fstream>

#include "core/Config.h"
#include "core/LogManager.h"
#include "core/Match.h"
#include "support/HeadlessEngine.h"

using vt::Config;

// The file named by the environment is read as the C library reads values;
// a bad name leaves its setting.
TEST(Config, ReadsTheFileNamedByTheEnvironment) {
  test::HeadlessEngine engine;
  Config& config = Config::getInstance();
  const std::string path = engine.getDirectory() + "/my.cfg";
  std::ofstream(path) << "# frame_time:99,\r\nframe_time : 16ms,\r\n\nwindow_title:My Game,"
                      << "window_vertical_chars:99999999999,window_background_color:yellow,";
  setenv("VANTOR_CONFIG", path.c_str(), 1);
  ASSERT_EQ(config.loadConfig(), 0);
  EXPECT_EQ(config.getFrameTime(), 16);
  EXPECT_EQ(config.getWindowVerticalChars(), INT_MAX);
  // Yellow cannot be chosen: its row of the colour table tests "red".
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::BLACK);
  // Without commas only the first key is read, the rest being its value.
  config.loadConfig("window_background_color:cyan,frame_time:20window_style:fullscreen");
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::CYAN);
  EXPECT_EQ(config.getFrameTime(), 20);
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_DEFAULT);
}

// Given an empty text, match searches the last text it was given again.
TEST(Config, MatchFindsTheFirstEntryOfAKeyAndKeepsTheLastText) {
  using vt::match, vt::matchKeepingBlanks;
  EXPECT_EQ(match("a : 1 , b : x y", "b"), "xy");
  EXPECT_EQ(match("", "a"), "1");
  EXPECT_EQ(match("A:1,a:1:2,a:3", "a"), "1");
  // A piece of colons only ends the entries; leading colons are skipped.
  EXPECT_EQ(match(":,b:2", "b"), "");
  EXPECT_EQ(match(",,::x:5,,c:2,", "x"), "5");
  EXPECT_EQ(matchKeepingBlanks("a : 1 , b : x  y ", "b"), "x  y");
  EXPECT_EQ(matchKeepingBlanks("", "a"), "");
  EXPECT_EQ(matchKeepingBlanks("k e y:v a l:3,key:4", "key"), "v a l");
  EXPECT_EQ(matchKeepingBlanks(" :: x : 5 6 ,b:2", "x"), "5 6");
  EXPECT_EQ(matchKeepingBlanks("a: ,b:2", "a"), "");
  EXPECT_EQ(match("", "c"), "2");
  // From log level 28 the entries and every comparison are traced.
  test::HeadlessEngine engine;
  vt::LogManager::getInstance().setLogLevel(28);
  EXPECT_EQ(match("q:1,r:2", "r"), "2");
  for (const char* line : {"\t1  r : 2", "match(): 0: q == r?"})
    EXPECT_NE(engine.logText().find(line), std::string::npos) << line;
}

// Every key reaches its setting, as the configuration block of the log shows.
TEST(Config, EveryKeyIsRead) {
  test::HeadlessEngine engine;
  Config& config = Config::getInstance();
  config.loadConfig(
      "window_horizontal_pixels:640,window_vertical_pixels:480,window_horizontal_chars:40,"
      "window_vertical_chars:12,window_background_color:blue,frame_time:20,"
      "window_style:fullscreen,window_title:Mine,show_mouse:true,headless:true,font_file:my.ttf,"
      "logfile:my.log,random_seed:-1,networking:true,font_scale:1.5,");
  vt::LogManager::getInstance().setLogLevel(1);
  config.printConfig();
  for (const char* line : {"pixels: 640\n", "pixels: 480\n", "characters: 40\n", "characters: 12\n",
                           "color: 4\n", "Frame time: 20\n", "style: fullscreen\n", "title: Mine\n",
                           "mouse: true\n", "Headless: true\n", "Font file: my.ttf\n",
                           "Log file: my.log\n", "seed: -1\n", "Networking: true\n"}) {
    EXPECT_NE(engine.logText().find(line), std::string::npos) << line;
  }
  EXPECT_EQ(config.getFontScale(), 1.5f);
}
