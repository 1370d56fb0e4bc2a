#pragma once

#include <string>

#include "core/Box.h"
#include "core/Circle.h"
#include "core/Line.h"
#include "core/Manager.h"
#include "world/ObjectList.h"
#include "world/SceneGraph.h"

namespace vt {

// Owns every game object: moves them each step, reports collisions and
// departures from the world, deletes the ones marked for deletion, draws
// them, and scrolls the view after the object it follows.
class WorldManager : public Manager {
 public:
  static WorldManager& getInstance();

  // Everything but input, step, collision and out events, which reach
  // objects otherwise.
  bool isValid(std::string event_type) const override;
  int startUp() override;
  void shutDown() override;

  int insertObject(Object* p_object);
  int removeObject(Object* p_object);
  ObjectList getAllObjects(bool inactive_too = false) const;
  ObjectList objectsOfType(std::string type) const;
  Object* objectWithId(int id) const;

  // The object is deleted at the end of the current or next update.
  int markForDelete(Object* p_object);
  int markForDelete(const ObjectList& list);

  void update();
  void draw();

  // 0 when the object moved, -1 when it was blocked.
  int moveObject(Object* p_object, Vector where);
  // The solid objects that p_object's box would touch at where.
  ObjectList getCollisions(const Object* p_object, Vector where) const;
  ObjectList objectsAtPosition(Vector where) const;
  // What is in where's cell (see cellOf): the active objects whose box
  // reaches at least CELL_MARGIN into it, not those that only touch its
  // edge from a neighbouring cell.
  ObjectList objectsInCell(Vector where) const;
  ObjectList objectsInBox(Box box) const;
  ObjectList objectsInCircle(Circle circle) const;
  ObjectList objectsOnLine(Line line) const;

  void setBoundary(Box new_boundary) { boundary = new_boundary; }
  Box getBoundary() const { return boundary; }
  void setView(Box new_view) { view = new_view; }
  Box getView() const { return view; }
  // Centres the view on where, kept inside the boundary.
  void setViewPosition(Vector where);
  int setViewFollowing(Object* p_new_view_following);
  void setViewSlack(Vector new_view_slack);
  Vector getViewSlack() const { return view_slack; }

  SceneGraph& getSceneGraph() { return scene_graph; }

 private:
  WorldManager();

  // Slides a HARD object that avoids collisions along the HARD obstacle in
  // its way; false when it cannot move at all.
  bool slideAroundObstacle(Object* p_object, Vector& where, ObjectList& collisions) const;
  void followWithView(const Object* p_object);
  template <typename Test>
  ObjectList activeObjectsWhere(Test test) const;

  SceneGraph scene_graph;
  ObjectList deletions;
  Object* p_view_following = nullptr;
  Box boundary;
  Box view;
  Vector view_slack;
};

// The side of q from which p touches it: (0,-1) above, (1,1) lower right and
// so on; (0,0) when no contact is found.
Vector getNormal(const Object* p, const Object* q);

}  // namespace vt
