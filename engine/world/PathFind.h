#pragma once

#include <list>
#include <queue>
#include <vector>

#include "core/Vector.h"
#include "world/EventPath.h"

namespace vt {

class Object;

// A best-first (A*) search for an object's path over a grid that covers the
// world boundary, one cell per world unit. Each cycleOnce expands one cell,
// so that the path manager can spread a search over frames.
class PathFind {
 public:
  // A null object, or a start or goal outside the world, leaves the search
  // unusable: its first step ends it without a path.
  PathFind(Object* p_init_object, Vector start_position, Vector goal_position);
  PathFind(const PathFind&) = delete;
  PathFind& operator=(const PathFind&) = delete;

  Object* getObject() const { return p_object; }
  // The object being approached, when the goal is where an object stands.
  void setTarget(Object* p_new_target) { p_target = p_new_target; }
  Object* getTarget() const { return p_target; }

  // Expands the open cell of lowest f: PATH_FOUND once the goal is reached,
  // PATH_SEARCHING while open cells remain, else PATH_NOT_FOUND.
  int cycleOnce();
  // The waypoints from start to goal in world coordinates, both included;
  // empty while no path is found.
  std::list<Vector> getPath() const;

 private:
  struct Cell {
    int x = 0;
    int y = 0;
    bool operator==(const Cell& other) const { return x == other.x && y == other.y; }
  };
  // Whether a cell can be entered, found out when the search first asks.
  enum Passability : signed char { UNKNOWN, PASSABLE, BLOCKED };
  struct Node {
    float g;  // cost from the start
    float f;  // g plus the estimate to the goal
    Cell parent;
    bool open = false;
    bool closed = false;
    Passability passability = UNKNOWN;
  };
  // A cell on the open list with its costs when it was put there; an entry
  // whose g no longer matches its node's was superseded.
  struct OpenEntry {
    float f;
    float g;
    Cell cell;
  };
  struct ExpandsLater {
    bool operator()(const OpenEntry& a, const OpenEntry& b) const;
  };

  Cell toCell(Vector position) const;
  Vector toWorld(Cell cell) const;
  bool inGrid(Cell cell) const;
  bool allocateNodes();
  // Asks the world: only the first HARD object the asker would overlap in
  // the cell counts, and it blocks unless it covers the goal.
  bool isPassable(Cell cell) const;
  // isPassable, asked once per cell and search.
  bool passable(Cell cell);
  // A diagonal step needs at least one of the two cells beside it free.
  bool canStep(Cell from, Cell to);
  void relax(Cell from, Cell to);
  void pushOpen(Cell cell);
  bool popOpen(Cell& cell);
  float heuristic(Cell cell) const;
  Node& node(Cell cell) { return nodes[cell.y][cell.x]; }
  const Node& node(Cell cell) const { return nodes[cell.y][cell.x]; }

  Object* p_object;
  Object* p_target = nullptr;
  // The world point of cell (0, 0).
  Vector origin;
  int rows = 0;
  int columns = 0;
  Cell start;
  Cell goal;
  std::vector<std::vector<Node>> nodes;
  std::priority_queue<OpenEntry, std::vector<OpenEntry>, ExpandsLater> open_list;
  int open_count = 0;
  bool found = false;
};

}  // namespace vt
