#pragma once

#include "core/Vector.h"

namespace vt {

// A disc: centre and radius, in world cells.
class Circle {
 public:
  Circle() = default;
  Circle(Vector init_center, float init_radius) : center(init_center), radius(init_radius) {}

  Vector getCenter() const { return center; }
  void setCenter(Vector new_center) { center = new_center; }
  float getRadius() const { return radius; }
  void setRadius(float new_radius) { radius = new_radius; }

 private:
  Vector center;
  float radius = 0.0f;
};

}  // namespace vt
