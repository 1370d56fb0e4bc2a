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

// The grid answers exactly as a walk over a plain list in insertion order
// would, whatever the boxes and however often they move; odd coordinates
// neither hang it nor hide the others.
TEST(SpatialGrid, AgreesWithABruteForceWalk) {
  std::srand(7);
  // The grid only compares addresses; the objects are never touched.
  const auto object = [](int i) {
    return reinterpret_cast<vt::Object*>(static_cast<std::uintptr_t>(i + 1) * 16);
  };
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::vector<Box> boxes{Box(Vector(-3e9f, 5), 6e9f, 1), Box(Vector(nan, nan), 1, 1)};
  std::vector<int> order;  // The objects in the grid, in the order they went in.
  vt::SpatialGrid grid;
  for (int i = 0; i < 300; i++) {
    if (i >= 2) boxes.push_back(randomBox());
    grid.insert(object(i), boxes[i]);
    order.push_back(i);
  }
  for (int round = 0; round < 200; round++) {
    const int index = std::rand() % 300;
    const auto at = std::find(order.begin(), order.end(), index);
    const int action = std::rand() % 3;
    if (action == 0) {
      boxes[index] = randomBox();
      grid.update(object(index), boxes[index]);
    } else if (at == order.end()) {
      grid.insert(object(index), boxes[index]);
      order.push_back(index);
    } else if (action == 1) {
      grid.remove(object(index));
      order.erase(at);
    }
    const Box query = randomBox();
    const vt::Object* p_ignore = object(std::rand() % 300);
    std::vector<vt::Object*> expected;
    for (const int i : order) {
      if (object(i) != p_ignore && vt::boxIntersectsBox(query, boxes[i])) {
        expected.push_back(object(i));
      }
    }
    const vt::ObjectList found = grid.query(query, p_ignore);
    ASSERT_EQ(std::vector<vt::Object*>(found.begin(), found.end()), expected) << "round " << round;
  }
}
