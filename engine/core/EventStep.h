#pragma once

#include "core/Event.h"

namespace vt {

// Sent once per game loop iteration to the objects registered for it.
class EventStep : public Event {
 public:
  explicit EventStep(int init_step_count = 0) : step_count(init_step_count) { setType(STEP_EVENT); }

  void setStepCount(int new_step_count) { step_count = new_step_count; }
  int getStepCount() const { return step_count; }

 private:
  int step_count;
};

}  // namespace vt
