#include "support/HeadlessEngine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "world/WorldManager.h"

namespace test {

std::string makeTempDir() {
  char pattern[] = "/tmp/vantor-test-XXXXXX";
  const char* p_dir = mkdtemp(pattern);
  return p_dir ? p_dir : "/tmp";
}

std::string readFile(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool waitFor(const std::function<bool()>& condition, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

std::string littleEndian(unsigned long value, int count) {
  std::string bytes;
  for (int i = 0; i < count; i++) bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  return bytes;
}

std::string wavBytes(int sample_count, long claimed_count) {
  const unsigned long data_bytes = 2 * (claimed_count < 0 ? sample_count : claimed_count);
  std::string bytes = "RIFF" + littleEndian(36 + data_bytes, 4) + "WAVEfmt " + littleEndian(16, 4) +
                      littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(8000, 4) +
                      littleEndian(16000, 4) + littleEndian(2, 2) + littleEndian(16, 2) + "data" +
                      littleEndian(data_bytes, 4);
  for (int i = 0; i < sample_count; i++) {
    bytes += littleEndian(static_cast<std::uint16_t>(std::lround(8000 * std::sin(i * 0.3))), 2);
  }
  return bytes;
}

void restoreEngineSettings() {
  vt::Config::getInstance().reset();
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.setLogLevel(0);
  log_manager.setLogTimeString(true);
  log_manager.setLogStepCount(true);
  log_manager.setFlush(false);
  vt::GameManager::getInstance().setGameOver(false);
  unsetenv("VANTOR_CONFIG");
  unsetenv("VANTOR_LOG");
}

HeadlessEngine::HeadlessEngine(Managers managers, bool headless)
    : managers(managers), directory(makeTempDir()) {
  vt::Config& config = vt::Config::getInstance();
  config.setFontFile(VANTOR_FONT_PATH);
  config.setHeadless(headless);
  config.setLogFile(logPath());
  unsetenv("VANTOR_LOG");
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.startUp();
  log_manager.setFlush(managers == LOG_ONLY);
  if (managers == LOG_ONLY) return;
  vt::WorldManager::getInstance().startUp();
  if (managers == WORLD) return;
  log_manager.setLogTimeString(false);
  log_manager.setLogStepCount(false);
  vt::ResourceManager::getInstance().startUp();
}

HeadlessEngine::~HeadlessEngine() {
  if (managers == WORLD_AND_RESOURCES) vt::ResourceManager::getInstance().shutDown();
  if (managers != LOG_ONLY) vt::WorldManager::getInstance().shutDown();
  vt::LogManager::getInstance().shutDown();
  restoreEngineSettings();
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

std::string HeadlessEngine::logText() const {
  std::fflush(nullptr);
  return readFile(logPath());
}

std::vector<std::string> HeadlessEngine::newLogLines() {
  const std::string text = logText();
  std::istringstream fresh(text.substr(std::min(log_bytes_read, text.size())));
  log_bytes_read = text.size();
  std::vector<std::string> lines;
  for (std::string line; std::getline(fresh, line);) lines.push_back(line);
  return lines;
}

std::string HeadlessEngine::writeFile(const std::string& name, const std::string& bytes) const {
  const std::string path = directory + "/" + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

int HeadlessEngine::loadSpriteText(const std::string& label, const std::string& text) {
  const std::string path = writeFile(label + ".txt", text);
  newLogLines();
  const int result = vt::ResourceManager::getInstance().loadSprite(path, label);
  last_load_log = newLogLines();
  EXPECT_FALSE(last_load_log.empty());
  if (!last_load_log.empty()) {
    EXPECT_EQ(last_load_log.front(), "RM::loadSprite(): Loading sprite '" + path + "'.");
    last_load_log.erase(last_load_log.begin());
  }
  return result;
}

}  // namespace test
