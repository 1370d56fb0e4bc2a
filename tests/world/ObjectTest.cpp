#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

#include "extras/NetworkManager.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;

TEST(Object, IdsAreUniqueAndStayInRange) {
  test::HeadlessEngine engine;
  auto* p_first = new vt::Object;
  auto* p_next = new vt::Object;
  EXPECT_EQ(p_next->getId(), p_first->getId() + 1);
  const int later_id = p_next->getId() + 50;
  p_next->setId(later_id);
  EXPECT_EQ((new vt::Object)->getId(), later_id + 1);
  EXPECT_EQ(vt::WorldManager::getInstance().objectWithId(later_id), p_next);
  // Going back to a lower id leaves the counter where it is.
  p_next->setId(1);
  EXPECT_EQ((new vt::Object)->getId(), later_id + 2);
  // In a child process: the counter stops at the top instead of running over.
  EXPECT_EXIT(
      {
        p_next->setId(INT_MAX);
        std::exit((new vt::Object)->getId() == INT_MAX ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(Object, AltitudesRunFromZeroToFour) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  for (int altitude : {0, 4, 5, -1}) {
    EXPECT_EQ(p_object->setAltitude(altitude), altitude >= 0 && altitude <= 4 ? 0 : -1);
  }
  EXPECT_EQ(p_object->getAltitude(), 4);
  EXPECT_NE(engine.logText().find("Object::setAltitude(): Altitude -1 not in range [0,4]."),
            std::string::npos);
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
  EXPECT_NE(engine.logText().find("Object::registerInterest(): maximum (100) reached, cannot "
                                  "register for event 'one too many'"),
            std::string::npos);
  // Deleting the object unregisters it everywhere, from the network manager
  // too.
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
