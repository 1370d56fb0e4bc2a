#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

#include "extras/NetworkManager.h"
#include "media/Shape.h"
#include "support/HeadlessEngine.h"
#include "world/SceneGraph.h"
#include "world/WorldManager.h"

using vt::Object;
using vt::Vector;

TEST(Object, IdsAreUniqueAndInterestsKeepOrderAndLimitAndEndWithTheObject) {
  test::HeadlessEngine engine;
  auto* p_first = new vt::Object;
  auto* p_next = new vt::Object;
  EXPECT_EQ(p_next->getId(), p_first->getId() + 1);
  const int later_id = p_next->getId() + 50;
  p_next->setId(later_id);
  EXPECT_EQ((new vt::Object)->getId(), later_id + 1);
  EXPECT_EQ(p_next->setActive(false), 0);
  EXPECT_EQ(vt::WorldManager::getInstance().objectWithId(later_id), p_next);
  // Interests keep their order and limit, and end with the object.
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
  EXPECT_EQ(vt::WorldManager::getInstance().markForDelete(p_object), 0);
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
  // The speed, and the positions after each step.
  const std::pair<float, std::vector<Vector>> cases[] = {
      {1, {{1, 0}, {2, 0}, {2, 1}, {2, 2}, {2, 3}}}, {2, {{2, 0}, {2, 3}}}, {4, {{2, 3}}}};
  for (const auto& [speed, after] : cases) {
    SCOPED_TRACE(speed);
    test::HeadlessEngine engine;
    auto* p_object = new vt::Object;
    p_object->setPosition(Vector(0, 0));
    p_object->setSpeed(speed);
    p_object->setPath({Vector(1, 0), Vector(2, 0), Vector(2, 3)});
    p_object->setFollowPath(true);
    EXPECT_EQ(p_object->getDirection(), Vector(1, 0));
    for (const Vector& expected : after) {
      EXPECT_TRUE(p_object->getFollowPath());
      vt::WorldManager::getInstance().update();
      EXPECT_EQ(p_object->getPosition(), expected);
    }
    EXPECT_TRUE(!p_object->getFollowPath() && p_object->getDirection().isZero() &&
                p_object->getPath().empty());
  }
}

// After each change the object is in exactly the lists its attributes call for; inactive objects
// leave every list but the inactive one and come back with the attributes changed meanwhile. An
// invisible object, in no layer to be taken from, keeps its altitude.
TEST(SceneGraph, ListsFollowTheObjectsAttributes) {
  test::HeadlessEngine engine;
  vt::SceneGraph& graph = vt::WorldManager::getInstance().getSceneGraph();
  auto* p = new vt::Object;
  EXPECT_EQ(p->setType("ship"), 0);
  // Each change, its result, and the lists the object is in after it.
  const std::tuple<std::function<int()>, int, bool, bool, bool, bool, bool> steps[] = {
      {[] { return 0; }, 0, true, true, true, false, true},
      {[&] { return p->setSolidness(vt::SPECTRAL); }, 0, true, false, true, false, true},
      {[&] { return p->setSolidness(vt::SOFT); }, 0, true, true, true, false, true},
      {[&] { return p->setSolidness(static_cast<vt::Solidness>(7)); }, -1, true, true, true, false,
       true},
      {[&] { return p->setAltitude(0); }, 0, true, true, false, false, true},
      {[&] { return p->setAltitude(4); }, 0, true, true, false, true, true},
      {[&] { return p->setAltitude(5); }, -1, true, true, false, true, true},
      {[&] { return p->setVisible(false); }, 0, true, true, false, false, true},
      {[&] { return p->setAltitude(3); }, -1, true, true, false, false, true},
      {[&] { return p->setVisible(true); }, 0, true, true, false, true, true},
      {[&] { return p->setActive(false); }, 0, false, false, false, false, false},
      {[&] { return p->setSolidness(vt::SPECTRAL); }, 0, false, false, false, false, false},
      {[&] { return p->setActive(true); }, 0, true, false, false, true, true},
      {[&] { return p->setSolidness(vt::HARD); }, 0, true, true, false, true, true},
  };
  int index = 0;
  for (const auto& [change, result, active, solid, visible_at_2, visible_at_4, ship] : steps) {
    SCOPED_TRACE(index++);
    EXPECT_EQ(change(), result);
    EXPECT_EQ(graph.activeObjects().contains(p), active);
    EXPECT_EQ(graph.inactiveObjects().contains(p), !active);
    EXPECT_EQ(graph.solidObjects().contains(p), solid);
    EXPECT_EQ(graph.visibleObjects(2).contains(p), visible_at_2);
    EXPECT_EQ(graph.visibleObjects(4).contains(p), visible_at_4);
    EXPECT_EQ(graph.objectsOfType("ship").contains(p), ship);
  }
}

// Each setter and the group it marks: the next serialize writes that group alone.
const std::pair<std::function<int(Object&)>, std::string> SETTERS[] = {
    {[](Object& o) { return o.setType("Ship"); }, "type:Ship,"},
    {[](Object& o) { return o.setActive(false); }, "is_active:false,"},
    {[](Object& o) { return o.setVisible(false); }, "is_visible:false,"},
    {[](Object& o) { return o.setSolidness(vt::SOFT); }, "solidness:1,"},
    {[](Object& o) { return o.setNoSoft(); }, "no_soft:true,"},
    {[](Object& o) { return o.setAvoidCollisions(); }, "avoid_collisions:true,"},
    {[](Object& o) { return o.setBox(vt::Box(Vector(-2, -1), 4, 2)); },
     "box-corner-x:-2,box-corner-y:-1,box-horizontal:4,box-vertical:2,"},
    // A new speed marks the direction's group, not its own.
    {[](Object& o) { return o.setSpeed(2), 0; }, "x_direction:0,y_direction:0,"},
    {[](Object& o) { return o.setAcceleration(Vector(0.125f, -1)), 0; },
     "x_acceleration:0.125,y_acceleration:-1,"},
    {[](Object& o) {
       vt::Shape shape;
       shape.setType(vt::TRIANGLE);
       shape.setSize(6.5f);
       shape.setColor(vt::BLACK);
       shape.setOpacity(128);
       return o.setShape(shape), 0;
     },
     "shape:2,size:6.5,color:Black,opacity:128,"},
    {[](Object& o) { return o.setFollowPath(), 0; }, "follow_path:true,"},
};

TEST(ObjectSerialization, WritesEveryGroupOnceThenWhatChangedOrWasNamedAndCopiesMatch) {
  test::HeadlessEngine engine;
  for (const auto& [set, written] : SETTERS) {
    auto* p_object = new Object;
    p_object->serialize();
    EXPECT_EQ(set(*p_object), 0) << written;
    EXPECT_EQ(p_object->serialize(), written);
  }
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
  // Setting a value an object already has changes nothing, and is no failure.
  Object& o = *p_object;
  EXPECT_EQ(o.setPosition(Vector(1, 1)) + o.setAltitude(2) + o.setActive(true) +
                o.setVisible(true) + o.setNoSoft(false) + o.setType("(Undefined)") +
                o.setSolidness(vt::HARD) + o.setAvoidCollisions(false) + o.setBox(o.getBox()),
            0);
  EXPECT_EQ(p_object->serialize(), "");
  EXPECT_FALSE(p_object->isModified(vt::POSITION));
  EXPECT_EQ(p_object->serialize("ALL"), everything);
  p_object->setVelocity(Vector(0, -3));
  p_object->setDirection(Vector(0.5f, 0.25f));
  p_object->setPosition(Vector(3.25f, -4));
  EXPECT_EQ(p_object->registerInterest("nuke"), 0);
  p_object->setPath({Vector(3, 4), Vector(5.5f, 4)});
  EXPECT_EQ(p_object->serialize(),
            "event_count:1,event_name[0]:nuke,pos-x:3.25,pos-y:-4,x_direction:0.5,y_direction:0."
            "25,speed:3,path:3 4|5.5 4|,path_index:2,");
  // Named groups are written whether modified or not; the others keep their flags. Without its
  // trailing comma the last name matches nothing, and the log names the mistake.
  p_object->setAltitude(3);
  EXPECT_EQ(p_object->serialize("SPEED,POSITION,"), "pos-x:3.25,pos-y:-4,speed:3,");
  EXPECT_EQ(p_object->serialize("ID,ALTITUDE"), "id:" + id + ",");
  EXPECT_NE(engine.logText().find("Attribute 'ID,ALTITUDE' missing trailing ','"),
            std::string::npos);
  EXPECT_EQ(p_object->serialize(), "altitude:3,");
  // A copy made from the text of everything matches the original.
  auto* p_source = new Object;
  p_source->setPosition(Vector(12.5f, -3.25f));
  p_source->setAltitude(4);
  p_source->setVelocity(Vector(0, -2.5f));
  p_source->setPath({Vector(13, -3), Vector(14, -2.5f)});
  // The last setter starts the object on its path.
  for (const auto& setter : SETTERS) setter.first(*p_source);
  for (const char* event : {"nuke", "phase"}) p_source->registerInterest(event);
  // Colours go out as names but are read back as numbers: only Black, 0, comes back as it went.
  vt::Animation animation;
  animation.setIndex(2);
  EXPECT_EQ(p_source->setAnimation(animation, false), 0);
  const std::string text = p_source->serialize("ALL");
  // The copy's own events give way to the ones received.
  auto* p_copy = new Object;
  p_copy->registerInterest("alpha");
  p_copy->serialize("ALL");
  EXPECT_EQ(p_copy->deserialize(text), 0);
  // The groups received are reported as modified.
  for (int group = 0; group < vt::ATTRIBUTE_COUNT; group++) EXPECT_TRUE(p_copy->isModified(group));
  EXPECT_EQ(p_copy->serialize("ALL"), text);
  EXPECT_NE(text.find("follow_path:true,path:13 -3|14 -2.5|"), std::string::npos) << text;
}

// Text that cannot be read is logged and changes nothing else. A value that
// does not read as written is logged in one warning and read as given in the
// table; a key given twice is logged and its first entry read.
TEST(ObjectSerialization, BadTextIsLoggedAndReadOnlyAsFarAsItCanBe) {
  static const std::list<Vector> kept{Vector(8, 8)};
  const struct {
    const char* text;
    const char* logged;
    const char* group = "";  // "": nothing else changes
    const char* read = "";
    std::list<Vector> path = kept;
  } CASES[] = {
      {"pos-x:3,", "Object::deserialize(): position not complete, so ignoring."},
      {"box-corner-x:1,box-corner-y:2,box-horizontal:3,",
       "Object::deserialize(): box not complete, so ignoring."},
      {"altitude:5,", "Object::setAltitude(): Altitude 5 not in range [0,4].  Ignored."},
      {"altitude:-1,", "Object::setAltitude(): Altitude -1 not in range [0,4].  Ignored."},
      {"solidness:9,", "Object::setSolidness(): Solidness 9 not one of HARD, SOFT or SPECTRAL."},
      {"path:1 2|  3.5   -4 |5|6 7|,path_index:9,",
       "Object::deserialize(): malformed node 5.\n",
       "",
       "",
       {Vector(1, 2), Vector(3.5f, -4)}},
      {"path:1 2 3|,", "Object::deserialize(): malformed node 1 2 3.\n", "", "", {}},
      {",,,:::,,|||,shape:2,size:2,color:1,altitude:,no_soft,:,", ""},
      {"pos-x:2,pos-y:3,", "", "POSITION,", "pos-x:2,pos-y:3,"},
      {"pos-x:abc,pos-y:3,",
       "Object::deserialize(): Warning! 'pos-x:abc' is not a number; read as 0.\n", "POSITION,",
       "pos-x:0,pos-y:3,"},
      {"pos-x:1e40,pos-y:3,",
       "Object::deserialize(): Warning! 'pos-x:1e40' is beyond the range of a number; clamped to "
       "that range.\n",
       "POSITION,", "pos-x:3.40282e+38,pos-y:3,"},
      {"id:70,pos-x:2,id:80,",
       "Object::deserialize(): Warning! 'id' is given 2 times; only the first is read.\n", "ID,",
       "id:70,"},
      {"is_visible:yes,",
       "Object::deserialize(): Warning! 'is_visible:yes' is neither true nor false; read as "
       "false.\n",
       "VISIBLE,", "is_visible:false,"},
      {"sprite_index:second,",
       "Animation::deserialize(): Warning! 'sprite_index:second' is not a number; read as 0.\n",
       "ANIMATION,", "sprite_name:,sprite_index:0,sprite_slowdown_count:0,"},
  };
  for (const auto& c : CASES) {
    SCOPED_TRACE(c.text);
    test::HeadlessEngine engine;
    auto* p_object = new Object;
    p_object->setPath(kept);
    p_object->registerInterest("nuke");
    const std::string before = p_object->serialize("ALL");
    p_object->deserialize(c.text);
    const std::string log = engine.logText();
    EXPECT_NE(log.find(c.logged), std::string::npos) << log;
    if (*c.group != '\0') {
      EXPECT_EQ(p_object->serialize(c.group), c.read);
      // One warning, or none for a text that reads as written.
      EXPECT_EQ(log.find("Warning!") == std::string::npos, *c.logged == '\0') << log;
      EXPECT_EQ(log.find("Warning!"), log.rfind("Warning!")) << log;
      continue;
    }
    EXPECT_EQ(p_object->isModified(), c.path != kept);
    EXPECT_EQ(p_object->getPath(), c.path);
    p_object->setPath(kept);
    EXPECT_EQ(p_object->serialize("ALL"), before);
    EXPECT_EQ(log.find("\tNot added.\n") != std::string::npos, c.path != kept);
  }
}
