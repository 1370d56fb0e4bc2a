#include <gtest/gtest.h>

#include <string>

#include "core/LogManager.h"
#include "media/EventView.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;
using vt::ViewObject;

namespace {

// A headless world whose view is the default 80 by 24 screen.
class ViewObjectSerializationTest : public testing::Test {
 protected:
  void SetUp() override { vt::WorldManager::getInstance().setView(vt::Box(Vector(0, 0), 80, 24)); }

  test::HeadlessEngine engine;
};

}  // namespace

TEST_F(ViewObjectSerializationTest, RoundTripKeepsTheViewAttributes) {
  auto* p_source = new ViewObject;
  p_source->setViewString("Nukes");
  p_source->setValue(-12);
  p_source->setBorder(false);
  p_source->setColor(vt::MAGENTA);
  p_source->setDrawValue(false);
  p_source->setLocation(vt::BOTTOM_LEFT);
  auto* p_copy = new ViewObject;
  p_copy->deserialize(p_source->serialize("ALL"));
  EXPECT_EQ(p_copy->getViewString(), "Nukes");
  EXPECT_EQ(p_copy->getValue(), -12);
  EXPECT_FALSE(p_copy->getBorder());
  EXPECT_EQ(p_copy->getColor(), vt::MAGENTA);
  EXPECT_FALSE(p_copy->getDrawValue());
  EXPECT_EQ(p_copy->getLocation(), vt::BOTTOM_LEFT);
  EXPECT_EQ(p_copy->getPosition(), p_source->getPosition());
  // The copy took over the source's interest in view events.
  const vt::EventView event("Nukes", 2, true);
  vt::WorldManager::getInstance().onEvent(&event);
  EXPECT_EQ(p_copy->getValue(), -10);

  // A position set by hand has no location; the position itself comes back.
  p_source->setPosition(Vector(7, 3));
  p_copy->deserialize(p_source->serialize("ALL"));
  EXPECT_EQ(p_copy->getLocation(), -1);
  EXPECT_EQ(p_copy->getPosition(), Vector(7, 3));
  EXPECT_EQ(engine.logText().find("Location out of range"), std::string::npos);
}

TEST_F(ViewObjectSerializationTest, ChangedOnlyAndNamedSelections) {
  auto* p_view = new ViewObject;
  p_view->serialize("ALL");
  EXPECT_FALSE(p_view->isModified());
  p_view->setValue(7);
  EXPECT_TRUE(p_view->isModified());
  EXPECT_FALSE(p_view->isModified(vt::POSITION));
  EXPECT_EQ(p_view->serialize(), "view_value:7,");
  EXPECT_EQ(p_view->serialize(), "");
  EXPECT_EQ(p_view->serialize("VALUE,"), "view_value:7,");
  EXPECT_EQ(p_view->serialize("COLOR,BORDER,"), "view_border:true,view_color:7,");
  EXPECT_EQ(p_view->serialize("ALTITUDE,STRING,LOCATION,"),
            "altitude:4,view_string:,view_location:1,");

  vt::LogManager::getInstance().setLogLevel(10);
  p_view->setBorder(false);
  EXPECT_TRUE(p_view->isModified());
  vt::LogManager::getInstance().setLogLevel(0);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("ViewObject::isModified(): 1 is false"), std::string::npos);
  EXPECT_NE(log.find("ViewObject::isModified(): 2 is true"), std::string::npos);
}

TEST_F(ViewObjectSerializationTest, UnreadableValuesChangeNothing) {
  auto* p_view = new ViewObject;
  p_view->setViewString("Score");
  p_view->serialize("ALL");
  p_view->deserialize(
      "view_value:many,view_border:maybe,view_color:42,view_location:,view_draw_value:0,");
  p_view->deserialize("");
  EXPECT_FALSE(p_view->isModified());
  p_view->deserialize("view_location:12,view_color:Red,");
  EXPECT_EQ(p_view->getLocation(), vt::TOP_CENTER);
  // A colour name reads as the number 0.
  EXPECT_EQ(p_view->getColor(), vt::BLACK);
  EXPECT_NE(engine.logText().find(
                "ViewObject::setLocation(): Warning! Location out of range (12). Ignored."),
            std::string::npos);
}
