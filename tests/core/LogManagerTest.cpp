#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>

#include "core/LogManager.h"
#include "extras/Harness.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using vt::LogManager;

TEST(LogManager, LinesCarryTimeAndStepLevelsFilterThemAndOtherFilesGetTheirOwn) {
  test::HeadlessEngine engine;
  LogManager& log_manager = LogManager::getInstance();
  EXPECT_TRUE(log_manager.isStarted());
  EXPECT_EQ(log_manager.writeLog("plain %d", 7), 7);
  EXPECT_EQ(log_manager.writeLog(1, "dropped"), 0);
  log_manager.setLogLevel(2);
  log_manager.setLogTimeString(false);
  log_manager.writeLog("no time");
  log_manager.setLogStepCount(false);
  const std::string extra = engine.getDirectory() + "/extra.log";
  log_manager.writeMyLog(extra, 99, "first %s", "line");
  log_manager.writeMyLog(extra, "second line");
  const std::string log = engine.logText();
  EXPECT_TRUE(std::regex_search(log, std::regex("\\d\\d:\\d\\d:\\d\\d +\\d+ plain 7\n")));
  EXPECT_EQ(log.find("dropped"), std::string::npos);
  EXPECT_TRUE(
      std::regex_search(log, std::regex(" setLogLevel\\(\\): log level 2\n +\\d+ no time\n")));
  EXPECT_EQ(test::readFile(extra), "first line\nsecond line\n");
  // Flushed, a line is in the file as soon as it is written.
  log_manager.setFlush(true);
  log_manager.writeLog("flushed");
  EXPECT_NE(test::readFile(engine.logPath()).find("flushed"), std::string::npos);
  // Every start begins the file afresh.
  log_manager.shutDown();
  ASSERT_EQ(log_manager.startUp(), 0);
  log_manager.writeLog("second run");
  EXPECT_EQ(engine.logText().find("plain 7"), std::string::npos);
}

// A line is in the file by the end of the step it was written in, whether a
// step handler wrote it or the game before the step (here a sprite file's
// misspelled header name, said at the default level).
TEST(LogManager, EveryLineIsInTheFileByTheEndOfItsStep) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  const std::string sprite = harness.getLogFile() + ".sprite.txt";
  std::ofstream(sprite) << "<HEADER>\nframes 1\nwidth 1\nheight 1\ncolour green\n</HEADER>\n"
                        << "<BODY>\n*\nend\n</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n";
  EXPECT_EQ(vt::ResourceManager::getInstance().loadSprite(sprite, "star"), 0);
  test::RecordingObject::untilStep(
      3, [](int step) { LogManager::getInstance().writeLog("step %d done", step); });
  for (int step = 0; step < 3; step++) {
    harness.step();
    // Read as another process reads it, without flushing this one's streams.
    const std::string log = test::readFile(harness.getLogFile());
    EXPECT_NE(log.find(" step " + std::to_string(step) + " done\n"), std::string::npos) << log;
    EXPECT_NE(log.find(" RM::loadRobustSprite(): Warning! Unknown HEADER line 'colour green'; the "
                       "names are frames, width, height, color, slowdown and transparency.\n"),
              std::string::npos)
        << log;
  }
}
