#include "Points.h"

#include "EventNuke.h"
#include "EventPhase.h"
#include "core/EventStep.h"
#include "world/WorldManager.h"

Points::Points() {
  setType("Points");
  setLocation(vt::TOP_RIGHT);
  setViewString("Points");
  setColor(vt::YELLOW);
  registerInterest(vt::STEP_EVENT);
  registerInterest(NUKE_EVENT);
}

int Points::eventHandler(const vt::Event* p_event) {
  if (ViewObject::eventHandler(p_event) == 1) return 1;
  if (p_event->getType() == NUKE_EVENT) {
    setValue(getValue() - 200);
    return 1;
  }
  if (p_event->getType() == vt::STEP_EVENT) {
    step(static_cast<const vt::EventStep*>(p_event)->getStepCount());
    return 1;
  }
  return 0;
}

void Points::step(int step_count) {
  if (getValue() >= 1001 && phase == 1) {
    phase = 2;
    const EventPhase boss_phase("boss", 2);
    vt::WorldManager::getInstance().onEvent(&boss_phase);
  }
  if (step_count % 30 == 0) setValue(getValue() + 1);
}
