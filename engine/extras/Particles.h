#pragma once

#include "core/Color.h"
#include "core/Vector.h"
#include "extras/Particle.h"

namespace vt {

// Ready-made particle effects for addParticles. The size factor scales how
// many particles there are and how far they fly (1.0 is a small effect).
enum ParticlePreset {
  // Sparks flying out in every direction from the position, slowing and
  // fading: an explosion or a hit.
  PARTICLE_BURST = 1,
  // Puffs drifting slowly upward from the position: smoke, steam, dust.
  PARTICLE_SMOKE = 2,
  // Stars twinkling in place around the position: a pick-up, a spell.
  PARTICLE_SPARKLE = 3,
  // A rocket climbing from the position that bursts in the colour.
  PARTICLE_FIREWORK = 4,
  // Rain over the whole view for size x 30 steps (the position is unused).
  PARTICLE_RAIN = 5,
  // Snow over the whole view for size x 30 steps (the position is unused).
  PARTICLE_SNOW = 6,
};

// Starts a preset effect at the position in the colour, its particles
// drawn at the altitude (0 to 4; at 4 they cover a banner made before
// them); returns 0, or -1 (with a log line) for an unknown preset or an
// altitude out of range.
int addParticles(int preset, Vector position, float size_factor, Color color,
                 int altitude = PARTICLE_ALTITUDE);

}  // namespace vt
