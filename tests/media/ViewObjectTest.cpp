#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "media/EventView.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;
using vt::ViewObject;

namespace {

class ViewObjectTest : public testing::Test {
 protected:
  void SetUp() override { vt::WorldManager::getInstance().setView(vt::Box(Vector(0, 0), 80, 24)); }
  static ViewObject* makeView(const std::string& label, int value) {
    auto* p_view = new ViewObject;
    p_view->setViewString(label);
    p_view->setValue(value);
    return p_view;
  }
  test::HeadlessEngine engine;
};

}  // namespace

TEST_F(ViewObjectTest, NineLocationsWithAndWithoutBorder) {
  const float columns[] = {80.0f / 6, 40, 80.0f * 5 / 6};
  const float rows[2][3] = {{0, 11, 23}, {1, 12, 22}};
  ViewObject* p_view = makeView("Score", 0);
  EXPECT_EQ(std::pair(p_view->getLocation(), p_view->getPosition()), std::pair(1, Vector(40, 1)));
  for (bool border : {true, false}) {
    p_view->setBorder(border);
    for (int location = vt::TOP_LEFT; location <= vt::BOTTOM_RIGHT; location++) {
      p_view->setLocation(location);
      EXPECT_NEAR(p_view->getPosition().getX(), columns[location % 3], 0.001f) << location;
      EXPECT_FLOAT_EQ(p_view->getPosition().getY(), rows[border][location / 3]) << location;
    }
  }
  // The border alone does not move the object; a location out of range
  // changes nothing; a position set by hand, unless unchanged, has no location.
  p_view->setBorder(true);
  p_view->setLocation(9), p_view->setLocation(-1);
  EXPECT_EQ(std::pair(p_view->getLocation(), p_view->getPosition().getY()),
            std::pair(int(vt::BOTTOM_RIGHT), 23.0f));
  EXPECT_EQ(p_view->setPosition(p_view->getPosition()), 0);
  EXPECT_EQ(p_view->getLocation(), int(vt::BOTTOM_RIGHT));
  EXPECT_EQ(p_view->setPosition(Vector(7, 3)), 0);
  EXPECT_EQ(p_view->getLocation(), -1);
}

// View events change the objects with their tag, adding or setting; a copy
// made from the saved text takes over the tag. Only what changed is saved.
TEST_F(ViewObjectTest, ViewEventsReachTheirTagAndCopiesSaveWhatChanged) {
  auto* p_source = makeView("Nukes", -12);
  ViewObject* p_prefix = makeView("Nuke", 1);
  p_source->setBorder(false);
  p_source->setColor(vt::MAGENTA);
  p_source->setDrawValue(false);
  p_source->setLocation(vt::BOTTOM_LEFT);
  auto* p_copy = new ViewObject;
  p_copy->deserialize(p_source->serialize("ALL"));
  const std::string groups = "STRING,VALUE,BORDER,COLOR,LOCATION,DRAW_VALUE,POSITION,";
  EXPECT_EQ(p_copy->serialize(groups), p_source->serialize(groups));
  for (const auto& [value, add, after] : {std::tuple(2, true, -10), {9, false, 9}}) {
    const vt::EventView event("Nukes", value, add);
    EXPECT_EQ(vt::WorldManager::getInstance().onEvent(&event), 3);
    EXPECT_EQ(std::tuple(p_source->getValue(), p_copy->getValue(), p_prefix->getValue()),
              std::tuple(after, after, 1));
  }
  p_copy->serialize("ALL");
  p_copy->setValue(7), p_copy->setBorder(true), p_copy->setColor(vt::RED);
  p_copy->setDrawValue(true);
  EXPECT_EQ(p_copy->serialize() + p_copy->serialize(),
            "view_value:7,view_border:true,view_color:1,view_draw_value:true,");
  // A colour out of range is ignored, a missing location or an empty tag kept; no text, no failure.
  EXPECT_EQ(
      p_copy->deserialize("view_value:12ab,view_color:42,view_string:,") + p_copy->deserialize(""),
      0);
  EXPECT_EQ(p_copy->serialize("STRING,VALUE,COLOR,LOCATION,"),
            "view_string:Nukes,view_value:12,view_color:1,view_location:6,");
}
