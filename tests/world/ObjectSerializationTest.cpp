#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "media/Shape.h"
#include "support/HeadlessEngine.h"
#include "world/Object.h"
#include "world/WorldManager.h"

using vt::Object;
using vt::Vector;

TEST(ObjectSerialization, WritesEveryGroupOnceThenOnlyWhatChangedOrWasNamed) {
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
  // Setting a value an object already has changes nothing.
  p_object->setAltitude(2);
  p_object->setPosition(Vector(1, 1));
  EXPECT_EQ(p_object->serialize(), "");
  EXPECT_FALSE(p_object->isModified(vt::POSITION));
  EXPECT_EQ(p_object->serialize("ALL"), everything);
  p_object->setVelocity(Vector(0, -3));
  p_object->setDirection(Vector(0.5f, 0.25f));
  p_object->setPosition(Vector(3.25f, -4));
  p_object->registerInterest("nuke");
  p_object->setPath({Vector(3, 4), Vector(5.5f, 4)});
  EXPECT_EQ(p_object->serialize(),
            "event_count:1,event_name[0]:nuke,pos-x:3.25,pos-y:-4,x_direction:0.5,y_direction:0."
            "25,speed:3,path:3 4|5.5 4|,path_index:2,");
  // Named groups are written whether modified or not; the others keep their
  // flags. Without its trailing comma the last name matches nothing.
  p_object->setAltitude(3);
  EXPECT_EQ(p_object->serialize("SPEED,POSITION,"), "pos-x:3.25,pos-y:-4,speed:3,");
  EXPECT_EQ(p_object->serialize("ID,ALTITUDE"), "id:" + id + ",");
  EXPECT_EQ(p_object->serialize(), "altitude:3,");
}

// Each setter marks its own group, and the setters that report a result
// report success: the next serialize writes that group alone.
TEST(ObjectSerialization, EachSetterMarksItsOwnGroup) {
  test::HeadlessEngine engine;
  vt::Shape square;
  square.setType(vt::SQUARE);
  const std::pair<std::function<int(Object&)>, std::string> SETTERS[] = {
      {[](Object& o) { return o.setType("Ship"); }, "type:Ship,"},
      {[](Object& o) { return o.setActive(false); }, "is_active:false,"},
      {[](Object& o) { return o.setVisible(false); }, "is_visible:false,"},
      {[](Object& o) { return o.setSolidness(vt::SOFT); }, "solidness:1,"},
      {[](Object& o) { return o.setNoSoft(); }, "no_soft:true,"},
      {[](Object& o) { return o.setAvoidCollisions(); }, "avoid_collisions:true,"},
      {[](Object& o) { return o.setBox(vt::Box(Vector(), 2, 3)); },
       "box-corner-x:0,box-corner-y:0,box-horizontal:2,box-vertical:3,"},
      // A new speed marks the direction's group, not its own.
      {[](Object& o) { return o.setSpeed(2), 0; }, "x_direction:0,y_direction:0,"},
      {[](Object& o) { return o.setAcceleration(Vector(1, 0)), 0; },
       "x_acceleration:1,y_acceleration:0,"},
      {[&square](Object& o) { return o.setShape(square), 0; },
       "shape:1,size:1,color:White,opacity:255,"},
      {[](Object& o) { return o.setFollowPath(), 0; }, "follow_path:true,"},
      // The same value again changes nothing, and is no failure.
      {[](Object& o) { return o.setActive(true) + o.setVisible(true) + o.setNoSoft(false); }, ""},
  };
  for (const auto& [set, written] : SETTERS) {
    auto* p_object = new Object;
    p_object->serialize();
    EXPECT_EQ(set(*p_object), 0) << written;
    EXPECT_EQ(p_object->serialize(), written);
  }
}

TEST(ObjectSerialization, ACopyMadeFromTheTextMatchesTheOriginal) {
  test::HeadlessEngine engine;
  auto* p_source = new Object;
  p_source->setType("Lander");
  p_source->setActive(false);
  p_source->setVisible(false);
  p_source->setBox(vt::Box(Vector(-2, -1), 4, 2));
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
  // Colours go out as names but are read back as numbers: only Black, 0,
  // comes back as it went.
  shape.setColor(vt::BLACK);
  shape.setOpacity(128);
  p_source->setShape(shape);
  vt::Animation animation;
  animation.setIndex(2);
  p_source->setAnimation(animation, false);
  const std::string text = p_source->serialize("ALL");
  // The copy's own events give way to the ones received.
  auto* p_copy = new Object;
  p_copy->registerInterest("alpha");
  p_copy->serialize("ALL");
  EXPECT_EQ(p_copy->deserialize(text), 0);
  // The groups received are reported as modified.
  for (int group = 0; group < vt::ATTRIBUTE_COUNT; group++) {
    EXPECT_TRUE(p_copy->isModified(group)) << group;
  }
  EXPECT_EQ(p_copy->serialize("ALL"), text);
}

TEST(ObjectSerialization, BadTextIsLoggedAndChangesNothingElse) {
  const std::list<Vector> kept{Vector(8, 8)};
  const struct {
    const char* text;
    const char* log_line;
    std::list<Vector> path;
  } cases[] = {
      {"pos-x:3,", "Object::deserialize(): position not complete, so ignoring.", kept},
      {"box-corner-x:1,box-corner-y:2,box-horizontal:3,",
       "Object::deserialize(): box not complete, so ignoring.", kept},
      {"altitude:5,", "Object::setAltitude(): Altitude 5 not in range [0,4].  Ignored.", kept},
      {"altitude:-1,", "Object::setAltitude(): Altitude -1 not in range [0,4].  Ignored.", kept},
      {"solidness:9,", "Object::setSolidness(): Solidness 9 not one of HARD, SOFT or SPECTRAL.",
       kept},
      {"path:1 2|  3.5   -4 |5|6 7|,path_index:9,",
       "Object::deserialize(): malformed node 5.\n",
       {Vector(1, 2), Vector(3.5f, -4)}},
      {"path:1 2 3|,", "Object::deserialize(): malformed node 1 2 3.\n", {}},
      {",,,:::,,|||,shape:2,size:2,color:1,altitude:,no_soft,:,", "", kept},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    test::HeadlessEngine engine;
    auto* p_object = new Object;
    p_object->setPath(kept);
    p_object->registerInterest("nuke");
    const std::string before = p_object->serialize("ALL");
    p_object->deserialize(c.text);
    EXPECT_EQ(p_object->isModified(), c.path != kept);
    EXPECT_EQ(p_object->getPath(), c.path);
    p_object->setPath(kept);
    EXPECT_EQ(p_object->serialize("ALL"), before);
    const std::string log = engine.logText();
    EXPECT_NE(log.find(c.log_line), std::string::npos);
    EXPECT_EQ(log.find("\tNot added.\n") != std::string::npos, c.path != kept);
  }
}

// A value that does not read as written is logged at level 0 and read as
// before; a key given twice is logged and its first entry read.
TEST(ObjectSerialization, ValuesThatDoNotReadAsWrittenAreLogged) {
  const struct {
    const char* text;
    const char* warning;
    const char* group;
    const char* read;
  } CASES[] = {
      {"pos-x:2,pos-y:3,", "", "POSITION,", "pos-x:2,pos-y:3,"},
      {"pos-x:abc,pos-y:3,",
       "Object::deserialize(): Warning! 'pos-x:abc' is not a number; read as 0.", "POSITION,",
       "pos-x:0,pos-y:3,"},
      {"pos-x:1e40,pos-y:3,",
       "Object::deserialize(): Warning! 'pos-x:1e40' is beyond the range of a number; clamped to "
       "that range.",
       "POSITION,", "pos-x:3.40282e+38,pos-y:3,"},
      {"id:70,pos-x:2,id:80,",
       "Object::deserialize(): Warning! 'id' is given 2 times; only the "
       "first is read.",
       "ID,", "id:70,"},
      {"is_visible:yes,",
       "Object::deserialize(): Warning! 'is_visible:yes' is neither true nor false; read as false.",
       "VISIBLE,", "is_visible:false,"},
      {"sprite_index:second,",
       "Animation::deserialize(): Warning! 'sprite_index:second' is not a number; read as 0.",
       "ANIMATION,", "sprite_name:,sprite_index:0,sprite_slowdown_count:0,"},
  };
  for (const auto& c : CASES) {
    SCOPED_TRACE(c.text);
    test::HeadlessEngine engine;
    auto* p_object = new Object;
    p_object->deserialize(c.text);
    EXPECT_EQ(p_object->serialize(c.group), c.read);
    const std::string log = engine.logText();
    // One warning, or none for a text that reads as written.
    const std::size_t warning = log.find("Warning!");
    if (*c.warning == '\0') {
      EXPECT_EQ(warning, std::string::npos) << log;
      continue;
    }
    EXPECT_NE(log.find(std::string(" ") + c.warning + "\n"), std::string::npos) << log;
    EXPECT_EQ(log.find("Warning!", warning + 1), std::string::npos) << log;
  }
}
