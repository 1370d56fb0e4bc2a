#include "world/SceneGraph.h"

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "core/Utility.h"
#include "world/SpatialGrid.h"

namespace vt {

namespace {

bool altitudeInRange(int altitude) {
  return altitude >= MIN_ALTITUDE && altitude <= MAX_ALTITUDE;
}

// During shutdown objects are torn down in an order in which list failures
// are expected, so they are not reported then.
bool failed(int result) {
  return result != 0 && !GameManager::getInstance().getGameOver();
}

// Logs the message with the object's type; returns -1.
int reportFailure(const char* format, const Object* p_object) {
  LogManager::getInstance().writeLog(format, p_object->getType().c_str());
  return -1;
}

}  // namespace

SceneGraph::SceneGraph() : p_solid_grid(std::make_unique<SpatialGrid>()) {}

SceneGraph::~SceneGraph() = default;

int SceneGraph::startUp() {
  return 0;
}

void SceneGraph::shutDown() {
  objects.clear();
  solid_objects.clear();
  p_solid_grid->clear();
  for (ObjectList& list : visible_objects) list.clear();
  inactive_objects.clear();
  type_map.clear();
}

int SceneGraph::insertObject(Object* p_object) {
  if (!p_object->isActive()) return inactive_objects.insert(p_object);
  // Object lists grow as needed: appending to one cannot fail.
  objects.insert(p_object);
  type_map[p_object->getType()].insert(p_object);
  if (p_object->isSolid()) addSolid(p_object);
  if (!p_object->isVisible()) return 0;
  const int altitude = p_object->getAltitude();
  if (!altitudeInRange(altitude)) {
    LogManager::getInstance().writeLog(
        "SceneGraph::insertObject(): Warning! Altitude %d not in range [%d,%d]", altitude,
        MIN_ALTITUDE, MAX_ALTITUDE);
    return -1;
  }
  visible_objects[altitude].insert(p_object);
  return 0;
}

int SceneGraph::removeObject(Object* p_object) {
  ObjectList& home = p_object->isActive() ? objects : inactive_objects;
  if (home.remove(p_object) != 0) {
    LogManager::getInstance().writeLog(
        "SceneGraph::removeObject(): Error removing Object (id %d)! Pointer is %p.",
        p_object->getId(), static_cast<void*>(p_object));
    return -1;
  }
  if (!p_object->isActive()) return 0;
  const auto type_entry = type_map.find(p_object->getType());
  if (type_entry != type_map.end()) type_entry->second.remove(p_object);
  const int altitude = p_object->getAltitude();
  if (p_object->isVisible() && altitudeInRange(altitude))
    visible_objects[altitude].remove(p_object);
  if (p_object->isSolid()) removeSolid(p_object);
  return 0;
}

ObjectList SceneGraph::visibleObjects(int altitude) const {
  if (!altitudeInRange(altitude)) {
    LogManager::getInstance().writeLog(
        "SceneGraph::visibleObjects(): Warning! altitude %d not in [%d,%d].", altitude,
        MIN_ALTITUDE, MAX_ALTITUDE);
    return ObjectList();
  }
  return visible_objects[altitude];
}

ObjectList SceneGraph::objectsOfType(std::string type) const {
  const auto found = type_map.find(type);
  return found == type_map.end() ? ObjectList() : found->second;
}

int SceneGraph::updateAltitude(Object* p_object, int new_altitude) {
  const LogManager& log_manager = LogManager::getInstance();
  if (!p_object->isActive()) return 0;
  const int old_altitude = p_object->getAltitude();
  if (!altitudeInRange(new_altitude)) {
    log_manager.writeLog(
        "SceneGraph::updateAltitude(): New altitude %d not in [%d,%d]!  No update.", new_altitude,
        MIN_ALTITUDE, MAX_ALTITUDE);
    return -1;
  }
  if (!altitudeInRange(old_altitude)) {
    log_manager.writeLog(
        "SceneGraph::updateAltitude(): Old altitude %d not in [%d,%d]! This is unxepected. No "
        "update.",
        old_altitude, MIN_ALTITUDE, MAX_ALTITUDE);
    return -1;
  }
  // Tried even for an invisible object, which is in no visible list: changing
  // the altitude of an active invisible object fails here.
  if (failed(visible_objects[old_altitude].remove(p_object))) {
    log_manager.writeLog("SceneGraph::updateAltitude(): remove from old altitude (%d) failed!",
                         old_altitude);
    return -1;
  }
  if (p_object->isVisible()) visible_objects[new_altitude].insert(p_object);
  return 0;
}

int SceneGraph::updateSolidness(Object* p_object, Solidness new_solidness) {
  if (!p_object->isActive()) return 0;
  if (p_object->isSolid() && new_solidness == SPECTRAL) {
    if (failed(removeSolid(p_object))) {
      return reportFailure("SceneGraph::updateSolidness(): unable to remove solid object (%s)",
                           p_object);
    }
    return 0;
  }
  if (!p_object->isSolid() && (new_solidness == HARD || new_solidness == SOFT)) addSolid(p_object);
  return 0;
}

int SceneGraph::updateVisible(Object* p_object, bool new_visible) {
  if (!p_object->isActive() || new_visible == p_object->isVisible()) return 0;
  ObjectList& layer = visible_objects[p_object->getAltitude()];
  if (!p_object->isVisible()) return layer.insert(p_object);
  if (failed(layer.remove(p_object))) {
    return reportFailure("SceneGraph::updateVisible(): unable to remove visible object (%s)",
                         p_object);
  }
  return 0;
}

int SceneGraph::updateActive(Object* p_object, bool new_active) {
  if (new_active == p_object->isActive()) return 0;
  return new_active ? activate(p_object) : deactivate(p_object);
}

int SceneGraph::activate(Object* p_object) {
  objects.insert(p_object);
  type_map[p_object->getType()].insert(p_object);
  if (p_object->isVisible()) visible_objects[p_object->getAltitude()].insert(p_object);
  if (p_object->isSolid()) addSolid(p_object);
  if (failed(inactive_objects.remove(p_object))) {
    return reportFailure(
        "SceneGraph::updateActive(): remove object (%s) failed for inactive_objects!", p_object);
  }
  return 0;
}

int SceneGraph::deactivate(Object* p_object) {
  if (failed(objects.remove(p_object))) {
    return reportFailure("SceneGraph::updateActive(): remove object (%s) failed for objects!",
                         p_object);
  }
  type_map[p_object->getType()].remove(p_object);
  if (p_object->isVisible() && failed(visible_objects[p_object->getAltitude()].remove(p_object))) {
    return reportFailure(
        "SceneGraph::updateActive(): remove visible object (%s) failed for visible_objects!",
        p_object);
  }
  if (p_object->isSolid() && failed(removeSolid(p_object))) {
    return reportFailure("SceneGraph::updateActive(): remove object (%s) failed for solid_objects!",
                         p_object);
  }
  inactive_objects.insert(p_object);
  return 0;
}

int SceneGraph::updateType(Object* p_object, const std::string& new_type) {
  if (!p_object->isActive()) return 0;
  const LogManager& log_manager = LogManager::getInstance();
  if (type_map[p_object->getType()].remove(p_object) != 0) {
    log_manager.writeLog("SceneGraph::updateType(): Error! Unable to remove Object (%d) type %s",
                         p_object->getId(), p_object->getType().c_str());
    return -1;
  }
  type_map[new_type].insert(p_object);
  return 0;
}

void SceneGraph::addSolid(Object* p_object) {
  solid_objects.insert(p_object);
  p_solid_grid->insert(p_object, getWorldBox(p_object));
}

int SceneGraph::removeSolid(Object* p_object) {
  p_solid_grid->remove(p_object);
  return solid_objects.remove(p_object);
}

ObjectList SceneGraph::solidObjectsIn(const Box& box, const Object* p_ignore) const {
  return p_solid_grid->query(box, p_ignore);
}

int SceneGraph::updatePosition(Object* p_object, Vector new_position) {
  p_solid_grid->update(p_object, getWorldBox(p_object, new_position));
  return 0;
}

void SceneGraph::updateExtent(Object* p_object) {
  p_solid_grid->update(p_object, getWorldBox(p_object));
}

}  // namespace vt
