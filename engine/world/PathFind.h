#pragma once

#include <cmath>
#include <deque>
#include <list>
#include <memory>
#include <queue>
#include <unordered_map>
#include <vector>

#include "core/Vector.h"
#include "world/EventPath.h"

namespace vt {

class Object;

// A best-first (A*) search for an object's path over a grid that covers the
// world boundary, one cell per world unit. Each cycleOnce expands one cell,
// so that the path manager can spread a search over frames.
//
// The grid's records are made as the search reaches them, a square tile of
// cells at a time, so that starting a search costs the same in any world.
// A search may reach at most MAX_NODES cells' records (12 MB: an area of
// 1000 x 1000 cells, or a straight way of some 50,000); one
// that needs more ends without a path, logging that it could not allocate.
class PathFind {
 public:
  static const int TILE_SIDE = 8;
  static const int MAX_NODES = 1 << 20;

  // A null object, or a start or goal outside the world, leaves the search
  // unusable: its first step ends it without a path.
  PathFind(Object* p_init_object, Vector start_position, Vector goal_position,
           PathDirections init_directions = EIGHT_DIRECTIONS);
  PathFind(const PathFind&) = delete;
  PathFind& operator=(const PathFind&) = delete;

  Object* getObject() const { return p_object; }
  // The object being approached, when the goal is where an object stands.
  void setTarget(Object* p_new_target) { p_target = p_new_target; }
  Object* getTarget() const { return p_target; }

  // Expands the open cell of lowest f: PATH_FOUND once the goal is reached,
  // PATH_SEARCHING while open cells remain, else PATH_NOT_FOUND, logged.
  // A goal inside a HARD object other than the target ends the search at
  // its first step, without a path.
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
    float g = INFINITY;  // cost from the start
    float f = INFINITY;  // g plus the estimate to the goal
    // The step from the parent cell to this one.
    signed char parent_dx = 0;
    signed char parent_dy = 0;
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
  // Makes the records of the cell's tile if it has none yet; false (after
  // logging) when the search may not or cannot have more.
  bool allocateTile(Cell cell);
  // allocateTile for the cell and its eight neighbours.
  bool allocateAround(Cell cell);
  Node& node(Cell cell) const;
  // Asks the world: only the first HARD object the asker would overlap in
  // the cell counts, and it blocks unless it covers the goal.
  bool isPassable(Cell cell) const;
  // isPassable, asked once per cell and search.
  bool passable(Cell cell);
  // The first HARD object, other than the asker and its target, that
  // stands in the goal's cell; null when there is none.
  const Object* wallAtGoal() const;
  // Logs why the search ends without a path.
  void logNoPath(const char* reason) const;
  // A diagonal step needs at least one of the two cells beside it free.
  bool canStep(Cell from, Cell to);
  void relax(Cell from, Cell to);
  void pushOpen(Cell cell);
  bool popOpen(Cell& cell);
  float heuristic(Cell cell) const;
  long long tileKey(Cell cell) const;

  Object* p_object;
  Object* p_target = nullptr;
  // The world point of cell (0, 0).
  Vector origin;
  int rows = 0;
  int columns = 0;
  Cell start;
  Cell goal;
  PathDirections directions;
  bool usable = false;
  std::unordered_map<long long, std::unique_ptr<Node[]>> tiles;
  // A deque, so that a growing list never copies itself within one step.
  std::priority_queue<OpenEntry, std::deque<OpenEntry>, ExpandsLater> open_list;
  int open_count = 0;
  bool found = false;
};

}  // namespace vt
