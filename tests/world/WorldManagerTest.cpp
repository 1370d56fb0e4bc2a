#include <gtest/gtest.h>

#include "core/Config.h"
#include "core/LogManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/EventCollision.h"
#include "world/WorldManager.h"

using test::RecordingObject;
using vt::Box;
using vt::Vector;
using vt::WorldManager;

namespace {

WorldManager& world() {
  return WorldManager::getInstance();
}

RecordingObject* makeObject(Vector position, vt::Solidness solidness, Vector velocity = Vector()) {
  auto* p_object = new RecordingObject;
  p_object->setPosition(position);
  p_object->setSolidness(solidness);
  p_object->setVelocity(velocity);
  return p_object;
}

}  // namespace

TEST(WorldManager, CollisionsFollowSolidness) {
  test::HeadlessEngine engine;
  // Two HARD objects moving into each other: both told, neither moves.
  auto* p_left = makeObject(Vector(10, 5), vt::HARD, Vector(1, 0));
  auto* p_right = makeObject(Vector(11.5f, 5), vt::HARD, Vector(-1, 0));
  world().update();
  EXPECT_EQ(p_left->getPosition(), Vector(10, 5));
  EXPECT_EQ(p_right->getPosition(), Vector(11.5f, 5));
  // Each mover's blocked move tells both parties.
  EXPECT_EQ(p_left->count(vt::COLLISION_EVENT), 2);
  EXPECT_EQ(p_right->count(vt::COLLISION_EVENT), 2);

  // A HARD bullet passes through a SOFT enemy; both get the event.
  auto* p_enemy = makeObject(Vector(30, 5), vt::SOFT);
  auto* p_bullet = makeObject(Vector(29, 5), vt::HARD, Vector(1, 0));
  EXPECT_EQ(world().moveObject(p_bullet, Vector(30, 5)), 0);
  EXPECT_EQ(p_enemy->count(vt::COLLISION_EVENT), 1);
  EXPECT_EQ(p_bullet->count(vt::COLLISION_EVENT), 1);
  // With no_soft it stops at the SOFT enemy.
  p_bullet->setPosition(Vector(29, 5));
  p_bullet->setNoSoft(true);
  EXPECT_EQ(world().moveObject(p_bullet, Vector(30, 5)), -1);
  EXPECT_EQ(p_bullet->getPosition(), Vector(29, 5));

  // A SPECTRAL object neither collides nor blocks.
  auto* p_ghost = makeObject(Vector(40, 5), vt::SPECTRAL);
  EXPECT_EQ(world().moveObject(p_ghost, Vector(30, 5)), 0);
  EXPECT_EQ(p_ghost->count(vt::COLLISION_EVENT), 0);
  EXPECT_EQ(p_enemy->count(vt::COLLISION_EVENT), 2);
  EXPECT_TRUE(world().getCollisions(p_bullet, Vector(40, 5)).isEmpty());
}

TEST(WorldManager, CollisionEventNamesMoverAndObstacle) {
  test::HeadlessEngine engine;
  auto* p_wall = makeObject(Vector(5, 5), vt::HARD);
  auto* p_mover = makeObject(Vector(4, 5), vt::HARD);
  vt::Object* p_seen1 = nullptr;
  vt::Object* p_seen2 = nullptr;
  p_wall->on_event = [&](const vt::Event* p_event) {
    const auto* p_collision = dynamic_cast<const vt::EventCollision*>(p_event);
    ASSERT_NE(p_collision, nullptr);
    p_seen1 = p_collision->getObject1();
    p_seen2 = p_collision->getObject2();
    EXPECT_EQ(p_collision->getPosition(), Vector(4.5f, 5));
  };
  world().moveObject(p_mover, Vector(4.5f, 5));
  EXPECT_EQ(p_seen1, p_mover);
  EXPECT_EQ(p_seen2, p_wall);
}

TEST(WorldManager, OneOutEventPerCrossing) {
  test::HeadlessEngine engine;
  world().setBoundary(Box(Vector(0, 0), 80, 24));
  auto* p_object = makeObject(Vector(78, 5), vt::SPECTRAL, Vector(1, 0));
  for (int step = 0; step < 6; step++) world().update();
  EXPECT_EQ(p_object->count(vt::OUT_EVENT), 1);
  p_object->setVelocity(Vector(-1, 0));
  for (int step = 0; step < 6; step++) world().update();
  p_object->setVelocity(Vector(1, 0));
  for (int step = 0; step < 6; step++) world().update();
  EXPECT_EQ(p_object->count(vt::OUT_EVENT), 2);
}

TEST(WorldManager, DeletionIsDeferredAndOnce) {
  test::HeadlessEngine engine;
  auto* p_victim = makeObject(Vector(5, 5), vt::HARD);
  auto* p_killer = makeObject(Vector(3, 5), vt::HARD, Vector(1, 0));
  p_killer->on_event = [&](const vt::Event* p_event) {
    if (p_event->getType() == vt::COLLISION_EVENT) {
      // Marking twice, and marking the other party, are both safe.
      world().markForDelete(p_victim);
      world().markForDelete(p_victim);
      world().markForDelete(p_killer);
    }
  };
  world().update();
  world().update();
  EXPECT_TRUE(world().getAllObjects(true).isEmpty());
}

TEST(WorldManager, EventsReachOnlyActiveObjects) {
  test::HeadlessEngine engine;
  auto* p_awake = new RecordingObject;
  auto* p_asleep = new RecordingObject;
  p_awake->registerInterest("phase");
  p_asleep->registerInterest("phase");
  p_asleep->setActive(false);
  vt::Event phase;
  phase.setType("phase");
  EXPECT_EQ(world().onEvent(&phase), 1);
  EXPECT_EQ(p_asleep->count("phase"), 0);
  // Inactive objects are not moved either.
  p_asleep->setVelocity(Vector(1, 0));
  world().update();
  EXPECT_EQ(p_asleep->getPosition(), Vector(1, 1));
}

TEST(WorldManager, ViewFollowsWithSlackAndStaysInTheWorld) {
  test::HeadlessEngine engine;
  world().setBoundary(Box(Vector(0, 0), 200, 100));
  world().setView(Box(Vector(0, 0), 80, 24));
  world().setViewSlack(Vector(0.5f, 0.5f));
  auto* p_hero = makeObject(Vector(100, 50), vt::SPECTRAL);
  ASSERT_EQ(world().setViewFollowing(p_hero), 0);
  EXPECT_EQ(world().getView().getCorner(), Vector(60, 38));
  // The slack zone spans 20 cells either side of the centre.
  world().moveObject(p_hero, Vector(120, 50));
  EXPECT_EQ(world().getView().getCorner(), Vector(60, 38));
  world().moveObject(p_hero, Vector(125, 50));
  EXPECT_EQ(world().getView().getCorner(), Vector(65, 38));
  world().moveObject(p_hero, Vector(199, 99));
  EXPECT_EQ(world().getView().getCorner(), Vector(120, 76));

  world().setViewPosition(Vector(-50, -50));
  EXPECT_EQ(world().getView().getCorner(), Vector(0, 0));
  world().setBoundary(Box(Vector(0, 0), 40, 10));
  world().setViewPosition(Vector(100, 100));
  EXPECT_EQ(world().getView().getCorner(), Vector(0, 0));

  vt::Object outsider_data;
  world().removeObject(&outsider_data);
  EXPECT_EQ(world().setViewFollowing(&outsider_data), -1);
  world().insertObject(&outsider_data);

  world().setViewSlack(Vector(2, 0));
  EXPECT_EQ(world().getViewSlack(), Vector(2, 0));
  EXPECT_NE(engine.logText().find(
                "WorldManager::setViewSlack(): Warning! view slack units out of range [0-1]"),
            std::string::npos);
}

TEST(WorldManager, NormalsAndSlidingRoundAnObstacle) {
  test::HeadlessEngine engine;
  auto* p_wall = makeObject(Vector(10, 10), vt::HARD);
  auto* p_mover = makeObject(Vector(10, 8), vt::HARD, Vector(0, 1));
  EXPECT_EQ(vt::getNormal(p_mover, p_wall), Vector(0, -1));
  p_mover->setPosition(Vector(12, 10));
  p_mover->setVelocity(Vector(-1, 0));
  EXPECT_EQ(vt::getNormal(p_mover, p_wall), Vector(1, 0));

  // Heading diagonally into the wall's top, an avoiding mover slides along it.
  p_mover->setPosition(Vector(9, 8.5f));
  p_mover->setVelocity(Vector(1, 1));
  p_mover->setAvoidCollisions(true);
  EXPECT_EQ(world().moveObject(p_mover, p_mover->predictPosition()), 0);
  EXPECT_FLOAT_EQ(p_mover->getPosition().getY(), 8.5f);
  EXPECT_GT(p_mover->getPosition().getX(), 9);

  // Hemmed in on every side it cannot move at all.
  auto* p_boxed = makeObject(Vector(30, 30), vt::HARD, Vector(1, 1));
  p_boxed->setAvoidCollisions(true);
  for (int dx = -1; dx <= 1; dx++) {
    for (int dy = -1; dy <= 1; dy++) {
      if (dx != 0 || dy != 0) makeObject(Vector(30.0f + dx, 30.0f + dy), vt::HARD);
    }
  }
  EXPECT_EQ(world().moveObject(p_boxed, Vector(31, 31)), -1);
  EXPECT_EQ(p_boxed->getPosition(), Vector(30, 30));
}

TEST(WorldManager, SpatialQueries) {
  test::HeadlessEngine engine;
  auto* p_a = makeObject(Vector(5, 5), vt::HARD);
  auto* p_b = makeObject(Vector(10, 5), vt::SPECTRAL);
  auto* p_c = makeObject(Vector(20, 20), vt::SOFT);
  p_c->setActive(false);
  EXPECT_EQ(world().objectsAtPosition(Vector(5, 5)).getCount(), 1);
  EXPECT_TRUE(world().objectsAtPosition(Vector(5, 5)).contains(p_a));
  EXPECT_TRUE(world().objectsAtPosition(Vector(20, 20)).isEmpty());
  EXPECT_EQ(world().objectsInBox(Box(Vector(0, 0), 10, 10)).getCount(), 2);
  EXPECT_TRUE(world().objectsInCircle(vt::Circle(Vector(10, 7), 1.6f)).contains(p_b));
  EXPECT_FALSE(world().objectsInCircle(vt::Circle(Vector(10, 7), 1.6f)).contains(p_a));
  const vt::ObjectList on_line = world().objectsOnLine(vt::Line(Vector(0, 5), Vector(30, 5)));
  EXPECT_EQ(on_line.getCount(), 2);
  EXPECT_EQ(world().getAllObjects().getCount(), 2);
  EXPECT_EQ(world().getAllObjects(true).getCount(), 3);
}

TEST(WorldManager, InsertBeforeStartUpIsRefused) {
  const std::string directory = test::makeTempDir();
  vt::Config::getInstance().setLogFile(directory + "/early.log");
  vt::LogManager::getInstance().startUp();
  vt::LogManager::getInstance().setLogLevel(2);
  vt::Object orphan;
  EXPECT_FALSE(world().getSceneGraph().activeObjects().contains(&orphan));
  vt::LogManager::getInstance().shutDown();
  const std::string log = test::readFile(directory + "/early.log");
  EXPECT_NE(log.find("WorldManager::insertObject(): Warning! Not adding Object " +
                     std::to_string(orphan.getId()) + "\n"),
            std::string::npos);
  EXPECT_NE(log.find(std::string(30, ' ') + "because WorldManager not started."),
            std::string::npos);
}
