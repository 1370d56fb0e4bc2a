#include "media/Animation.h"

#include "core/KeyReader.h"
#include "core/LogManager.h"
#include "core/Utility.h"
#include "media/ResourceManager.h"
#include "media/Sprite.h"

namespace vt {

namespace {

constexpr KeyReader READER("Animation::deserialize()");

}  // namespace

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
  // Counted in a wider type, so that no slowdown or count overflows.
  if (static_cast<long long>(slowdown_count) + 1 < p_sprite->getSlowdown()) {
    slowdown_count++;
    return result;
  }
  slowdown_count = 0;
  index = index < p_sprite->getFrameCount() - 1 ? index + 1 : 0;
  return result;
}

Box Animation::getBox() const {
  if (p_sprite == nullptr) return Box(Vector(-0.5f, -0.5f), 0.99f, 0.99f);
  const float width = static_cast<float>(p_sprite->getWidth());
  const float height = static_cast<float>(p_sprite->getHeight());
  return Box(Vector(-width / 2, -height / 2), width, height);
}

std::string Animation::serialize(std::string attr) {
  if (!groupSelected(attr, "ANIMATION,", modified)) return "";
  modified = false;
  return "sprite_name:" + name + ",sprite_index:" + toString(index) +
         ",sprite_slowdown_count:" + toString(slowdown_count) + ",";
}

int Animation::deserialize(std::string str) {
  if (!READER.parse(str)) return 0;
  std::string sprite_name;
  if (READER.readText("sprite_name", sprite_name, true)) {
    Sprite* p_found = ResourceManager::getInstance().getSprite(sprite_name);
    if (p_found == nullptr) {
      LogManager::getInstance().writeLog("Animation::Match(): Sprite '%s' not found",
                                         sprite_name.c_str());
    } else {
      setSprite(p_found);
    }
    setName(sprite_name);
  }
  int number = 0;
  if (READER.readInt("sprite_index", number)) setIndex(number);
  if (READER.readInt("sprite_slowdown_count", number)) setSlowdownCount(number);
  return 0;
}

}  // namespace vt
