#include "support/ResourceEngine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/ResourceManager.h"

namespace test {

std::string littleEndian(unsigned long value, int count) {
  std::string bytes;
  for (int i = 0; i < count; i++) bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  return bytes;
}

ResourceEngine::ResourceEngine() {
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.setLogTimeString(false);
  log_manager.setLogStepCount(false);
  vt::ResourceManager::getInstance().startUp();
}

ResourceEngine::~ResourceEngine() {
  vt::ResourceManager::getInstance().shutDown();
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.setLogLevel(0);
  log_manager.setLogTimeString(true);
  log_manager.setLogStepCount(true);
  vt::Config::getInstance().reset();
}

std::string ResourceEngine::writeFile(const std::string& name, const std::string& bytes) const {
  const std::string path = engine.getDirectory() + "/" + name;
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  return path;
}

std::string ResourceEngine::wavBytes(int sample_count, long claimed_count) {
  const unsigned long data_bytes = 2 * (claimed_count < 0 ? sample_count : claimed_count);
  // Format: PCM, mono, 8000 samples and 16000 bytes a second, 2-byte
  // frames of 16 bits.
  std::string bytes = "RIFF" + littleEndian(36 + data_bytes, 4) + "WAVEfmt " + littleEndian(16, 4) +
                      littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(8000, 4) +
                      littleEndian(16000, 4) + littleEndian(2, 2) + littleEndian(16, 2) + "data" +
                      littleEndian(data_bytes, 4);
  for (int i = 0; i < sample_count; i++) {
    bytes += littleEndian(static_cast<std::uint16_t>(std::lround(8000 * std::sin(i * 0.3))), 2);
  }
  return bytes;
}

int ResourceEngine::loadSpriteText(const std::string& label, const std::string& text) {
  const std::string path = writeFile(label + ".txt", text);
  newLogLines();
  const int result = vt::ResourceManager::getInstance().loadSprite(path, label);
  last_load_log = newLogLines();
  const std::string opening = "RM::loadSprite(): Loading sprite '" + path + "'.";
  EXPECT_FALSE(last_load_log.empty());
  if (!last_load_log.empty()) {
    EXPECT_EQ(last_load_log.front(), opening);
    last_load_log.erase(last_load_log.begin());
  }
  return result;
}

std::vector<std::string> ResourceEngine::newLogLines() {
  const std::string text = engine.logText();
  std::istringstream fresh(text.substr(std::min(log_bytes_read, text.size())));
  log_bytes_read = text.size();
  std::vector<std::string> lines;
  for (std::string line; std::getline(fresh, line);) lines.push_back(line);
  return lines;
}

}  // namespace test
