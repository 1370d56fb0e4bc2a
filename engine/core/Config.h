#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Color.h"

namespace vt {

// Window style values of the configuration.
const int WINDOW_STYLE_DEFAULT = 5;
const int WINDOW_STYLE_FULLSCREEN = 8;

// The engine's start-up settings, filled with defaults and then overwritten
// from the configuration file ("vt-config.txt", or the file named by the
// VANTOR_CONFIG environment variable). Every line of the file is one
// "key:value," entry; white space is ignored and "#" starts a comment line.
// A line of another form, an unknown key and a value its setting cannot
// take are each named, with the line, among the problems of the load.
class Config {
 public:
  static Config& getInstance();
  Config(const Config&) = delete;

  // Puts every setting back to its default and forgets the loaded text.
  void reset() { *this = Config(); }

  // Fills the fields from the text; an empty text reads the file.
  int loadConfig(std::string text = "");
  // The file's entry lines joined together, or "" when it cannot be read.
  std::string readConfig() const;
  // The value of a key in the loaded text, "" when absent.
  std::string match(std::string key) const;
  // Writes the configuration block to the log.
  void printConfig() const;
  // What the last load could not read, one line each: the file, the line's
  // number, the line and what is wrong with it. A load logs them itself
  // when the log is running; at start-up the game manager does, once the
  // log has started.
  const std::vector<std::string>& getProblems() const { return problems; }
  // Writes the problems to the log at level 0.
  void logProblems() const;

  std::string getConfig() const { return config; }
  int getWindowHorizontalPixels() const { return window_horizontal_pixels; }
  void setWindowHorizontalPixels(int value) { window_horizontal_pixels = value; }
  int getWindowVerticalPixels() const { return window_vertical_pixels; }
  void setWindowVerticalPixels(int value) { window_vertical_pixels = value; }
  int getWindowHorizontalChars() const { return window_horizontal_chars; }
  void setWindowHorizontalChars(int value) { window_horizontal_chars = value; }
  int getWindowVerticalChars() const { return window_vertical_chars; }
  void setWindowVerticalChars(int value) { window_vertical_chars = value; }
  int getWindowStyle() const { return window_style; }
  void setWindowStyle(int value) { window_style = value; }
  Color getWindowBackgroundColor() const { return window_background_color; }
  void setWindowBackgroundColor(Color value) { window_background_color = value; }
  int getFrameTime() const { return frame_time; }
  void setFrameTime(int value) { frame_time = value; }
  float getFontScale() const { return font_scale; }
  void setFontScale(float value) { font_scale = value; }
  std::string getWindowTitle() const { return window_title; }
  void setWindowTitle(std::string value) { window_title = std::move(value); }
  bool getShowMouse() const { return show_mouse; }
  void setShowMouse(bool value) { show_mouse = value; }
  bool getHeadless() const { return headless; }
  void setHeadless(bool value) { headless = value; }
  // Where the game is shown: "window" (the default) or "terminal".
  std::string getDisplay() const { return display; }
  void setDisplay(std::string value) { display = std::move(value); }
  bool getSound() const { return sound; }
  void setSound(bool value) { sound = value; }
  std::string getFontFile() const { return font_file; }
  void setFontFile(std::string value) { font_file = std::move(value); }
  std::string getLogFile() const { return logfile; }
  void setLogFile(std::string value) { logfile = std::move(value); }
  int getRandomSeed() const { return random_seed; }
  void setRandomSeed(int value) { random_seed = value; }
  bool getNetworking() const { return networking; }
  void setNetworking(bool value) { networking = value; }
  // Sprite files read again when they change on disk while the game runs;
  // the environment's VANTOR_HOT_RELOAD=1 turns it on too.
  bool getHotReload() const { return hot_reload; }
  void setHotReload(bool value) { hot_reload = value; }
  int getQuadtreeThreshold() const { return quadtree_threshold; }
  void setQuadtreeThreshold(int value) { quadtree_threshold = value; }
  int getQuadtreeDepth() const { return quadtree_depth; }
  void setQuadtreeDepth(int value) { quadtree_depth = value; }
  int getGridWidth() const { return grid_width; }
  void setGridWidth(int value) { grid_width = value; }
  int getGridHeight() const { return grid_height; }
  void setGridHeight(int value) { grid_height = value; }
  // The log level the file asks for ("log_level:N,"); none when it asks
  // for none. The environment's VANTOR_LOG_LEVEL wins over it.
  std::optional<int> getLogLevel() const { return log_level; }
  void setLogLevel(int value) { log_level = value; }

 private:
  Config() = default;
  Config& operator=(const Config&) = default;

  // The file's text, "" when it cannot be read.
  std::string readConfigFile() const;
  // Fills the fields from the text loadConfig parsed.
  void storeSettings();
  void readBackgroundColor(const std::string& value);
  void readWindowStyle(const std::string& value);

  std::string config;
  int window_horizontal_pixels = 1024;
  int window_vertical_pixels = 768;
  int window_horizontal_chars = 80;
  int window_vertical_chars = 24;
  int window_style = WINDOW_STYLE_DEFAULT;
  Color window_background_color = BLACK;
  int frame_time = 33;
  float font_scale = 2.0f;
  std::string window_title = "Vantor";
  bool show_mouse = false;
  bool headless = false;
  std::string display = "window";
  bool sound = true;
  std::string font_file = "vt-font.ttf";
  std::string logfile = "vantor.log";
  int random_seed = 0;
  bool networking = false;
  bool hot_reload = false;
  int quadtree_threshold = 1;
  int quadtree_depth = 10;
  int grid_width = 20;
  int grid_height = 8;
  std::optional<int> log_level;
  std::vector<std::string> problems;
};

}  // namespace vt
