#include <gtest/gtest.h>

#include "core/Box.h"
#include "core/Utility.h"
#include "core/Vector.h"

using vt::Box;
using vt::Vector;

TEST(ValueTypes, BoxTestsIncludeTheirEdges) {
  const Box box(Vector(0, 0), 2, 2);
  EXPECT_TRUE(vt::boxContainsPosition(box, Vector(2, 2)));
  EXPECT_TRUE(vt::boxContainsPosition(box, Vector(0, 0)));
  EXPECT_FALSE(vt::boxContainsPosition(box, Vector(2.01f, 1)));
  EXPECT_FALSE(vt::boxContainsPosition(box, Vector(1, -0.01f)));

  EXPECT_TRUE(vt::boxIntersectsBox(box, Box(Vector(2, 0), 2, 2)));
  EXPECT_TRUE(vt::boxIntersectsBox(Box(Vector(2, 2), 2, 2), box));
  EXPECT_FALSE(vt::boxIntersectsBox(box, Box(Vector(2.01f, 0), 2, 2)));
  EXPECT_FALSE(vt::boxIntersectsBox(box, Box(Vector(0, -3), 2, 2)));
  // One box inside the other intersects whichever is given first.
  EXPECT_TRUE(vt::boxIntersectsBox(Box(Vector(-5, -5), 20, 20), box));
  EXPECT_TRUE(vt::boxIntersectsBox(box, Box(Vector(-5, -5), 20, 20)));

  const Box point(Vector(3, 4), 0, 0);
  EXPECT_TRUE(vt::boxContainsPosition(point, Vector(3, 4)));
  EXPECT_FALSE(vt::boxContainsPosition(point, Vector(3.001f, 4)));

  EXPECT_TRUE(vt::boxContainsBox(box, Box(Vector(0, 0), 2, 2)));
  EXPECT_TRUE(vt::boxContainsBox(box, Box(Vector(0.5f, 0.5f), 1, 1)));
  EXPECT_FALSE(vt::boxContainsBox(box, Box(Vector(0.5f, 0.5f), 2, 1)));

  EXPECT_TRUE(vt::valueInRange(1, 1, 1));
  EXPECT_FALSE(vt::valueInRange(0.99f, 1, 2));
}

TEST(ValueTypes, CircleAndLineMeetBoxes) {
  const Box box(Vector(0, 0), 2, 2);
  EXPECT_TRUE(vt::boxIntersectsCircle(box, vt::Circle(Vector(1, 1), 0.1f)));
  EXPECT_TRUE(vt::boxIntersectsCircle(box, vt::Circle(Vector(3, 1), 1)));
  EXPECT_FALSE(vt::boxIntersectsCircle(box, vt::Circle(Vector(3, 3), 1.4f)));
  EXPECT_TRUE(vt::boxIntersectsCircle(box, vt::Circle(Vector(3, 3), 1.5f)));
  // A negative extent reaches back from the corner.
  const Box backwards(Vector(2, 2), -2, -2);
  EXPECT_TRUE(vt::boxIntersectsCircle(backwards, vt::Circle(Vector(1, 1), 0.1f)));
  EXPECT_TRUE(vt::boxIntersectsCircle(backwards, vt::Circle(Vector(-1, 1), 1)));
  EXPECT_FALSE(vt::boxIntersectsCircle(backwards, vt::Circle(Vector(3, 3), 1.4f)));

  EXPECT_TRUE(vt::boxIntersectsLine(box, vt::Line(Vector(-1, 1), Vector(3, 1))));
  EXPECT_TRUE(vt::boxIntersectsLine(box, vt::Line(Vector(-1, -1), Vector(3, 3))));
  EXPECT_TRUE(vt::boxIntersectsLine(box, vt::Line(Vector(1, 1), Vector(1, 1))));
  EXPECT_FALSE(vt::boxIntersectsLine(box, vt::Line(Vector(-1, 3), Vector(3, 3))));
  EXPECT_FALSE(vt::boxIntersectsLine(box, vt::Line(Vector(-3, 0), Vector(-1, 2))));
  // The segment stops short of the box.
  EXPECT_FALSE(vt::boxIntersectsLine(box, vt::Line(Vector(5, 1), Vector(2.5f, 1))));
}

TEST(ValueTypes, VectorArithmeticAndText) {
  Vector v(3, 4);
  EXPECT_FLOAT_EQ(v.getMagnitude(), 5);
  v.normalize();
  EXPECT_FLOAT_EQ(v.getX(), 0.6f);
  EXPECT_FLOAT_EQ(v.getY(), 0.8f);
  Vector zero;
  zero.normalize();
  EXPECT_TRUE(zero.isZero());
  EXPECT_EQ(Vector(3.5f, 10).toString(), "(3.5,10)");
  EXPECT_EQ(Box(Vector(-0.5f, 1), 0.99f, 2).toString(), "(-0.5,1) h: 0.99 v: 2");
  Vector sum(1, 2);
  sum += Vector(0.5f, -2);
  EXPECT_EQ(sum, Vector(1.5f, 0));
  EXPECT_NE(sum, Vector(1.5f, 0.0001f));
  EXPECT_EQ(vt::toString(1.0f), "1");
  EXPECT_EQ(vt::toString(true), "true");
}
