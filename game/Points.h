#pragma once

#include "media/ViewObject.h"

// The score at the top right. It rises by 1 every 30 steps and by view
// events tagged "Points", falls by 200 a nuke, and starts the boss phase
// once it passes 1000.
class Points : public vt::ViewObject {
 public:
  Points();

  int eventHandler(const vt::Event* p_event) override;

 private:
  void step(int step_count);

  int phase = 1;
};
