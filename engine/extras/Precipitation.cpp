#include "extras/Precipitation.h"

#include <cstdlib>

#include "extras/Particle.h"
#include "world/WorldManager.h"

namespace vt {

Precipitation::Precipitation(Color init_color, float init_density, bool init_snow,
                             int init_duration, int init_altitude)
    : color(init_color), density(init_density), snow(init_snow), duration(init_duration) {
  setType("Precipitation");
  setSolidness(SPECTRAL);
  // An altitude out of range is logged, and the default taken. Set while
  // visible: the altitude of an invisible object cannot change.
  if (setAltitude(init_altitude) != 0) setAltitude(PARTICLE_ALTITUDE);
  setVisible(false);
  registerInterest(STEP_EVENT);
}

int Precipitation::eventHandler(const Event* p_event) {
  if (p_event->getType() != STEP_EVENT) return 0;
  dropParticles();
  if (duration > 0) duration--;
  if (duration == 0) WorldManager::getInstance().markForDelete(this);
  return 1;
}

void Precipitation::dropParticles() const {
  const Box view = WorldManager::getInstance().getView();
  const int width = static_cast<int>(view.getHorizontal());
  if (width < 1) return;
  // Density is the expected number of new drops per row of 80 cells.
  const int drops = static_cast<int>(density * static_cast<float>(width) / 80.0f + 0.5f);
  const int lifetime = static_cast<int>(view.getVertical()) * (snow ? 3 : 1) + 2;
  for (int i = 0; i < drops; i++) {
    const float x = view.getCorner().getX() + static_cast<float>(std::rand() % width);
    const Vector start(x, view.getCorner().getY());
    const float drift = snow ? static_cast<float>(std::rand() % 3 - 1) * 0.1f : -0.1f;
    const Vector velocity(drift, snow ? 0.35f : 1.2f);
    auto* p_drop = new Particle(start, velocity, snow ? '*' : '|', color, lifetime);
    p_drop->setAltitude(getAltitude());
  }
}

}  // namespace vt
