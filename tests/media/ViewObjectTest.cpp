#include <gtest/gtest.h>

#include <string>

#include "media/EventView.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::ViewObject;

namespace {

// A headless world whose view is the default 80 by 24 screen.
class ViewObjectTest : public testing::Test {
 protected:
  void SetUp() override {
    vt::WorldManager::getInstance().setView(vt::Box(vt::Vector(0, 0), 80, 24));
  }

  static ViewObject* makeView(const std::string& label, int value) {
    auto* p_view = new ViewObject;
    p_view->setViewString(label);
    p_view->setValue(value);
    return p_view;
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
  // The handler says whether the event was for this object.
  EXPECT_EQ(p_lives->eventHandler(&set_lives), 1);
  EXPECT_EQ(p_points->eventHandler(&set_lives), 0);
}

TEST_F(ViewObjectTest, BottomRightSitsHigherWithABorder) {
  ViewObject* p_view = makeView("Score", 0);
  p_view->setLocation(vt::BOTTOM_RIGHT);
  EXPECT_NEAR(p_view->getPosition().getX(), 66.67f, 0.01f);
  EXPECT_FLOAT_EQ(p_view->getPosition().getY(), 22);
  EXPECT_EQ(p_view->getLocation(), vt::BOTTOM_RIGHT);

  // The border alone does not move the object; the next setLocation does.
  p_view->setBorder(false);
  EXPECT_FLOAT_EQ(p_view->getPosition().getY(), 22);
  p_view->setLocation(vt::BOTTOM_RIGHT);
  EXPECT_NEAR(p_view->getPosition().getX(), 66.67f, 0.01f);
  EXPECT_FLOAT_EQ(p_view->getPosition().getY(), 23);
  EXPECT_EQ(p_view->getLocation(), vt::BOTTOM_RIGHT);
}

TEST_F(ViewObjectTest, OutOfRangeLocationChangesNothing) {
  ViewObject* p_view = makeView("Score", 0);
  p_view->setLocation(vt::CENTER_LEFT);
  const vt::Vector before = p_view->getPosition();
  p_view->setLocation(9);
  p_view->setLocation(-1);
  EXPECT_EQ(p_view->getPosition(), before);
  EXPECT_EQ(p_view->getLocation(), vt::CENTER_LEFT);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("ViewObject::setLocation(): Warning! Location out of range (9). Ignored.\n"),
            std::string::npos);
  EXPECT_NE(log.find("ViewObject::setLocation(): Warning! Location out of range (-1). Ignored.\n"),
            std::string::npos);
}
