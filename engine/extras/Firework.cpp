#include "extras/Firework.h"

#include "extras/Particles.h"
#include "media/DisplayManager.h"
#include "world/WorldManager.h"

namespace vt {

Firework::Firework(Vector position, Color init_color, float init_size, int fuse_steps,
                   int init_altitude)
    : color(init_color), size(init_size), fuse(fuse_steps) {
  setType("Firework");
  setSolidness(SPECTRAL);
  // An altitude out of range is logged, and the default taken.
  if (setAltitude(init_altitude) != 0) setAltitude(PARTICLE_ALTITUDE);
  setPosition(position);
  setVelocity(Vector(0, -0.6f));
  registerInterest(STEP_EVENT);
}

int Firework::eventHandler(const Event* p_event) {
  if (p_event->getType() == OUT_EVENT) {
    WorldManager::getInstance().markForDelete(this);
    return 1;
  }
  if (p_event->getType() != STEP_EVENT) return 0;
  fuse--;
  if (fuse <= 0) {
    addParticles(PARTICLE_BURST, getPosition(), size, color, getAltitude());
    WorldManager::getInstance().markForDelete(this);
  }
  return 1;
}

int Firework::draw() {
  return DisplayManager::getInstance().drawCh(getPosition(), '^', color);
}

}  // namespace vt
