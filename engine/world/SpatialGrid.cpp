#include "world/SpatialGrid.h"

#include <algorithm>
#include <cmath>

#include "core/Utility.h"

namespace vt {

namespace {

// World cells per grid cell side.
const float GRID_CELL = 8.0f;
// Boxes spanning more grid cells than this per side, or lying beyond the
// coordinate limit, go to the oversized list.
const std::int32_t MAX_SPAN = 16;
const float COORDINATE_LIMIT = 1.0e6f;

bool usable(float value) {
  return std::isfinite(value) && std::fabs(value) < COORDINATE_LIMIT;
}

void eraseFrom(std::vector<Object*>& bucket, Object* p_object) {
  const auto found = std::find(bucket.begin(), bucket.end(), p_object);
  if (found == bucket.end()) return;
  *found = bucket.back();
  bucket.pop_back();
}

}  // namespace

SpatialGrid::CellRange SpatialGrid::cellsOf(const Box& box) {
  // A box with a negative extent reaches back from its corner; filed under
  // every cell it spans, the exact box test then decides.
  const float corner_x = box.getCorner().getX();
  const float corner_y = box.getCorner().getY();
  const float left = std::min(corner_x, corner_x + box.getHorizontal());
  const float right = std::max(corner_x, corner_x + box.getHorizontal());
  const float top = std::min(corner_y, corner_y + box.getVertical());
  const float bottom = std::max(corner_y, corner_y + box.getVertical());
  CellRange range;
  if (!usable(left) || !usable(top) || !usable(right) || !usable(bottom)) {
    range.oversized = true;
    return range;
  }
  range.x0 = static_cast<std::int32_t>(std::floor(left / GRID_CELL));
  range.y0 = static_cast<std::int32_t>(std::floor(top / GRID_CELL));
  range.x1 = static_cast<std::int32_t>(std::floor(right / GRID_CELL));
  range.y1 = static_cast<std::int32_t>(std::floor(bottom / GRID_CELL));
  range.oversized = range.x1 - range.x0 >= MAX_SPAN || range.y1 - range.y0 >= MAX_SPAN;
  return range;
}

std::int64_t SpatialGrid::cellKey(std::int32_t x, std::int32_t y) {
  const std::uint64_t high = static_cast<std::uint64_t>(static_cast<std::uint32_t>(x)) << 32;
  return static_cast<std::int64_t>(high | static_cast<std::uint32_t>(y));
}

void SpatialGrid::link(Object* p_object, const CellRange& range) {
  if (range.oversized) {
    oversized.push_back(p_object);
    return;
  }
  for (std::int32_t x = range.x0; x <= range.x1; x++) {
    for (std::int32_t y = range.y0; y <= range.y1; y++) cells[cellKey(x, y)].push_back(p_object);
  }
}

void SpatialGrid::unlink(Object* p_object, const CellRange& range) {
  if (range.oversized) {
    eraseFrom(oversized, p_object);
    return;
  }
  for (std::int32_t x = range.x0; x <= range.x1; x++) {
    for (std::int32_t y = range.y0; y <= range.y1; y++) {
      const auto bucket = cells.find(cellKey(x, y));
      if (bucket == cells.end()) continue;
      eraseFrom(bucket->second, p_object);
      if (bucket->second.empty()) cells.erase(bucket);
    }
  }
}

void SpatialGrid::insert(Object* p_object, const Box& world_box) {
  remove(p_object);
  Entry entry;
  entry.world_box = world_box;
  entry.range = cellsOf(world_box);
  entry.sequence = next_sequence++;
  link(p_object, entry.range);
  entries[p_object] = entry;
}

void SpatialGrid::remove(Object* p_object) {
  const auto found = entries.find(p_object);
  if (found == entries.end()) return;
  unlink(p_object, found->second.range);
  entries.erase(found);
}

void SpatialGrid::update(Object* p_object, const Box& world_box) {
  const auto found = entries.find(p_object);
  if (found == entries.end()) return;
  Entry& entry = found->second;
  entry.world_box = world_box;
  const CellRange range = cellsOf(world_box);
  if (range == entry.range) return;
  unlink(p_object, entry.range);
  entry.range = range;
  link(p_object, range);
}

void SpatialGrid::clear() {
  entries.clear();
  cells.clear();
  oversized.clear();
}

void SpatialGrid::collect(const std::vector<Object*>& bucket, const Box& box,
                          const Object* p_ignore,
                          std::vector<std::pair<std::uint64_t, Object*>>& found) const {
  for (Object* p_object : bucket) {
    if (p_object == p_ignore) continue;
    const Entry& entry = entries.at(p_object);
    if (entry.last_query == query_count) continue;
    entry.last_query = query_count;
    if (boxIntersectsBox(box, entry.world_box)) found.emplace_back(entry.sequence, p_object);
  }
}

ObjectList SpatialGrid::query(const Box& box, const Object* p_ignore) const {
  query_count++;
  std::vector<std::pair<std::uint64_t, Object*>> found;
  collect(oversized, box, p_ignore, found);
  const CellRange range = cellsOf(box);
  if (range.oversized) {
    // A huge query box: every object is a candidate.
    for (const auto& entry : entries) collect({entry.first}, box, p_ignore, found);
  } else {
    for (std::int32_t x = range.x0; x <= range.x1; x++) {
      for (std::int32_t y = range.y0; y <= range.y1; y++) {
        const auto bucket = cells.find(cellKey(x, y));
        if (bucket != cells.end()) collect(bucket->second, box, p_ignore, found);
      }
    }
  }
  std::sort(found.begin(), found.end());
  ObjectList result;
  for (const auto& item : found) result.insert(item.second);
  return result;
}

}  // namespace vt
