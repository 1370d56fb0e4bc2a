#pragma once

#include "world/Object.h"

// A background star drifting left; it comes back on the right.
class Star : public vt::Object {
 public:
  Star();

  int draw() override;
  int eventHandler(const vt::Event* p_event) override;

 private:
  void out();
};
