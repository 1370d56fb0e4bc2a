#include "world/Object.h"

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/NetworkManager.h"
#include "media/InputManager.h"
#include "media/ResourceManager.h"
#include "world/SceneGraph.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

int next_id = 1;

// The manager that delivers events of this type. Unregistering from
// "vt-custom-network" goes to the world manager, unlike registering for it.
Manager& managerFor(const std::string& event_type, bool unregistering = false) {
  if (event_type == STEP_EVENT) return GameManager::getInstance();
  if (event_type == KEYBOARD_EVENT || event_type == MOUSE_EVENT) {
    return InputManager::getInstance();
  }
  if (event_type == NETWORK_EVENT || event_type == KEYBOARD_NETWORK_EVENT ||
      event_type == MOUSE_NETWORK_EVENT || (event_type == CUSTOM_NETWORK_EVENT && !unregistering)) {
    return NetworkManager::getInstance();
  }
  return WorldManager::getInstance();
}

SceneGraph& sceneGraph() { return WorldManager::getInstance().getSceneGraph(); }

}  // namespace

Object::Object() : id(next_id++) {
  for (bool& flag : modified) flag = true;
  WorldManager::getInstance().insertObject(this);
}

Object::~Object() {
  for (int i = event_count - 1; i >= 0; i--) unregisterInterest(event_name[i]);
  WorldManager::getInstance().removeObject(this);
}

void Object::setModified(int attribute, bool value) { modified[attribute] = value; }

bool Object::isModified() const {
  for (const bool flag : modified) {
    if (flag) return true;
  }
  return false;
}

bool Object::isModified(int attribute) const {
  return attribute >= 0 && attribute < ATTRIBUTE_COUNT && modified[attribute];
}

void Object::setId(int new_id) {
  if (new_id == id) return;
  id = new_id;
  if (new_id >= next_id) next_id = new_id + 1;
  modified[ID] = true;
}

int Object::setType(std::string new_type) {
  if (new_type == type) return 0;
  if (sceneGraph().updateType(this, new_type) != 0) return -1;
  type = std::move(new_type);
  modified[TYPE] = true;
  return 0;
}

int Object::setActive(bool active) {
  if (active == is_active) return 0;
  if (sceneGraph().updateActive(this, active) != 0) return -1;
  is_active = active;
  modified[ACTIVE] = true;
  return 0;
}

int Object::setVisible(bool visible) {
  if (visible == is_visible) return 0;
  if (sceneGraph().updateVisible(this, visible) != 0) return -1;
  is_visible = visible;
  modified[VISIBLE] = true;
  return 0;
}

int Object::setAltitude(int new_altitude) {
  if (new_altitude == altitude) return 0;
  if (new_altitude < MIN_ALTITUDE || new_altitude > MAX_ALTITUDE) {
    LogManager::getInstance().writeLog(
        "Object::setAltitude(): Altitude %d not in range [%d,%d].  Ignored.", new_altitude,
        MIN_ALTITUDE, MAX_ALTITUDE);
    return -1;
  }
  if (sceneGraph().updateAltitude(this, new_altitude) != 0) return -1;
  altitude = new_altitude;
  modified[ALTITUDE] = true;
  return 0;
}

int Object::setSolidness(Solidness new_solidness) {
  if (new_solidness == solidness) return 0;
  if (new_solidness != HARD && new_solidness != SOFT && new_solidness != SPECTRAL) {
    LogManager::getInstance().writeLog(
        "Object::setSolidness(): Solidness %d not one of HARD, SOFT or SPECTRAL.",
        static_cast<int>(new_solidness));
    return -1;
  }
  if (sceneGraph().updateSolidness(this, new_solidness) != 0) return -1;
  solidness = new_solidness;
  modified[SOLIDNESS] = true;
  return 0;
}

int Object::setNoSoft(bool new_no_soft) {
  if (new_no_soft == no_soft) return 0;
  no_soft = new_no_soft;
  modified[NO_SOFT] = true;
  return 0;
}

int Object::setAvoidCollisions(bool new_avoid_collisions) {
  if (new_avoid_collisions == avoid_collisions) return 0;
  avoid_collisions = new_avoid_collisions;
  modified[AVOID_COLLISIONS] = true;
  return 0;
}

int Object::setBox(Box new_box) {
  if (new_box == box) return 0;
  // Out and back in, so that the scene graph sees the object's new extent.
  sceneGraph().removeObject(this);
  box = new_box;
  sceneGraph().insertObject(this);
  modified[BOX] = true;
  return 0;
}

int Object::setPosition(Vector new_position) {
  if (new_position == position) return 0;
  sceneGraph().updatePosition(this, new_position);
  position = new_position;
  modified[POSITION] = true;
  return 0;
}

void Object::setDirection(Vector new_direction) { direction = new_direction; }

void Object::setSpeed(float new_speed) {
  if (new_speed == speed) return;
  speed = new_speed;
  modified[DIRECTION] = true;
}

void Object::setVelocity(Vector velocity) {
  if (velocity == getVelocity()) return;
  speed = velocity.getMagnitude();
  velocity.normalize();
  direction = velocity;
  modified[DIRECTION] = true;
  modified[SPEED] = true;
}

Vector Object::getVelocity() const { return direction * speed; }

void Object::setAcceleration(Vector new_acceleration) {
  if (new_acceleration == acceleration) return;
  acceleration = new_acceleration;
  modified[ACCELERATION] = true;
}

Vector Object::predictPosition() const { return position + getVelocity(); }

int Object::setAnimation(Animation new_animation, bool set_box) {
  animation = new_animation;
  modified[ANIMATION] = true;
  if (set_box) {
    box = animation.getBox();
    sceneGraph().updateExtent(this);
    modified[BOX] = true;
  }
  return 0;
}

int Object::setSprite(std::string sprite_label) {
  Sprite* p_sprite = ResourceManager::getInstance().getSprite(sprite_label);
  if (p_sprite == nullptr) {
    LogManager::getInstance().writeLog("Object::setSprite(): Warning! Sprite '%s' not found",
                                       sprite_label.c_str());
    return -1;
  }
  animation.setSprite(p_sprite);
  setBox(animation.getBox());
  return 0;
}

void Object::setShape(Shape new_shape) {
  shape = new_shape;
  modified[SHAPE] = true;
}

void Object::setPath(std::list<Vector> new_path) {
  path = std::move(new_path);
  modified[PATH] = true;
}

void Object::setFollowPath(bool new_follow_path) {
  follow_path = new_follow_path;
  if (!path.empty()) pointAtFirstWaypoint();
  modified[FOLLOW_PATH] = true;
}

void Object::pointAtFirstWaypoint() {
  Vector heading = path.front() - position;
  heading.normalize();
  direction = heading;
}

void Object::stepPath() {
  if (!follow_path) return;
  while (true) {
    if (path.empty()) {
      setDirection(Vector());
      setFollowPath(false);
      return;
    }
    const Vector waypoint = path.front();
    if ((waypoint - position).getMagnitude() > 0.75f * speed) break;
    setPosition(waypoint);
    path.pop_front();
    modified[PATH] = true;
  }
  pointAtFirstWaypoint();
}

void Object::applyAcceleration() {
  if (acceleration.isZero()) return;
  setVelocity(getVelocity() + acceleration);
}

int Object::registerInterest(std::string event_type) {
  if (event_count == MAX_OBJ_EVENTS) {
    LogManager::getInstance().writeLog(
        "Object::registerInterest(): maximum (%d) reached, cannot register for event '%s'",
        MAX_OBJ_EVENTS, event_type.c_str());
    return -1;
  }
  if (managerFor(event_type).registerInterest(this, event_type) != 0) return -1;
  event_name[event_count++] = std::move(event_type);
  modified[EVENTS] = true;
  return 0;
}

int Object::unregisterInterest(std::string event_type) {
  int index = 0;
  while (index < event_count && event_name[index] != event_type) index++;
  if (index == event_count) {
    LogManager::getInstance().writeLog(
        "Object::unregisterInterest(): event '%s' not previously registered", event_type.c_str());
    return -1;
  }
  if (managerFor(event_type, true).unregisterInterest(this, event_type) != 0) return -1;
  for (int i = index; i < event_count - 1; i++) event_name[i] = std::move(event_name[i + 1]);
  event_count--;
  event_name[event_count].clear();
  modified[EVENTS] = true;
  return 0;
}

std::string Object::getEventName(int index) const {
  return index >= 0 && index < event_count ? event_name[index] : "";
}

int Object::eventHandler(const Event*) { return 0; }

int Object::draw() {
  const int result = animation.draw(position);
  if (shape.getType() != UNDEFINED_SHAPE) shape.draw(position);
  return result;
}

}  // namespace vt
