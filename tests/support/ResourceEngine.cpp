#include "support/ResourceEngine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "core/LogManager.h"
#include "media/ResourceManager.h"

namespace test {

namespace {

const std::uint32_t SAMPLE_RATE = 44100;
const double PI = 3.14159265358979;

void writeLittleEndian(std::ofstream& file, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; i++) file.put(static_cast<char>((value >> (8 * i)) & 0xFF));
}

}  // namespace

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
}

std::string ResourceEngine::writeFile(const std::string& name, const std::string& bytes) const {
  const std::string path = engine.getDirectory() + "/" + name;
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  return path;
}

std::string ResourceEngine::writeWav(const std::string& name, int sample_count,
                                     long claimed_count) const {
  const std::string path = engine.getDirectory() + "/" + name;
  const auto data_bytes =
      static_cast<std::uint32_t>(2 * (claimed_count < 0 ? sample_count : claimed_count));
  std::ofstream file(path, std::ios::binary);
  file << "RIFF";
  writeLittleEndian(file, 36 + data_bytes, 4);
  file << "WAVEfmt ";
  writeLittleEndian(file, 16, 4);               // format chunk size
  writeLittleEndian(file, 1, 2);                // PCM
  writeLittleEndian(file, 1, 2);                // mono
  writeLittleEndian(file, SAMPLE_RATE, 4);      // samples per second
  writeLittleEndian(file, SAMPLE_RATE * 2, 4);  // bytes per second
  writeLittleEndian(file, 2, 2);                // bytes per sample frame
  writeLittleEndian(file, 16, 2);               // bits per sample
  file << "data";
  writeLittleEndian(file, data_bytes, 4);
  for (int i = 0; i < sample_count; i++) {
    const double tone = std::sin(2 * PI * 440 * i / SAMPLE_RATE);
    writeLittleEndian(file, static_cast<std::uint16_t>(static_cast<std::int16_t>(tone * 8000)), 2);
  }
  return path;
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
