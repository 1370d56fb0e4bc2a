#include "world/Object.h"

#include <algorithm>
#include <climits>
#include <new>

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "core/Utility.h"
#include "media/ResourceManager.h"
#include "world/EventPath.h"
#include "world/PathFind.h"
#include "world/PathManager.h"
#include "world/SceneGraph.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

int next_id = 1;

// The ids given by the constructor stay unique until the counter reaches
// INT_MAX, where it stops.
int takeNextId() {
  return next_id < INT_MAX ? next_id++ : next_id;
}

SceneGraph& sceneGraph() {
  return WorldManager::getInstance().getSceneGraph();
}

}  // namespace

Object::Object() : id(takeNextId()) {
  for (bool& flag : modified) flag = true;
  WorldManager::getInstance().insertObject(this);
}

Object::~Object() {
  // Every manager that delivers to the object lets go of it, the network
  // manager too, which an explicit unregistering of "vt-custom-network"
  // leaves alone: no manager may keep a pointer to a deleted object.
  for (auto name = event_names.rbegin(); name != event_names.rend(); ++name) {
    GameManager::managerFor(*name).unregisterInterest(this, *name);
  }
  releasePathFind();
  WorldManager::getInstance().removeObject(this);
}

void Object::releasePathFind() {
  if (p_path_find == nullptr) return;
  PathManager::getInstance().remove(p_path_find);
  delete p_path_find;
  p_path_find = nullptr;
}

void Object::setModified(int attribute, bool value) {
  modified[attribute] = value;
}

bool Object::isModified() const {
  for (const bool flag : modified) {
    if (flag) return true;
  }
  return false;
}

bool Object::isModified(int attribute) const {
  return attribute >= 0 && attribute < ATTRIBUTE_COUNT && modified[attribute];
}

int Object::peekNextId() {
  return next_id;
}

void Object::setId(int new_id) {
  if (new_id == id) return;
  id = new_id;
  if (new_id >= next_id) next_id = new_id < INT_MAX ? new_id + 1 : INT_MAX;
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

void Object::setDirection(Vector new_direction) {
  direction = new_direction;
}

void Object::setSpeed(float new_speed) {
  if (new_speed == speed) return;
  speed = new_speed;
  modified[DIRECTION] = true;
}

void Object::setVelocity(Vector velocity) {
  speed = velocity.getMagnitude();
  velocity.normalize();
  direction = velocity;
  modified[DIRECTION] = true;
  modified[SPEED] = true;
}

Vector Object::getVelocity() const {
  return direction * speed;
}

void Object::setAcceleration(Vector new_acceleration) {
  if (new_acceleration == acceleration) return;
  acceleration = new_acceleration;
  modified[ACCELERATION] = true;
}

Vector Object::predictPosition() const {
  return position + getVelocity();
}

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

Box Object::getInCellBox() const {
  const Box cells =
      animation.getSprite() == nullptr ? Box(Vector(-0.5f, -0.5f), 1.0f, 1.0f) : animation.getBox();
  return shrinkBox(cells, CELL_MARGIN);
}

int Object::fitBoxInCell() {
  return setBox(getInCellBox());
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
  if (getEventCount() == MAX_OBJ_EVENTS) {
    LogManager::getInstance().writeLog(
        "Object::registerInterest(): maximum (%d) reached, cannot register for event '%s'",
        MAX_OBJ_EVENTS, event_type.c_str());
    return -1;
  }
  if (GameManager::managerFor(event_type).registerInterest(this, event_type) != 0) return -1;
  event_names.push_back(std::move(event_type));
  modified[EVENTS] = true;
  return 0;
}

int Object::unregisterInterest(std::string event_type) {
  const auto found = std::find(event_names.begin(), event_names.end(), event_type);
  if (found == event_names.end()) {
    LogManager::getInstance().writeLog(
        "Object::unregisterInterest(): event '%s' not previously registered", event_type.c_str());
    return -1;
  }
  if (GameManager::managerFor(event_type, true).unregisterInterest(this, event_type) != 0)
    return -1;
  event_names.erase(found);
  modified[EVENTS] = true;
  return 0;
}

std::string Object::getEventName(int index) const {
  return index >= 0 && index < getEventCount() ? event_names[index] : "";
}

int Object::eventHandler(const Event* p_event) {
  if (p_event->getType() != PATH_EVENT) return 0;
  const auto* p_path_event = dynamic_cast<const EventPath*>(p_event);
  if (p_path_event == nullptr) {
    LogManager::getInstance().writeLog(
        "Object::eventHandler(): Error! Dynamic cast to EventPath failed.");
    return 0;
  }
  if (p_path_event->getStatus() == PATH_FOUND) {
    setPath(p_path_event->getPath());
    setFollowPath(true);
  }
  releasePathFind();
  return 1;
}

void Object::pathTo(Vector target, PathDirections directions) {
  releasePathFind();
  p_path_find = new (std::nothrow) PathFind(this, position, target, directions);
  if (p_path_find == nullptr) {
    LogManager::getInstance().writeLog(
        "Object::pathTo(): Error! Unable to allocate memory for PathFind.");
    return;
  }
  PathManager::getInstance().insert(p_path_find);
  if (follow_path) {
    follow_path = false;
    modified[FOLLOW_PATH] = true;
  }
  setAvoidCollisions(true);
}

void Object::pathTo(Object* p_target, PathDirections directions) {
  if (p_target == nullptr) {
    LogManager::getInstance().writeLog("Object::pathTo(): Error! Target object is NULL.");
    return;
  }
  pathTo(p_target->getPosition(), directions);
  if (p_path_find == nullptr) {
    LogManager::getInstance().writeLog("Object::pathTo(): path find not allocated!");
    return;
  }
  p_path_find->setTarget(p_target);
}

int Object::draw() {
  const Vector at = getDrawPosition();
  const int result = animation.draw(at);
  if (shape.getType() != UNDEFINED_SHAPE) shape.draw(at);
  return result;
}

Vector Object::getDrawPosition() const {
  if (!snap_to_cell) return position;
  // Frames are centred, so the first character lies half a cell inside the
  // box's corner; moving it onto its cell moves the others onto theirs.
  const Vector first = position + animation.getBox().getCorner() + Vector(0.5f, 0.5f);
  return position + (cellOf(first) - first);
}

Box getWorldBox(const Object* p_object) {
  return getWorldBox(p_object, p_object->getPosition());
}

Box getWorldBox(const Object* p_object, const Vector& where) {
  Box box = p_object->getBox();
  box.setCorner(box.getCorner() + where);
  return box;
}

}  // namespace vt
