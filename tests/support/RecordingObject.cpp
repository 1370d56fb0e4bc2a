#include "support/RecordingObject.h"

#include <algorithm>

#include "core/EventStep.h"

namespace test {

int RecordingObject::eventHandler(const vt::Event* p_event) {
  received.push_back(p_event->getType());
  if (p_event->getType() == vt::STEP_EVENT) {
    steps.push_back(static_cast<const vt::EventStep*>(p_event)->getStepCount());
  }
  if (on_event) on_event(p_event);
  return 1;
}

int RecordingObject::count(const std::string& event_type) const {
  return static_cast<int>(std::count(received.begin(), received.end(), event_type));
}

}  // namespace test
