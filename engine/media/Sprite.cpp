#include "media/Sprite.h"

#include <exception>

#include "core/LogManager.h"

namespace vt {

Sprite::Sprite(int max_frames) : max_frame_count(max_frames < 0 ? 0 : max_frames) {}

int Sprite::addFrame(Frame new_frame) {
  if (frame_count == max_frame_count) return -1;
  try {
    frame.push_back(std::move(new_frame));
  } catch (const std::exception&) {
    LogManager::getInstance().writeLog("Sprite::addFrame(): Error! Unable to allocate frame %d.",
                                       frame_count + 1);
    return -1;
  }
  frame_count++;
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
