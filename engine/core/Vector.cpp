#include "core/Vector.h"

#include <cmath>

#include "core/Utility.h"

namespace vt {

float Vector::getMagnitude() const {
  const double dx = x;
  const double dy = y;
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

void Vector::normalize() {
  const float length = getMagnitude();
  if (length > 0.0f) {
    x /= length;
    y /= length;
  }
}

void Vector::scale(float s) {
  x *= s;
  y *= s;
}

Vector& Vector::operator+=(const Vector& other) {
  x += other.x;
  y += other.y;
  return *this;
}

std::string Vector::toString() const {
  return "(" + vt::toString(x) + "," + vt::toString(y) + ")";
}

}  // namespace vt
