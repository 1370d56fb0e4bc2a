#include "world/WorldManager.h"

#include <cmath>

#include "core/LogManager.h"
#include "core/Utility.h"
#include "media/ViewObject.h"
#include "world/EventCollision.h"
#include "world/EventOut.h"

namespace vt {

WorldManager::WorldManager() {
  setType("WorldManager");
}

WorldManager& WorldManager::getInstance() {
  static WorldManager world_manager;
  return world_manager;
}

bool WorldManager::isValid(std::string event_type) const {
  const LogManager& log_manager = LogManager::getInstance();
  if (event_type == KEYBOARD_EVENT || event_type == MOUSE_EVENT || event_type == STEP_EVENT) {
    log_manager.writeLog("WorldManager::isValid(): WorldManager does not handle %s",
                         event_type.c_str());
    return false;
  }
  if (event_type == OUT_EVENT || event_type == COLLISION_EVENT) {
    log_manager.writeLog("WorldManager::isValid(): Event %s handled automatically.",
                         event_type.c_str());
    return false;
  }
  return true;
}

int WorldManager::startUp() {
  const LogManager& log_manager = LogManager::getInstance();
  if (alreadyStarted()) return -1;
  deletions.clear();
  boundary = Box();
  view = Box();
  view_slack = Vector();
  p_view_following = nullptr;
  if (scene_graph.startUp() != 0) {
    return failStart(
        log_manager.writeLogText("WorldManager::startUp(): Error! Unable to startup Scenegraph"));
  }
  Manager::startUp();
  log_manager.writeLog(5, "WorldManager::startUp(): successfully started.");
  return 0;
}

void WorldManager::shutDown() {
  // Destructors may create objects (a burst of particles, say): those are
  // deleted in the next round. The rounds are bounded in case a destructor
  // keeps creating.
  const int MAX_ROUNDS = 10;
  for (int round = 0; round < MAX_ROUNDS; round++) {
    const ObjectList everything = getAllObjects(true);
    if (everything.isEmpty()) break;
    for (Object* p_object : everything) delete p_object;
  }
  Manager::shutDown();
  deletions.clear();
  p_view_following = nullptr;
  scene_graph.shutDown();
  LogManager::getInstance().writeLog(5, "WorldManager::shutDown(): Successfully stopped.");
}

int WorldManager::insertObject(Object* p_object) {
  if (!isStarted()) {
    const LogManager& log_manager = LogManager::getInstance();
    log_manager.writeLog(2, "WorldManager::insertObject(): Warning! Not adding Object %d",
                         p_object->getId());
    log_manager.writeLog(2, "                              because WorldManager not started.");
    return -1;
  }
  return scene_graph.insertObject(p_object);
}

int WorldManager::removeObject(Object* p_object) {
  if (p_object == p_view_following) p_view_following = nullptr;
  return scene_graph.removeObject(p_object);
}

ObjectList WorldManager::getAllObjects(bool inactive_too) const {
  ObjectList all = scene_graph.activeObjects();
  if (inactive_too) all += scene_graph.inactiveObjects();
  return all;
}

ObjectList WorldManager::objectsOfType(std::string type) const {
  return scene_graph.objectsOfType(type);
}

Object* WorldManager::objectWithId(int id) const {
  for (Object* p_object : getAllObjects(true)) {
    if (p_object->getId() == id) return p_object;
  }
  return nullptr;
}

int WorldManager::markForDelete(Object* p_object) {
  if (deletions.contains(p_object)) return 0;
  return deletions.insert(p_object);
}

int WorldManager::markForDelete(const ObjectList& list) {
  int result = 0;
  for (Object* p_object : list) {
    if (markForDelete(p_object) != 0) result = -1;
  }
  return result;
}

void WorldManager::update() {
  const ObjectList movers = scene_graph.activeObjects();
  for (Object* p_object : movers) {
    const Vector new_position = p_object->predictPosition();
    if (new_position != p_object->getPosition()) moveObject(p_object, new_position);
    p_object->stepPath();
    p_object->applyAcceleration();
  }
  // Destructors may mark further objects: they join the end of the list and
  // go in this same pass, while deleted ones stay listed until the end so
  // that marking them again is a no-op.
  for (int i = 0; i < deletions.getCount(); i++) delete deletions[i];
  deletions.clear();
}

void WorldManager::draw() {
  for (int altitude = MIN_ALTITUDE; altitude <= MAX_ALTITUDE; altitude++) {
    const ObjectList layer = scene_graph.visibleObjects(altitude);
    for (Object* p_object : layer) {
      if (boxIntersectsBox(getWorldBox(p_object), view) ||
          dynamic_cast<ViewObject*>(p_object) != nullptr) {
        p_object->draw();
      }
    }
  }
}

ObjectList WorldManager::getCollisions(const Object* p_object, Vector where) const {
  return scene_graph.solidObjectsIn(getWorldBox(p_object, where), p_object);
}

bool WorldManager::slideAroundObstacle(Object* p_object, Vector& where,
                                       ObjectList& collisions) const {
  Object* p_obstacle = nullptr;
  for (Object* p_other : collisions) {
    if (p_other->getSolidness() == HARD) {
      p_obstacle = p_other;
      break;
    }
  }
  if (p_obstacle == nullptr) return true;
  const Vector normal = getNormal(p_object, p_obstacle);
  const Vector tangent(normal.getY(), normal.getX());
  const Vector velocity = p_object->getVelocity();
  float a = velocity.getX() * std::fabs(tangent.getX());
  const float b = velocity.getY() * std::fabs(tangent.getY());
  if (std::fabs(normal.getX()) == 1.0f && std::fabs(normal.getY()) == 1.0f) a = -a;
  Vector slide(a, b);
  slide.normalize();
  where = p_object->getPosition() + slide * p_object->getSpeed();
  collisions = getCollisions(p_object, where);
  for (const Object* p_other : collisions) {
    if (p_other->getSolidness() == HARD) {
      LogManager::getInstance().writeLog(
          5, "WorldManager::moveObject(): Double collision. Object (avoid obstacles) cannot move.");
      return false;
    }
  }
  return true;
}

int WorldManager::moveObject(Object* p_object, Vector where) {
  if (p_object->isSolid()) {
    ObjectList collisions = getCollisions(p_object, where);
    if (!collisions.isEmpty() && p_object->getSolidness() == HARD &&
        p_object->getAvoidCollisions() && !slideAroundObstacle(p_object, where, collisions)) {
      return -1;
    }
    bool do_move = true;
    for (Object* p_other : collisions) {
      const EventCollision collision(p_object, p_other, where);
      p_object->eventHandler(&collision);
      p_other->eventHandler(&collision);
      if (p_object->getSolidness() == HARD && p_other->getSolidness() == HARD) do_move = false;
      if (p_object->getNoSoft() && p_other->getSolidness() == SOFT) do_move = false;
    }
    if (!collisions.isEmpty() && !do_move) return -1;
  }
  const Box original_box = getWorldBox(p_object);
  p_object->setPosition(where);
  const Box new_box = getWorldBox(p_object);
  if (boxIntersectsBox(original_box, boundary) && !boxIntersectsBox(new_box, boundary)) {
    const EventOut out_event;
    p_object->eventHandler(&out_event);
  }
  if (p_object == p_view_following) followWithView(p_object);
  return 0;
}

void WorldManager::followWithView(const Object* p_object) {
  const float width = view.getHorizontal();
  const float height = view.getVertical();
  Vector center = view.getCorner() + Vector(width / 2, height / 2);
  const float half_zone_x = width * view_slack.getX() / 2;
  const float half_zone_y = height * view_slack.getY() / 2;
  const Vector position = p_object->getPosition();
  const float left = center.getX() - half_zone_x;
  const float right = center.getX() + half_zone_x;
  const float top = center.getY() - half_zone_y;
  const float bottom = center.getY() + half_zone_y;
  if (position.getX() < left) center.setX(center.getX() - (left - position.getX()));
  if (position.getX() > right) center.setX(center.getX() + (position.getX() - right));
  if (position.getY() < top) center.setY(center.getY() - (top - position.getY()));
  if (position.getY() > bottom) center.setY(center.getY() + (position.getY() - bottom));
  setViewPosition(center);
}

void WorldManager::setViewPosition(Vector where) {
  float x = where.getX() - view.getHorizontal() / 2;
  if (x + view.getHorizontal() > boundary.getHorizontal()) {
    x = boundary.getHorizontal() - view.getHorizontal();
  }
  if (x < 0) x = 0;
  float y = where.getY() - view.getVertical() / 2;
  if (y + view.getVertical() > boundary.getVertical())
    y = boundary.getVertical() - view.getVertical();
  if (y < 0) y = 0;
  view.setCorner(Vector(x, y));
}

int WorldManager::setViewFollowing(Object* p_new_view_following) {
  if (p_new_view_following == nullptr) {
    p_view_following = nullptr;
    return 0;
  }
  if (!scene_graph.activeObjects().contains(p_new_view_following) &&
      !scene_graph.inactiveObjects().contains(p_new_view_following)) {
    return -1;
  }
  p_view_following = p_new_view_following;
  setViewPosition(p_view_following->getPosition());
  return 0;
}

void WorldManager::setViewSlack(Vector new_view_slack) {
  if (!valueInRange(new_view_slack.getX(), 0, 1) || !valueInRange(new_view_slack.getY(), 0, 1)) {
    LogManager::getInstance().writeLog(
        "WorldManager::setViewSlack(): Warning! view slack units out of range [0-1]");
  }
  view_slack = new_view_slack;
}

template <typename Test>
ObjectList WorldManager::activeObjectsWhere(Test test) const {
  ObjectList selected;
  for (Object* p_object : scene_graph.activeObjects()) {
    if (test(getWorldBox(p_object))) selected.insert(p_object);
  }
  return selected;
}

ObjectList WorldManager::objectsAtPosition(Vector where) const {
  const Box cell(where - Vector(0.5f, 0.5f), 0.99f, 0.99f);
  return objectsInBox(cell);
}

ObjectList WorldManager::objectsInCell(Vector where) const {
  const Box cell(cellOf(where) - Vector(0.5f, 0.5f), 1.0f, 1.0f);
  return objectsInBox(shrinkBox(cell, CELL_MARGIN));
}

ObjectList WorldManager::objectsInBox(Box box) const {
  return activeObjectsWhere(
      [&box](const Box& object_box) { return boxIntersectsBox(object_box, box); });
}

ObjectList WorldManager::objectsInCircle(Circle circle) const {
  return activeObjectsWhere(
      [&circle](const Box& object_box) { return boxIntersectsCircle(object_box, circle); });
}

ObjectList WorldManager::objectsOnLine(Line line) const {
  return activeObjectsWhere(
      [&line](const Box& object_box) { return boxIntersectsLine(object_box, line); });
}

Vector getNormal(const Object* p, const Object* q) {
  const Box q_box = getWorldBox(q);
  float fraction = 0.5f;
  Vector velocity = p->getVelocity();
  Vector last_free = p->getPosition();
  for (int i = 1; i <= 7; i++) {
    // The scaling accumulates from one try to the next.
    velocity.scale(fraction);
    const Vector trial = p->getPosition() + velocity;
    const float step = std::pow(0.5f, static_cast<float>(i));
    if (!boxIntersectsBox(getWorldBox(p, trial), q_box)) {
      last_free = trial;
      fraction += step;
    } else {
      fraction -= step;
    }
  }
  const Box p_box = getWorldBox(p, last_free);
  const float x = q_box.getCorner().getX();
  const float y = q_box.getCorner().getY();
  const float w = q_box.getHorizontal();
  const float h = q_box.getVertical();
  static const struct {
    float dx, dy;
  } SIDES[] = {{0, -1}, {0, 1}, {-1, 0}, {1, 0}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
  for (const auto& side : SIDES) {
    const Box neighbour(Vector(x + side.dx * w, y + side.dy * h), w, h);
    if (boxIntersectsBox(p_box, neighbour)) return Vector(side.dx, side.dy);
  }
  LogManager::getInstance().writeLog("getNormal(): collision not detected. Returning (0,0).");
  return Vector();
}

}  // namespace vt
