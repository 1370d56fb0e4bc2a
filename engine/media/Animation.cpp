#include "media/Animation.h"

#include "media/Sprite.h"

namespace vt {

void Animation::setSprite(Sprite* p_new_sprite) {
  if (p_new_sprite != nullptr) setName(p_new_sprite->getLabel());
  p_sprite = p_new_sprite;
  setIndex(0);
  modified = true;
}

void Animation::setName(std::string new_name) {
  if (new_name == name) return;
  name = std::move(new_name);
  modified = true;
}

void Animation::setIndex(int new_index) {
  if (new_index == index) return;
  index = new_index;
  modified = true;
}

int Animation::draw(Vector position) {
  if (p_sprite == nullptr) return 0;
  const int result = p_sprite->draw(index, position, p_sprite->getTransparency());
  if (slowdown_count == -1) return result;
  slowdown_count++;
  if (slowdown_count < p_sprite->getSlowdown()) return result;
  slowdown_count = 0;
  index++;
  if (index >= p_sprite->getFrameCount()) index = 0;
  return result;
}

Box Animation::getBox() const {
  if (p_sprite == nullptr) return Box(Vector(-0.5f, -0.5f), 0.99f, 0.99f);
  const float width = static_cast<float>(p_sprite->getWidth());
  const float height = static_cast<float>(p_sprite->getHeight());
  return Box(Vector(-width / 2, -height / 2), width, height);
}

}  // namespace vt
