#include "world/PathFind.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <exception>

#include "core/LogManager.h"
#include "core/Utility.h"
#include "world/Object.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

const float DIAGONAL_STEP = std::sqrt(2.0f);

// Whole cells along a boundary extent, kept within the range of int.
int cellCount(float extent) {
  if (!(extent >= 1.0f)) return 0;
  if (extent >= static_cast<float>(INT_MAX)) return INT_MAX;
  return static_cast<int>(extent);
}

// The nearest cell index to a coordinate, within [0, count - 1].
int nearestIndex(float coordinate, int count) {
  const double clamped = std::clamp(static_cast<double>(coordinate), 0.0, count - 1.0);
  return static_cast<int>(std::lround(clamped));
}

}  // namespace

bool PathFind::ExpandsLater::operator()(const OpenEntry& a, const OpenEntry& b) const {
  // Among equal f, the cell farther from the start goes first.
  return a.f > b.f || (a.f == b.f && a.g < b.g);
}

PathFind::PathFind(Object* p_init_object, Vector start_position, Vector goal_position,
                   PathDirections init_directions)
    : p_object(p_init_object), directions(init_directions) {
  const LogManager& log_manager = LogManager::getInstance();
  if (p_object == nullptr) {
    log_manager.writeLog("PathFind()::PathFind(): Fatal error! Object pointer is NULL.");
    return;
  }
  const Box boundary = WorldManager::getInstance().getBoundary();
  origin = boundary.getCorner();
  columns = cellCount(boundary.getHorizontal());
  rows = cellCount(boundary.getVertical());
  if (!boxContainsPosition(boundary, start_position) ||
      !boxContainsPosition(boundary, goal_position) || rows == 0 || columns == 0) {
    log_manager.writeLog(
        "PathFind::PathFind(): Error! Both start (%.2f, %.2f) and end (%.2f, %.2f) must be within "
        "world boundary (%d, %d).",
        static_cast<double>(start_position.getX()), static_cast<double>(start_position.getY()),
        static_cast<double>(goal_position.getX()), static_cast<double>(goal_position.getY()),
        columns, rows);
    return;
  }
  start = toCell(start_position);
  goal = toCell(goal_position);
  if (!isPassable(start)) {
    log_manager.writeLog("PathFind::PathFind(): Warning! Can't get to start node.");
  }
  log_manager.writeLog("PathFind::PathFind(): allocated [y, x]: %d, %d", rows, columns);
  usable = allocateTile(start);
  if (!usable) return;
  node(start).g = 0.0f;
  node(start).f = heuristic(start);
  pushOpen(start);
}

PathFind::Cell PathFind::toCell(Vector position) const {
  const Vector offset = position - origin;
  return {nearestIndex(offset.getX(), columns), nearestIndex(offset.getY(), rows)};
}

Vector PathFind::toWorld(Cell cell) const {
  return origin + Vector(static_cast<float>(cell.x), static_cast<float>(cell.y));
}

bool PathFind::inGrid(Cell cell) const {
  return cell.x >= 0 && cell.x < columns && cell.y >= 0 && cell.y < rows;
}

long long PathFind::tileKey(Cell cell) const {
  const long long tile_columns = columns / TILE_SIDE + 1;
  return cell.y / TILE_SIDE * tile_columns + cell.x / TILE_SIDE;
}

PathFind::Node& PathFind::node(Cell cell) const {
  const int offset = cell.y % TILE_SIDE * TILE_SIDE + cell.x % TILE_SIDE;
  return tiles.at(tileKey(cell))[offset];
}

bool PathFind::allocateTile(Cell cell) {
  const long long key = tileKey(cell);
  if (tiles.count(key) > 0) return true;
  const bool room = static_cast<long long>(tiles.size() + 1) * TILE_SIDE * TILE_SIDE <= MAX_NODES;
  if (room) {
    try {
      tiles.emplace(key, std::make_unique<Node[]>(TILE_SIDE * TILE_SIDE));
      return true;
    } catch (const std::exception&) {
    }
  }
  LogManager::getInstance().writeLog(
      "PathFind::PathFind(): Error!  Unable to allocate pathfinding for %d columns at row %d.",
      columns, cell.y);
  usable = false;
  return false;
}

bool PathFind::allocateAround(Cell cell) {
  for (int dy = -1; dy <= 1; dy++) {
    for (int dx = -1; dx <= 1; dx++) {
      const Cell next{cell.x + dx, cell.y + dy};
      if (inGrid(next) && !allocateTile(next)) return false;
    }
  }
  return true;
}

bool PathFind::isPassable(Cell cell) const {
  const ObjectList collisions = WorldManager::getInstance().getCollisions(p_object, toWorld(cell));
  for (const Object* p_other : collisions) {
    if (p_other->getSolidness() == HARD) {
      return boxContainsPosition(getWorldBox(p_other), toWorld(goal));
    }
  }
  return true;
}

bool PathFind::passable(Cell cell) {
  Node& record = node(cell);
  if (record.passability == UNKNOWN) record.passability = isPassable(cell) ? PASSABLE : BLOCKED;
  return record.passability == PASSABLE;
}

float PathFind::heuristic(Cell cell) const {
  const auto dx = static_cast<float>(goal.x - cell.x);
  const auto dy = static_cast<float>(goal.y - cell.y);
  if (directions == FOUR_DIRECTIONS) return std::fabs(dx) + std::fabs(dy);
  return std::sqrt(dx * dx + dy * dy);
}

void PathFind::pushOpen(Cell cell) {
  Node& record = node(cell);
  if (!record.open) {
    record.open = true;
    open_count++;
  }
  open_list.push({record.f, record.g, cell});
}

bool PathFind::popOpen(Cell& cell) {
  while (!open_list.empty()) {
    const OpenEntry entry = open_list.top();
    open_list.pop();
    Node& record = node(entry.cell);
    if (record.closed || entry.g != record.g) continue;
    record.open = false;
    record.closed = true;
    open_count--;
    cell = entry.cell;
    return true;
  }
  return false;
}

int PathFind::cycleOnce() {
  if (!usable) {
    LogManager::getInstance().writeLog(
        "PathFind::cycleOnce(): node graph not allocated.  Cannot find path.");
    return PATH_NOT_FOUND;
  }
  Cell current;
  if (!popOpen(current)) return PATH_NOT_FOUND;
  if (!allocateAround(current)) return PATH_NOT_FOUND;
  // Checked when the search starts, once the target is known: a path would
  // otherwise lead into the wall, whose cell counts as the goal's occupant.
  if (current == start) {
    const Object* p_wall = wallAtGoal();
    if (p_wall != nullptr) {
      logNoPath(("the goal lies inside a HARD '" + p_wall->getType() + "'").c_str());
      return PATH_NOT_FOUND;
    }
  }
  if (current == goal) {
    found = true;
    return PATH_FOUND;
  }
  for (int dy = -1; dy <= 1; dy++) {
    for (int dx = -1; dx <= 1; dx++) {
      const bool diagonal = dx != 0 && dy != 0;
      if ((dx == 0 && dy == 0) || (diagonal && directions == FOUR_DIRECTIONS)) continue;
      const Cell next{current.x + dx, current.y + dy};
      if (canStep(current, next)) relax(current, next);
    }
  }
  if (open_count > 0) return PATH_SEARCHING;
  logNoPath("every cell it can reach was searched");
  return PATH_NOT_FOUND;
}

const Object* PathFind::wallAtGoal() const {
  for (const Object* p_other : WorldManager::getInstance().objectsInCell(toWorld(goal))) {
    if (p_other->getSolidness() == HARD && p_other != p_object && p_other != p_target) {
      return p_other;
    }
  }
  return nullptr;
}

void PathFind::logNoPath(const char* reason) const {
  const Vector from = toWorld(start);
  const Vector to = toWorld(goal);
  LogManager::getInstance().writeLog(
      "PathFind::cycleOnce(): No path from (%g, %g) to (%g, %g): %s.",
      static_cast<double>(from.getX()), static_cast<double>(from.getY()),
      static_cast<double>(to.getX()), static_cast<double>(to.getY()), reason);
}

bool PathFind::canStep(Cell from, Cell to) {
  if (!inGrid(to) || node(to).closed || !passable(to)) return false;
  if (to.x == from.x || to.y == from.y) return true;
  return passable({to.x, from.y}) || passable({from.x, to.y});
}

void PathFind::relax(Cell from, Cell to) {
  const bool diagonal = to.x != from.x && to.y != from.y;
  const float g = node(from).g + (diagonal ? DIAGONAL_STEP : 1.0f);
  Node& record = node(to);
  if (record.open && g > record.g) return;
  // An equal cost rewrites the parent; the cell's open entry stays valid.
  const bool improved = !record.open || g < record.g;
  record.parent_dx = static_cast<signed char>(to.x - from.x);
  record.parent_dy = static_cast<signed char>(to.y - from.y);
  record.g = g;
  record.f = g + heuristic(to);
  if (improved) pushOpen(to);
}

std::list<Vector> PathFind::getPath() const {
  std::list<Vector> path;
  if (!found) return path;
  for (Cell cell = goal;; cell = {cell.x - node(cell).parent_dx, cell.y - node(cell).parent_dy}) {
    path.push_front(toWorld(cell));
    if (cell == start) break;
  }
  return path;
}

}  // namespace vt
