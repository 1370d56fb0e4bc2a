#include "world/Object.h"

#include <algorithm>
#include <climits>
#include <map>
#include <new>
#include <vector>

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "core/Match.h"
#include "core/Utility.h"
#include "extras/NetworkManager.h"
#include "media/InputManager.h"
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

// Group names for serialization, in the order of ObjectAttribute.
const char* const GROUP_NAMES[ATTRIBUTE_COUNT] = {
    "ID,",    "ACTIVE,",       "VISIBLE,",  "EVENTS,",    "BOX,",         "POSITION,",
    "TYPE,",  "ANIMATION,",    "ALTITUDE,", "SOLIDNESS,", "NO_SOFT,",     "DIRECTION,",
    "SPEED,", "ACCELERATION,", "SHAPE,",    "PATH,",      "FOLLOW_PATH,", "AVOID_COLLISIONS,"};

// The order in which serialize writes the groups: FOLLOW_PATH before PATH.
const ObjectAttribute WRITE_ORDER[ATTRIBUTE_COUNT] = {
    ID,    ACTIVE,       VISIBLE,  EVENTS,      BOX,     POSITION,
    TYPE,  ANIMATION,    ALTITUDE, SOLIDNESS,   NO_SOFT, DIRECTION,
    SPEED, ACCELERATION, SHAPE,    FOLLOW_PATH, PATH,    AVOID_COLLISIONS};

std::string entry(const std::string& key, const std::string& value) {
  return key + ":" + value + ",";
}

const LogManager& logManager() {
  return LogManager::getInstance();
}

const char* const DESERIALIZE = "Object::deserialize()";

// The value of a key in the text that deserialize parsed last.
std::string valueOf(const std::string& key) {
  return match("", key);
}

// The pieces of the text between blanks.
std::vector<std::string> words(const std::string& text) {
  std::vector<std::string> found;
  std::string::size_type start = text.find_first_not_of(' ');
  while (start != std::string::npos) {
    const std::string::size_type end = std::min(text.find(' ', start), text.size());
    found.push_back(text.substr(start, end - start));
    start = text.find_first_not_of(' ', end);
  }
  return found;
}

// One waypoint "x y" of a serialized path.
bool readWaypoint(const std::string& text, Vector& waypoint) {
  const std::vector<std::string> parts = words(text);
  if (parts.size() != 2) return false;
  for (const std::string& coordinate : parts) {
    checkSavedValue(DESERIALIZE, "path", coordinate, ValueKind::FLOAT);
  }
  waypoint = Vector(readFloat(parts[0]), readFloat(parts[1]));
  return true;
}

// Readers of one key of the text deserialize parsed: false when the key has
// no value; else the value read, logged as "Object::deserialize(): <key> is
// <value>".
bool readIntKey(const std::string& key, int& value) {
  const std::string text = valueOf(key);
  if (text.empty()) return false;
  checkSavedValue(DESERIALIZE, key, text, ValueKind::INT);
  value = readInt(text);
  logManager().writeLog(20, "Object::deserialize(): %s is %d", key.c_str(), value);
  return true;
}

bool readFloatKey(const std::string& key, float& value) {
  const std::string text = valueOf(key);
  if (text.empty()) return false;
  checkSavedValue(DESERIALIZE, key, text, ValueKind::FLOAT);
  value = readFloat(text);
  logManager().writeLog(20, "Object::deserialize(): %s is %.2f", key.c_str(),
                        static_cast<double>(value));
  return true;
}

bool readBoolKey(const std::string& key, bool& value) {
  const std::string text = valueOf(key);
  if (text.empty()) return false;
  checkSavedValue(DESERIALIZE, key, text, ValueKind::FLAG);
  value = readBool(text);
  logManager().writeLog(20, "Object::deserialize(): %s is %s", key.c_str(),
                        toString(value).c_str());
  return true;
}

// Logs every key the text gives more than once: only its first entry is read.
void logRepeatedKeys(const std::string& text) {
  std::map<std::string, int> counts;
  for (const auto& entry : matchEntries(text)) counts[entry.first]++;
  for (const auto& [key, count] : counts) {
    if (count < 2) continue;
    logManager().writeLog(0, "%s: Warning! '%s' is given %d times; only the first is read.",
                          DESERIALIZE, key.c_str(), count);
  }
}

// Reads every key of a group that must come complete; true when all were
// read. A group partly there is logged with the message given.
template <std::size_t N, typename T>
bool readGroup(const char* const (&keys)[N], T (&values)[N], bool (*reader)(const std::string&, T&),
               const char* incomplete_message) {
  int read = 0;
  for (std::size_t i = 0; i < N; i++) read += reader(keys[i], values[i]) ? 1 : 0;
  if (read > 0 && read < static_cast<int>(N)) logManager().writeLog("%s", incomplete_message);
  return read == static_cast<int>(N);
}

// The waypoints of "x y|x y|...", up to the first malformed one.
std::list<Vector> readPath(const std::string& text) {
  std::list<Vector> waypoints;
  std::string::size_type start = 0;
  while (start < text.size()) {
    const std::string::size_type end = std::min(text.find('|', start), text.size());
    if (end > start) {
      const std::string node = text.substr(start, end - start);
      Vector waypoint;
      if (!readWaypoint(node, waypoint)) {
        logManager().writeLog("Object::deserialize(): malformed node %s.", node.c_str());
        logManager().writeLog("\tNot added.");
        break;
      }
      waypoints.push_back(waypoint);
    }
    start = end + 1;
  }
  return waypoints;
}

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
    managerFor(*name).unregisterInterest(this, *name);
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
  if (managerFor(event_type).registerInterest(this, event_type) != 0) return -1;
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
  if (managerFor(event_type, true).unregisterInterest(this, event_type) != 0) return -1;
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
    logManager().writeLog("Object::eventHandler(): Error! Dynamic cast to EventPath failed.");
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
    logManager().writeLog("Object::pathTo(): Error! Unable to allocate memory for PathFind.");
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
    logManager().writeLog("Object::pathTo(): Error! Target object is NULL.");
    return;
  }
  pathTo(p_target->getPosition(), directions);
  if (p_path_find == nullptr) {
    logManager().writeLog("Object::pathTo(): path find not allocated!");
    return;
  }
  p_path_find->setTarget(p_target);
}

std::string Object::serialize(std::string attr) {
  logManager().writeLog(20, "Object::serialize(): attr is '%s'", attr.c_str());
  if (!attr.empty() && attr != "ALL" && attr.back() != ',') {
    logManager().writeLog("Object::serialize(): Warning! Attribute '%s' missing trailing ','",
                          attr.c_str());
  }
  std::string text;
  for (const ObjectAttribute group : WRITE_ORDER) {
    if (!groupSelected(attr, GROUP_NAMES[group], modified[group])) continue;
    text += serializeGroup(group);
    modified[group] = false;
  }
  return text;
}

std::string Object::serializeGroup(int group) {
  switch (group) {
    case ID:
      return entry("id", toString(id));
    case ACTIVE:
      return entry("is_active", toString(is_active));
    case VISIBLE:
      return entry("is_visible", toString(is_visible));
    case EVENTS:
      return serializeEvents();
    case BOX:
      return serializeBox();
    case POSITION:
      return entry("pos-x", toString(position.getX())) + entry("pos-y", toString(position.getY()));
    case TYPE:
      return entry("type", type);
    case ANIMATION:
      return animation.serialize("ALL");
    case ALTITUDE:
      return entry("altitude", toString(altitude));
    case SOLIDNESS:
      return entry("solidness", toString(static_cast<int>(solidness)));
    case NO_SOFT:
      return entry("no_soft", toString(no_soft));
    case DIRECTION:
      return entry("x_direction", toString(direction.getX())) +
             entry("y_direction", toString(direction.getY()));
    case SPEED:
      return entry("speed", toString(speed));
    case ACCELERATION:
      return entry("x_acceleration", toString(acceleration.getX())) +
             entry("y_acceleration", toString(acceleration.getY()));
    case SHAPE:
      return serializeShape();
    case PATH:
      return serializePath();
    case FOLLOW_PATH:
      return entry("follow_path", toString(follow_path));
    default:
      return entry("avoid_collisions", toString(avoid_collisions));
  }
}

std::string Object::serializeEvents() const {
  std::string text = entry("event_count", toString(getEventCount()));
  for (int i = 0; i < getEventCount(); i++) {
    text += entry("event_name[" + toString(i) + "]", event_names[i]);
  }
  return text;
}

std::string Object::serializeBox() const {
  return entry("box-corner-x", toString(box.getCorner().getX())) +
         entry("box-corner-y", toString(box.getCorner().getY())) +
         entry("box-horizontal", toString(box.getHorizontal())) +
         entry("box-vertical", toString(box.getVertical()));
}

std::string Object::serializeShape() const {
  return entry("shape", toString(shape.getType())) + entry("size", toString(shape.getSize())) +
         entry("color", colorToString(shape.getColor())) +
         entry("opacity", toString(static_cast<int>(shape.getOpacity())));
}

std::string Object::serializePath() const {
  std::string waypoints;
  for (const Vector& waypoint : path) {
    waypoints += toString(waypoint.getX()) + " " + toString(waypoint.getY()) + "|";
  }
  return entry("path", waypoints) + entry("path_index", toString(static_cast<int>(path.size())));
}

int Object::deserialize(std::string str) {
  // An empty text would make match search the last text it parsed.
  if (str.empty()) return 0;
  logRepeatedKeys(str);
  // Parses str once; the readers then look keys up in its entries.
  match(str, "");
  int new_id = 0;
  if (readIntKey("id", new_id)) setId(new_id);
  bool flag = false;
  if (readBoolKey("is_active", flag)) setActive(flag);
  if (readBoolKey("is_visible", flag)) setVisible(flag);
  deserializeEvents();
  deserializeBox();
  deserializePosition();
  const std::string new_type = valueOf("type");
  if (!new_type.empty()) {
    logManager().writeLog(20, "Object::deserialize(): type is %s", new_type.c_str());
    setType(new_type);
  }
  animation.deserialize(str);
  if (animation.isModified()) modified[ANIMATION] = true;
  int number = 0;
  if (readIntKey("altitude", number)) setAltitude(number);
  if (readIntKey("solidness", number)) setSolidness(static_cast<Solidness>(number));
  if (readBoolKey("no_soft", flag)) setNoSoft(flag);
  deserializeVelocity();
  deserializeAcceleration();
  deserializeShape();
  deserializePath(str);
  if (readBoolKey("follow_path", flag)) setFollowPath(flag);
  if (readBoolKey("avoid_collisions", flag)) setAvoidCollisions(flag);
  return 0;
}

void Object::deserializeEvents() {
  int count = 0;
  if (!readIntKey("event_count", count)) return;
  for (int i = getEventCount() - 1; i >= 0; i--) unregisterInterest(event_names[i]);
  // No object holds more than MAX_OBJ_EVENTS, whatever count claims.
  for (int i = 0; i < std::min(count, MAX_OBJ_EVENTS); i++) {
    const std::string name = valueOf("event_name[" + toString(i) + "]");
    if (name.empty()) continue;
    logManager().writeLog(20, "Object::deserialize(): event_name[%d] is '%s'", i, name.c_str());
    registerInterest(name);
  }
}

void Object::deserializeBox() {
  static const char* const KEYS[] = {"box-corner-x", "box-corner-y", "box-horizontal",
                                     "box-vertical"};
  // Read as integers: fractions are cut off.
  int values[4] = {};
  if (!readGroup(KEYS, values, readIntKey,
                 "Object::deserialize(): box not complete, so ignoring.")) {
    return;
  }
  setBox(Box(Vector(static_cast<float>(values[0]), static_cast<float>(values[1])),
             static_cast<float>(values[2]), static_cast<float>(values[3])));
}

void Object::deserializePosition() {
  static const char* const KEYS[] = {"pos-x", "pos-y"};
  float values[2] = {};
  if (!readGroup(KEYS, values, readFloatKey,
                 "Object::deserialize(): position not complete, so ignoring.")) {
    return;
  }
  setPosition(Vector(values[0], values[1]));
}

void Object::deserializeVelocity() {
  float value = 0;
  if (readFloatKey("x_direction", value)) setDirection(Vector(value, direction.getY()));
  // Through setVelocity: the speed becomes the length of the direction read.
  if (readFloatKey("y_direction", value)) setVelocity(Vector(direction.getX(), value));
  if (readFloatKey("speed", value)) setSpeed(value);
}

void Object::deserializeAcceleration() {
  float value = 0;
  if (readFloatKey("x_acceleration", value)) {
    setAcceleration(Vector(value, acceleration.getY()));
  }
  if (readFloatKey("y_acceleration", value)) {
    setAcceleration(Vector(acceleration.getX(), value));
  }
}

void Object::deserializeShape() {
  static const char* const KEYS[] = {"shape", "size", "color", "opacity"};
  std::string texts[4];
  for (int i = 0; i < 4; i++) {
    texts[i] = valueOf(KEYS[i]);
    if (texts[i].empty()) return;
  }
  static const ValueKind KINDS[] = {ValueKind::INT, ValueKind::FLOAT, ValueKind::INT,
                                    ValueKind::INT};
  for (int i = 0; i < 4; i++) {
    logManager().writeLog(20, "Object::deserialize(): %s is '%s'", KEYS[i], texts[i].c_str());
    checkSavedValue(DESERIALIZE, KEYS[i], texts[i], KINDS[i]);
  }
  Color color = BLACK;
  if (!readColor(texts[2], color)) return;
  const int opacity = std::clamp(readInt(texts[3]), 0, 255);
  Shape received = shape;
  received.setType(readInt(texts[0]));
  received.setSize(readFloat(texts[1]));
  received.setColor(color);
  received.setOpacity(static_cast<unsigned char>(opacity));
  setShape(received);
}

void Object::deserializePath(const std::string& str) {
  const std::string text = matchKeepingBlanks(str, "path");
  if (!text.empty()) setPath(readPath(text));
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

}  // namespace vt
