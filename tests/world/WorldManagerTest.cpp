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

using namespace vt;

namespace {

WorldManager& world = WorldManager::getInstance();

auto* makeObject(Vector position, Solidness solidness, Vector velocity = Vector()) {
  auto* p_object = new test::RecordingObject;
  p_object->setPosition(position);
  EXPECT_EQ(p_object->setSolidness(solidness), 0);
  p_object->setVelocity(velocity);
  return p_object;
}

float randomFloat(float low, float high) {
  return low + (high - low) * static_cast<float>(std::rand()) / static_cast<float>(RAND_MAX);
}

// Mostly small boxes, some huge, some on cell borders, some reaching back from their corner.
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
    auto* p_object = makeObject(Vector(0, 0), SPECTRAL, c.velocity);
    p_object->setAcceleration(c.acceleration);
    for (const Vector& expected : c.after) {
      world.update();
      EXPECT_NEAR((p_object->getPosition() - expected).getMagnitude(), 0, 1e-4);
    }
    EXPECT_NEAR((p_object->getVelocity() - c.final_velocity).getMagnitude(), 0, 1e-4);
  }
}

TEST(WorldManager, CollisionsFollowSolidness) {
  // Mover and other solidness, mover's no-soft, other's speed; whether the mover moves, events.
  const std::tuple<Solidness, Solidness, bool, float, bool, int> cases[] = {
      {HARD, HARD, false, 0, false, 1},    {HARD, HARD, false, -1, false, 2},
      {HARD, SOFT, false, 0, true, 1},     {HARD, SOFT, true, 0, false, 1},
      {SOFT, HARD, false, 0, true, 1},     {SOFT, SOFT, false, 0, true, 1},
      {SOFT, SOFT, true, 0, false, 1},     {SPECTRAL, HARD, false, 0, true, 0},
      {HARD, SPECTRAL, false, 0, true, 0},
  };
  for (const auto& [mover, other, no_soft, speed, moves, events] : cases) {
    SCOPED_TRACE(testing::Message() << mover << other << no_soft << speed);
    test::HeadlessEngine engine;
    auto* p_mover = makeObject(Vector(10, 5), mover, Vector(1, 0));
    EXPECT_EQ(p_mover->setNoSoft(no_soft), 0);
    auto* p_other = makeObject(Vector(11.5f, 5), other, Vector(speed, 0));
    p_other->on_event = [&](const Event* p_event) {
      const auto* p_hit = dynamic_cast<const EventCollision*>(p_event);
      if (p_hit == nullptr || p_other->count(COLLISION_EVENT) > 1) return;
      EXPECT_EQ(std::tuple(p_hit->getObject1(), p_hit->getObject2(), p_hit->getPosition()),
                std::tuple(p_mover, p_other, Vector(11, 5)));
    };
    world.update();
    EXPECT_EQ(p_mover->getPosition(), moves ? Vector(11, 5) : Vector(10, 5));
    EXPECT_EQ(std::pair(p_mover->count(COLLISION_EVENT), p_other->count(COLLISION_EVENT)),
              std::pair(events, events));
  }
}

TEST(WorldManager, OneOutEventPerCrossingOfTheBoundaryAndTheViewFollowsInsideIt) {
  test::HeadlessEngine engine;
  world.setBoundary(Box(Vector(0, 0), 80, 24));
  auto* p_object = makeObject(Vector(78, 5), SPECTRAL);
  // Out once the box no longer touches the boundary: at x 81, not at 80. The
  // velocity, the steps it is kept, and the out events by then.
  const std::tuple<Vector, int, int> runs[] = {
      {{1, 0}, 2, 0}, {{1, 0}, 1, 1}, {{1, 0}, 5, 1}, {{-1, 0}, 8, 1}, {{0, 1}, 30, 2}};
  for (const auto& [velocity, steps, out_events] : runs) {
    p_object->setVelocity(velocity);
    for (int step = 0; step < steps; step++) world.update();
    EXPECT_EQ(p_object->count(OUT_EVENT), out_events) << p_object->getPosition().toString();
  }
  // The view follows outside its slack and stays in the world.
  world.setBoundary(Box(Vector(0, 0), 200, 100));
  world.setView(Box(Vector(0, 0), 80, 24));
  world.setViewSlack(Vector(0.5f, 0.5f));
  auto* p_hero = makeObject(Vector(100, 50), SPECTRAL);
  ASSERT_EQ(world.setViewFollowing(p_hero), 0);
  EXPECT_EQ(world.getView().getCorner(), Vector(60, 38));
  // The slack zone reaches 20 columns and 6 rows from the view's centre.
  // Where the hero moves, and the view's corner then.
  const std::pair<Vector, Vector> moves[] = {
      {{120, 50}, {60, 38}}, {{125, 50}, {65, 38}},  {{80, 50}, {60, 38}}, {{100, 41}, {60, 35}},
      {{100, 60}, {60, 42}}, {{199, 99}, {120, 76}}, {{0, 0}, {0, 0}}};
  for (const auto& [to, corner] : moves) {
    world.moveObject(p_hero, to);
    EXPECT_EQ(world.getView().getCorner(), corner) << to.toString();
  }
  EXPECT_EQ(world.setViewFollowing(nullptr), 0);
  world.moveObject(p_hero, Vector(150, 80));
  EXPECT_EQ(world.getView().getCorner(), Vector(0, 0));
}

TEST(WorldManager, DeletionWaitsForTheEndOfTheStep) {
  test::HeadlessEngine engine;
  auto* p_killer = makeObject(Vector(4, 5), HARD, Vector(1, 0));
  auto* p_victim = makeObject(Vector(5, 5), HARD);
  auto* p_late = makeObject(Vector(6, 5), HARD, Vector(-1, 0));
  p_killer->on_event = [&](const Event*) {
    EXPECT_EQ(std::pair(world.markForDelete(p_victim), world.markForDelete(p_victim)),
              std::pair(0, 0));
    world.markForDelete(p_killer);
  };
  world.update();
  // Marked early in the step, the victim was still there for the later mover.
  EXPECT_EQ(std::pair(p_late->count(COLLISION_EVENT), world.getAllObjects(true).getCount()),
            std::pair(1, 1));
  world.update();
  EXPECT_EQ(std::pair(p_late->getPosition(), p_late->count(COLLISION_EVENT)),
            std::pair(Vector(5, 5), 1));
}

// Each side of the obstacle turns a slanting mover along that side, a corner
// turns it away round the corner; a mover square on it, or blocked where it
// would slide, stays put. A row: from, velocity, to, blocked.
TEST(WorldManager, AvoidingMoversSlideAlongWhatTheyHit) {
  const float R = std::sqrt(2.0f);
  const std::tuple<Vector, Vector, Vector, bool> MOVES[] = {
      {{9, 8.5f}, {1, 1}, {9 + R, 8.5f}, false},    {{11, 8.5f}, {-1, 1}, {11 - R, 8.5f}, false},
      {{8.5f, 9}, {1, 1}, {8.5f, 9 + R}, false},    {{11.5f, 11}, {-1, -1}, {11.5f, 11 - R}, false},
      {{9, 11.5f}, {1, -1}, {9 + R, 11.5f}, false}, {{8.5f, 8.5f}, {1, 1}, {7.5f, 9.5f}, false},
      {{10, 8.5f}, {0, 1}, {10, 8.5f}, false},      {{9, 8.5f}, {1, 1}, {9, 8.5f}, true}};
  for (const auto& [from, velocity, to, blocked] : MOVES) {
    test::HeadlessEngine engine;
    makeObject(Vector(10, 10), HARD);
    if (blocked) makeObject(Vector(10.5f, 8.5f), HARD);
    auto* p_mover = makeObject(from, HARD, velocity);
    EXPECT_EQ(p_mover->setAvoidCollisions(true), 0);
    world.update();
    EXPECT_NEAR((p_mover->getPosition() - to).getMagnitude(), 0, 1e-4)
        << from.toString() << " went to " << p_mover->getPosition().toString();
    EXPECT_EQ(p_mover->count(COLLISION_EVENT), 0);
  }
}

TEST(WorldManager, QueriesSeeOnlyActiveObjects) {
  test::HeadlessEngine engine;
  auto* p_a = makeObject(Vector(5, 5), HARD);
  makeObject(Vector(10, 5), SPECTRAL);
  makeObject(Vector(5, 5), SOFT)->setActive(false);
  const ObjectList at = world.objectsAtPosition(Vector(5, 5));
  EXPECT_TRUE(at.getCount() == 1 && at.contains(p_a));
  EXPECT_EQ(std::tuple(world.objectsInBox(Box(Vector(0, 0), 10, 10)).getCount(),
                       world.getAllObjects().getCount(), world.getAllObjects(true).getCount()),
            std::tuple(2, 2, 3));
}

// The grid answers as a walk over a list in insertion order would, however the boxes move;
// odd coordinates neither hang it nor hide the others.
TEST(SpatialGrid, AgreesWithABruteForceWalk) {
  std::srand(7);
  // The grid only compares addresses; the objects are never touched.
  const auto object = [](int i) { return reinterpret_cast<Object*>(std::uintptr_t(i + 1) * 16); };
  const float nan = std::numeric_limits<float>::quiet_NaN();
  std::vector<Box> boxes{Box(Vector(-3e9f, 5), 6e9f, 1), Box(Vector(nan, nan), 1, 1)};
  std::vector<int> order;  // The objects in the grid, in the order they went in.
  SpatialGrid grid;
  const auto insert = [&](int i) { grid.insert(object(i), boxes[i]), order.push_back(i); };
  for (int i = 0; i < 300; i++) {
    if (i >= 2) boxes.push_back(randomBox());
    insert(i);
  }
  for (int round = 0; round < 200; round++) {
    const int index = std::rand() % 300;
    const auto at = std::find(order.begin(), order.end(), index);
    const int action = std::rand() % 3;
    if (action == 0)
      grid.update(object(index), boxes[index] = randomBox());
    else if (at == order.end())
      insert(index);
    else if (action == 1)
      grid.remove(object(index)), order.erase(at);
    const Box query = randomBox();
    const Object* p_ignore = object(std::rand() % 300);
    std::vector<Object*> expected;
    for (const int i : order)
      if (object(i) != p_ignore && boxIntersectsBox(query, boxes[i])) expected.push_back(object(i));
    const ObjectList found = grid.query(query, p_ignore);
    ASSERT_EQ(std::vector<Object*>(found.begin(), found.end()), expected) << "round " << round;
  }
}
