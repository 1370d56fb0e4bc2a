#include <gtest/gtest.h>

#include <regex>

#include "core/LogManager.h"
#include "support/HeadlessEngine.h"

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
