#pragma once

#include "world/Object.h"

// A wall: HARD, filling its cell without touching the next.
class Wall : public vt::Object {
 public:
  explicit Wall(vt::Vector at);
};
