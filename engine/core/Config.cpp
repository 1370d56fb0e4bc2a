#include "core/Config.h"

#include <cstdlib>
#include <fstream>

#include "core/LogManager.h"
#include "core/Match.h"
#include "core/Utility.h"

namespace vt {

namespace {

const char* const DEFAULT_CONFIG_FILE = "vt-config.txt";

// Stores the integer value of the key, when it has one. Values read as
// atoi reads them ("12ms" is 12, "abc" is 0); one too large for an int is 0.
void storeInt(const Config& config, const char* key, int& field) {
  const std::string value = config.match(key);
  if (value.empty()) return;
  int number = 0;
  readInt(value, number);
  field = number;
}

void storeString(const Config& config, const char* key, std::string& field) {
  const std::string value = config.match(key);
  if (!value.empty()) field = value;
}

void storeBool(const Config& config, const char* key, bool& field) {
  const std::string value = config.match(key);
  if (!value.empty()) field = (value == "true");
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
  storeInt(*this, "frame_time", frame_time);
  const std::string scale = match("font_scale");
  if (!scale.empty()) font_scale = static_cast<float>(std::atof(scale.c_str()));
  storeInt(*this, "window_horizontal_pixels", window_horizontal_pixels);
  storeInt(*this, "window_vertical_pixels", window_vertical_pixels);
  storeInt(*this, "window_horizontal_chars", window_horizontal_chars);
  storeInt(*this, "window_vertical_chars", window_vertical_chars);
  readBackgroundColor();
  readWindowStyle();
  storeString(*this, "window_title", window_title);
  storeBool(*this, "show_mouse", show_mouse);
  storeBool(*this, "headless", headless);
  storeString(*this, "font_file", font_file);
  storeString(*this, "logfile", logfile);
  storeInt(*this, "random_seed", random_seed);
  storeBool(*this, "networking", networking);
  storeInt(*this, "grid_width", grid_width);
  storeInt(*this, "grid_height", grid_height);
  storeInt(*this, "quadtree_depth", quadtree_depth);
  storeInt(*this, "quadtree_threshold", quadtree_threshold);
  return 0;
}

void Config::readBackgroundColor() {
  const std::string value = match("window_background_color");
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

void Config::readWindowStyle() {
  const std::string value = match("window_style");
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
  log.writeLog(1, "  Font file: %s", font_file.c_str());
  log.writeLog(1, "  Log file: %s", logfile.c_str());
  log.writeLog(1, "  Random seed: %d", random_seed);
  log.writeLog(1, "  Networking: %s", boolText(networking));
  log.writeLog(1, "  Scene graph: simple");
  log.writeLog(1, "%s", RULE);
}

}  // namespace vt
