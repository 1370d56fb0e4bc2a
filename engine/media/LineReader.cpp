#include "media/LineReader.h"

#include <exception>
#include <filesystem>

#include "core/LogManager.h"

namespace vt {

bool LineReader::open(const std::string& filename) {
  std::error_code error;
  if (std::filesystem::is_directory(filename, error)) return false;
  if (file.open(filename, std::ios::in | std::ios::binary) == nullptr) return false;
  line_number = 0;
  rewind();
  return true;
}

void LineReader::rewind() {
  file.pubseekpos(0, std::ios::in);
  at_end = false;
  stopped = false;
}

std::string LineReader::getLine(bool count) {
  std::string line;
  if (!readRawLine(line)) {
    LogManager::getInstance().writeLog("getLine(): Error! Unexpected end of file.");
    return "";
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  if (count) line_number++;
  return line;
}

bool LineReader::readRawLine(std::string& line) {
  line.clear();
  if (at_end || stopped) return false;
  try {
    if (readUntilNewline(line)) return true;
  } catch (const std::exception& failure) {
    stopReading(failure.what());
  }
  return !line.empty();
}

bool LineReader::readUntilNewline(std::string& line) {
  for (int c = file.sbumpc(); c != std::char_traits<char>::eof(); c = file.sbumpc()) {
    if (c == '\n') return true;
    line.push_back(static_cast<char>(c));
    if (line.size() > static_cast<std::size_t>(MAX_LINE_LENGTH)) {
      stopReading("Line longer than " + std::to_string(MAX_LINE_LENGTH) + " characters");
      return false;
    }
  }
  at_end = true;
  return false;
}

void LineReader::stopReading(const std::string& reason) {
  stopped = true;
  LogManager::getInstance().writeLog("getLine(): Error! %s; reading stops there.", reason.c_str());
}

}  // namespace vt
