#include <gtest/gtest.h>

#include "core/Box.h"
#include "core/Utility.h"

using vt::Box;
using vt::Vector;

// The shapes the world tests for collisions: edges and corners count.
TEST(ValueTypes, BoxesMeetPointsBoxesCirclesAndLinesAtTheirEdges) {
  const Box box(Vector(0, 0), 2, 2);
  EXPECT_TRUE(vt::boxContainsPosition(box, Vector(2, 0)));
  EXPECT_FALSE(vt::boxContainsPosition(box, Vector(2.01f, 1)));
  EXPECT_TRUE(vt::boxIntersectsBox(Box(Vector(2, 2), 2, 2), box));
  EXPECT_FALSE(vt::boxIntersectsBox(box, Box(Vector(2.01f, 0), 2, 2)));
  // One box inside the other intersects whichever is given first.
  EXPECT_TRUE(vt::boxIntersectsBox(Box(Vector(-5, -5), 20, 20), box));
  EXPECT_TRUE(vt::boxIntersectsBox(box, Box(Vector(-5, -5), 20, 20)));
  EXPECT_FALSE(vt::boxContainsBox(box, Box(Vector(0.5f, 0.5f), 2, 1)));
  EXPECT_FALSE(vt::boxIntersectsCircle(box, vt::Circle(Vector(3, 3), 1.4f)));
  EXPECT_TRUE(vt::boxIntersectsCircle(box, vt::Circle(Vector(3, 3), 1.5f)));
  // A negative extent reaches back from the corner.
  const Box backwards(Vector(2, 2), -2, -2);
  EXPECT_TRUE(vt::boxIntersectsCircle(backwards, vt::Circle(Vector(-1, 1), 1)));
  EXPECT_TRUE(vt::boxIntersectsLine(box, vt::Line(Vector(-1, -1), Vector(3, 3))));
  EXPECT_FALSE(vt::boxIntersectsLine(box, vt::Line(Vector(-3, 0), Vector(-1, 2))));
  // The segment stops short of the box.
  EXPECT_FALSE(vt::boxIntersectsLine(box, vt::Line(Vector(5, 1), Vector(2.5f, 1))));
}
