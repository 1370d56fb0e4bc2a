#pragma once

#include "core/Color.h"
#include "extras/Particle.h"
#include "world/Object.h"

namespace vt {

// Rain or snow over the whole view: each step it drops new particles from
// the top row, at its own altitude, for a number of steps (or for ever
// with -1).
class Precipitation : public Object {
 public:
  // Snow drifts slowly as '*'; rain falls fast as '|'.
  Precipitation(Color init_color, float init_density, bool init_snow, int init_duration,
                int init_altitude = PARTICLE_ALTITUDE);

  int eventHandler(const Event* p_event) override;
  // Never drawn itself; its drops are.
  int draw() override { return 0; }

 private:
  void dropParticles() const;

  Color color;
  float density;
  bool snow;
  int duration;
};

}  // namespace vt
