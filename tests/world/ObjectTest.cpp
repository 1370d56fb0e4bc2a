#include <gtest/gtest.h>

#include "core/LogManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/Object.h"
#include "world/WorldManager.h"

using test::RecordingObject;
using vt::Vector;

TEST(Object, DefaultsAndIds) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  EXPECT_EQ(p_object->getType(), "(Undefined)");
  EXPECT_EQ(p_object->getPosition(), Vector(1, 1));
  EXPECT_EQ(p_object->getBox(), vt::Box(Vector(-0.5f, -0.5f), 0.99f, 0.99f));
  EXPECT_EQ(p_object->getAltitude(), 2);
  EXPECT_EQ(p_object->getSolidness(), vt::HARD);
  EXPECT_TRUE(p_object->isActive());
  EXPECT_TRUE(p_object->isVisible());
  for (int i = 0; i < vt::ATTRIBUTE_COUNT; i++) EXPECT_TRUE(p_object->isModified(i));

  auto* p_next = new vt::Object;
  EXPECT_EQ(p_next->getId(), p_object->getId() + 1);
  const int later_id = p_next->getId() + 50;
  p_next->setId(later_id);
  EXPECT_EQ((new vt::Object)->getId(), later_id + 1);
  EXPECT_EQ(vt::WorldManager::getInstance().objectWithId(later_id), p_next);
}

namespace {

// Opens the modified flags to the test.
struct FlagProbe : vt::Object {
  using vt::Object::setModified;
};

}  // namespace

TEST(Object, SettersRaiseTheirFlagsOnlyOnChange) {
  test::HeadlessEngine engine;
  auto* p_object = new FlagProbe;
  for (int i = 0; i < vt::ATTRIBUTE_COUNT; i++) p_object->setModified(i, false);
  EXPECT_FALSE(p_object->isModified());

  EXPECT_EQ(p_object->setAltitude(2), 0);
  EXPECT_EQ(p_object->setPosition(Vector(1, 1)), 0);
  EXPECT_EQ(p_object->setSolidness(vt::HARD), 0);
  EXPECT_FALSE(p_object->isModified());

  // Speed raises DIRECTION, not SPEED; setDirection raises nothing and is
  // stored as given.
  p_object->setSpeed(2.0f);
  EXPECT_TRUE(p_object->isModified(vt::DIRECTION));
  EXPECT_FALSE(p_object->isModified(vt::SPEED));
  p_object->setDirection(Vector(3, 4));
  EXPECT_EQ(p_object->getDirection(), Vector(3, 4));
  EXPECT_FALSE(p_object->isModified(vt::SPEED));
  p_object->setVelocity(Vector(0, -3));
  EXPECT_TRUE(p_object->isModified(vt::SPEED));
  EXPECT_FLOAT_EQ(p_object->getSpeed(), 3);
  EXPECT_EQ(p_object->getDirection(), Vector(0, -1));
  EXPECT_EQ(p_object->predictPosition(), Vector(1, -2));
  // A velocity always sets both speed and direction, even one equal to the
  // current direction times speed.
  p_object->setDirection(Vector(1, 0));
  p_object->setSpeed(0);
  p_object->setVelocity(Vector(0, 0));
  EXPECT_TRUE(p_object->getDirection().isZero());

  EXPECT_EQ(p_object->setAltitude(0), 0);
  EXPECT_EQ(p_object->setAltitude(4), 0);
  EXPECT_EQ(p_object->setAltitude(5), -1);
  EXPECT_EQ(p_object->setAltitude(-1), -1);
  EXPECT_EQ(p_object->getAltitude(), 4);
  EXPECT_EQ(p_object->setSolidness(static_cast<vt::Solidness>(7)), -1);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("Object::setAltitude(): Altitude 5 not in range [0,4].  Ignored."),
            std::string::npos);
  EXPECT_NE(log.find("Object::setSolidness(): Solidness 7 not one of HARD, SOFT or SPECTRAL."),
            std::string::npos);
}

TEST(Object, EventRegistrationKeepsOrderAndLimit) {
  test::HeadlessEngine engine;
  auto* p_object = new RecordingObject;
  ASSERT_EQ(p_object->registerInterest("a"), 0);
  ASSERT_EQ(p_object->registerInterest("b"), 0);
  ASSERT_EQ(p_object->registerInterest("c"), 0);
  ASSERT_EQ(p_object->unregisterInterest("b"), 0);
  EXPECT_EQ(p_object->getEventCount(), 2);
  EXPECT_EQ(p_object->getEventName(0), "a");
  EXPECT_EQ(p_object->getEventName(1), "c");
  EXPECT_EQ(p_object->unregisterInterest("b"), -1);
  // Collision events arrive without registration; the world refuses them.
  EXPECT_EQ(p_object->registerInterest(vt::COLLISION_EVENT), -1);

  for (int i = 2; i < vt::MAX_OBJ_EVENTS; i++) {
    ASSERT_EQ(p_object->registerInterest("e" + std::to_string(i)), 0);
  }
  EXPECT_EQ(p_object->registerInterest("one too many"), -1);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("Object::unregisterInterest(): event 'b' not previously registered"),
            std::string::npos);
  EXPECT_NE(log.find("WorldManager::isValid(): Event vt-collision handled automatically."),
            std::string::npos);
  EXPECT_NE(log.find("Object::registerInterest(): maximum (100) reached, cannot register for "
                     "event 'one too many'"),
            std::string::npos);

  // Deleting the object unregisters it everywhere.
  vt::WorldManager::getInstance().markForDelete(p_object);
  vt::WorldManager::getInstance().update();
  vt::Event event;
  event.setType("a");
  EXPECT_EQ(vt::WorldManager::getInstance().onEvent(&event), 0);
}

TEST(Object, FollowsAPathConsumingCloseWaypoints) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  p_object->setSolidness(vt::SPECTRAL);
  p_object->setPosition(Vector(0, 0));
  p_object->setSpeed(2.0f);
  // The first two waypoints are within 0.75 x speed of each other.
  p_object->setPath({Vector(1, 0), Vector(2, 0), Vector(2, 6)});
  p_object->setFollowPath(true);
  EXPECT_EQ(p_object->getDirection(), Vector(1, 0));
  p_object->stepPath();
  EXPECT_EQ(p_object->getPosition(), Vector(2, 0));
  EXPECT_EQ(p_object->getPath().size(), 1u);
  EXPECT_EQ(p_object->getDirection(), Vector(0, 1));

  for (int step = 0; step < 5 && p_object->getFollowPath(); step++) {
    vt::WorldManager::getInstance().update();
  }
  EXPECT_EQ(p_object->getPosition(), Vector(2, 6));
  EXPECT_FALSE(p_object->getFollowPath());
  EXPECT_TRUE(p_object->getDirection().isZero());
}

TEST(Object, AccelerationChangesVelocityAfterTheMove) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  p_object->setSolidness(vt::SPECTRAL);
  p_object->setPosition(Vector(0, 0));
  p_object->setAcceleration(Vector(0, 1));
  vt::WorldManager::getInstance().update();
  EXPECT_EQ(p_object->getPosition(), Vector(0, 0));
  EXPECT_EQ(p_object->getVelocity(), Vector(0, 1));
  vt::WorldManager::getInstance().update();
  EXPECT_EQ(p_object->getPosition(), Vector(0, 1));
  EXPECT_FLOAT_EQ(p_object->getSpeed(), 2);
}
