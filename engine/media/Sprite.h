#pragma once

#include <string>
#include <vector>

#include "core/Color.h"
#include "core/Vector.h"
#include "media/Frame.h"

namespace vt {

// An ordered list of frames of one size, drawn in one colour. Owned by the
// resource manager; objects point at it.
class Sprite {
 public:
  // Room for max_frames frames; the frame table grows only as frames are
  // added, so a large capacity costs nothing by itself.
  explicit Sprite(int max_frames);
  Sprite(const Sprite&) = delete;
  Sprite& operator=(const Sprite&) = delete;
  // Moving one sprite into another replaces its frames where objects
  // point at it: how a sprite file is read again while the game runs.
  Sprite(Sprite&&) = default;
  Sprite& operator=(Sprite&&) = default;

  int getWidth() const { return width; }
  void setWidth(int new_width) { width = new_width; }
  int getHeight() const { return height; }
  void setHeight(int new_height) { height = new_height; }
  Color getColor() const { return color; }
  void setColor(Color new_color) { color = new_color; }
  int getFrameCount() const { return frame_count; }
  int getMaxFrameCount() const { return max_frame_count; }
  int getSlowdown() const { return slowdown; }
  void setSlowdown(int new_slowdown) { slowdown = new_slowdown; }
  char getTransparency() const { return transparency; }
  void setTransparency(char new_transparency) { transparency = new_transparency; }
  std::string getLabel() const { return label; }
  void setLabel(std::string new_label) { label = std::move(new_label); }
  // The file the sprite was loaded from, "" for a sprite made in code.
  std::string getFileName() const { return file_name; }
  void setFileName(std::string new_file_name) { file_name = std::move(new_file_name); }

  // Appends a copy; -1 when the sprite is full.
  int addFrame(Frame new_frame);
  // A copy of the frame, or an empty frame when the number is out of range.
  Frame getFrame(int frame_number) const;
  int draw(int frame_number, Vector position, char draw_transparency) const;

 private:
  int width = 0;
  int height = 0;
  int max_frame_count = 0;
  int frame_count = 0;
  Color color = WHITE;
  int slowdown = 1;
  char transparency = 0;
  std::vector<Frame> frame;
  std::string label = "[Undefined]";
  std::string file_name;
};

}  // namespace vt
