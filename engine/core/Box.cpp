#include "core/Box.h"

#include "core/Utility.h"
#include "media/DisplayManager.h"

namespace vt {

std::string Box::toString() const {
  return corner.toString() + " h: " + vt::toString(horizontal) + " v: " + vt::toString(vertical);
}

void Box::draw() const {
  const Vector right = corner + Vector(horizontal, 0.0f);
  const Vector below = corner + Vector(0.0f, vertical);
  const Vector far = corner + Vector(horizontal, vertical);
  DisplayManager& display_manager = DisplayManager::getInstance();
  display_manager.drawLine(corner, right);
  display_manager.drawLine(right, far);
  display_manager.drawLine(far, below);
  display_manager.drawLine(below, corner);
}

}  // namespace vt
