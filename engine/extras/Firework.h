#pragma once

#include "core/Color.h"
#include "extras/Particle.h"
#include "world/Object.h"

namespace vt {

// A rocket that climbs from where it is made and bursts into particles of
// its colour, at its own altitude, when its fuse has burnt down.
class Firework : public Object {
 public:
  Firework(Vector position, Color init_color, float init_size, int fuse_steps,
           int init_altitude = PARTICLE_ALTITUDE);

  int eventHandler(const Event* p_event) override;
  int draw() override;

 private:
  Color color;
  float size;
  int fuse;
};

}  // namespace vt
