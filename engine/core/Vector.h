#pragma once

#include <string>

namespace vt {

// A 2-D vector of floats, in world cells unless a caller says pixels.
class Vector {
 public:
  Vector() = default;
  Vector(float init_x, float init_y) : x(init_x), y(init_y) {}

  float getX() const { return x; }
  float getY() const { return y; }
  void setX(float new_x) { x = new_x; }
  void setY(float new_y) { y = new_y; }
  void setXY(float new_x, float new_y) {
    x = new_x;
    y = new_y;
  }

  float getMagnitude() const;
  // Scales to length 1; a zero vector stays zero.
  void normalize();
  void scale(float s);
  bool isZero() const { return x == 0.0f && y == 0.0f; }

  Vector operator+(const Vector& other) const { return {x + other.x, y + other.y}; }
  Vector operator-(const Vector& other) const { return {x - other.x, y - other.y}; }
  Vector operator*(float s) const { return {x * s, y * s}; }
  Vector& operator+=(const Vector& other);
  bool operator==(const Vector& other) const { return x == other.x && y == other.y; }
  bool operator!=(const Vector& other) const { return !(*this == other); }

  // "(x,y)" with the stream's default float formatting.
  std::string toString() const;

 private:
  float x = 0.0f;
  float y = 0.0f;
};

}  // namespace vt
