#pragma once

#include "core/Color.h"
#include "world/Object.h"

namespace vt {

// Where particles and the effects made of them are drawn unless asked
// otherwise: above the game's objects, below the heads-up display.
const int PARTICLE_ALTITUDE = 3;

// A short-lived single character that moves, slows down, falls or rises
// with its gravity, fades from its colour to the window's background and
// removes itself when its life is over or it leaves the world.
class Particle : public Object {
 public:
  Particle(Vector position, Vector velocity, char init_symbol, Color init_color, int init_lifetime);

  // Each step the velocity is multiplied by drag, then gravity is added.
  void setDrag(float new_drag) { drag = new_drag; }
  void setGravity(Vector new_gravity) { gravity = new_gravity; }
  int getAge() const { return age; }
  int getLifetime() const { return lifetime; }

  int eventHandler(const Event* p_event) override;
  int draw() override;

  // The colour a particle shows at this age: its own colour at birth,
  // the background's at the end of its life.
  static void fadedColor(Color color, int age, int lifetime, unsigned char& r, unsigned char& g,
                         unsigned char& b);

 private:
  void step();

  char symbol;
  Color color;
  int lifetime;
  int age = 0;
  float drag = 1.0f;
  Vector gravity;
};

}  // namespace vt
