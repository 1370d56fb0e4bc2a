#include "core/GameManager.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "core/Config.h"
#include "core/FrameStats.h"
#include "core/LogManager.h"
#include "extras/NetworkManager.h"
#include "extras/Recorder.h"
#include "media/DisplayManager.h"
#include "media/InputManager.h"
#include "media/ResourceManager.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

// The game manager's dealings with the other managers: starting them in
// order, stopping them again, and which of them delivers which event.

namespace vt {

namespace {

const char* const STARS = "****************************************************";

// Finer timer slack lets the frame sleep wake within its millisecond.
const unsigned long FINE_TIMER_SLACK_NS = 1000;

std::string workingFolder() {
  char directory[4096];
  return getcwd(directory, sizeof(directory)) ? directory : "(full path too long)";
}

// The log file's full name, for a reader in another directory.
std::string logFilePath() {
  const std::string name = LogManager::getInstance().getLogFileName();
  if (!name.empty() && name[0] == '/') return name;
  return workingFolder() + "/" + name;
}

// The files a game reads from the working folder at start-up that are not
// there, "" when none is missing: a game started from another folder than
// its own lacks them all.
std::string missingGameFiles() {
  std::string missing;
  const Config& config = Config::getInstance();
  const bool needs_font = !config.getHeadless() && !DisplayManager::getInstance().isTerminal();
  const std::string font = config.getFontFile();
  if (needs_font && access(font.c_str(), R_OK) != 0) missing += "the font file " + font;
  if (std::getenv("VANTOR_CONFIG") == nullptr && access("vt-config.txt", R_OK) != 0) {
    missing += std::string(missing.empty() ? "" : ", ") + "vt-config.txt";
  }
  return missing;
}

// One line on standard error, so that a failed start is seen without
// opening the log, and one more naming the game's files missing from the
// working folder.
void reportStartFailure(const char* what, const std::string& reason) {
  std::string sentence = std::string("cannot start the ") + what;
  if (!reason.empty()) sentence += ": " + reason;
  if (sentence.back() != '.') sentence += '.';
  std::fprintf(stderr, "vantor: %s See %s\n", sentence.c_str(), logFilePath().c_str());
  const std::string missing = missingGameFiles();
  if (missing.empty()) return;
  const std::string folder = workingFolder();
  std::fprintf(stderr,
               "vantor: missing from the working folder %s: %s; start the game from its own "
               "folder\n",
               folder.c_str(), missing.c_str());
  LogManager::getInstance().writeLog(
      0, "GameManager::startUp(): missing from the working folder %s: %s", folder.c_str(),
      missing.c_str());
}

// Each problem of the configuration, in the log and on standard error.
void reportConfigProblems() {
  const Config& config = Config::getInstance();
  config.logProblems();
  for (const std::string& problem : config.getProblems()) {
    std::fprintf(stderr, "vantor: %s\n", problem.c_str());
  }
}

// Logs the start of one manager; false when it failed.
bool startManager(Manager& manager, const char* name, const char* failure, const char* success) {
  LogManager& log_manager = LogManager::getInstance();
  if (manager.startUp() != 0) {
    reportStartFailure(name, manager.getStartFailure());
    log_manager.writeLog("%s", failure);
    return false;
  }
  log_manager.writeLog(1, "%s", success);
  return true;
}

void stopManager(Manager& manager, const char* note) {
  manager.shutDown();
  LogManager::getInstance().writeLog(1, "%s", note);
}

}  // namespace

int GameManager::startUp() {
  LogManager& log_manager = LogManager::getInstance();
  if (alreadyStarted()) return -1;
  Config& config = Config::getInstance();
  config.loadConfig("");
  const char* p_headless = std::getenv("VANTOR_HEADLESS");
  if (p_headless != nullptr && std::string(p_headless) == "1") config.setHeadless(true);
  if (log_manager.startUp() != 0) {
    std::fprintf(stderr, "vantor: cannot start the log manager: cannot write %s\n",
                 logFilePath().c_str());
    log_manager.writeLog("Error starting log manager!");
    return -1;
  }
  log_manager.writeLog("%s", STARS);
  log_manager.writeLog("** Vantor version %.2f **", static_cast<double>(VANTOR_VERSION));
  log_manager.writeLog("** Game engine started **");
  log_manager.writeLog("%s", STARS);
  reportConfigProblems();
  config.printConfig();
  Recorder& recorder = Recorder::getInstance();
  if (recorder.startFromEnvironment() != 0) {
    reportStartFailure("recorder", recorder.getStartFailure());
    log_manager.writeLog("Error starting recorder!");
    return -1;
  }
  log_manager.writeLog(1, "Working directory:");
  log_manager.writeLog(1, "  %s", workingFolder().c_str());
  log_manager.writeLog(1, "Log Manager started.");
  frame_time = config.getFrameTime();
  log_manager.writeLog(5, "GameManager::startUp(): frame time is %d", frame_time);
  FrameStats::getInstance().startUp();
  if (startManagers() != 0) return -1;
  seedRandom();
  previous_timer_slack = static_cast<unsigned long>(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0));
  if (prctl(PR_SET_TIMERSLACK, FINE_TIMER_SLACK_NS, 0, 0, 0) != 0) {
    log_manager.writeLog(
        1, "GameManager()::startUp(): Warning!  timeBeginPeriod() cannot accept 1 msec.");
  }
  game_over = false;
  setStepCount(0);
  frame_restarted = false;
  Manager::startUp();
  log_manager.writeLog(1, "GameManager successfully started.");
  return 0;
}

int GameManager::startManagers() {
  const bool networking = Config::getInstance().getNetworking();
  if (!startManager(DisplayManager::getInstance(), "display manager",
                    "Error starting display manager!", "Display manager started.") ||
      !startManager(InputManager::getInstance(), "input manager", "Error starting input manager!",
                    "Input manager started.") ||
      (networking &&
       !startManager(NetworkManager::getInstance(), "network manager",
                     "Error starting network manager!", "Network manager started.")) ||
      !startManager(ResourceManager::getInstance(), "resource manager",
                    "Error starting resource manager!", "Resource manager started.") ||
      !startManager(WorldManager::getInstance(), "world manager", "Error starting world manager!",
                    "World manager started.") ||
      !startManager(PathManager::getInstance(), "path manager", "Error starting path manager!",
                    "Path manager started.")) {
    return -1;
  }
  const DisplayManager& display_manager = DisplayManager::getInstance();
  WorldManager& world_manager = WorldManager::getInstance();
  const Box screen(Vector(0, 0), static_cast<float>(display_manager.getHorizontal()),
                   static_cast<float>(display_manager.getVertical()));
  world_manager.setBoundary(screen);
  world_manager.setView(screen);
  world_manager.setViewSlack(Vector(0.33333334f, 0.33333334f));
  return 0;
}

void GameManager::seedRandom() const {
  auto seed = static_cast<std::uint32_t>(Config::getInstance().getRandomSeed());
  if (seed == 0) seed = static_cast<std::uint32_t>(std::time(nullptr));
  // A replay takes the recorded seed instead; -1 stands for no seeding.
  const long long chosen =
      Recorder::getInstance().chooseSeed(seed == 0xFFFFFFFFu ? -1 : static_cast<long long>(seed));
  seed = static_cast<std::uint32_t>(chosen);
  if (chosen != -1) {
    LogManager::getInstance().writeLog(10, "GameManager()::startUp(): srand() seed with %d",
                                       static_cast<int>(seed));
    std::srand(seed);
  }
}

void GameManager::shutDown() {
  LogManager& log_manager = LogManager::getInstance();
  game_over = true;
  Recorder& recorder = Recorder::getInstance();
  // A game that did not start says so itself, with its own status.
  const bool replay_counts = recorder.isFromEnvironment() && isStarted();
  const bool replay_failed = recorder.stop() != 0 && replay_counts;
  if (previous_timer_slack != 0 && prctl(PR_SET_TIMERSLACK, previous_timer_slack, 0, 0, 0) != 0) {
    log_manager.writeLog(
        1, "GameManager()::shutDown(): Warning! timeEndPeriod() cannot accept 1 msec.");
  }
  stopManagers();
  FrameStats::getInstance().shutDown();
  log_manager.writeLog("%s", STARS);
  log_manager.writeLog("** Game engine stopped **");
  log_manager.shutDown();
  Manager::shutDown();
  // The game's own main cannot know: the process says it.
  if (replay_failed) std::exit(REPLAY_FAILED_STATUS);
}

void GameManager::stopManagers() {
  stopManager(PathManager::getInstance(), "Path manager stopped");
  stopManager(WorldManager::getInstance(), "World manager stopped");
  stopManager(ResourceManager::getInstance(), "Resource manager stopped");
  if (Config::getInstance().getNetworking()) {
    stopManager(NetworkManager::getInstance(), "Network manager stopped");
  }
  stopManager(InputManager::getInstance(), "Input manager stopped");
  stopManager(DisplayManager::getInstance(), "Display manager stopped");
}

Manager& GameManager::managerFor(const std::string& event_type, bool unregistering) {
  if (event_type == STEP_EVENT) return getInstance();
  if (event_type == KEYBOARD_EVENT || event_type == MOUSE_EVENT) {
    return InputManager::getInstance();
  }
  if (event_type == NETWORK_EVENT || event_type == KEYBOARD_NETWORK_EVENT ||
      event_type == MOUSE_NETWORK_EVENT || (event_type == CUSTOM_NETWORK_EVENT && !unregistering)) {
    return NetworkManager::getInstance();
  }
  return WorldManager::getInstance();
}

}  // namespace vt
