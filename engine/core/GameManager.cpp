#include "core/GameManager.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "core/Clock.h"
#include "core/Config.h"
#include "core/EventStep.h"
#include "core/FrameStats.h"
#include "core/LogManager.h"
#include "extras/NetworkManager.h"
#include "extras/Recorder.h"
#include "media/DisplayManager.h"
#include "media/InputManager.h"
#include "media/ResourceManager.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

// The shares of the frame the loop gives to the network's input and, of
// what is left of the frame after the world's update, to the path searches.
const float NETWORK_SHARE = 0.2f;
const float PATH_SHARE = 0.95f;

// Sleeps at least the given span and wakes on the next whole-millisecond
// tick of the monotonic clock, as a system timer of one millisecond
// resolution does: frames started on a tick keep to whole milliseconds.
void sleepMilliseconds(std::int64_t milliseconds) {
  const std::int64_t NS_PER_MS = 1000000;
  const std::int64_t NS_PER_S = 1000000000;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  std::int64_t wake =
      static_cast<std::int64_t>(now.tv_sec) * NS_PER_S + now.tv_nsec + milliseconds * NS_PER_MS;
  wake = (wake + NS_PER_MS - 1) / NS_PER_MS * NS_PER_MS;
  const timespec target{static_cast<time_t>(wake / NS_PER_S), static_cast<long>(wake % NS_PER_S)};
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &target, nullptr) == EINTR) {
  }
}

}  // namespace

GameManager::GameManager() {
  setType("GameManager");
}

GameManager& GameManager::getInstance() {
  static GameManager game_manager;
  return game_manager;
}

bool GameManager::isValid(std::string event_type) const {
  return event_type == STEP_EVENT;
}

void GameManager::run() {
  LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(1, "GameManager::run(): starting game loop");
  game_over = false;
  setStepCount(0);
  Clock clock;
  std::int64_t adjust_time = 0;
  const Recorder& recorder = Recorder::getInstance();
  // A replay runs as fast as it can unless asked for the recorded pace.
  const bool paced = !recorder.isReplaying() || recorder.isPaced();
  while (!game_over && !recorder.hasFailed()) {
    clock.delta();
    adjust_time = iterate(clock, adjust_time, paced);
  }
  log_manager.writeLog(1, "GameManager::run(): end of game loop");
}

void GameManager::step() {
  Clock clock;
  iterate(clock, 0, false);
}

std::int64_t GameManager::iterate(Clock& clock, std::int64_t adjust_time, bool paced) {
  FrameStats& stats = FrameStats::getInstance();
  stats.beginStep();
  const EventStep step_event(step_count);
  onEvent(&step_event);
  stats.endPart(STEP_EVENTS_PART);
  // Showing the last frame counts as drawing.
  DisplayManager::getInstance().swapBuffers();
  stats.endPart(DRAW_PART);
  Recorder& recorder = Recorder::getInstance();
  recorder.beginStep();
  takeInput(clock, stats);
  updateAndDraw(stats);
  // A frame restarted by a wait on purpose is timed from its end.
  if (frame_restarted) {
    clock.delta();
    adjust_time = 0;
    frame_restarted = false;
  }
  recorder.endStep(searchPaths(clock, adjust_time, paced));
  stats.endPart(PATHS_PART);
  if (paced) adjust_time = sleepRestOfFrame(clock, adjust_time);
  stats.endPart(SLEEP_PART);
  LogManager::getInstance().flush();
  stats.endStep(step_count);
  setStepCount(step_count + 1);
  return adjust_time;
}

void GameManager::takeInput(const Clock& clock, FrameStats& stats) const {
  InputManager::getInstance().getInput();
  stats.endPart(INPUT_PART);
  if (Config::getInstance().getNetworking()) {
    NetworkManager::getInstance().processFrame(clock, networkBudget(frame_time));
  }
  stats.endPart(NETWORK_PART);
}

void GameManager::updateAndDraw(FrameStats& stats) const {
  ResourceManager::getInstance().reloadChangedSprites();
  WorldManager& world_manager = WorldManager::getInstance();
  world_manager.update();
  stats.endPart(UPDATE_PART);
  world_manager.draw();
  stats.drawOverlay();
  stats.endPart(DRAW_PART);
}

int GameManager::searchPaths(const Clock& clock, std::int64_t adjust_time, bool paced) const {
  PathManager& path_manager = PathManager::getInstance();
  const Recorder& recorder = Recorder::getInstance();
  // How far the searches get must not depend on the time left in a replay.
  if (recorder.isReplaying()) return path_manager.cycleTurns(recorder.getRecordedPathCalls());
  // Unpaced, the searches get a frame's time, and at least one pass.
  return path_manager.cycle(paced ? pathBudget(clock, adjust_time) : std::max(frame_time, 1));
}

std::int64_t GameManager::frameMicroseconds() const {
  return static_cast<std::int64_t>(frame_time) * 1000;
}

int GameManager::pathBudget(const Clock& clock, std::int64_t adjust_time) const {
  const std::int64_t remaining =
      frameMicroseconds() - static_cast<std::int64_t>(clock.split()) - adjust_time;
  return static_cast<int>(PATH_SHARE * static_cast<float>(remaining) / 1000.0f);
}

long long GameManager::networkBudget(int frame_time_ms) {
  return static_cast<long long>(NETWORK_SHARE * static_cast<float>(frame_time_ms) * 1000.0f);
}

void GameManager::setStepCount(int new_step_count) {
  step_count = new_step_count;
  LogManager::getInstance().setStepCount(step_count);
}

std::int64_t GameManager::sleepRestOfFrame(const Clock& clock, std::int64_t adjust_time) const {
  const std::int64_t split = clock.split();
  const std::int64_t intended = frameMicroseconds() - split - adjust_time;
  if (intended > 0) {
    const std::int64_t before = clock.split();
    sleepMilliseconds(intended / 1000);
    const std::int64_t after = clock.split();
    const std::int64_t oversleep = after - before - intended;
    return oversleep < 0 ? 0 : oversleep;
  }
  // Frames are timed to the millisecond: one that takes its frame time to
  // the millisecond is on time, and a late one is over by a whole one.
  const std::int64_t MICROSECONDS_PER_MS = 1000;
  if (intended <= -MICROSECONDS_PER_MS && adjust_time == 0 && frame_time > 0 && step_count > 0) {
    LogManager::getInstance().writeLog(
        "GameManager::run(): Can't keep up! frame_time %d ms, split %d ms", frame_time,
        static_cast<int>(split / 1000));
  }
  return 0;
}

void doShutDown(int signal) {
  LogManager::getInstance().writeLog(1, "doShutDown(): Signal is %d.  Shutting down.", signal);
  GameManager::getInstance().shutDown();
  std::exit(signal);
}

}  // namespace vt
