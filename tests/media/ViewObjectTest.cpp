#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "media/EventView.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;
using vt::ViewObject;

namespace {

// A headless world whose view is an 80 by 24 screen.
class ViewObjectTest : public testing::Test {
 protected:
  void SetUp() override { vt::WorldManager::getInstance().setView(vt::Box(Vector(0, 0), 80, 24)); }

  static ViewObject* makeView(const std::string& label, int value) {
    auto* p_view = new ViewObject;
    p_view->setViewString(label);
    p_view->setValue(value);
    return p_view;
  }

  bool logged(const std::string& line) const {
    return engine.logText().find(line + "\n") != std::string::npos;
  }

  test::HeadlessEngine engine;
};

}  // namespace

TEST_F(ViewObjectTest, ViewEventsChangeOnlyObjectsWithTheirTag) {
  ViewObject* p_points = makeView("Points", 5);
  ViewObject* p_more_points = makeView("Points", -7);
  ViewObject* p_lives = makeView("Lives", 3);
  ViewObject* p_prefix = makeView("Point", 1);
  const vt::EventView add_ten("Points", 10, true);
  EXPECT_EQ(vt::WorldManager::getInstance().onEvent(&add_ten), 4);
  EXPECT_EQ(p_points->getValue(), 15);
  EXPECT_EQ(p_more_points->getValue(), 3);
  EXPECT_EQ(p_lives->getValue(), 3);
  EXPECT_EQ(p_prefix->getValue(), 1);
  const vt::EventView set_lives("Lives", 9, false);
  vt::WorldManager::getInstance().onEvent(&set_lives);
  EXPECT_EQ(p_lives->getValue(), 9);
  EXPECT_EQ(p_points->getValue(), 15);
  EXPECT_EQ(p_lives->eventHandler(&set_lives), 1);
  EXPECT_EQ(p_points->eventHandler(&set_lives), 0);
}

TEST_F(ViewObjectTest, NineLocationsWithAndWithoutBorder) {
  const float columns[] = {80.0f / 6, 40, 80.0f * 5 / 6};
  const float rows_with_border[] = {1, 12, 22};
  const float rows_without_border[] = {0, 11, 23};
  ViewObject* p_view = makeView("Score", 0);
  EXPECT_EQ(p_view->getLocation(), vt::TOP_CENTER);
  EXPECT_EQ(p_view->getPosition(), Vector(40, 1));
  for (bool border : {true, false}) {
    p_view->setBorder(border);
    for (int location = vt::TOP_LEFT; location <= vt::BOTTOM_RIGHT; location++) {
      SCOPED_TRACE("location " + std::to_string(location) + (border ? " with" : " without"));
      p_view->setLocation(location);
      EXPECT_EQ(p_view->getLocation(), location);
      EXPECT_NEAR(p_view->getPosition().getX(), columns[location % 3], 0.001f);
      const float* rows = border ? rows_with_border : rows_without_border;
      EXPECT_FLOAT_EQ(p_view->getPosition().getY(), rows[location / 3]);
    }
  }
  // The border alone does not move the object; a location out of range
  // changes nothing; a position set by hand has no location.
  p_view->setBorder(true);
  EXPECT_EQ(p_view->getPosition().getY(), 23);
  p_view->setLocation(9);
  p_view->setLocation(-1);
  EXPECT_EQ(p_view->getLocation(), vt::BOTTOM_RIGHT);
  EXPECT_TRUE(logged("ViewObject::setLocation(): Warning! Location out of range (9). Ignored."));
  EXPECT_TRUE(logged("ViewObject::setLocation(): Warning! Location out of range (-1). Ignored."));
  p_view->setPosition(Vector(7, 3));
  EXPECT_EQ(p_view->getLocation(), -1);
}

TEST_F(ViewObjectTest, SerializesChangedOrChosenAttributesAndRoundTrips) {
  const std::string view_groups = "STRING,VALUE,BORDER,COLOR,LOCATION,DRAW_VALUE,POSITION,";
  auto* p_source = makeView("Nukes", -12);
  p_source->setBorder(false);
  p_source->setColor(vt::MAGENTA);
  p_source->setDrawValue(false);
  p_source->setLocation(vt::BOTTOM_LEFT);
  auto* p_copy = new ViewObject;
  p_copy->deserialize(p_source->serialize("ALL"));
  EXPECT_EQ(p_copy->serialize(view_groups), p_source->serialize(view_groups));
  // The copy took over the source's interest in view events.
  const vt::EventView event("Nukes", 2, true);
  vt::WorldManager::getInstance().onEvent(&event);
  EXPECT_EQ(p_copy->getValue(), -10);
  p_source->setPosition(Vector(7, 3));
  p_copy->deserialize(p_source->serialize("ALL"));
  EXPECT_EQ(p_copy->getLocation(), -1);
  EXPECT_EQ(p_copy->getPosition(), Vector(7, 3));
  p_copy->serialize("ALL");
  EXPECT_FALSE(p_copy->isModified());
  p_copy->setValue(7);
  EXPECT_TRUE(p_copy->isModified());
  EXPECT_FALSE(p_copy->isModified(vt::POSITION));
  EXPECT_EQ(p_copy->serialize(), "view_value:7,");
  EXPECT_EQ(p_copy->serialize(), "");
  EXPECT_EQ(p_copy->serialize("COLOR,BORDER,"), "view_border:false,view_color:5,");
  p_copy->setBorder(true);
  EXPECT_EQ(p_copy->serialize(), "view_border:true,");
}

TEST_F(ViewObjectTest, ReadsNumbersAsAtoiDoesAndOnlyTrueAsTrue) {
  ViewObject* p_view = makeView("Score", 5);
  const std::pair<std::string, std::string> readings[] = {
      {"view_value:12ab,view_border:yes,view_draw_value:yes,",
       "view_value:12,view_border:false,view_color:7,view_location:1,view_draw_value:false,"},
      {"view_value:abc,view_border:true,view_draw_value:true,",
       "view_value:0,view_border:true,view_color:7,view_location:1,view_draw_value:true,"},
      {"view_value:99999999999,view_color:2,view_location:7,",
       "view_value:2147483647,view_border:true,view_color:2,view_location:7,view_draw_value:true,"},
      {"view_value:-99999999999,view_color:42,view_location:12,",
       "view_value:-2147483648,view_border:true,view_color:2,view_location:7,view_draw_value:"
       "true,"},
      {"view_color:Red,view_location:abc,view_string:,view_location:,",
       "view_value:-2147483648,view_border:true,view_color:0,view_location:0,view_draw_value:"
       "true,"},
      {"",
       "view_value:-2147483648,view_border:true,view_color:0,view_location:0,view_draw_value:"
       "true,"}};
  for (const auto& [text, read] : readings) {
    EXPECT_EQ(p_view->deserialize(text), 0);
    EXPECT_EQ(p_view->serialize("VALUE,BORDER,COLOR,LOCATION,DRAW_VALUE,"), read) << text;
  }
  EXPECT_EQ(p_view->getViewString(), "Score");
}
