#pragma once

#include "core/Color.h"
#include "core/Vector.h"

namespace vt {

enum ShapeType {
  UNDEFINED_SHAPE = -1,
  CIRCLE = 0,
  SQUARE,
  TRIANGLE,
};

// A small filled figure drawn with the window's own shapes at a world
// position, sized in pixels. A terminal shows it as one cell: 'o' for a
// circle, '#' for a square, '^' for a triangle.
class Shape {
 public:
  Color getColor() const { return color; }
  void setColor(Color new_color) { color = new_color; }
  // The fill used as it is when the colour is CUSTOM.
  void setRGB(unsigned char new_r, unsigned char new_g, unsigned char new_b);
  unsigned char getR() const { return r; }
  unsigned char getG() const { return g; }
  unsigned char getB() const { return b; }
  int getType() const { return type; }
  // Accepts UNDEFINED_SHAPE, CIRCLE, SQUARE and TRIANGLE only.
  void setType(int new_type);
  float getSize() const { return size; }
  void setSize(float new_size) { size = new_size; }
  unsigned char getOpacity() const { return opacity; }
  void setOpacity(unsigned char new_opacity) { opacity = new_opacity; }

  void draw(Vector world_position);

 private:
  char cellCharacter() const;

  Color color = WHITE;
  unsigned char r = 255;
  unsigned char g = 255;
  unsigned char b = 255;
  int type = UNDEFINED_SHAPE;
  float size = 1.0f;
  unsigned char opacity = 255;
};

}  // namespace vt
