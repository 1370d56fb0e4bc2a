#include "extras/Timers.h"

#include <algorithm>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "core/LogManager.h"

namespace vt {

Timers::Timers() : last_step(GameManager::getInstance().getStepCount() - 1) {
  setType("Timers");
  setSolidness(SPECTRAL);
  setVisible(false);
  registerInterest(STEP_EVENT);
}

int Timers::after(int steps, Action action) {
  return add("Timers::after()", steps, 0, std::move(action));
}

int Timers::every(int steps, Action action) {
  return add("Timers::every()", steps, steps, std::move(action));
}

int Timers::add(const char* caller, int steps, int period, Action action) {
  const LogManager& log_manager = LogManager::getInstance();
  if (steps < 1) {
    log_manager.writeLog("%s: Error! %d steps is below 1; no timer set.", caller, steps);
    return -1;
  }
  if (!action) {
    log_manager.writeLog("%s: Error! No action given; no timer set.", caller);
    return -1;
  }
  const int due_step = GameManager::getInstance().getStepCount() + steps;
  timers.push_back({next_id, due_step, period, std::move(action)});
  return next_id++;
}

std::vector<Timers::Timer>::iterator Timers::find(int timer_id) {
  return std::find_if(timers.begin(), timers.end(),
                      [timer_id](const Timer& timer) { return timer.id == timer_id; });
}

int Timers::cancel(int timer_id) {
  const auto found = find(timer_id);
  if (found == timers.end()) return -1;
  timers.erase(found);
  return 0;
}

int Timers::eventHandler(const Event* p_event) {
  if (p_event->getType() != STEP_EVENT) return Object::eventHandler(p_event);
  const int step = static_cast<const EventStep*>(p_event)->getStepCount();
  followRestart(step);
  last_step = step;
  runDue(step);
  return 1;
}

void Timers::followRestart(int step) {
  if (step > last_step) return;
  const int shift = last_step + 1 - step;
  for (Timer& timer : timers) timer.due_step -= shift;
}

void Timers::runDue(int step) {
  std::vector<int> due;
  for (const Timer& timer : timers) {
    if (timer.due_step <= step) due.push_back(timer.id);
  }
  // An action may set and cancel timers, those due now included.
  for (const int timer_id : due) {
    const auto found = find(timer_id);
    if (found == timers.end()) continue;
    const Action action = found->action;
    if (found->period > 0) {
      found->due_step = step + found->period;
    } else {
      timers.erase(found);
    }
    action();
  }
}

}  // namespace vt
