#pragma once

#include <list>
#include <string>
#include <vector>

#include "core/Box.h"
#include "core/Event.h"
#include "core/Vector.h"
#include "media/Animation.h"
#include "media/Shape.h"
#include "world/EventPath.h"

namespace vt {

class PathFind;

enum Solidness : int {
  HARD = 0,  // collides with and is blocked by other HARD objects
  SOFT,      // collides with everything, blocks only objects with no_soft set
  SPECTRAL,  // never collides
};

// Drawing layers, drawn from the lowest to the highest.
const int MIN_ALTITUDE = 0;
const int MAX_ALTITUDE = 4;
const int MAX_OBJ_EVENTS = 100;

// Attribute groups; each has a modified flag that serialization reads.
enum ObjectAttribute {
  ID = 0,
  ACTIVE,
  VISIBLE,
  EVENTS,
  BOX,
  POSITION,
  TYPE,
  ANIMATION,
  ALTITUDE,
  SOLIDNESS,
  NO_SOFT,
  DIRECTION,
  SPEED,
  ACCELERATION,
  SHAPE,
  PATH,
  FOLLOW_PATH,
  AVOID_COLLISIONS,
  ATTRIBUTE_COUNT,
};

// Everything that lives in the game world. Objects are created on the heap,
// insert themselves into the world manager and are deleted by it after
// markForDelete.
class Object {
 public:
  Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  virtual ~Object();
  virtual int setPosition(Vector new_position);
  // Returns 1 when the event was handled. The base handles "vt-path": a
  // path found is followed, and the search is released either way.
  virtual int eventHandler(const Event* p_event);
  virtual int draw();
  // The attribute groups chosen by attr as "key:value," entries: every group
  // for "ALL", the modified ones for "", else the groups named in attr, as in
  // "POSITION,SPEED,". The groups written are no longer modified.
  virtual std::string serialize(std::string attr = "");
  // Sets every attribute that str holds. Numbers are read as atoi and atof
  // read them ("abc" is 0, "12ms" is 12) and clamped to their type; flags are
  // true exactly for "true". A group that must come whole (box, position,
  // shape) is ignored when a key of it is missing. The id is read too, and
  // setting it moves the id counter past it, so objects created later still
  // get ids of their own. The copy and the object it was copied from, while
  // both live, have the same id. Returns 0.
  virtual int deserialize(std::string str);
  virtual bool isModified() const;
  virtual bool isModified(int attribute) const;

  void setId(int new_id);
  int getId() const { return id; }
  // The id the next object created will get.
  static int peekNextId();
  int setType(std::string new_type);
  std::string getType() const { return type; }
  int setActive(bool active = true);
  bool isActive() const { return is_active; }
  int setVisible(bool visible = true);
  bool isVisible() const { return is_visible; }
  int setAltitude(int new_altitude);
  int getAltitude() const { return altitude; }
  int setSolidness(Solidness new_solidness);
  Solidness getSolidness() const { return solidness; }
  bool isSolid() const { return solidness == HARD || solidness == SOFT; }
  int setNoSoft(bool new_no_soft = true);
  bool getNoSoft() const { return no_soft; }
  int setAvoidCollisions(bool new_avoid_collisions = true);
  bool getAvoidCollisions() const { return avoid_collisions; }
  int setBox(Box new_box);
  Box getBox() const { return box; }
  Vector getPosition() const { return position; }

  // Stored as given: not normalised, and no modified flag is raised.
  void setDirection(Vector new_direction);
  Vector getDirection() const { return direction; }
  void setSpeed(float new_speed);
  float getSpeed() const { return speed; }
  // Speed becomes the vector's length, direction its unit vector, always
  // (even for the velocity the object already has).
  void setVelocity(Vector velocity);
  Vector getVelocity() const;
  void setAcceleration(Vector new_acceleration);
  Vector getAcceleration() const { return acceleration; }
  // Where the next move takes the object, without acceleration.
  Vector predictPosition() const;

  int setAnimation(Animation new_animation, bool set_box = true);
  Animation getAnimation() const { return animation; }
  // Shows the resource manager's sprite of that label and takes its box;
  // -1 when there is no such sprite.
  int setSprite(std::string sprite_label);
  // The sprite's box (one cell without a sprite) less CELL_MARGIN on every
  // side: it fills the sprite's cells without reaching their edges, so that
  // objects in neighbouring cells do not touch. Boxes that share an edge
  // collide, and block each other's path searches.
  Box getInCellBox() const;
  // Takes the in-cell box as the object's box: call it after setSprite.
  int fitBoxInCell();
  // Draws the object with each character on the whole cell nearest to where
  // it would be drawn; the position itself is kept.
  void setSnapToCell(bool new_snap_to_cell = true) { snap_to_cell = new_snap_to_cell; }
  bool getSnapToCell() const { return snap_to_cell; }
  void setShape(Shape new_shape);
  Shape getShape() const { return shape; }

  void setPath(std::list<Vector> new_path);
  std::list<Vector> getPath() const { return path; }
  void setFollowPath(bool new_follow_path = true);
  bool getFollowPath() const { return follow_path; }
  // Starts a search for a path to the target; the path is followed once
  // found. A search under way is abandoned.
  void pathTo(Vector target, PathDirections directions = EIGHT_DIRECTIONS);
  // As pathTo(position), for a path to the object's position; the other
  // object does not block the way to itself.
  void pathTo(Object* p_target, PathDirections directions = EIGHT_DIRECTIONS);
  // Moves along the path: called by the world update after the move.
  void stepPath();
  // Adds the acceleration to the velocity: called after stepPath.
  void applyAcceleration();

  int registerInterest(std::string event_type);
  int unregisterInterest(std::string event_type);
  int getEventCount() const { return static_cast<int>(event_names.size()); }
  std::string getEventName(int index) const;

 protected:
  // Lets subclasses raise or clear a group's modified flag.
  void setModified(int attribute, bool value = true);
  // Where draw puts the object: its position, moved onto whole cells when
  // it snaps to them.
  Vector getDrawPosition() const;

 private:
  void pointAtFirstWaypoint();
  // Removes the search from the path manager and deletes it.
  void releasePathFind();
  std::string serializeGroup(int group);
  std::string serializeEvents() const;
  std::string serializeBox() const;
  std::string serializeShape() const;
  std::string serializePath() const;
  void deserializeEvents();
  void deserializeBox();
  void deserializePosition();
  void deserializeVelocity();
  void deserializeAcceleration();
  void deserializeShape();
  void deserializePath(const std::string& str);

  int id;
  std::string type = "(Undefined)";
  bool is_active = true;
  bool is_visible = true;
  Box box{Vector(-0.5f, -0.5f), 0.99f, 0.99f};
  Vector position{1.0f, 1.0f};
  Vector direction;
  float speed = 0.0f;
  Vector acceleration;
  int altitude = 2;
  Solidness solidness = HARD;
  Animation animation;
  bool no_soft = false;
  // The event types the object is registered for, in order; at most
  // MAX_OBJ_EVENTS, grown as registered.
  std::vector<std::string> event_names;
  bool modified[ATTRIBUTE_COUNT];
  Shape shape;
  PathFind* p_path_find = nullptr;
  std::list<Vector> path;
  bool follow_path = false;
  bool avoid_collisions = false;
  bool snap_to_cell = false;
};

// The object's box translated to its position, or to where.
Box getWorldBox(const Object* p_object);
Box getWorldBox(const Object* p_object, const Vector& where);

}  // namespace vt
