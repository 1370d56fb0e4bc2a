#pragma once

#include "core/Event.h"

namespace vt {

// The object has just left the world's boundary.
class EventOut : public Event {
 public:
  EventOut() { setType(OUT_EVENT); }
};

}  // namespace vt
