#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "core/Config.h"
#include "support/HeadlessEngine.h"

using vt::Config;

TEST(Config, DefaultsWhenTheFileIsMissing) {
  setenv("VANTOR_CONFIG", "/nonexistent/vt-config.txt", 1);
  Config& config = Config::getInstance();
  config.loadConfig();
  EXPECT_EQ(config.getWindowHorizontalPixels(), 1024);
  EXPECT_EQ(config.getWindowVerticalPixels(), 768);
  EXPECT_EQ(config.getWindowHorizontalChars(), 80);
  EXPECT_EQ(config.getWindowVerticalChars(), 24);
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_DEFAULT);
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::BLACK);
  EXPECT_EQ(config.getFrameTime(), 33);
  EXPECT_FLOAT_EQ(config.getFontScale(), 2.0f);
  EXPECT_EQ(config.getWindowTitle(), "Vantor");
  EXPECT_EQ(config.getFontFile(), "vt-font.ttf");
  EXPECT_EQ(config.getLogFile(), "vantor.log");
  EXPECT_EQ(config.getRandomSeed(), 0);
  EXPECT_FALSE(config.getNetworking());
  EXPECT_FALSE(config.getHeadless());
  EXPECT_EQ(config.getGridWidth(), 20);
  EXPECT_EQ(config.getGridHeight(), 8);
  EXPECT_EQ(config.getQuadtreeDepth(), 10);
  EXPECT_EQ(config.getQuadtreeThreshold(), 1);
}

TEST(Config, ReadsTheFileNamedByTheEnvironment) {
  const std::string path = test::makeTempDir() + "/my.cfg";
  std::ofstream(path) << "# a comment line, frame_time:99,\r\n"
                      << "frame_time : 16,\r\n"
                      << "\n"
                      << "window_title:My Game,\n"
                      << "window_style:fullscreen,\n"
                      << "headless:true,\n"
                      << "random_seed:-1,\n"
                      << "font_scale:1.5,\n"
                      << "window_horizontal_chars:40ms,\n";
  setenv("VANTOR_CONFIG", path.c_str(), 1);
  Config& config = Config::getInstance();
  ASSERT_EQ(config.loadConfig(), 0);
  EXPECT_EQ(config.getFrameTime(), 16);
  EXPECT_EQ(config.getWindowTitle(), "MyGame");
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_FULLSCREEN);
  EXPECT_TRUE(config.getHeadless());
  EXPECT_EQ(config.getRandomSeed(), -1);
  EXPECT_FLOAT_EQ(config.getFontScale(), 1.5f);
  EXPECT_EQ(config.getWindowHorizontalChars(), 40);
  EXPECT_EQ(config.match("headless"), "true");
}

TEST(Config, KeptQuirksOfTheFormat) {
  test::HeadlessEngine engine;
  Config& config = Config::getInstance();
  // Yellow cannot be chosen: its row of the colour table tests "red".
  config.loadConfig("window_background_color:yellow,window_style:Fullscreen,show_mouse:yes,");
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::BLACK);
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_DEFAULT);
  EXPECT_FALSE(config.getShowMouse());
  const std::string log = engine.logText();
  EXPECT_NE(log.find("loadConfig(): Unsupported window color 'yellow'"), std::string::npos);
  EXPECT_NE(log.find("loadConfig(): Unsupported window style 'Fullscreen'"), std::string::npos);

  config.loadConfig("window_background_color:cyan,frame_time:abc,");
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::CYAN);
  EXPECT_EQ(config.getFrameTime(), 0);

  // Lines without commas run together: only the first key is read, with the
  // rest of the file as its value.
  config.loadConfig("frame_time:20window_vertical_chars:30");
  EXPECT_EQ(config.getFrameTime(), 20);
  EXPECT_EQ(config.getWindowVerticalChars(), 24);
}
