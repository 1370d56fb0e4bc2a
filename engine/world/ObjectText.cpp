#include "world/Object.h"

#include <algorithm>
#include <map>
#include <vector>

#include "core/KeyReader.h"
#include "core/LogManager.h"
#include "core/Match.h"
#include "core/Utility.h"

// The saved-text form of an object: serialize writes the attribute groups as
// "key:value," entries, deserialize reads them back.

namespace vt {

namespace {

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

constexpr KeyReader READER("Object::deserialize()");

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
    checkSavedValue(READER.getCaller(), "path", coordinate, ValueKind::FLOAT);
  }
  waypoint = Vector(readFloat(parts[0]), readFloat(parts[1]));
  return true;
}

// Logs every key the text gives more than once: only its first entry is read.
void logRepeatedKeys(const std::string& text) {
  std::map<std::string, int> counts;
  for (const auto& entry : matchEntries(text)) counts[entry.first]++;
  for (const auto& [key, count] : counts) {
    if (count < 2) continue;
    logManager().writeLog(0, "%s: Warning! '%s' is given %d times; only the first is read.",
                          READER.getCaller(), key.c_str(), count);
  }
}

// Reads every key of a group that must come complete with the reader given;
// true when all were read. A group partly there is logged with the message
// given.
template <std::size_t N, typename T>
bool readGroup(const char* const (&keys)[N], T (&values)[N],
               bool (KeyReader::*reader)(const std::string&, T&, const std::string&) const,
               const char* incomplete_message) {
  int read = 0;
  for (std::size_t i = 0; i < N; i++) read += (READER.*reader)(keys[i], values[i], "") ? 1 : 0;
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

}  // namespace

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
  if (!READER.parse(str)) return 0;
  logRepeatedKeys(str);
  int new_id = 0;
  if (READER.readInt("id", new_id)) setId(new_id);
  bool flag = false;
  if (READER.readFlag("is_active", flag)) setActive(flag);
  if (READER.readFlag("is_visible", flag)) setVisible(flag);
  deserializeEvents();
  deserializeBox();
  deserializePosition();
  std::string new_type;
  if (READER.readText("type", new_type)) setType(new_type);
  animation.deserialize(str);
  if (animation.isModified()) modified[ANIMATION] = true;
  int number = 0;
  if (READER.readInt("altitude", number)) setAltitude(number);
  if (READER.readInt("solidness", number)) setSolidness(static_cast<Solidness>(number));
  if (READER.readFlag("no_soft", flag)) setNoSoft(flag);
  deserializeVelocity();
  deserializeAcceleration();
  deserializeShape();
  deserializePath(str);
  if (READER.readFlag("follow_path", flag)) setFollowPath(flag);
  if (READER.readFlag("avoid_collisions", flag)) setAvoidCollisions(flag);
  return 0;
}

void Object::deserializeEvents() {
  int count = 0;
  if (!READER.readInt("event_count", count)) return;
  for (int i = getEventCount() - 1; i >= 0; i--) unregisterInterest(event_names[i]);
  // No object holds more than MAX_OBJ_EVENTS, whatever count claims.
  for (int i = 0; i < std::min(count, MAX_OBJ_EVENTS); i++) {
    std::string name;
    if (READER.readText("event_name[" + toString(i) + "]", name, true)) registerInterest(name);
  }
}

void Object::deserializeBox() {
  static const char* const KEYS[] = {"box-corner-x", "box-corner-y", "box-horizontal",
                                     "box-vertical"};
  // Read as integers: fractions are cut off.
  int values[4] = {};
  if (!readGroup(KEYS, values, &KeyReader::readInt,
                 "Object::deserialize(): box not complete, so ignoring.")) {
    return;
  }
  setBox(Box(Vector(static_cast<float>(values[0]), static_cast<float>(values[1])),
             static_cast<float>(values[2]), static_cast<float>(values[3])));
}

void Object::deserializePosition() {
  static const char* const KEYS[] = {"pos-x", "pos-y"};
  float values[2] = {};
  if (!readGroup(KEYS, values, &KeyReader::readFloat,
                 "Object::deserialize(): position not complete, so ignoring.")) {
    return;
  }
  setPosition(Vector(values[0], values[1]));
}

void Object::deserializeVelocity() {
  float value = 0;
  if (READER.readFloat("x_direction", value)) setDirection(Vector(value, direction.getY()));
  // Through setVelocity: the speed becomes the length of the direction read.
  if (READER.readFloat("y_direction", value)) setVelocity(Vector(direction.getX(), value));
  if (READER.readFloat("speed", value)) setSpeed(value);
}

void Object::deserializeAcceleration() {
  float value = 0;
  if (READER.readFloat("x_acceleration", value)) {
    setAcceleration(Vector(value, acceleration.getY()));
  }
  if (READER.readFloat("y_acceleration", value)) {
    setAcceleration(Vector(acceleration.getX(), value));
  }
}

void Object::deserializeShape() {
  static const char* const KEYS[] = {"shape", "size", "color", "opacity"};
  // The shape comes complete or not at all: nothing is read before all four
  // keys are known to be there.
  for (const char* key : KEYS) {
    if (match("", key).empty()) return;
  }
  static const ValueKind KINDS[] = {ValueKind::INT, ValueKind::FLOAT, ValueKind::INT,
                                    ValueKind::INT};
  std::string texts[4];
  for (int i = 0; i < 4; i++) {
    READER.readText(KEYS[i], texts[i], true);
    checkSavedValue(READER.getCaller(), KEYS[i], texts[i], KINDS[i]);
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

}  // namespace vt
