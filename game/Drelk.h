#pragma once

#include "world/EventCollision.h"
#include "world/Object.h"

// An enemy craft: crosses from right to left in the upper half of the
// view, drops pairs of slow shots, and is replaced at once when killed.
class Drelk : public vt::Object {
 public:
  Drelk();
  // Every deletion of a drelk, whatever its cause, scores 10.
  ~Drelk() override;

  int eventHandler(const vt::Event* p_event) override;

 private:
  // Places the drelk on a free spot beyond the right edge.
  void moveToStart();
  void out();
  void step();
  void fire();
  void hit(const vt::EventCollision* p_collision);

  int fire_countdown = 50;
  int fire_slowdown = 50;
  // Set by the killing shot, so that a second shot in the same step
  // neither explodes nor replaces it again.
  bool destroyed = false;
};
