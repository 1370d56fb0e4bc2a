#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <fstream>

#include "core/Config.h"
#include "support/HeadlessEngine.h"

using vt::Config;

namespace {

class ConfigTest : public testing::Test {
 protected:
  void TearDown() override { test::restoreEngineSettings(); }
};

}  // namespace

TEST_F(ConfigTest, ReadsTheFileNamedByTheEnvironmentOrKeepsTheDefaults) {
  setenv("VANTOR_CONFIG", "/nonexistent/vt-config.txt", 1);
  Config& config = Config::getInstance();
  config.loadConfig();
  EXPECT_EQ(config.getWindowHorizontalChars(), 80);
  EXPECT_EQ(config.getFrameTime(), 33);
  EXPECT_EQ(config.getLogFile(), "vantor.log");

  const std::string path = test::makeTempDir() + "/my.cfg";
  std::ofstream(path) << "# a comment line, frame_time:99,\r\n"
                      << "frame_time : 16,\r\n"
                      << "\n"
                      << "window_title:My Game,\n"
                      << "window_style:fullscreen,\n"
                      << "headless:true,\n"
                      << "random_seed:-1,\n"
                      << "font_scale:1.5,\n"
                      << "grid_width:3 # not a comment,\n";
  setenv("VANTOR_CONFIG", path.c_str(), 1);
  ASSERT_EQ(config.loadConfig(), 0);
  EXPECT_EQ(config.getFrameTime(), 16);
  EXPECT_EQ(config.getWindowTitle(), "MyGame");
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_FULLSCREEN);
  EXPECT_TRUE(config.getHeadless());
  EXPECT_EQ(config.getRandomSeed(), -1);
  EXPECT_FLOAT_EQ(config.getFontScale(), 1.5f);
  EXPECT_EQ(config.getGridWidth(), 3);
  EXPECT_EQ(config.match("headless"), "true");
}

TEST_F(ConfigTest, ValuesAreReadAsTheCLibraryReadsThemAndBadNamesWarn) {
  test::HeadlessEngine engine;
  Config& config = Config::getInstance();
  config.loadConfig(
      "frame_time:12ms,window_horizontal_chars:abc,window_vertical_chars:99999999999,"
      "font_scale:2.5x,show_mouse:yes,headless:true,networking:yes,"
      "window_background_color:yellow,window_style:Fullscreen,");
  EXPECT_EQ(config.getFrameTime(), 12);
  EXPECT_EQ(config.getWindowHorizontalChars(), 0);
  EXPECT_EQ(config.getWindowVerticalChars(), INT_MAX);
  EXPECT_FLOAT_EQ(config.getFontScale(), 2.5f);
  EXPECT_FALSE(config.getShowMouse());
  EXPECT_TRUE(config.getHeadless());
  EXPECT_FALSE(config.getNetworking());
  // Yellow cannot be chosen: its row of the colour table tests "red".
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::BLACK);
  EXPECT_EQ(config.getWindowStyle(), vt::WINDOW_STYLE_DEFAULT);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("loadConfig(): Unsupported window color 'yellow'"), std::string::npos);
  EXPECT_NE(log.find("loadConfig(): Unsupported window style 'Fullscreen'"), std::string::npos);

  config.loadConfig("window_background_color:cyan,window_style:default,");
  EXPECT_EQ(config.getWindowBackgroundColor(), vt::CYAN);
  EXPECT_EQ(config.getFrameTime(), 12);
  // Lines without commas run together: only the first key is read, with the
  // rest of the file as its value.
  config.loadConfig("frame_time:20window_vertical_chars:30");
  EXPECT_EQ(config.getFrameTime(), 20);
  EXPECT_EQ(config.getWindowVerticalChars(), INT_MAX);
}
