#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "core/Match.h"
#include "extras/Harness.h"
#include "support/HeadlessEngine.h"

using vt::Config;

// The file named by the environment is read as the C library reads values;
// a bad name leaves its setting.
TEST(Config, EveryKeyIsReadFromTheFileNamedByTheEnvironmentOrATextGiven) {
  test::HeadlessEngine engine;
  Config& config = Config::getInstance();
  test::writeConfig(
      "# frame_time:99,\r\nframe_time : 16ms,\r\n\nwindow_title:My Game,"
      "window_vertical_chars:99999999999,window_background_color:yellow,");
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
  // Every key reaches its setting, as the configuration block of the log shows.
  config.loadConfig(
      "window_horizontal_pixels:640,window_vertical_pixels:480,window_horizontal_chars:40,"
      "window_vertical_chars:12,window_background_color:blue,frame_time:20,"
      "window_style:fullscreen,window_title:Mine,show_mouse:true,headless:true,font_file:my.ttf,"
      "logfile:my.log,random_seed:-1,networking:true,font_scale:1.5,display:terminal,");
  vt::LogManager::getInstance().setLogLevel(1);
  config.printConfig();
  for (const char* line : {"pixels: 640\n", "pixels: 480\n", "characters: 40\n", "characters: 12\n",
                           "color: 4\n", "Frame time: 20\n", "style: fullscreen\n", "title: Mine\n",
                           "mouse: true\n", "Headless: true\n", "Font file: my.ttf\n",
                           "Log file: my.log\n", "seed: -1\n", "Networking: true\n"}) {
    EXPECT_NE(engine.logText().find(line), std::string::npos) << line;
  }
  // A game reads its own keys, or any other, from the same text.
  EXPECT_EQ(std::tuple(config.getFontScale(), config.getDisplay(), config.match("logfile")),
            std::tuple(1.5f, std::string("terminal"), std::string("my.log")));
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

// At start-up each line the engine cannot read is named with its number in the log and on standard
// error, and its setting keeps its default; a last line without its comma is read.
TEST(Config, ProblemsOfTheFileAreNamedWithTheirLinesAtStartUp) {
  const std::string directory = test::makeTempDir();
  // Each line, and what is wrong with it ("" for nothing).
  const std::vector<std::pair<std::string, std::string>> LINES = {
      {"headless:true,", ""},
      {"logfile:" + directory + "/game.log,", ""},
      {"# frame_time:oops", ""},
      {"frame_time = 100,", "not a 'key:value,' entry"},
      {"colour:red,", "unknown key 'colour'"},
      {"frame_time:fast,", "the value of frame_time is not a number, so it keeps its default"},
      {"show_mouse:yes,",
       "the value of show_mouse is neither true nor false, so it keeps its default"},
      {"window_style:tiled,",
       "the value of window_style is neither default nor fullscreen, so it keeps its default"},
      {"random_seed:5", "no comma at its end, so the next line is read into its value"},
      {"window_vertical_chars:20,", ""},
      {"window_title:Mine", ""},
  };
  std::string text;
  for (const auto& [line, problem] : LINES) text += line + "\n";
  const std::string config_file = test::writeConfig(text);
  testing::internal::CaptureStderr();
  ASSERT_EQ(vt::GameManager::getInstance().startUp(), 0);
  const std::string said = testing::internal::GetCapturedStderr();
  const Config& config = Config::getInstance();
  EXPECT_EQ(
      std::tuple(config.getFrameTime(), config.getShowMouse(), config.getWindowStyle(),
                 config.getRandomSeed(), config.getWindowVerticalChars(), config.getWindowTitle()),
      std::tuple(33, false, vt::WINDOW_STYLE_DEFAULT, 5, 24, std::string("Mine")));
  vt::GameManager::getInstance().shutDown();
  const std::string log = test::readFile(directory + "/game.log");
  std::string expected_said;
  for (std::size_t i = 0; i < LINES.size(); i++) {
    if (LINES[i].second.empty()) continue;
    const std::string problem = config_file + " line " + std::to_string(i + 1) + " ('" +
                                LINES[i].first + "'): " + LINES[i].second;
    EXPECT_NE(log.find(" Config::loadConfig(): Warning! " + problem + "\n"), std::string::npos)
        << problem;
    expected_said += "vantor: " + problem + "\n";
  }
  EXPECT_EQ(said, expected_said);
  test::restoreEngineSettings();
}

// The log level comes from the file's log_level or, before it, from
// VANTOR_LOG_LEVEL: level 1 shows the configuration block.
TEST(Config, TheLogLevelIsSetByTheFileAndTheEnvironmentWins) {
  // The file's setting, VANTOR_LOG_LEVEL (nullptr: unset), whether the
  // configuration block is shown, and what is said on standard error.
  const std::tuple<const char*, const char*, bool, const char*> CASES[] = {
      {"", nullptr, false, ""},
      {"log_level:1,", nullptr, true, ""},
      {"", "1", true, ""},
      {"log_level:1,", "0", false, ""},
      {"log_level:1,", "high", true, "vantor: VANTOR_LOG_LEVEL 'high' is not a number; ignored\n"},
  };
  for (const auto& [setting, environment, block_shown, said] : CASES) {
    SCOPED_TRACE(std::string(setting) + (environment ? environment : "-"));
    test::writeConfig(std::string(setting) + "\n");
    environment ? setenv("VANTOR_LOG_LEVEL", environment, 1) : unsetenv("VANTOR_LOG_LEVEL");
    testing::internal::CaptureStderr();
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), said);
    harness.shutDown();
    EXPECT_EQ(harness.logContains("Vantor configuration:"), block_shown);
    unsetenv("VANTOR_LOG_LEVEL");
    test::restoreEngineSettings();
  }
}
