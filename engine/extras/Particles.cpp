#include "extras/Particles.h"

#include <cmath>
#include <cstdlib>

#include "core/LogManager.h"
#include "extras/Firework.h"
#include "extras/Particle.h"
#include "extras/Precipitation.h"
#include "world/Object.h"

namespace vt {

namespace {

float randomUnit() {
  return static_cast<float>(std::rand()) / static_cast<float>(RAND_MAX);
}

int randomBetween(int low, int high) {
  return low + std::rand() % (high - low + 1);
}

char randomSymbol(const char* symbols) {
  const auto count = static_cast<int>(std::char_traits<char>::length(symbols));
  return symbols[std::rand() % count];
}

int countFor(float per_unit, float size_factor) {
  const int count = static_cast<int>(per_unit * size_factor + 0.5f);
  return count < 1 ? 1 : count;
}

// The colour and altitude the particles of one effect are drawn in.
struct SprayStyle {
  Color color;
  int altitude;
};

// Particles leave in random directions at up to max_speed cells a step.
void spray(Vector position, float size_factor, SprayStyle style, const char* symbols,
           float per_unit, float max_speed, int min_life, int max_life, float drag,
           Vector gravity) {
  for (int i = 0; i < countFor(per_unit, size_factor); i++) {
    const float angle = randomUnit() * 6.2831853f;
    const float speed = max_speed * (0.3f + 0.7f * randomUnit());
    // Cells are twice as high as wide, so vertical speeds are halved.
    const Vector velocity(std::cos(angle) * speed, std::sin(angle) * speed * 0.5f);
    auto* p_particle = new Particle(position, velocity, randomSymbol(symbols), style.color,
                                    randomBetween(min_life, max_life));
    p_particle->setAltitude(style.altitude);
    p_particle->setDrag(drag);
    p_particle->setGravity(gravity);
  }
}

}  // namespace

int addParticles(int preset, Vector position, float size_factor, Color color, int altitude) {
  if (altitude < MIN_ALTITUDE || altitude > MAX_ALTITUDE) {
    LogManager::getInstance().writeLog("addParticles(): Warning! Altitude %d not in range [%d,%d].",
                                       altitude, MIN_ALTITUDE, MAX_ALTITUDE);
    return -1;
  }
  const SprayStyle style{color, altitude};
  switch (preset) {
    case PARTICLE_BURST:
      spray(position, size_factor, style, "*+.o", 10, 0.5f * size_factor, 8, 16, 0.85f, Vector());
      return 0;
    case PARTICLE_SMOKE:
      spray(position, size_factor, style, "oO.", 5, 0.15f, 20, 30, 0.95f, Vector(0, -0.02f));
      return 0;
    case PARTICLE_SPARKLE:
      spray(position, size_factor, style, "*+.", 8, 0.05f * size_factor, 5, 12, 0.8f, Vector());
      return 0;
    case PARTICLE_FIREWORK:
      new Firework(position, color, size_factor, randomBetween(10, 18), altitude);
      return 0;
    case PARTICLE_RAIN:
    case PARTICLE_SNOW:
      new Precipitation(color, 2.0f * size_factor, preset == PARTICLE_SNOW,
                        countFor(30, size_factor), altitude);
      return 0;
    default:
      LogManager::getInstance().writeLog("addParticles(): Warning! Unknown preset %d.", preset);
      return -1;
  }
}

}  // namespace vt
