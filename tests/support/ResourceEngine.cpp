#include "support/ResourceEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <sstream>

#include "core/LogManager.h"
#include "media/ResourceManager.h"

namespace test {

std::string littleEndian(unsigned long value, int count) {
  std::string bytes;
  for (int i = 0; i < count; i++) bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  return bytes;
}

ResourceEngine::ResourceEngine() {
  vt::LogManager::getInstance().setLogTimeString(false);
  vt::LogManager::getInstance().setLogStepCount(false);
  vt::ResourceManager::getInstance().startUp();
}

ResourceEngine::~ResourceEngine() {
  vt::ResourceManager::getInstance().shutDown();
}

std::string ResourceEngine::writeFile(const std::string& name, const std::string& bytes) const {
  const std::string path = engine.getDirectory() + "/" + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

std::string ResourceEngine::wavBytes(int sample_count, long claimed_count) {
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

int ResourceEngine::loadSpriteText(const std::string& label, const std::string& text) {
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

std::vector<std::string> ResourceEngine::newLogLines() {
  const std::string text = engine.logText();
  std::istringstream fresh(text.substr(std::min(log_bytes_read, text.size())));
  log_bytes_read = text.size();
  std::vector<std::string> lines;
  for (std::string line; std::getline(fresh, line);) lines.push_back(line);
  return lines;
}

}  // namespace test
