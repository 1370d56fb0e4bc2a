#include "media/Sprite.h"

#include <exception>

#include "core/LogManager.h"

namespace vt {

Sprite::Sprite(int max_frames) {
  try {
    frame.resize(static_cast<std::size_t>(max_frames < 0 ? 0 : max_frames));
    max_frame_count = max_frames < 0 ? 0 : max_frames;
  } catch (const std::exception&) {
    LogManager::getInstance().writeLog("Sprite::Sprite(): Error! Unable to allocate %d frames.",
                                       max_frames);
    max_frame_count = 0;
  }
}

int Sprite::addFrame(Frame new_frame) {
  if (frame_count == max_frame_count) return -1;
  frame[static_cast<std::size_t>(frame_count++)] = std::move(new_frame);
  return 0;
}

Frame Sprite::getFrame(int frame_number) const {
  if (frame_number < 0 || frame_number >= frame_count) return Frame();
  return frame[static_cast<std::size_t>(frame_number)];
}

int Sprite::draw(int frame_number, Vector position, char draw_transparency) const {
  return getFrame(frame_number).draw(position, color, draw_transparency);
}

}  // namespace vt
