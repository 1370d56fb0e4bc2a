#include "support/HeadlessEngine.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "world/WorldManager.h"

namespace test {

std::string makeTempDir() {
  char pattern[] = "/tmp/vantor-test-XXXXXX";
  const char* p_dir = mkdtemp(pattern);
  return p_dir ? p_dir : "/tmp";
}

std::string readFile(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

HeadlessEngine::HeadlessEngine() : directory(makeTempDir()) {
  vt::Config& config = vt::Config::getInstance();
  config.setHeadless(true);
  config.setLogFile(logPath());
  unsetenv("VANTOR_LOG");
  vt::LogManager::getInstance().startUp();
  vt::WorldManager::getInstance().startUp();
}

HeadlessEngine::~HeadlessEngine() {
  vt::WorldManager::getInstance().shutDown();
  vt::LogManager::getInstance().shutDown();
  restoreEngineSettings();
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

void restoreEngineSettings() {
  vt::Config::getInstance().reset();
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.setLogLevel(0);
  log_manager.setLogTimeString(true);
  log_manager.setLogStepCount(true);
  vt::GameManager::getInstance().setGameOver(false);
  unsetenv("VANTOR_CONFIG");
  unsetenv("VANTOR_LOG");
}

std::string HeadlessEngine::logPath() const {
  return directory + "/vantor.log";
}

std::string HeadlessEngine::logText() const {
  std::fflush(nullptr);
  return readFile(logPath());
}

}  // namespace test
