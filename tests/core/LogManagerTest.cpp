#include <gtest/gtest.h>

#include <regex>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "support/HeadlessEngine.h"

using vt::LogManager;

TEST(LogManager, LinesCarryTimeAndStepAndLevelsFilterThem) {
  test::HeadlessEngine engine;
  LogManager& log_manager = LogManager::getInstance();
  EXPECT_EQ(log_manager.writeLog("plain %d", 7), 7);
  EXPECT_EQ(log_manager.writeLog(0, "level zero"), 10);
  EXPECT_EQ(log_manager.writeLog(1, "dropped"), 0);
  log_manager.setLogLevel(1);
  EXPECT_EQ(log_manager.writeLog(1, "level one"), 9);
  log_manager.setLogLevel(2);
  log_manager.setLogTimeString(false);
  log_manager.writeLog("no time");
  log_manager.setLogStepCount(false);
  log_manager.writeLog("bare");
  const std::string log = engine.logText();
  char step[8];
  std::snprintf(step, sizeof(step), "%4d", vt::GameManager::getInstance().getStepCount());
  EXPECT_TRUE(std::regex_search(
      log, std::regex("\\d\\d:\\d\\d:\\d\\d " + std::string(step) + " plain 7\n")));
  EXPECT_NE(log.find(" level zero\n"), std::string::npos);
  EXPECT_EQ(log.find("dropped"), std::string::npos);
  EXPECT_NE(log.find(" level one\n"), std::string::npos);
  // Only levels of 2 and more are announced.
  EXPECT_EQ(log.find("log level 1"), std::string::npos);
  EXPECT_NE(log.find(" setLogLevel(): log level 2\n"), std::string::npos);
  EXPECT_NE(log.find("\n" + std::string(step) + " no time\nbare\n"), std::string::npos);
}

TEST(LogManager, ExtraFilesAndTheMainFileByName) {
  test::HeadlessEngine engine;
  LogManager& log_manager = LogManager::getInstance();
  log_manager.setLogLevel(5);
  const std::string extra = engine.getDirectory() + "/extra.log";
  log_manager.writeMyLog(extra, 99, "first %s", "line");
  log_manager.writeMyLog(extra, "second line");
  log_manager.writeMyLog(vt::Config::getInstance().getLogFile(), "into the main file");
  log_manager.writeMyLog("/nonexistent/dir/x.log", "lost");
  std::fflush(nullptr);
  EXPECT_NE(test::readFile(extra).find(" first line\n"), std::string::npos);
  EXPECT_NE(test::readFile(extra).find(" second line\n"), std::string::npos);
  const std::string log = engine.logText();
  EXPECT_NE(log.find(" into the main file\n"), std::string::npos);
  // The announcement of a new file prints only the operation's name.
  EXPECT_NE(log.find(" LogManager::writeMyLog()\n"), std::string::npos);
  EXPECT_NE(log.find("Warning! Unable to open file '/nonexistent/dir/x.log'.\n\n"),
            std::string::npos);
}
