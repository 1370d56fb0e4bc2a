#pragma once

#include <string>

#include "core/Vector.h"

namespace vt {

// An axis-aligned rectangle: the top-left corner and the extents in x and y.
// Every box test includes the edges.
class Box {
 public:
  Box() = default;
  Box(Vector init_corner, float init_horizontal, float init_vertical)
      : corner(init_corner), horizontal(init_horizontal), vertical(init_vertical) {}

  Vector getCorner() const { return corner; }
  void setCorner(Vector new_corner) { corner = new_corner; }
  float getHorizontal() const { return horizontal; }
  void setHorizontal(float new_horizontal) { horizontal = new_horizontal; }
  float getVertical() const { return vertical; }
  void setVertical(float new_vertical) { vertical = new_vertical; }

  bool operator==(const Box& other) const {
    return corner == other.corner && horizontal == other.horizontal && vertical == other.vertical;
  }
  bool operator!=(const Box& other) const { return !(*this == other); }

  // "(x,y) h: H v: V"
  std::string toString() const;

  // Outlines the box on the display.
  void draw() const;

 private:
  Vector corner;
  float horizontal = 0.0f;
  float vertical = 0.0f;
};

}  // namespace vt
