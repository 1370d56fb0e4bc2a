#include <gtest/gtest.h>

#include <SFML/Graphics.hpp>
#include <string>

#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/Shape.h"
#include "support/HeadlessEngine.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

using vt::Shape;

namespace {

// A real window on a private X server, so that shapes are really drawn.
class ShapeWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(xvfb.isRunning());
    ASSERT_EQ(vt::DisplayManager::getInstance().startUp(), 0);
    ASSERT_EQ(vt::WorldManager::getInstance().startUp(), 0);
    vt::WorldManager::getInstance().setView(vt::Box(vt::Vector(0, 0), 80, 24));
  }

  void TearDown() override {
    vt::WorldManager::getInstance().shutDown();
    vt::DisplayManager::getInstance().shutDown();
  }

  // Shows what was drawn and counts the window's pixels of this colour.
  static long shownPixels(sf::Color color) {
    vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
    display_manager.swapBuffers();
    const sf::Image shown = vt::test::captureWindow(*display_manager.getWindow());
    long count = 0;
    for (unsigned int y = 0; y < shown.getSize().y; y++) {
      for (unsigned int x = 0; x < shown.getSize().x; x++) count += shown.getPixel(x, y) == color;
    }
    return count;
  }

  const vt::test::XvfbServer& xvfb = vt::test::processXvfb();
  vt::test::TestConfig config{false};
};

}  // namespace

TEST(Shape, SetTypeAcceptsOnlyTheKnownTypes) {
  const test::HeadlessEngine engine;
  Shape shape;
  shape.setType(vt::TRIANGLE);
  shape.setType(3);
  EXPECT_EQ(shape.getType(), vt::TRIANGLE);
  shape.setType(-2);
  EXPECT_EQ(shape.getType(), vt::TRIANGLE);
  shape.setType(vt::UNDEFINED_SHAPE);
  EXPECT_EQ(shape.getType(), vt::UNDEFINED_SHAPE);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("Shape::setType(): Unknown shape type 3. Ignoring.\n"), std::string::npos);
  EXPECT_NE(log.find("Shape::setType(): Unknown shape type -2. Ignoring.\n"), std::string::npos);
}

TEST_F(ShapeWindowTest, CirclePointCountFollowsTheSizeWithinThreeToTen) {
  const std::pair<float, std::size_t> size_points[] = {{2.5f, 3},   {3.0f, 3},   {7.9f, 7},
                                                       {10.0f, 10}, {10.5f, 10}, {12.0f, 10}};
  Shape circle;
  circle.setType(vt::CIRCLE);
  for (const auto& [size, points] : size_points) {
    circle.setSize(size);
    circle.draw(vt::Vector(10, 10));
    EXPECT_EQ(Shape::getDrawnShape().getPointCount(), points) << "size " << size;
    EXPECT_FLOAT_EQ(Shape::getDrawnShape().getRadius(), size);
  }
}

TEST_F(ShapeWindowTest, CustomColourKeepsItsRedGreenAndBlue) {
  const sf::Color custom(10, 200, 30);
  Shape circle;
  circle.setType(vt::CIRCLE);
  circle.setSize(12);
  circle.setColor(vt::CUSTOM);
  circle.setRGB(custom.r, custom.g, custom.b);
  circle.draw(vt::Vector(10, 10));
  EXPECT_EQ(circle.getR(), custom.r);
  EXPECT_EQ(circle.getG(), custom.g);
  EXPECT_EQ(circle.getB(), custom.b);
  EXPECT_EQ(Shape::getDrawnShape().getFillColor(), custom);
  // A radius-12 decagon covers about 420 pixels.
  EXPECT_GT(shownPixels(custom), 300);

  // A named colour replaces the stored red, green and blue; opacity is the alpha.
  circle.setColor(vt::RED);
  circle.setOpacity(128);
  circle.draw(vt::Vector(10, 10));
  EXPECT_EQ(circle.getR(), 255);
  EXPECT_EQ(circle.getG(), 0);
  EXPECT_EQ(circle.getB(), 0);
  EXPECT_EQ(Shape::getDrawnShape().getFillColor(), sf::Color(255, 0, 0, 128));
  EXPECT_EQ(shownPixels(custom), 0);
}
