#include "Explosion.h"

#include "media/ResourceManager.h"
#include "world/WorldManager.h"

Explosion::Explosion() {
  registerInterest(vt::STEP_EVENT);
  if (setSprite("explosion") == 0) {
    time_to_live = vt::ResourceManager::getInstance().getSprite("explosion")->getFrameCount();
  }
  setType("Explosion");
  setSolidness(vt::SPECTRAL);
}

int Explosion::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::STEP_EVENT) return 0;
  time_to_live--;
  if (time_to_live < 1) vt::WorldManager::getInstance().markForDelete(this);
  return 1;
}
