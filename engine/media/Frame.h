#pragma once

#include <string>

#include "core/Color.h"
#include "core/Vector.h"

namespace vt {

// One picture of a sprite: width x height characters, rows concatenated.
// An empty string marks an empty (invalid) frame.
class Frame {
 public:
  Frame() = default;
  Frame(int init_width, int init_height, std::string init_frame_str)
      : width(init_width), height(init_height), frame_str(std::move(init_frame_str)) {}

  int getWidth() const { return width; }
  void setWidth(int new_width) { width = new_width; }
  int getHeight() const { return height; }
  void setHeight(int new_height) { height = new_height; }
  std::string getString() const { return frame_str; }
  void setString(std::string new_frame_str) { frame_str = std::move(new_frame_str); }

  // Draws the frame centred on position, skipping the transparent character
  // (0 for none). Returns -1 as soon as the display refuses a character.
  int draw(Vector position, Color color, char transparency) const;

 private:
  int width = 0;
  int height = 0;
  std::string frame_str;
};

}  // namespace vt
