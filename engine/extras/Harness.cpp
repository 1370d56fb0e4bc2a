#include "extras/Harness.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/Config.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/Recorder.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputManager.h"

namespace vt {

namespace {

const char* const CONFIG_VARIABLE = "VANTOR_CONFIG";
const char* const LOG_VARIABLE = "VANTOR_LOG";

std::string makeFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "vantor-harness-XXXXXX").string();
  return mkdtemp(pattern.data()) ? pattern : "";
}

// Reads an environment variable into value; false when it is not set.
bool saveVariable(const char* name, std::string& value) {
  const char* p_value = std::getenv(name);
  value = p_value ? p_value : "";
  return p_value != nullptr;
}

void restoreVariable(const char* name, bool was_set, const std::string& value) {
  if (was_set) {
    setenv(name, value.c_str(), 1);
  } else {
    unsetenv(name);
  }
}

void removeOne(std::vector<int>& values, int value) {
  values.erase(std::remove(values.begin(), values.end(), value), values.end());
}

void addOnce(std::vector<int>& values, int value) {
  if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
}

}  // namespace

Harness::~Harness() {
  shutDown();
  if (!folder.empty()) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
}

int Harness::startUp(const std::string& new_log_file) {
  // An engine started elsewhere is not the harness's to drive or stop.
  if (started || GameManager::getInstance().isStarted()) return -1;
  if (folder.empty()) folder = makeFolder();
  if (folder.empty()) return -1;
  log_file = new_log_file.empty() ? folder + "/vantor.log" : new_log_file;
  Config& config = Config::getInstance();
  // The game's own settings, with the two forced ones first: the first
  // entry of a key is the one read.
  const std::string config_file = folder + "/vt-config.txt";
  {
    std::ofstream file(config_file);
    file << "headless:true,\nlogfile:" << log_file << ",\n" << config.readConfig() << "\n";
    if (!file) return -1;
  }
  had_config_variable = saveVariable(CONFIG_VARIABLE, config_variable);
  had_log_variable = saveVariable(LOG_VARIABLE, log_variable);
  was_headless = config.getHeadless();
  previous_log_file = config.getLogFile();
  setenv(CONFIG_VARIABLE, config_file.c_str(), 1);
  unsetenv(LOG_VARIABLE);
  GameManager& game_manager = GameManager::getInstance();
  if (game_manager.startUp() != 0) {
    game_manager.shutDown();
    restoreEnvironment();
    return -1;
  }
  DisplayManager::getInstance().setCapture(true);
  started = true;
  return 0;
}

void Harness::shutDown() {
  if (!started) return;
  Recorder::getInstance().setStepObserver(nullptr);
  step_checks.clear();
  GameManager::getInstance().shutDown();
  restoreEnvironment();
  held_keys.clear();
  pressed_keys.clear();
  held_buttons.clear();
  started = false;
}

void Harness::restoreEnvironment() const {
  restoreVariable(CONFIG_VARIABLE, had_config_variable, config_variable);
  restoreVariable(LOG_VARIABLE, had_log_variable, log_variable);
  Config& config = Config::getInstance();
  config.setHeadless(was_headless);
  config.setLogFile(previous_log_file);
}

int Harness::step(int count) {
  GameManager& game_manager = GameManager::getInstance();
  int done = 0;
  while (started && done < count && !game_manager.getGameOver()) {
    queueHeldInput();
    game_manager.step();
    endFinishedPresses();
    done++;
  }
  return done;
}

bool Harness::stepUntil(const std::function<bool()>& condition, int max_steps) {
  for (int i = 0; i < max_steps; i++) {
    if (condition()) return true;
    if (step() == 0) break;
  }
  return condition();
}

void Harness::pressKey(int key) {
  holdKey(key);
  pressed_keys[key] = KEY_PRESS_STEPS;
}

void Harness::tapKey(int key) {
  queueKey(key, KEY_PRESSED);
  queueKey(key, KEY_RELEASED);
}

void Harness::holdKey(int key) {
  queueKey(key, KEY_PRESSED);
  addOnce(held_keys, key);
  pressed_keys.erase(key);
}

void Harness::releaseKey(int key) {
  queueKey(key, KEY_RELEASED);
  removeOne(held_keys, key);
  pressed_keys.erase(key);
}

void Harness::endFinishedPresses() {
  std::vector<int> finished;
  for (auto& [key, steps_left] : pressed_keys) {
    if (--steps_left == 0) finished.push_back(key);
  }
  for (const int key : finished) releaseKey(key);
}

void Harness::moveMouse(Vector where) {
  mouse_position = where;
  queueMouse(MOVED, Mouse::UNDEFINED_MOUSE_BUTTON);
}

void Harness::clickMouse(int button, Vector where) {
  mouse_position = where;
  queueMouse(CLICKED, button);
}

void Harness::holdMouse(int button, Vector where) {
  clickMouse(button, where);
  addOnce(held_buttons, button);
}

void Harness::releaseMouse(int button) {
  removeOne(held_buttons, button);
}

// Handed to the input manager as the window's input would be, so that it is
// recorded like a player's.
void Harness::queueKey(int key, int action) const {
  InputManager::getInstance().feedInput({InputRecord::KEY, action, key, Vector()});
}

void Harness::queueMouse(int action, int button) const {
  InputManager::getInstance().feedInput({InputRecord::MOUSE, action, button, mouse_position});
}

// Held buttons, then held keys, as the input manager polls them.
void Harness::queueHeldInput() const {
  for (const int button : held_buttons) queueMouse(PRESSED, button);
  for (const int key : held_keys) queueKey(key, KEY_DOWN);
}

int Harness::replay(const std::string& recording_file) {
  if (!started) return -1;
  watchSteps();
  return Recorder::getInstance().startReplay(recording_file);
}

int Harness::record(const std::string& recording_file) {
  if (!started) return -1;
  watchSteps();
  return Recorder::getInstance().startRecording(recording_file);
}

void Harness::watchSteps() {
  Recorder::getInstance().setStepObserver([this](int step) {
    const auto found = step_checks.find(step);
    if (found == step_checks.end()) return;
    for (const std::function<void()>& check : found->second) check();
  });
}

int Harness::finishReplay() {
  return Recorder::getInstance().stop();
}

std::string Harness::replayFailure() const {
  return Recorder::getInstance().getFailure();
}

void Harness::atStep(int step, std::function<void()> check) {
  step_checks[step].push_back(std::move(check));
}

std::string Harness::frameText() const {
  return DisplayManager::getInstance().getFrame().toText();
}

std::string Harness::frameRow(int row) const {
  return DisplayManager::getInstance().getFrame().rowText(row);
}

std::string Harness::checkFrame(const std::string& golden_file) const {
  const std::string actual = frameText();
  const char* p_update = std::getenv("VANTOR_UPDATE_GOLDEN");
  if (p_update != nullptr && std::string(p_update) == "1") {
    std::ofstream(golden_file) << actual;
    return "";
  }
  std::ifstream golden(golden_file);
  std::stringstream expected;
  expected << golden.rdbuf();
  const std::string differences = golden ? describeFrameDifferences(expected.str(), actual)
                                         : "there is no golden frame '" + golden_file +
                                               "' (VANTOR_UPDATE_GOLDEN=1 writes it)\n";
  if (differences.empty()) return "";
  std::ofstream(golden_file + ".new") << actual;
  std::ofstream(golden_file + ".diff") << differences;
  return golden_file + " differs (the new frame is in " + golden_file + ".new):\n" + differences;
}

std::string Harness::logText() const {
  std::fflush(nullptr);
  std::ifstream file(log_file);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

bool Harness::logContains(const std::string& text) const {
  return logText().find(text) != std::string::npos;
}

}  // namespace vt
