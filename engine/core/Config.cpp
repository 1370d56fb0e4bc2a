#include "core/Config.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "core/LogManager.h"
#include "core/Match.h"
#include "core/Utility.h"

namespace vt {

namespace {

const char* const DEFAULT_CONFIG_FILE = "vt-config.txt";

// A line of a configuration text as written, and its number there.
struct NumberedLine {
  int number;
  std::string text;
};

// What loadConfig learns while it reads a text: where each key first
// appears, which keys the settings asked for, and what it could not read,
// each problem with the number of its line.
struct Reading {
  std::string source;
  std::map<std::string, NumberedLine> first_lines;
  std::set<std::string> asked;
  std::vector<std::pair<int, std::string>> problems;
};

Reading& reading() {
  static Reading current;
  return current;
}

std::string configFileName() {
  const char* p_override = std::getenv("VANTOR_CONFIG");
  return p_override ? p_override : DEFAULT_CONFIG_FILE;
}

std::string withoutWhiteSpace(const std::string& text) {
  std::string compact;
  for (const char c : text) {
    if (!std::isspace(static_cast<unsigned char>(c))) compact.push_back(c);
  }
  return compact;
}

// The lines that hold entries: neither blank nor comments.
std::vector<NumberedLine> entryLines(const std::string& text) {
  std::vector<NumberedLine> lines;
  std::istringstream stream(text);
  std::string line;
  for (int number = 1; std::getline(stream, line); number++) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (withoutWhiteSpace(line).empty() || line[0] == '#') continue;
    lines.push_back({number, line});
  }
  return lines;
}

std::string joinLines(const std::vector<NumberedLine>& lines) {
  std::string joined;
  for (const NumberedLine& line : lines) joined += line.text;
  return joined;
}

void noteProblem(const NumberedLine& line, const std::string& what) {
  Reading& current = reading();
  current.problems.emplace_back(line.number, current.source + " line " + toString(line.number) +
                                                 " ('" + line.text + "'): " + what);
}

// A value the setting of the key cannot take, named with the key's line.
void noteBadValue(const std::string& key, const std::string& what) {
  const auto found = reading().first_lines.find(key);
  const NumberedLine line =
      found == reading().first_lines.end() ? NumberedLine{0, key} : found->second;
  noteProblem(line, "the value of " + key + " is " + what);
}

// Notes the keys of one line's entries, and a line whose pieces are not
// all "key:value".
void scanEntries(const NumberedLine& line, const std::string& entries_text) {
  const auto entries = matchEntries(entries_text);
  bool well_formed = !entries.empty();
  for (const auto& entry : entries) {
    if (entry.second.empty()) {
      well_formed = false;
    } else {
      reading().first_lines.emplace(entry.first, line);
    }
  }
  if (!well_formed) noteProblem(line, "not a 'key:value,' entry");
}

// Scans the lines as match reads them joined: a line without its closing
// comma runs on into the next one.
void scanLines(const std::vector<NumberedLine>& lines) {
  std::size_t next = 0;
  while (next < lines.size()) {
    const NumberedLine& first = lines[next];
    std::string entries_text = withoutWhiteSpace(first.text);
    next++;
    if (entries_text.back() != ',' && next < lines.size()) {
      noteProblem(first, "no comma at its end, so the next line is read into its value");
    }
    while (entries_text.back() != ',' && next < lines.size()) {
      entries_text += withoutWhiteSpace(lines[next++].text);
    }
    scanEntries(first, entries_text);
  }
}

// "Unsupported window color 'yellow'"; before the log runs, the problem
// noted with it says it instead.
void warnUnsupported(const char* setting, const std::string& value) {
  const LogManager& log_manager = LogManager::getInstance();
  if (log_manager.isStarted()) {
    log_manager.writeLog("loadConfig(): Unsupported %s '%s'", setting, value.c_str());
  }
}

void noteUnknownKeys() {
  for (const auto& entry : reading().first_lines) {
    if (reading().asked.count(entry.first) == 0) {
      noteProblem(entry.second, "unknown key '" + entry.first + "'");
    }
  }
}

// The value of a key in the text that loadConfig parsed last.
std::string parsedValue(const char* key) {
  reading().asked.insert(key);
  return match("", key);
}

// The key's value in value; false when there is none, or none that reads
// as the kind, which is then noted. A number beyond the kind's range is
// noted and clamped.
bool readableValue(const char* key, ValueKind kind, std::string& value) {
  value = parsedValue(key);
  if (value.empty()) return false;
  const ReadFault fault = readFault(value, kind);
  if (fault == ReadFault::NONE) return true;
  noteBadValue(key, std::string(describeReadFault(fault, kind)) +
                        (fault == ReadFault::CLAMPED ? ", so it is clamped to that range"
                                                     : ", so it keeps its default"));
  return fault == ReadFault::CLAMPED;
}

void storeInt(const char* key, int& field) {
  std::string value;
  if (readableValue(key, ValueKind::INT, value)) field = readInt(value);
}

void storeFloat(const char* key, float& field) {
  std::string value;
  if (readableValue(key, ValueKind::FLOAT, value)) field = readFloat(value);
}

void storeString(const char* key, std::string& field) {
  const std::string value = parsedValue(key);
  if (!value.empty()) field = value;
}

void storeBool(const char* key, bool& field) {
  std::string value;
  if (readableValue(key, ValueKind::FLAG, value)) field = readBool(value);
}

const char* boolText(bool value) {
  return value ? "true" : "false";
}

}  // namespace

Config& Config::getInstance() {
  static Config config_instance;
  return config_instance;
}

std::string Config::readConfig() const {
  return joinLines(entryLines(readConfigFile()));
}

std::string Config::readConfigFile() const {
  std::ifstream file(configFileName());
  if (!file.is_open()) {
    LogManager::getInstance().writeLog(
        1, "Config::readConfig(): Cannot open Vantor configuration file '%s'.",
        DEFAULT_CONFIG_FILE);
    return "";
  }
  std::stringstream content;
  content << file.rdbuf();
  return content.str();
}

std::string Config::match(std::string key) const {
  // Parsed afresh each time: other callers of the matcher replace its entries.
  if (config.empty()) return "";
  return vt::match(config, std::move(key));
}

int Config::loadConfig(std::string text) {
  const bool from_file = text.empty();
  const std::vector<NumberedLine> lines = entryLines(from_file ? readConfigFile() : text);
  config = from_file ? joinLines(lines) : text;
  problems.clear();
  // An empty text would make the lookups below search the matcher's last text.
  if (config.empty()) return 0;
  reading() = Reading{from_file ? configFileName() : "configuration text", {}, {}, {}};
  scanLines(lines);
  vt::match(config, "");
  storeSettings();
  noteUnknownKeys();
  std::stable_sort(reading().problems.begin(), reading().problems.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& problem : reading().problems) problems.push_back(problem.second);
  if (LogManager::getInstance().isStarted()) logProblems();
  return 0;
}

void Config::logProblems() const {
  for (const std::string& problem : problems) {
    LogManager::getInstance().writeLog(0, "Config::loadConfig(): Warning! %s", problem.c_str());
  }
}

void Config::storeSettings() {
  storeInt("frame_time", frame_time);
  storeFloat("font_scale", font_scale);
  storeInt("window_horizontal_pixels", window_horizontal_pixels);
  storeInt("window_vertical_pixels", window_vertical_pixels);
  storeInt("window_horizontal_chars", window_horizontal_chars);
  storeInt("window_vertical_chars", window_vertical_chars);
  readBackgroundColor(parsedValue("window_background_color"));
  readWindowStyle(parsedValue("window_style"));
  storeString("window_title", window_title);
  storeBool("show_mouse", show_mouse);
  storeBool("headless", headless);
  storeString("display", display);
  storeBool("sound", sound);
  storeString("font_file", font_file);
  storeString("logfile", logfile);
  storeInt("random_seed", random_seed);
  storeBool("networking", networking);
  storeBool("hot_reload", hot_reload);
  storeInt("grid_width", grid_width);
  storeInt("grid_height", grid_height);
  storeInt("quadtree_depth", quadtree_depth);
  storeInt("quadtree_threshold", quadtree_threshold);
  std::string level;
  if (readableValue("log_level", ValueKind::INT, level)) log_level = readInt(level);
}

void Config::readBackgroundColor(const std::string& value) {
  if (value.empty()) return;
  // The window has every named colour but yellow.
  Color color = BLACK;
  if (colorFromName(value, color) && color != YELLOW) {
    window_background_color = color;
    return;
  }
  warnUnsupported("window color", value);
  noteBadValue("window_background_color",
               "not a colour the window can have (black, red, green, blue, magenta, cyan or "
               "white), so it keeps its default");
}

void Config::readWindowStyle(const std::string& value) {
  if (value.empty()) return;
  if (value == "fullscreen") {
    window_style = WINDOW_STYLE_FULLSCREEN;
  } else if (value == "default") {
    window_style = WINDOW_STYLE_DEFAULT;
  } else {
    warnUnsupported("window style", value);
    noteBadValue("window_style", "neither default nor fullscreen, so it keeps its default");
  }
}

void Config::printConfig() const {
  const LogManager& log = LogManager::getInstance();
  const char* const RULE = "-----------------------------------";
  log.writeLog(1, "%s", RULE);
  log.writeLog(1, "Vantor configuration:");
  log.writeLog(1, "  Window horizontal pixels: %d", window_horizontal_pixels);
  log.writeLog(1, "  Window vertical pixels: %d", window_vertical_pixels);
  log.writeLog(1, "  Window horizontal characters: %d", window_horizontal_chars);
  log.writeLog(1, "  Window vertical characters: %d", window_vertical_chars);
  log.writeLog(1, "  Window background color: %d", static_cast<int>(window_background_color));
  log.writeLog(1, "  Frame time: %d", frame_time);
  log.writeLog(1, "  Window style: %s",
               window_style == WINDOW_STYLE_DEFAULT ? "default" : "fullscreen");
  log.writeLog(1, "  Window title: %s", window_title.c_str());
  log.writeLog(1, "  Show mouse: %s", boolText(show_mouse));
  log.writeLog(1, "  Headless: %s", boolText(headless));
  log.writeLog(1, "  Display: %s", display.c_str());
  log.writeLog(1, "  Sound: %s", boolText(sound));
  log.writeLog(1, "  Font file: %s", font_file.c_str());
  log.writeLog(1, "  Log file: %s", logfile.c_str());
  log.writeLog(1, "  Random seed: %d", random_seed);
  log.writeLog(1, "  Networking: %s", boolText(networking));
  log.writeLog(1, "  Hot reload: %s", boolText(hot_reload));
  log.writeLog(1, "  Scene graph: simple");
  log.writeLog(1, "%s", RULE);
}

}  // namespace vt
