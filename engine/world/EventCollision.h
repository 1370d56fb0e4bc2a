#pragma once

#include "core/Event.h"
#include "core/Vector.h"

namespace vt {

class Object;

// Two solid objects met: obj1 moved into obj2 at position.
class EventCollision : public Event {
 public:
  EventCollision() { setType(COLLISION_EVENT); }
  EventCollision(Object* p_init_obj1, Object* p_init_obj2, Vector init_position)
      : position(init_position), p_obj1(p_init_obj1), p_obj2(p_init_obj2) {
    setType(COLLISION_EVENT);
  }

  void setPosition(Vector new_position) { position = new_position; }
  Vector getPosition() const { return position; }
  void setObject1(Object* p_new_obj1) { p_obj1 = p_new_obj1; }
  Object* getObject1() const { return p_obj1; }
  void setObject2(Object* p_new_obj2) { p_obj2 = p_new_obj2; }
  Object* getObject2() const { return p_obj2; }

 private:
  Vector position;
  Object* p_obj1 = nullptr;
  Object* p_obj2 = nullptr;
};

}  // namespace vt
