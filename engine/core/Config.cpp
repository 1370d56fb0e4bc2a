#include "core/Config.h"

#include <cstdlib>
#include <fstream>

#include "core/LogManager.h"
#include "core/Match.h"
#include "core/Utility.h"

namespace vt {

namespace {

const char* const DEFAULT_CONFIG_FILE = "vt-config.txt";

// The value of a key in the text that loadConfig parsed last.
std::string parsedValue(const char* key) {
  return match("", key);
}

void storeInt(const char* key, int& field) {
  const std::string value = parsedValue(key);
  if (!value.empty()) field = readInt(value);
}

void storeString(const char* key, std::string& field) {
  const std::string value = parsedValue(key);
  if (!value.empty()) field = value;
}

void storeBool(const char* key, bool& field) {
  const std::string value = parsedValue(key);
  if (!value.empty()) field = readBool(value);
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
  const char* p_override = std::getenv("VANTOR_CONFIG");
  std::ifstream file(p_override ? p_override : DEFAULT_CONFIG_FILE);
  if (!file.is_open()) {
    LogManager::getInstance().writeLog(
        1, "Config::readConfig(): Cannot open Vantor configuration file '%s'.",
        DEFAULT_CONFIG_FILE);
    return "";
  }
  std::string joined;
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    joined += line;
  }
  return joined;
}

std::string Config::match(std::string key) const {
  // Parsed afresh each time: other callers of the matcher replace its entries.
  if (config.empty()) return "";
  return vt::match(config, std::move(key));
}

int Config::loadConfig(std::string text) {
  if (text.empty()) text = readConfig();
  config = text;
  // An empty text would make the lookups below search the matcher's last text.
  if (config.empty()) return 0;
  vt::match(config, "");
  storeInt("frame_time", frame_time);
  const std::string scale = parsedValue("font_scale");
  if (!scale.empty()) font_scale = readFloat(scale);
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
  storeInt("grid_width", grid_width);
  storeInt("grid_height", grid_height);
  storeInt("quadtree_depth", quadtree_depth);
  storeInt("quadtree_threshold", quadtree_threshold);
  return 0;
}

void Config::readBackgroundColor(const std::string& value) {
  if (value.empty()) return;
  // "red" is listed twice, so yellow cannot be chosen from the file; the
  // table is kept as it has always been read.
  static const struct {
    const char* name;
    Color color;
  } NAMES[] = {{"black", BLACK}, {"red", RED},         {"green", GREEN}, {"red", YELLOW},
               {"blue", BLUE},   {"magenta", MAGENTA}, {"cyan", CYAN},   {"white", WHITE}};
  for (const auto& entry : NAMES) {
    if (value == entry.name) {
      window_background_color = entry.color;
      return;
    }
  }
  LogManager::getInstance().writeLog("loadConfig(): Unsupported window color '%s'", value.c_str());
}

void Config::readWindowStyle(const std::string& value) {
  if (value.empty()) return;
  if (value == "fullscreen") {
    window_style = WINDOW_STYLE_FULLSCREEN;
  } else if (value == "default") {
    window_style = WINDOW_STYLE_DEFAULT;
  } else {
    LogManager::getInstance().writeLog("loadConfig(): Unsupported window style '%s'",
                                       value.c_str());
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
  log.writeLog(1, "  Scene graph: simple");
  log.writeLog(1, "%s", RULE);
}

}  // namespace vt
