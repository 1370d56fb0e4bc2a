#include <gtest/gtest.h>

#include "core/Box.h"
#include "core/Utility.h"

using vt::Box;
using vt::Vector;

// The shapes the world tests for collisions: edges and corners count.
TEST(ValueTypes, BoxesMeetPointsBoxesCirclesAndSegmentsAtTheirEdges) {
  const Box box(Vector(0, 0), 2, 2);
  EXPECT_TRUE(vt::boxContainsPosition(box, Vector(2, 0)));
  EXPECT_FALSE(vt::boxContainsPosition(box, Vector(2.01f, 1)));
  EXPECT_TRUE(vt::boxIntersectsBox(Box(Vector(2, 2), 2, 2), box));
  EXPECT_FALSE(vt::boxIntersectsBox(box, Box(Vector(2.01f, 0), 2, 2)));
  // One box inside the other intersects whichever is given first.
  EXPECT_TRUE(vt::boxIntersectsBox(Box(Vector(-5, -5), 20, 20), box));
  EXPECT_TRUE(vt::boxIntersectsBox(box, Box(Vector(-5, -5), 20, 20)));
  EXPECT_FALSE(vt::boxContainsBox(box, Box(Vector(0.5f, 0.5f), 2, 1)));
  EXPECT_FALSE(vt::boxIntersectsCircle(box, vt::Circle(Vector(5, 6), 4.99f)));
  EXPECT_TRUE(vt::boxIntersectsCircle(box, vt::Circle(Vector(5, 6), 5)));
  // A negative extent reaches back from the corner.
  EXPECT_TRUE(vt::boxIntersectsCircle(Box(Vector(2, 2), -2, -2), vt::Circle(Vector(-1, 1), 1)));
  // A segment between whole points around the box meets it where a walk along it does, in 840
  // steps: a multiple of every slope's denominator here, so that a touch falls on a step.
  for (int i = 0; i < 9 * 9 * 9 * 9; i++) {
    const int x1 = i % 9 - 3, y1 = i / 9 % 9 - 3, x2 = i / 81 % 9 - 3, y2 = i / 729 - 3;
    bool walked_in = false;
    for (int k = 0; k <= 840 && !walked_in; k++) {
      const int x = x1 * 840 + k * (x2 - x1), y = y1 * 840 + k * (y2 - y1);
      walked_in = x >= 0 && x <= 2 * 840 && y >= 0 && y <= 2 * 840;
    }
    const vt::Line segment(Vector(x1, y1), Vector(x2, y2));
    ASSERT_EQ(vt::boxIntersectsLine(box, segment), walked_in) << "segment " << i;
  }
}
