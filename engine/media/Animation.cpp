#include "media/Animation.h"

#include "core/LogManager.h"
#include "core/Match.h"
#include "core/Utility.h"
#include "media/ResourceManager.h"
#include "media/Sprite.h"

namespace vt {

namespace {

const char* const DESERIALIZE = "Animation::deserialize()";

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
  // An empty text would make match search the last text it parsed.
  if (str.empty()) return 0;
  const LogManager& log_manager = LogManager::getInstance();
  const std::string sprite_name = match(str, "sprite_name");
  if (!sprite_name.empty()) {
    log_manager.writeLog(20, "Animation::deserialize(): sprite_name is '%s'", sprite_name.c_str());
    Sprite* p_found = ResourceManager::getInstance().getSprite(sprite_name);
    if (p_found == nullptr) {
      log_manager.writeLog("Animation::Match(): Sprite '%s' not found", sprite_name.c_str());
    } else {
      setSprite(p_found);
    }
    setName(sprite_name);
  }
  const std::string index_text = match("", "sprite_index");
  if (!index_text.empty()) {
    checkSavedValue(DESERIALIZE, "sprite_index", index_text, ValueKind::INT);
    const int new_index = readInt(index_text);
    log_manager.writeLog(20, "Animation::deserialize(): sprite_index is %d", new_index);
    setIndex(new_index);
  }
  const std::string count_text = match("", "sprite_slowdown_count");
  if (!count_text.empty()) {
    checkSavedValue(DESERIALIZE, "sprite_slowdown_count", count_text, ValueKind::INT);
    const int new_count = readInt(count_text);
    log_manager.writeLog(20, "Animation::deserialize(): sprite_slowdown_count is %d", new_count);
    setSlowdownCount(new_count);
  }
  return 0;
}

}  // namespace vt
