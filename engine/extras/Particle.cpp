#include "extras/Particle.h"

#include "core/Config.h"
#include "media/DisplayManager.h"
#include "world/WorldManager.h"

namespace vt {

Particle::Particle(Vector position, Vector velocity, char init_symbol, Color init_color,
                   int init_lifetime)
    : symbol(init_symbol), color(init_color), lifetime(init_lifetime < 1 ? 1 : init_lifetime) {
  setType("Particle");
  setSolidness(SPECTRAL);
  setAltitude(PARTICLE_ALTITUDE);
  setPosition(position);
  setVelocity(velocity);
  registerInterest(STEP_EVENT);
}

int Particle::eventHandler(const Event* p_event) {
  if (p_event->getType() == STEP_EVENT) {
    step();
    return 1;
  }
  if (p_event->getType() == OUT_EVENT) {
    WorldManager::getInstance().markForDelete(this);
    return 1;
  }
  return 0;
}

void Particle::step() {
  age++;
  if (age >= lifetime) {
    WorldManager::getInstance().markForDelete(this);
    return;
  }
  setVelocity(getVelocity() * drag + gravity);
}

void Particle::fadedColor(Color color, int age, int lifetime, unsigned char& r, unsigned char& g,
                          unsigned char& b) {
  unsigned char from[3] = {255, 255, 255};
  unsigned char to[3] = {0, 0, 0};
  colorToRGB(color, from[0], from[1], from[2]);
  colorToRGB(Config::getInstance().getWindowBackgroundColor(), to[0], to[1], to[2]);
  const float t = lifetime > 0 ? static_cast<float>(age) / static_cast<float>(lifetime) : 1.0f;
  const float clamped = t < 0 ? 0 : (t > 1 ? 1 : t);
  unsigned char* channels[3] = {&r, &g, &b};
  for (int i = 0; i < 3; i++) {
    const float value =
        static_cast<float>(from[i]) + (static_cast<float>(to[i]) - from[i]) * clamped;
    *channels[i] = static_cast<unsigned char>(value + 0.5f);
  }
}

int Particle::draw() {
  unsigned char r = 0, g = 0, b = 0;
  fadedColor(color, age, lifetime, r, g, b);
  return DisplayManager::getInstance().drawCh(getPosition(), symbol, r, g, b);
}

}  // namespace vt
