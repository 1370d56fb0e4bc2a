#pragma once

#include <map>
#include <memory>
#include <string>

#include "core/Vector.h"
#include "world/Object.h"
#include "world/ObjectList.h"

namespace vt {

class SpatialGrid;

// Keeps every object in the lists that the engine's passes walk: active,
// solid, visible by altitude, inactive, and by type.
class SceneGraph {
 public:
  SceneGraph();
  ~SceneGraph();

  int startUp();
  void shutDown();

  int insertObject(Object* p_object);
  int removeObject(Object* p_object);

  ObjectList activeObjects() const { return objects; }
  ObjectList inactiveObjects() const { return inactive_objects; }
  ObjectList solidObjects() const { return solid_objects; }
  // The solid objects whose world boxes intersect the box, except p_ignore,
  // in the order of the solid list.
  ObjectList solidObjectsIn(const Box& box, const Object* p_ignore) const;
  ObjectList visibleObjects(int altitude) const;
  ObjectList objectsOfType(std::string type) const;

  // Called by the object's setters before they store the new value.
  int updateAltitude(Object* p_object, int new_altitude);
  int updateSolidness(Object* p_object, Solidness new_solidness);
  int updateVisible(Object* p_object, bool new_visible);
  int updateActive(Object* p_object, bool new_active);
  int updateType(Object* p_object, const std::string& new_type);
  int updatePosition(Object* p_object, Vector new_position);
  // The object's box changed without a removal and re-insertion.
  void updateExtent(Object* p_object);

 private:
  int activate(Object* p_object);
  int deactivate(Object* p_object);
  // The solid list and the grid that finds solid objects by place change
  // together.
  void addSolid(Object* p_object);
  int removeSolid(Object* p_object);

  ObjectList objects;
  ObjectList solid_objects;
  std::unique_ptr<SpatialGrid> p_solid_grid;
  ObjectList visible_objects[MAX_ALTITUDE + 1];
  ObjectList inactive_objects;
  std::map<std::string, ObjectList> type_map;
};

}  // namespace vt
