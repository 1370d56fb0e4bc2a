#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "core/Utility.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/EventCollision.h"
#include "world/SpatialGrid.h"
#include "world/WorldManager.h"

using test::RecordingObject;
using vt::Box;
using vt::Vector;

namespace {

vt::WorldManager& world = vt::WorldManager::getInstance();

RecordingObject* makeObject(Vector position, vt::Solidness solidness, Vector velocity = Vector()) {
  auto* p_object = new RecordingObject;
  p_object->setPosition(position);
  p_object->setSolidness(solidness);
  p_object->setVelocity(velocity);
  return p_object;
}

void expectNear(Vector actual, Vector expected) {
  EXPECT_NEAR(actual.getX(), expected.getX(), 1e-4) << "x of " << actual.toString();
  EXPECT_NEAR(actual.getY(), expected.getY(), 1e-4) << "y of " << actual.toString();
}

float randomFloat(float low, float high) {
  return low + (high - low) * static_cast<float>(std::rand()) / static_cast<float>(RAND_MAX);
}

// Mostly small boxes, some huge, some touching cell borders exactly, some
// reaching back from their corner.
Box randomBox() {
  const float size = std::rand() % 10 == 0 ? randomFloat(100, 400) : randomFloat(0, 6);
  const float x = std::rand() % 5 == 0 ? 8.0f * (std::rand() % 10) : randomFloat(-100, 100);
  const float sign = std::rand() % 4 == 0 ? -1.0f : 1.0f;
  return Box(Vector(x, randomFloat(-100, 100)), sign * size, randomFloat(-6, 6));
}

}  // namespace

TEST(WorldManager, ObjectsMoveByVelocityAndThenAccelerate) {
  struct Case {
    Vector velocity, acceleration, after[3], final_velocity;
  } const cases[] = {
      {{1, 1}, {}, {{1, 1}, {2, 2}, {3, 3}}, {1, 1}},
      {{}, {0, 1}, {{0, 0}, {0, 1}, {0, 3}}, {0, 3}},
      {{2, 0}, {-1, 0}, {{2, 0}, {3, 0}, {3, 0}}, {-1, 0}},
      {{0, -0.5f}, {0.25f, 0}, {{0, -0.5f}, {0.25f, -1}, {0.75f, -1.5f}}, {0.75f, -0.5f}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    test::HeadlessEngine engine;
    auto* p_object = makeObject(Vector(0, 0), vt::SPECTRAL, c.velocity);
    p_object->setAcceleration(c.acceleration);
    for (const Vector& expected : c.after) {
      world.update();
      expectNear(p_object->getPosition(), expected);
    }
    expectNear(p_object->getVelocity(), c.final_velocity);
  }
}

TEST(WorldManager, CollisionsFollowSolidness) {
  struct Case {
    vt::Solidness mover, other;
    bool no_soft;
    float other_speed;
    bool moves;
    int events;
  } const cases[] = {
      {vt::HARD, vt::HARD, false, 0, false, 1},    {vt::HARD, vt::HARD, false, -1, false, 2},
      {vt::HARD, vt::SOFT, false, 0, true, 1},     {vt::HARD, vt::SOFT, true, 0, false, 1},
      {vt::SOFT, vt::HARD, false, 0, true, 1},     {vt::SOFT, vt::SOFT, false, 0, true, 1},
      {vt::SOFT, vt::SOFT, true, 0, false, 1},     {vt::SPECTRAL, vt::HARD, false, 0, true, 0},
      {vt::HARD, vt::SPECTRAL, false, 0, true, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    test::HeadlessEngine engine;
    auto* p_mover = makeObject(Vector(10, 5), c.mover, Vector(1, 0));
    p_mover->setNoSoft(c.no_soft);
    auto* p_other = makeObject(Vector(11.5f, 5), c.other, Vector(c.other_speed, 0));
    p_other->on_event = [&](const vt::Event* p_event) {
      const auto* p_collision = dynamic_cast<const vt::EventCollision*>(p_event);
      if (p_collision == nullptr || p_other->count(vt::COLLISION_EVENT) > 1) return;
      // The first collision the other object hears of is the mover's move.
      EXPECT_EQ(p_collision->getObject1(), p_mover);
      EXPECT_EQ(p_collision->getObject2(), p_other);
      EXPECT_EQ(p_collision->getPosition(), Vector(11, 5));
    };
    world.update();
    EXPECT_EQ(p_mover->getPosition(), c.moves ? Vector(11, 5) : Vector(10, 5));
    EXPECT_EQ(p_mover->count(vt::COLLISION_EVENT), c.events);
    EXPECT_EQ(p_other->count(vt::COLLISION_EVENT), c.events);
  }
}

TEST(WorldManager, OneOutEventPerCrossingOfTheBoundary) {
  test::HeadlessEngine engine;
  world.setBoundary(Box(Vector(0, 0), 80, 24));
  auto* p_object = makeObject(Vector(78, 5), vt::SPECTRAL);
  // Out once the box no longer touches the boundary: at x 81, not at 80.
  const struct {
    Vector velocity;
    int steps, out_events;
  } runs[] = {{{1, 0}, 2, 0}, {{1, 0}, 1, 1}, {{1, 0}, 5, 1}, {{-1, 0}, 8, 1}, {{0, 1}, 30, 2}};
  for (const auto& run : runs) {
    p_object->setVelocity(run.velocity);
    for (int step = 0; step < run.steps; step++) world.update();
    EXPECT_EQ(p_object->count(vt::OUT_EVENT), run.out_events) << p_object->getPosition().toString();
  }
}

TEST(WorldManager, DeletionWaitsForTheEndOfTheStep) {
  test::HeadlessEngine engine;
  auto* p_killer = makeObject(Vector(4, 5), vt::HARD, Vector(1, 0));
  auto* p_victim = makeObject(Vector(5, 5), vt::HARD);
  auto* p_late = makeObject(Vector(6, 5), vt::HARD, Vector(-1, 0));
  p_killer->on_event = [&](const vt::Event*) {
    // Marking twice, and marking the other party, are both safe.
    EXPECT_EQ(world.markForDelete(p_victim), 0);
    EXPECT_EQ(world.markForDelete(p_victim), 0);
    world.markForDelete(p_killer);
  };
  world.update();
  // Marked early in the step, the victim was still there for the later mover.
  EXPECT_EQ(p_late->count(vt::COLLISION_EVENT), 1);
  EXPECT_EQ(world.getAllObjects(true).getCount(), 1);
  world.update();
  EXPECT_EQ(p_late->getPosition(), Vector(5, 5));
  EXPECT_EQ(p_late->count(vt::COLLISION_EVENT), 1);
}

TEST(WorldManager, ViewFollowsOutsideItsSlackAndStaysInTheWorld) {
  test::HeadlessEngine engine;
  world.setBoundary(Box(Vector(0, 0), 200, 100));
  world.setView(Box(Vector(0, 0), 80, 24));
  world.setViewSlack(Vector(0.5f, 0.5f));
  auto* p_hero = makeObject(Vector(100, 50), vt::SPECTRAL);
  ASSERT_EQ(world.setViewFollowing(p_hero), 0);
  EXPECT_EQ(world.getView().getCorner(), Vector(60, 38));
  // The slack zone reaches 20 columns and 6 rows from the view's centre.
  const struct {
    Vector to, corner;
  } moves[] = {{{120, 50}, {60, 38}}, {{125, 50}, {65, 38}}, {{80, 50}, {60, 38}},
               {{100, 41}, {60, 35}}, {{100, 60}, {60, 42}}, {{199, 99}, {120, 76}},
               {{0, 0}, {0, 0}}};
  for (const auto& move : moves) {
    world.moveObject(p_hero, move.to);
    EXPECT_EQ(world.getView().getCorner(), move.corner) << move.to.toString();
  }
  EXPECT_EQ(world.setViewFollowing(nullptr), 0);
  world.moveObject(p_hero, Vector(150, 80));
  EXPECT_EQ(world.getView().getCorner(), Vector(0, 0));
}

TEST(WorldManager, AvoidingMoversSlideAlongWhatTheyHit) {
  test::HeadlessEngine engine;
  makeObject(Vector(10, 10), vt::HARD);
  auto* p_mover = makeObject(Vector(9, 8.5f), vt::HARD, Vector(1, 1));
  // Heading diagonally into the wall's top, it slides along it.
  p_mover->setAvoidCollisions(true);
  world.update();
  expectNear(p_mover->getPosition(), Vector(9 + std::sqrt(2.0f), 8.5f));
  EXPECT_EQ(p_mover->count(vt::COLLISION_EVENT), 0);
}

TEST(WorldManager, QueriesAndEventsSeeOnlyActiveObjects) {
  test::HeadlessEngine engine;
  auto* p_a = makeObject(Vector(5, 5), vt::HARD);
  makeObject(Vector(10, 5), vt::SPECTRAL);
  auto* p_c = makeObject(Vector(5, 5), vt::SOFT);
  p_c->setActive(false);
  for (auto* p_object : {p_a, p_c}) p_object->registerInterest("phase");
  vt::Event phase;
  phase.setType("phase");
  EXPECT_EQ(world.onEvent(&phase), 1);
  const vt::ObjectList at = world.objectsAtPosition(Vector(5, 5));
  EXPECT_TRUE(at.getCount() == 1 && at.contains(p_a));
  EXPECT_EQ(world.objectsInBox(Box(Vector(0, 0), 10, 10)).getCount(), 2);
  EXPECT_EQ(world.getAllObjects().getCount(), 2);
  EXPECT_EQ(world.getAllObjects(true).getCount(), 3);
}

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
