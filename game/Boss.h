#pragma once

#include "world/EventCollision.h"
#include "world/Object.h"

// The last enemy: holds its spot above the middle of the view, fires fans of
// 13 shots, and dies on the bullet hit after its health has run out.
class Boss : public vt::Object {
 public:
  Boss();

  int eventHandler(const vt::Event* p_event) override;
  int getHealth() const { return health; }

 private:
  void moveToStart();
  void step();
  void fire();
  void hit(const vt::EventCollision* p_collision);

  int fire_countdown = 25;
  int fire_slowdown = 25;
  int health = 400;
  // Set by the killing hit, so that a second bullet in the same step does
  // not win the game twice.
  bool destroyed = false;
};
