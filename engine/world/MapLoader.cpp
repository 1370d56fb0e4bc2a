#include "world/MapLoader.h"

#include <cctype>

#include "core/LogManager.h"
#include "media/LineReader.h"

namespace vt {

namespace {

const char* const LOAD = "MapLoader::load(): Error!";

// The character as a log line shows it: quoted when printable, else its code.
std::string describeCharacter(char ch) {
  if (std::isprint(static_cast<unsigned char>(ch))) return std::string("'") + ch + "'";
  return "code " + std::to_string(static_cast<unsigned char>(ch));
}

}  // namespace

void MapLoader::on(char ch, CellHandler handler) {
  handlers[ch] = std::move(handler);
}

const MapLoader::CellHandler* MapLoader::handlerOf(char ch) const {
  const auto found = handlers.find(ch);
  return found == handlers.end() ? nullptr : &found->second;
}

int MapLoader::load(const std::string& filename, Vector origin) {
  std::vector<std::string> lines;
  if (!readRows(filename, lines) || !checkCharacters(filename, lines)) return -1;
  rows = static_cast<int>(lines.size());
  columns = static_cast<int>(lines.front().size());
  for (int row = 0; row < rows; row++) {
    for (int column = 0; column < columns; column++) {
      const CellHandler* p_handler = handlerOf(lines[row][column]);
      if (p_handler == nullptr || !*p_handler) continue;
      (*p_handler)(origin + Vector(static_cast<float>(column), static_cast<float>(row)));
    }
  }
  return 0;
}

bool MapLoader::readRows(const std::string& filename, std::vector<std::string>& lines) const {
  const LogManager& log_manager = LogManager::getInstance();
  LineReader reader;
  if (!reader.open(filename)) {
    log_manager.writeLog("%s Cannot open map file '%s'.", LOAD, filename.c_str());
    return false;
  }
  std::size_t cells = 0;
  std::string line;
  while (reader.readRawLine(line)) {
    reader.countLine();
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!lines.empty() && line.size() != lines.front().size()) {
      log_manager.writeLog("%s '%s' line %d has %zu characters, the lines before it %zu.", LOAD,
                           filename.c_str(), reader.getLineNumber(), line.size(),
                           lines.front().size());
      return false;
    }
    cells += line.size();
    if (cells > static_cast<std::size_t>(MAX_CELLS)) {
      log_manager.writeLog("%s '%s' has more than %d cells by line %d.", LOAD, filename.c_str(),
                           MAX_CELLS, reader.getLineNumber());
      return false;
    }
    lines.push_back(line);
  }
  if (!reader.atEnd()) {
    log_manager.writeLog("%s '%s' could not be read past line %d.", LOAD, filename.c_str(),
                         reader.getLineNumber());
    return false;
  }
  if (cells == 0) {
    log_manager.writeLog("%s '%s' holds no cells.", LOAD, filename.c_str());
    return false;
  }
  return true;
}

bool MapLoader::checkCharacters(const std::string& filename,
                                const std::vector<std::string>& lines) const {
  for (std::size_t row = 0; row < lines.size(); row++) {
    for (std::size_t column = 0; column < lines[row].size(); column++) {
      const char ch = lines[row][column];
      if (ch == ' ' || handlerOf(ch) != nullptr) continue;
      LogManager::getInstance().writeLog(
          "%s '%s' line %zu, column %zu: no handler for the character %s.", LOAD, filename.c_str(),
          row + 1, column + 1, describeCharacter(ch).c_str());
      return false;
    }
  }
  return true;
}

}  // namespace vt
