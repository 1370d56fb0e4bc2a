#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "core/Utility.h"
#include "world/SpatialGrid.h"

using vt::Box;
using vt::Vector;

namespace {

float randomFloat(float low, float high) {
  return low + (high - low) * static_cast<float>(std::rand()) / static_cast<float>(RAND_MAX);
}

Box randomBox() {
  // Mostly small boxes, some huge, some touching cell borders exactly.
  const float size = std::rand() % 10 == 0 ? randomFloat(100, 400) : randomFloat(0, 6);
  float x = randomFloat(-100, 100);
  if (std::rand() % 5 == 0) x = 8.0f * static_cast<float>(std::rand() % 10);
  // A box may reach back from its corner.
  const float sign = std::rand() % 4 == 0 ? -1.0f : 1.0f;
  return Box(Vector(x, randomFloat(-100, 100)), sign * size, randomFloat(-6, 6));
}

}  // namespace

// The grid must answer exactly as a walk over a plain list in insertion
// order would, whatever the boxes and however often they move.
TEST(SpatialGrid, AgreesWithABruteForceWalk) {
  std::srand(7);
  // The grid only compares addresses; the objects are never touched.
  std::vector<vt::Object*> objects;
  std::vector<Box> boxes;
  std::vector<bool> present;
  vt::SpatialGrid grid;
  for (int i = 0; i < 300; i++) {
    objects.push_back(reinterpret_cast<vt::Object*>(static_cast<std::uintptr_t>(i + 1) * 16));
    boxes.push_back(randomBox());
    present.push_back(true);
    grid.insert(objects.back(), boxes.back());
  }
  std::vector<int> order(300);
  for (int i = 0; i < 300; i++) order[i] = i;

  for (int round = 0; round < 200; round++) {
    const int index = std::rand() % 300;
    const int action = std::rand() % 3;
    if (action == 0) {
      boxes[index] = randomBox();
      grid.update(objects[index], boxes[index]);
    } else if (action == 1 && present[index]) {
      grid.remove(objects[index]);
      present[index] = false;
      order.erase(std::find(order.begin(), order.end(), index));
    } else if (!present[index]) {
      grid.insert(objects[index], boxes[index]);
      present[index] = true;
      order.push_back(index);
    }

    const Box query = randomBox();
    const vt::Object* p_ignore = objects[std::rand() % 300];
    std::vector<vt::Object*> expected;
    for (const int i : order) {
      if (objects[i] != p_ignore && vt::boxIntersectsBox(query, boxes[i])) {
        expected.push_back(objects[i]);
      }
    }
    const vt::ObjectList found = grid.query(query, p_ignore);
    ASSERT_EQ(std::vector<vt::Object*>(found.begin(), found.end()), expected) << "round " << round;
  }
}

TEST(SpatialGrid, OddCoordinatesDoNotHang) {
  vt::SpatialGrid grid;
  auto* p_far = reinterpret_cast<vt::Object*>(std::uintptr_t{16});
  auto* p_nan = reinterpret_cast<vt::Object*>(std::uintptr_t{32});
  const float nan = std::numeric_limits<float>::quiet_NaN();
  grid.insert(p_far, Box(Vector(-3e9f, 5), 6e9f, 1));
  grid.insert(p_nan, Box(Vector(nan, nan), 1, 1));
  EXPECT_EQ(grid.query(Box(Vector(0, 5), 1, 1), nullptr).getCount(), 1);
  grid.update(p_far, Box(Vector(1e30f, 1e30f), 1, 1));
  EXPECT_TRUE(grid.query(Box(Vector(0, 5), 1, 1), nullptr).isEmpty());
}
