#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "core/Box.h"
#include "world/ObjectList.h"

namespace vt {

class Object;

// Buckets objects by the cells of a coarse grid that their world boxes
// cover, so that a box query looks only at the objects nearby. Queries
// return objects in the order they were added, as a plain list would.
class SpatialGrid {
 public:
  void insert(Object* p_object, const Box& world_box);
  void remove(Object* p_object);
  // Moves or resizes an object already in the grid; others are ignored.
  void update(Object* p_object, const Box& world_box);
  void clear();

  // Every object whose box intersects the given box (edges included),
  // except p_ignore, in the order of insertion.
  ObjectList query(const Box& box, const Object* p_ignore) const;

 private:
  struct CellRange {
    std::int32_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool oversized = false;
    bool operator==(const CellRange& other) const {
      return x0 == other.x0 && y0 == other.y0 && x1 == other.x1 && y1 == other.y1 &&
             oversized == other.oversized;
    }
  };
  struct Entry {
    Box world_box;
    CellRange range;
    std::uint64_t sequence = 0;
    mutable std::uint64_t last_query = 0;
  };

  static CellRange cellsOf(const Box& box);
  static std::int64_t cellKey(std::int32_t x, std::int32_t y);
  void link(Object* p_object, const CellRange& range);
  void unlink(Object* p_object, const CellRange& range);
  void collect(const std::vector<Object*>& bucket, const Box& box, const Object* p_ignore,
               std::vector<std::pair<std::uint64_t, Object*>>& found) const;

  std::unordered_map<Object*, Entry> entries;
  std::unordered_map<std::int64_t, std::vector<Object*>> cells;
  // Objects too large or too far out for the grid; every query checks them.
  std::vector<Object*> oversized;
  std::uint64_t next_sequence = 0;
  mutable std::uint64_t query_count = 0;
};

}  // namespace vt
