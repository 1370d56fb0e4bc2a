#pragma once

#include <string>

#include "core/Box.h"
#include "core/Vector.h"

namespace vt {

class Sprite;

// Which frame of a shared sprite an object shows, and when it moves on.
class Animation {
 public:
  Animation() = default;
  virtual ~Animation() = default;
  // "sprite_name", "sprite_index" and "sprite_slowdown_count" entries, for
  // "ALL", for an attr naming "ANIMATION,", or for "" when modified; else
  // nothing. Writing them clears the modified flag.
  virtual std::string serialize(std::string attr = "");
  // Applies each of those keys that str holds; returns 0.
  virtual int deserialize(std::string str);

  // Shows the sprite from its first frame; the slowdown count is kept.
  void setSprite(Sprite* p_new_sprite);
  Sprite* getSprite() const { return p_sprite; }
  void setName(std::string new_name);
  std::string getName() const { return name; }
  void setIndex(int new_index);
  int getIndex() const { return index; }
  // -1 freezes the animation on its current frame.
  void setSlowdownCount(int new_slowdown_count) { slowdown_count = new_slowdown_count; }
  int getSlowdownCount() const { return slowdown_count; }
  bool isModified() const { return modified; }

  // Draws the current frame and steps the animation.
  int draw(Vector position);
  // The object's extent in cells, relative to its position.
  Box getBox() const;

 private:
  Sprite* p_sprite = nullptr;
  int index = 0;
  int slowdown_count = 0;
  std::string name;
  bool modified = true;
};

}  // namespace vt
