#include "media/Shape.h"

#include <SFML/Graphics.hpp>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"

namespace vt {

namespace {

// One shape serves every draw. Its rotation is set for squares and never
// reset, so later circles and triangles are turned by 45 degrees too.
sf::CircleShape& sharedShape() {
  static sf::CircleShape shape(0.0f, 30);
  return shape;
}

}  // namespace

void Shape::setRGB(unsigned char new_r, unsigned char new_g, unsigned char new_b) {
  r = new_r;
  g = new_g;
  b = new_b;
}

void Shape::setType(int new_type) {
  if (new_type < UNDEFINED_SHAPE || new_type > TRIANGLE) {
    LogManager::getInstance().writeLog("Shape::setType(): Unknown shape type %d. Ignoring.",
                                       new_type);
    return;
  }
  type = new_type;
}

// A terminal shows a shape as one cell in its colour.
char Shape::cellCharacter() const {
  switch (type) {
    case CIRCLE:
      return 'o';
    case SQUARE:
      return '#';
    case TRIANGLE:
      return '^';
    default:
      return ' ';
  }
}

void Shape::draw(Vector world_position) {
  DisplayManager& display_manager = DisplayManager::getInstance();
  if (color != CUSTOM) colorToRGB(color, r, g, b);
  if (display_manager.isTerminal()) {
    if (type != UNDEFINED_SHAPE) display_manager.drawCh(world_position, cellCharacter(), r, g, b);
    return;
  }
  if (display_manager.getWindow() == nullptr) {
    LogManager::getInstance().writeLog(5, "Shape::draw(): DisplayManager window not defined.");
    return;
  }
  const Vector pixels = spacesToPixels(worldToView(world_position));
  const float px = pixels.getX();
  const float py = pixels.getY();
  sf::CircleShape& shape = sharedShape();
  shape.setFillColor(sf::Color(r, g, b, opacity));
  switch (type) {
    case CIRCLE: {
      const float points = size < 3 ? 3 : (size > 10 ? 10 : size);
      shape.setPointCount(static_cast<std::size_t>(points));
      shape.setRadius(size);
      shape.setPosition(px - size / 2, py - size / 2);
      break;
    }
    case SQUARE:
      shape.setPointCount(4);
      shape.setRadius(size / 2);
      shape.setRotation(45.0f);
      shape.setRadius(size / Config::getInstance().getFontScale());
      shape.setPosition(px + size / 2, py - size / 1.75f);
      break;
    case TRIANGLE:
      shape.setPointCount(3);
      shape.setRadius(size / 2);
      shape.setPosition(px - size / 2, py - size / 2);
      break;
    default:
      return;
  }
  LogManager::getInstance().writeLog(20, "Shape::draw(): Drawing at (%.2f, %.2f)",
                                     static_cast<double>(px), static_cast<double>(py));
  display_manager.drawDrawable(shape);
}

}  // namespace vt
