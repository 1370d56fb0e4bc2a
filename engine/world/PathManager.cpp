#include "world/PathManager.h"

#include <algorithm>
#include <functional>

#include "core/Clock.h"
#include "core/LogManager.h"
#include "world/EventPath.h"
#include "world/Object.h"
#include "world/PathFind.h"

namespace vt {

namespace {

int elapsedMs(const Clock& clock) {
  return static_cast<int>(clock.split() / 1000);
}

}  // namespace

PathManager::PathManager() {
  setType("PathManager");
}

PathManager& PathManager::getInstance() {
  static PathManager path_manager;
  return path_manager;
}

int PathManager::startUp() {
  const LogManager& log_manager = LogManager::getInstance();
  if (alreadyStarted()) return -1;
  pending.clear();
  Manager::startUp();
  log_manager.writeLog("PathManager::startUp(): successfully started.");
  return 0;
}

void PathManager::shutDown() {
  Manager::shutDown();
  pending.clear();
  LogManager::getInstance().writeLog("PathManager::shutDown(): successfully stopped.");
}

int PathManager::insert(PathFind* p_path_find) {
  if (notStarted()) return -1;
  if (p_path_find == nullptr ||
      std::find(pending.begin(), pending.end(), p_path_find) != pending.end()) {
    return -1;
  }
  pending.push_back(p_path_find);
  return 0;
}

int PathManager::remove(const PathFind* p_path_find) {
  if (p_path_find == nullptr) return -1;
  const auto found = std::find(pending.begin(), pending.end(), p_path_find);
  if (found == pending.end()) return -1;
  *found = nullptr;
  return 0;
}

int PathManager::getPendingCount() const {
  return static_cast<int>(pending.size()) -
         static_cast<int>(std::count(pending.begin(), pending.end(), nullptr));
}

int PathManager::cycle(int time_ms) {
  if (notStarted()) return 0;
  const int budget_ms = std::max(min_time_ms, time_ms);
  const Clock clock;
  const int turns = runTurns([&](int) { return elapsedMs(clock) < budget_ms; },
                             [&](int) { return elapsedMs(clock) > budget_ms; });
  if (elapsedMs(clock) > budget_ms) {
    LogManager::getInstance().writeLog(5, "PathManager::cycle(): cycle time %d exceeded.",
                                       budget_ms);
  }
  return turns;
}

int PathManager::cycleTurns(int max_turns) {
  if (notStarted()) return 0;
  return runTurns([&](int turns) { return turns < max_turns; },
                  [&](int turns) { return turns >= max_turns; });
}

int PathManager::runTurns(const std::function<bool(int)>& may_start_pass,
                          const std::function<bool(int)>& must_stop) {
  int turns = 0;
  closeGaps();
  while (!pending.empty() && may_start_pass(turns)) {
    // Indexed: handlers may add searches (at the end) or remove them
    // (leaving gaps) while the pass goes on.
    for (std::size_t i = 0; i < pending.size(); i++) {
      if (pending[i] == nullptr) continue;
      const int status = pending[i]->cycleOnce();
      turns++;
      if (status != PATH_SEARCHING) finish(i, status);
      if (must_stop(turns)) break;
    }
    closeGaps();
  }
  return turns;
}

void PathManager::finish(std::size_t index, int status) {
  const PathFind* p_path_find = pending[index];
  pending[index] = nullptr;
  Object* p_object = p_path_find->getObject();
  if (p_object == nullptr) return;
  const EventPath event(status,
                        status == PATH_FOUND ? p_path_find->getPath() : std::list<Vector>());
  // The handler may delete the search.
  p_object->eventHandler(&event);
}

void PathManager::closeGaps() {
  pending.erase(std::remove(pending.begin(), pending.end(), nullptr), pending.end());
}

}  // namespace vt
