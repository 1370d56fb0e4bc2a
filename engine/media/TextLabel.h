#pragma once

#include <string>

#include "core/Color.h"
#include "media/DisplayManager.h"
#include "world/Object.h"

namespace vt {

// A line of text in the world, in one colour, drawn at the object's
// position and altitude: from the position rightwards, centred on it, or
// ending before it, as justified. Unlike a view object it has no border or
// value and lies in world coordinates, so it scrolls with the view. It is
// SPECTRAL, of type "TextLabel", and its box covers its characters.
class TextLabel : public Object {
 public:
  explicit TextLabel(Vector position = Vector(), std::string init_text = "",
                     Color init_color = WHITE);

  void setText(std::string new_text);
  std::string getText() const { return text; }
  void setColor(Color new_color) { color = new_color; }
  Color getColor() const { return color; }
  void setJustification(Justification new_justification);
  Justification getJustification() const { return justification; }

  int draw() override;

 private:
  // The box over the characters, where the display puts them.
  void fitBoxToText();

  std::string text;
  Color color;
  Justification justification = LEFT_JUSTIFIED;
};

}  // namespace vt
