#include "media/Frame.h"

#include "media/DisplayManager.h"

namespace vt {

int Frame::draw(Vector position, Color color, char transparency) const {
  if (frame_str.empty()) return 0;
  // Even sizes put the characters on half cells.
  const float x_offset = (width - 1) / 2.0f;
  const float y_offset = (height - 1) / 2.0f;
  DisplayManager& display_manager = DisplayManager::getInstance();
  for (int y = 0; y < height; y++) {
    for (int x = 0; x < width; x++) {
      const char ch = frame_str[static_cast<std::size_t>(y * width + x)];
      if (transparency != 0 && ch == transparency) continue;
      const Vector cell(position.getX() + x - x_offset, position.getY() + y - y_offset);
      if (display_manager.drawCh(cell, ch, color) != 0) return -1;
    }
  }
  return 0;
}

}  // namespace vt
