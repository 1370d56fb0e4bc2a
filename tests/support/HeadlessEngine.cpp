#include "support/HeadlessEngine.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include "core/Config.h"
#include "core/EventStep.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/EventView.h"
#include "media/ResourceManager.h"
#include "world/EventOut.h"
#include "world/WorldManager.h"

namespace test {

std::string makeTempDir() {
  // Removed at exit; a forked child that ends with _exit leaves them to its parent.
  static std::vector<std::string> folders;
  [[maybe_unused]] static const int removed_at_exit = std::atexit([] {
    std::error_code ignored;
    for (const std::string& folder : folders) std::filesystem::remove_all(folder, ignored);
  });
  char pattern[] = "/tmp/vantor-test-XXXXXX";
  if (mkdtemp(pattern) == nullptr) return "/tmp";
  folders.push_back(pattern);
  return pattern;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string writeConfig(const std::string& text) {
  const std::string path = makeTempDir() + "/vt-config.txt";
  std::ofstream(path) << text;
  setenv("VANTOR_CONFIG", path.c_str(), 1);
  return path;
}

bool waitFor(const std::function<bool()>& condition, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

std::string describeRoles(const std::vector<vt::Object*>& objects) {
  vt::EventMouse move;
  move.setMouseAction(vt::MOVED);
  const vt::EventStep stepped;
  const vt::EventOut out;
  const vt::EventKeyboard key;
  const vt::EventView view;
  std::string roles;
  for (vt::Object* p_object : objects) {
    roles += " " + p_object->getType() + "@" + std::to_string(p_object->getAltitude()) + "/" +
             std::to_string(p_object->getSolidness()) + ":";
    for (const vt::Event* p_event :
         std::initializer_list<const vt::Event*>{&stepped, &out, &key, &move, &view})
      roles += std::to_string(p_object->eventHandler(p_event));
    // A splash ends the game at a key.
    vt::GameManager::getInstance().setGameOver(false);
  }
  return roles.substr(1);
}

void restoreEngineSettings() {
  vt::Config::getInstance().reset();
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.setLogLevel(0);
  log_manager.setLogTimeString(true);
  log_manager.setLogStepCount(true);
  log_manager.setFlush(false);
  vt::GameManager::getInstance().setGameOver(false);
  unsetenv("VANTOR_CONFIG");
  unsetenv("VANTOR_LOG");
}

HeadlessEngine::HeadlessEngine(Managers managers, bool headless)
    : managers(managers), directory(makeTempDir()) {
  vt::Config& config = vt::Config::getInstance();
  config.setFontFile(VANTOR_FONT_PATH);
  config.setHeadless(headless);
  config.setLogFile(logPath());
  unsetenv("VANTOR_LOG");
  vt::LogManager& log_manager = vt::LogManager::getInstance();
  log_manager.startUp();
  log_manager.setFlush(managers == LOG_ONLY);
  if (managers == LOG_ONLY) return;
  vt::WorldManager::getInstance().startUp();
  if (managers == WORLD) return;
  log_manager.setLogTimeString(false);
  log_manager.setLogStepCount(false);
  vt::ResourceManager::getInstance().startUp();
}

HeadlessEngine::~HeadlessEngine() {
  if (managers == WORLD_AND_RESOURCES) vt::ResourceManager::getInstance().shutDown();
  if (managers != LOG_ONLY) vt::WorldManager::getInstance().shutDown();
  vt::LogManager::getInstance().shutDown();
  restoreEngineSettings();
}

std::string HeadlessEngine::logText() const {
  std::fflush(nullptr);
  return readFile(logPath());
}

std::vector<std::string> HeadlessEngine::newLogLines() {
  const std::string text = logText();
  std::istringstream fresh(text.substr(std::min(log_bytes_read, text.size())));
  log_bytes_read = text.size();
  std::vector<std::string> lines;
  for (std::string line; std::getline(fresh, line);) lines.push_back(line);
  return lines;
}

std::string HeadlessEngine::writeFile(const std::string& name, const std::string& bytes) const {
  const std::string path = directory + "/" + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

}  // namespace test
