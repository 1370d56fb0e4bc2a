#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cstdlib>
#include <string>

#include "core/LogManager.h"
#include "support/HeadlessEngine.h"
#include "world/Object.h"
#include "world/WorldManager.h"

using vt::Box;
using vt::Object;
using vt::Vector;

namespace {

// Serializes every group, so that afterwards no flag is raised.
void clearFlags(Object* p_object) {
  p_object->serialize("ALL");
}

int countOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) count++;
  return count;
}

// How many objects a world event of that type reaches.
int listeners(const std::string& event_type) {
  vt::Event event;
  event.setType(event_type);
  return vt::WorldManager::getInstance().onEvent(&event);
}

}  // namespace

TEST(ObjectSerialization, FreshObjectWritesEveryGroupOnceInOrder) {
  test::HeadlessEngine engine;
  auto* p_object = new Object;
  const std::string id = std::to_string(p_object->getId());
  const std::string everything = p_object->serialize();
  EXPECT_EQ(everything,
            "id:" + id +
                ",is_active:true,is_visible:true,event_count:0,"
                "box-corner-x:-0.5,box-corner-y:-0.5,box-horizontal:0.99,box-vertical:0.99,"
                "pos-x:1,pos-y:1,type:(Undefined),"
                "sprite_name:,sprite_index:0,sprite_slowdown_count:0,"
                "altitude:2,solidness:0,no_soft:false,x_direction:0,y_direction:0,speed:0,"
                "x_acceleration:0,y_acceleration:0,shape:-1,size:1,color:White,opacity:255,"
                "follow_path:false,path:,path_index:0,avoid_collisions:false,");
  EXPECT_FALSE(p_object->isModified());
  EXPECT_EQ(p_object->serialize(), "");
  // "ALL" writes everything again, modified or not.
  EXPECT_EQ(p_object->serialize("ALL"), everything);
}

TEST(ObjectSerialization, ModifiedOnlyAfterSingleSetters) {
  test::HeadlessEngine engine;
  auto* p_object = new Object;
  clearFlags(p_object);

  // setSpeed raises DIRECTION, not SPEED.
  p_object->setSpeed(2.0f);
  EXPECT_EQ(p_object->serialize(), "x_direction:0,y_direction:0,");
  p_object->setVelocity(Vector(0, -3));
  EXPECT_EQ(p_object->serialize(), "x_direction:0,y_direction:-1,speed:3,");
  // setDirection raises nothing.
  p_object->setDirection(Vector(0.5f, 0.25f));
  EXPECT_EQ(p_object->serialize(), "");

  p_object->setPosition(Vector(3.25f, -4));
  p_object->registerInterest("nuke");
  EXPECT_EQ(p_object->serialize(), "event_count:1,event_name[0]:nuke,pos-x:3.25,pos-y:-4,");
  p_object->setPath({Vector(3, 4), Vector(5.5f, 4)});
  p_object->setFollowPath(false);
  EXPECT_EQ(p_object->serialize(), "follow_path:false,path:3 4|5.5 4|,path_index:2,");
  vt::Shape shape;
  shape.setType(vt::SQUARE);
  shape.setColor(vt::CUSTOM);
  p_object->setShape(shape);
  EXPECT_EQ(p_object->serialize(), "shape:1,size:1,color:Unknown color,opacity:255,");
  vt::Animation animation;
  animation.setIndex(3);
  p_object->setAnimation(animation, false);
  EXPECT_EQ(p_object->serialize(), "sprite_name:,sprite_index:3,sprite_slowdown_count:0,");
}

TEST(ObjectSerialization, GroupsChosenByName) {
  test::HeadlessEngine engine;
  auto* p_object = new Object;
  p_object->setAltitude(3);
  EXPECT_EQ(p_object->serialize("SPEED,POSITION,"), "pos-x:1,pos-y:1,speed:0,");
  // Named groups are written whether modified or not; the others keep their
  // flags.
  EXPECT_FALSE(p_object->isModified(vt::POSITION));
  EXPECT_TRUE(p_object->isModified(vt::ALTITUDE));
  EXPECT_EQ(p_object->serialize("ALTITUDE,"), "altitude:3,");
  EXPECT_FALSE(p_object->isModified(vt::ALTITUDE));
  // FOLLOW_PATH comes before PATH.
  const std::string all = p_object->serialize("ALL");
  EXPECT_LT(all.find("follow_path:"), all.find(",path:"));
  EXPECT_LT(all.find("path_index:"), all.find("avoid_collisions:"));

  // Without its trailing comma the last name matches nothing.
  EXPECT_EQ(p_object->serialize("ID,POSITION"), "id:" + std::to_string(p_object->getId()) + ",");
  EXPECT_EQ(p_object->serialize("NOTHING,"), "");
  const std::string log = engine.logText();
  EXPECT_EQ(countOf(log,
                    "Object::serialize(): Warning! Attribute 'ID,POSITION' missing trailing "
                    "','"),
            1);
  EXPECT_EQ(countOf(log, "missing trailing"), 1);
}

TEST(ObjectSerialization, RoundTripsThatHoldAndThatDoNot) {
  test::HeadlessEngine engine;
  auto* p_source = new Object;
  p_source->setType("Lander");
  p_source->setActive(false);
  p_source->setVisible(false);
  p_source->setBox(Box(Vector(-2, -1), 4, 2));
  p_source->setPosition(Vector(12.5f, -3.25f));
  p_source->setAltitude(4);
  p_source->setSolidness(vt::SOFT);
  p_source->setNoSoft(true);
  p_source->setVelocity(Vector(0, -2.5f));
  p_source->setAcceleration(Vector(0.125f, -1));
  p_source->setPath({Vector(13, -3), Vector(14, -2.5f)});
  p_source->setFollowPath(true);
  p_source->setAvoidCollisions(true);
  p_source->registerInterest("nuke");
  p_source->registerInterest("phase");
  vt::Shape shape;
  shape.setType(vt::TRIANGLE);
  shape.setSize(6.5f);
  shape.setColor(vt::RED);
  shape.setOpacity(128);
  p_source->setShape(shape);
  vt::Animation animation;
  animation.setIndex(2);
  animation.setSlowdownCount(-1);
  p_source->setAnimation(animation, false);
  const std::string text = p_source->serialize("ALL");

  auto* p_copy = new Object;
  clearFlags(p_copy);
  EXPECT_EQ(p_copy->deserialize(text), 0);
  EXPECT_EQ(p_copy->getId(), p_source->getId());
  EXPECT_EQ(p_copy->getType(), "Lander");
  EXPECT_FALSE(p_copy->isActive());
  EXPECT_FALSE(p_copy->isVisible());
  EXPECT_EQ(p_copy->getBox(), p_source->getBox());
  EXPECT_EQ(p_copy->getPosition(), p_source->getPosition());
  EXPECT_EQ(p_copy->getAltitude(), 4);
  EXPECT_EQ(p_copy->getSolidness(), vt::SOFT);
  EXPECT_TRUE(p_copy->getNoSoft());
  EXPECT_EQ(p_copy->getVelocity(), p_source->getVelocity());
  EXPECT_EQ(p_copy->getAcceleration(), p_source->getAcceleration());
  EXPECT_EQ(p_copy->getPath(), p_source->getPath());
  EXPECT_TRUE(p_copy->getFollowPath());
  EXPECT_TRUE(p_copy->getAvoidCollisions());
  ASSERT_EQ(p_copy->getEventCount(), 2);
  EXPECT_EQ(p_copy->getEventName(0), "nuke");
  EXPECT_EQ(p_copy->getEventName(1), "phase");
  EXPECT_EQ(p_copy->getShape().getType(), vt::TRIANGLE);
  EXPECT_EQ(p_copy->getShape().getSize(), 6.5f);
  EXPECT_EQ(p_copy->getShape().getOpacity(), 128);
  // The colour goes out as its name and comes back as a number: 0.
  EXPECT_EQ(p_copy->getShape().getColor(), vt::BLACK);
  EXPECT_EQ(p_copy->getAnimation().getIndex(), 2);
  EXPECT_EQ(p_copy->getAnimation().getSlowdownCount(), -1);
  // The groups received are reported as modified.
  for (int group = 0; group < vt::ATTRIBUTE_COUNT; group++) {
    EXPECT_TRUE(p_copy->isModified(group)) << group;
  }

  // Boxes are read as integers: fractions do not survive.
  auto* p_plain = new Object;
  p_plain->deserialize((new Object)->serialize("BOX,"));
  EXPECT_EQ(p_plain->getBox(), Box(Vector(0, 0), 0, 0));
  // The y direction goes through setVelocity: a direction that is not a unit
  // vector comes back normalised, with the speed its length.
  auto* p_skewed = new Object;
  p_skewed->setDirection(Vector(3, 4));
  p_plain->deserialize(p_skewed->serialize("DIRECTION,"));
  EXPECT_FLOAT_EQ(p_plain->getDirection().getX(), 0.6f);
  EXPECT_FLOAT_EQ(p_plain->getDirection().getY(), 0.8f);
  EXPECT_FLOAT_EQ(p_plain->getSpeed(), 5);
}

TEST(ObjectSerialization, EventsAreRegisteredAgainFromTheCount) {
  test::HeadlessEngine engine;
  auto* p_object = new Object;
  p_object->registerInterest("alpha");
  p_object->registerInterest("beta");
  p_object->deserialize("event_count:2,event_name[0]:gamma,event_name[1]:alpha,");
  EXPECT_EQ(p_object->getEventCount(), 2);
  EXPECT_EQ(p_object->getEventName(0), "gamma");
  EXPECT_EQ(p_object->getEventName(1), "alpha");
  EXPECT_EQ(listeners("beta"), 0);
  EXPECT_EQ(listeners("gamma"), 1);
  EXPECT_EQ(listeners("alpha"), 1);

  p_object->deserialize("event_count:0,");
  EXPECT_EQ(p_object->getEventCount(), 0);
  EXPECT_EQ(listeners("gamma"), 0);
  EXPECT_EQ(listeners("alpha"), 0);

  // A count far beyond the limit, with names missing: what is there is
  // registered, at once.
  p_object->deserialize("event_count:2000000000,event_name[1]:delta,event_name[500]:x,");
  EXPECT_EQ(p_object->getEventCount(), 1);
  EXPECT_EQ(listeners("delta"), 1);
}

TEST(ObjectSerialization, ValuesAreReadAsTheCLibraryReadsThem) {
  test::HeadlessEngine engine;
  auto* p_object = new Object;
  p_object->setAltitude(1);
  p_object->deserialize(
      "id:abc,is_active:yes,is_visible:true,pos-x:12ab,pos-y:x,altitude:9999999999,"
      "speed:1e39,x_direction:nan,no_soft:1,follow_path:true,opacity:300,shape:1,size:2,"
      "color:3,");
  EXPECT_EQ(p_object->getId(), 0);
  EXPECT_FALSE(p_object->isActive());
  EXPECT_TRUE(p_object->isVisible());
  EXPECT_EQ(p_object->getPosition(), Vector(12, 0));
  // Clamped to the largest int, the altitude is refused by its setter.
  EXPECT_EQ(p_object->getAltitude(), 1);
  EXPECT_EQ(p_object->getSpeed(), FLT_MAX);
  EXPECT_EQ(p_object->getDirection().getX(), 0);
  EXPECT_FALSE(p_object->getNoSoft());
  EXPECT_TRUE(p_object->getFollowPath());
  EXPECT_EQ(p_object->getShape().getColor(), vt::YELLOW);
  EXPECT_EQ(p_object->getShape().getOpacity(), 255);
  EXPECT_NE(engine.logText().find("Object::setAltitude(): Altitude 2147483647 not in range"),
            std::string::npos);

  // Groups that come incomplete change nothing; a key given twice counts once.
  p_object->serialize("ALL");
  p_object->deserialize("pos-x:3,");
  p_object->deserialize("box-corner-x:1,box-corner-y:2,box-horizontal:3,");
  p_object->deserialize("shape:2,size:2,color:1,altitude:,no_soft,:,");
  p_object->deserialize(",,,:::,,|||");
  EXPECT_FALSE(p_object->isModified());
  p_object->deserialize("altitude:3,altitude:0,solidness:9,");
  EXPECT_EQ(p_object->getAltitude(), 3);
  EXPECT_EQ(p_object->getSolidness(), vt::HARD);
  const std::string log = engine.logText();
  EXPECT_EQ(countOf(log, "Object::deserialize(): position not complete, so ignoring."), 1);
  EXPECT_EQ(countOf(log, "Object::deserialize(): box not complete, so ignoring."), 1);
  EXPECT_NE(log.find("Object::setSolidness(): Solidness 9 not one of HARD, SOFT or SPECTRAL."),
            std::string::npos);
}

TEST(ObjectSerialization, PathsMalformedAndHuge) {
  test::HeadlessEngine engine;
  auto* p_object = new Object;
  p_object->deserialize("path:1 2|  3.5   -4 |5|6 7|,path_index:9,");
  EXPECT_EQ(p_object->getPath(), (std::list<Vector>{Vector(1, 2), Vector(3.5f, -4)}));
  // Waypoints are read as atof reads numbers.
  p_object->deserialize("path:x y|1 2|,");
  EXPECT_EQ(p_object->getPath(), (std::list<Vector>{Vector(0, 0), Vector(1, 2)}));
  p_object->deserialize("path:1 2 3|,");
  const std::string log = engine.logText();
  EXPECT_NE(log.find("Object::deserialize(): malformed node 5.\n"), std::string::npos);
  EXPECT_NE(log.find("Object::deserialize(): malformed node 1 2 3.\n"), std::string::npos);
  EXPECT_EQ(countOf(log, "\tNot added.\n"), 2);

  std::string waypoints;
  for (int i = 0; i < 100000; i++) waypoints += std::to_string(i % 80) + " 7|";
  p_object->deserialize("follow_path:true,path:" + waypoints + ",type:Walker,");
  EXPECT_EQ(p_object->getPath().size(), 100000u);
  EXPECT_EQ(p_object->getPath().back(), Vector(99999 % 80, 7));
  EXPECT_TRUE(p_object->getFollowPath());
  EXPECT_EQ(p_object->getType(), "Walker");
}

// In a child process of its own: the id counter stays at the top for the
// rest of the process.
TEST(ObjectSerialization, IdsStayInRange) {
  EXPECT_EXIT(
      {
        test::HeadlessEngine engine;
        auto* p_object = new Object;
        p_object->deserialize("id:" + std::to_string(INT_MAX) + ",");
        // The counter stops at the top instead of running over.
        std::exit(p_object->getId() == INT_MAX && (new Object)->getId() == INT_MAX ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}
