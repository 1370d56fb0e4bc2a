#pragma once

#include "world/Object.h"

// A crosshair that follows the mouse.
class Reticle : public vt::Object {
 public:
  Reticle();

  int eventHandler(const vt::Event* p_event) override;
  int draw() override;
};
