#pragma once

#include <functional>
#include <vector>

#include "core/Manager.h"

namespace vt {

class PathFind;

// Runs the pending path searches a step at a time within the time the game
// loop leaves in each frame, and tells each object when its search ends.
// The searches belong to their objects.
class PathManager : public Manager {
 public:
  static PathManager& getInstance();

  int startUp() override;
  void shutDown() override;

  // -1 when the manager is not started, or the search is null or pending.
  int insert(PathFind* p_path_find);
  // -1 when the search was not pending.
  int remove(const PathFind* p_path_find);
  int getPendingCount() const;

  // Passes over the pending searches, one step each per pass, while the
  // budget lasts: time_ms milliseconds, or the minimum if that is larger. A
  // search that ends leaves the list, and its object gets a "vt-path" event.
  // Returns the number of turns (single steps of a search) it ran.
  int cycle(int time_ms);
  // The same passes, limited to a number of turns instead of a time: a
  // replay runs each step's searches exactly as far as the recording did.
  int cycleTurns(int max_turns);
  void setMinTime(int new_min_time_ms) { min_time_ms = new_min_time_ms; }
  int getMinTime() const { return min_time_ms; }

 private:
  PathManager();

  // Passes over the searches while may_start_pass allows, each turn
  // followed by must_stop; both are given the turns run so far.
  int runTurns(const std::function<bool(int)>& may_start_pass,
               const std::function<bool(int)>& must_stop);
  void finish(std::size_t index, int status);
  // Removal leaves a gap, so that a pass may go on over the list; the gaps
  // are closed between passes.
  void closeGaps();

  std::vector<PathFind*> pending;
  int min_time_ms = 0;
};

}  // namespace vt
