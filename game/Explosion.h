#pragma once

#include "world/Object.h"

// Plays its animation once where an enemy died, then goes.
class Explosion : public vt::Object {
 public:
  Explosion();

  int eventHandler(const vt::Event* p_event) override;

 private:
  int time_to_live = 0;
};
