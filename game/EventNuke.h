#pragma once

#include "core/Event.h"

const std::string NUKE_EVENT = "nuke";

// A nuke went off: enemy bullets vanish and the score pays for it.
class EventNuke : public vt::Event {
 public:
  EventNuke() { setType(NUKE_EVENT); }
};
