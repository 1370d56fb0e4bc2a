#pragma once

#include <string>

#include "core/Event.h"

const std::string PHASE_EVENT = "phase";

// The game moves on to a named phase ("boss", 2).
class EventPhase : public vt::Event {
 public:
  EventPhase(std::string init_name, int init_number)
      : phase_name(std::move(init_name)), phase_number(init_number) {
    setType(PHASE_EVENT);
  }

  std::string getPhaseName() const { return phase_name; }
  int getPhaseNumber() const { return phase_number; }

 private:
  std::string phase_name;
  int phase_number;
};
