#pragma once

#include <functional>
#include <vector>

#include "world/Object.h"

namespace vt {

// Actions run a number of steps from now, counted by the game loop's steps,
// never by the clock, so that a replay runs them in the same steps. The
// timers run in this object's "vt-step" event; deleting the object drops
// those that have not run.
class Timers : public Object {
 public:
  using Action = std::function<void()>;

  // SPECTRAL, invisible, of type "Timers".
  Timers();

  // Runs action once, in the step whose count is steps more than the game
  // manager's step count now: set during step k, in step k + steps; set
  // between steps, the count is already the next step's. Timers due in the
  // same step run in the order they were set. Returns the timer's id (1 or
  // more), or -1 with a log line when steps is below 1 or action is empty.
  int after(int steps, Action action);
  // As after, and again every steps steps until cancelled.
  int every(int steps, Action action);
  // Stops a timer that is still waiting; -1 when there is none of that id.
  int cancel(int timer_id);
  int getWaitingCount() const { return static_cast<int>(timers.size()); }

  int eventHandler(const Event* p_event) override;

 private:
  struct Timer {
    int id;
    int due_step;
    // Steps between runs; 0 for a timer that runs once.
    int period;
    Action action;
  };

  int add(const char* caller, int steps, int period, Action action);
  std::vector<Timer>::iterator find(int timer_id);
  void runDue(int step);
  // The game manager counts from 0 again at each run: due steps follow.
  void followRestart(int step);

  std::vector<Timer> timers;
  int next_id = 1;
  int last_step;
};

}  // namespace vt
