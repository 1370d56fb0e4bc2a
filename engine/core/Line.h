#pragma once

#include "core/Vector.h"

namespace vt {

// A line segment between two points, in world cells.
class Line {
 public:
  Line() = default;
  Line(Vector init_p1, Vector init_p2) : p1(init_p1), p2(init_p2) {}

  Vector getP1() const { return p1; }
  void setP1(Vector new_p1) { p1 = new_p1; }
  Vector getP2() const { return p2; }
  void setP2(Vector new_p2) { p2 = new_p2; }

 private:
  Vector p1;
  Vector p2;
};

}  // namespace vt
