#include <gtest/gtest.h>

#include <functional>

#include "extras/NetworkManager.h"
#include "support/HeadlessEngine.h"
#include "world/SceneGraph.h"
#include "world/WorldManager.h"

using vt::Vector;

TEST(Object, IdsAreUniqueAndFindTheirObject) {
  test::HeadlessEngine engine;
  auto* p_first = new vt::Object;
  auto* p_next = new vt::Object;
  EXPECT_EQ(p_next->getId(), p_first->getId() + 1);
  const int later_id = p_next->getId() + 50;
  p_next->setId(later_id);
  EXPECT_EQ((new vt::Object)->getId(), later_id + 1);
  p_next->setActive(false);
  EXPECT_EQ(vt::WorldManager::getInstance().objectWithId(later_id), p_next);
}

TEST(Object, EventRegistrationKeepsOrderAndLimitAndEndsWithTheObject) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  for (const char* name : {"a", "b", "c"}) ASSERT_EQ(p_object->registerInterest(name), 0);
  ASSERT_EQ(p_object->unregisterInterest("b"), 0);
  EXPECT_EQ(p_object->unregisterInterest("b"), -1);
  EXPECT_EQ(p_object->serialize("EVENTS,"), "event_count:2,event_name[0]:a,event_name[1]:c,");
  // Collision events arrive without registration; the world refuses them.
  EXPECT_EQ(p_object->registerInterest(vt::COLLISION_EVENT), -1);
  for (int i = 2; i < vt::MAX_OBJ_EVENTS; i++) p_object->registerInterest("e" + std::to_string(i));
  EXPECT_EQ(p_object->registerInterest("one too many"), -1);
  EXPECT_EQ(p_object->getEventCount(), vt::MAX_OBJ_EVENTS);
  // Deleting the object unregisters it everywhere, the network manager too.
  ASSERT_EQ(p_object->unregisterInterest("c"), 0);
  ASSERT_EQ(p_object->registerInterest(vt::CUSTOM_NETWORK_EVENT), 0);
  vt::WorldManager::getInstance().markForDelete(p_object);
  vt::WorldManager::getInstance().update();
  vt::Event event;
  event.setType("a");
  EXPECT_EQ(vt::WorldManager::getInstance().onEvent(&event), 0);
  event.setType(vt::CUSTOM_NETWORK_EVENT);
  EXPECT_EQ(vt::NetworkManager::getInstance().onEvent(&event), 0);
}

// Each step the object moves by its velocity, then jumps to every waypoint
// within three quarters of its speed and turns towards the next one.
TEST(Object, FollowsItsPathTakingCloseWaypointsAtOnce) {
  const struct {
    float speed;
    std::vector<Vector> after;
  } cases[] = {{1, {{1, 0}, {2, 0}, {2, 1}, {2, 2}, {2, 3}}}, {2, {{2, 0}, {2, 3}}}, {4, {{2, 3}}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.speed);
    test::HeadlessEngine engine;
    auto* p_object = new vt::Object;
    p_object->setPosition(Vector(0, 0));
    p_object->setSpeed(c.speed);
    p_object->setPath({Vector(1, 0), Vector(2, 0), Vector(2, 3)});
    p_object->setFollowPath(true);
    EXPECT_EQ(p_object->getDirection(), Vector(1, 0));
    for (const Vector& expected : c.after) {
      EXPECT_TRUE(p_object->getFollowPath());
      vt::WorldManager::getInstance().update();
      EXPECT_EQ(p_object->getPosition(), expected);
    }
    EXPECT_FALSE(p_object->getFollowPath());
    EXPECT_TRUE(p_object->getDirection().isZero());
    EXPECT_TRUE(p_object->getPath().empty());
  }
}

// After each change the object is in exactly the lists its attributes call
// for; inactive objects leave every list but the inactive one and come back
// with the attributes changed meanwhile.
TEST(SceneGraph, ListsFollowTheObjectsAttributes) {
  test::HeadlessEngine engine;
  vt::SceneGraph& graph = vt::WorldManager::getInstance().getSceneGraph();
  auto* p = new vt::Object;
  p->setType("ship");
  // Each change, its result, and the lists the object is in after it.
  const struct {
    std::function<int()> change;
    int result;
    bool active, solid, visible_at_2, visible_at_4, ship;
  } steps[] = {
      {[] { return 0; }, 0, true, true, true, false, true},
      {[&] { return p->setSolidness(vt::SPECTRAL); }, 0, true, false, true, false, true},
      {[&] { return p->setSolidness(vt::SOFT); }, 0, true, true, true, false, true},
      {[&] { return p->setSolidness(static_cast<vt::Solidness>(7)); }, -1, true, true, true, false,
       true},
      {[&] { return p->setAltitude(0); }, 0, true, true, false, false, true},
      {[&] { return p->setAltitude(4); }, 0, true, true, false, true, true},
      {[&] { return p->setAltitude(5); }, -1, true, true, false, true, true},
      {[&] { return p->setVisible(false); }, 0, true, true, false, false, true},
      {[&] { return p->setVisible(true); }, 0, true, true, false, true, true},
      {[&] { return p->setActive(false); }, 0, false, false, false, false, false},
      {[&] { return p->setSolidness(vt::SPECTRAL); }, 0, false, false, false, false, false},
      {[&] { return p->setActive(true); }, 0, true, false, false, true, true},
      {[&] { return p->setSolidness(vt::HARD); }, 0, true, true, false, true, true},
  };
  int index = 0;
  for (const auto& step : steps) {
    SCOPED_TRACE(index++);
    EXPECT_EQ(step.change(), step.result);
    EXPECT_EQ(graph.activeObjects().contains(p), step.active);
    EXPECT_EQ(graph.inactiveObjects().contains(p), !step.active);
    EXPECT_EQ(graph.solidObjects().contains(p), step.solid);
    EXPECT_EQ(graph.visibleObjects(2).contains(p), step.visible_at_2);
    EXPECT_EQ(graph.visibleObjects(4).contains(p), step.visible_at_4);
    EXPECT_EQ(graph.objectsOfType("ship").contains(p), step.ship);
  }
}
