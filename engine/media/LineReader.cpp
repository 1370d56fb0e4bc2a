#include "media/LineReader.h"

#include "core/LogManager.h"

namespace vt {

bool LineReader::open(const std::string& filename) {
  if (file.open(filename, std::ios::in | std::ios::binary) == nullptr) return false;
  const std::streamoff end = file.pubseekoff(0, std::ios::end, std::ios::in);
  file_size = end < 0 ? 0 : static_cast<long long>(end);
  line_number = 0;
  rewind();
  return true;
}

void LineReader::rewind() {
  file.pubseekpos(0, std::ios::in);
  at_end = false;
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
  if (at_end) return false;
  for (int c = file.sbumpc(); c != std::char_traits<char>::eof(); c = file.sbumpc()) {
    if (c == '\n') return true;
    if (line.size() == static_cast<std::size_t>(MAX_LINE_LENGTH)) {
      return cutOverlongLine(line, static_cast<char>(c));
    }
    line.push_back(static_cast<char>(c));
  }
  at_end = true;
  return !line.empty();
}

bool LineReader::cutOverlongLine(std::string& line, char next) {
  line.push_back(next);
  at_end = true;
  LogManager::getInstance().writeLog(
      "getLine(): Error! Line longer than %d characters; reading stops there.", MAX_LINE_LENGTH);
  return true;
}

long long LineReader::remainingBytes() {
  const std::streamoff position = file.pubseekoff(0, std::ios::cur, std::ios::in);
  if (position < 0) return 0;
  return file_size - static_cast<long long>(position);
}

}  // namespace vt
