// A small scene in a real window: sprites built in memory, objects moving,
// colliding, animating and leaving the world, the view following one of
// them; the rendered picture is checked where each object should be.
#include <gtest/gtest.h>

#include <SFML/Graphics.hpp>
#include <memory>
#include <string>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "core/Utility.h"
#include "media/DisplayManager.h"
#include "media/Sprite.h"
#include "support/RecordingObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

using test::RecordingObject;
using vt::Vector;

namespace {

std::unique_ptr<vt::Sprite> blockSprite(const std::string& label, vt::Color color,
                                        const std::string& frames, int frame_count) {
  const int width = static_cast<int>(frames.size()) / frame_count;
  auto p_sprite = std::make_unique<vt::Sprite>(frame_count);
  p_sprite->setWidth(width);
  p_sprite->setHeight(1);
  p_sprite->setColor(color);
  p_sprite->setSlowdown(2);
  p_sprite->setLabel(label);
  for (int i = 0; i < frame_count; i++) {
    p_sprite->addFrame(vt::Frame(width, 1, frames.substr(i * width, width)));
  }
  return p_sprite;
}

RecordingObject* place(vt::Sprite* p_sprite, Vector position, vt::Solidness solidness,
                       Vector velocity) {
  auto* p_object = new RecordingObject;
  vt::Animation animation;
  animation.setSprite(p_sprite);
  p_object->setAnimation(animation);
  p_object->setSolidness(solidness);
  p_object->setPosition(position);
  p_object->setVelocity(velocity);
  return p_object;
}

// Pixels of the colour (its strongest channels) inside the object's cells.
int inkAround(const sf::Image& image, const vt::Object* p_object, sf::Color color) {
  const vt::Box box = vt::getWorldBox(p_object);
  const Vector top_left = vt::spacesToPixels(vt::worldToView(box.getCorner()));
  const Vector size = vt::spacesToPixels(Vector(box.getHorizontal(), box.getVertical()));
  int count = 0;
  for (int y = static_cast<int>(top_left.getY()); y < top_left.getY() + size.getY(); y++) {
    for (int x = static_cast<int>(top_left.getX()); x < top_left.getX() + size.getX(); x++) {
      if (x < 0 || y < 0 || x >= static_cast<int>(image.getSize().x) ||
          y >= static_cast<int>(image.getSize().y)) {
        continue;
      }
      const sf::Color pixel = image.getPixel(x, y);
      const bool matches = (color.r > 0) == (pixel.r > 128) && (color.g > 0) == (pixel.g > 128) &&
                           (color.b > 0) == (pixel.b > 128);
      count += matches && pixel != sf::Color::Black;
    }
  }
  return count;
}

}  // namespace

TEST(SceneWindowTest, MovingCollidingAnimatingAndFollowedObjectsLookRight) {
  const vt::test::XvfbServer& xvfb = vt::test::processXvfb();
  ASSERT_TRUE(xvfb.isRunning());
  vt::test::TestConfig config{false};
  vt::WorldManager& world = vt::WorldManager::getInstance();
  vt::DisplayManager& display = vt::DisplayManager::getInstance();
  ASSERT_EQ(world.startUp(), 0);
  ASSERT_EQ(display.startUp(), 0) << config.logText();
  world.setBoundary(vt::Box(Vector(0, 0), 160, 24));
  world.setView(vt::Box(Vector(0, 0), 80, 24));
  world.setViewSlack(Vector(0.5f, 0.5f));

  const auto p_runner_art = blockSprite("runner", vt::GREEN, "@@##", 2);
  const auto p_ram_art = blockSprite("ram", vt::RED, "XXX", 1);
  const auto p_wall_art = blockSprite("wall", vt::BLUE, "OOO", 1);
  const auto p_star_art = blockSprite("star", vt::YELLOW, "*", 1);
  auto* p_runner = place(p_runner_art.get(), Vector(40, 12), vt::SPECTRAL, Vector(1, 0));
  auto* p_ram = place(p_ram_art.get(), Vector(30, 5), vt::HARD, Vector(1, 0));
  auto* p_wall = place(p_wall_art.get(), Vector(36, 5), vt::HARD, Vector());
  auto* p_star = place(p_star_art.get(), Vector(50, 2), vt::SPECTRAL, Vector(0, -1));
  ASSERT_EQ(world.setViewFollowing(p_runner), 0);

  const int STEPS = 30;
  sf::Image picture;
  for (int step = 0; step < STEPS; step++) {
    world.update();
    world.draw();
    display.swapBuffers();
  }
  // The last frame drawn is on screen; draw it again to capture it.
  world.draw();
  display.swapBuffers();
  picture = vt::test::captureWindow(*display.getWindow());
  picture.saveToFile("scene-window.png");

  // The runner crossed the slack zone and the view followed it.
  EXPECT_EQ(p_runner->getPosition(), Vector(70, 12));
  EXPECT_EQ(world.getView().getCorner(), Vector(10, 0));
  EXPECT_GT(inkAround(picture, p_runner, sf::Color::Green), 50);
  // The ram stopped at the wall; both were told of every blocked move.
  // Boxes that touch collide: it stops a cell short of touching edges.
  EXPECT_EQ(p_ram->getPosition(), Vector(32, 5));
  EXPECT_GT(p_ram->count(vt::COLLISION_EVENT), 20);
  EXPECT_EQ(p_wall->count(vt::COLLISION_EVENT), p_ram->count(vt::COLLISION_EVENT));
  EXPECT_GT(inkAround(picture, p_ram, sf::Color::Red), 50);
  EXPECT_GT(inkAround(picture, p_wall, sf::Color::Blue), 50);
  // The star left the world once and is gone from the picture.
  EXPECT_EQ(p_star->count(vt::OUT_EVENT), 1);
  int yellow = 0;
  for (unsigned y = 0; y < picture.getSize().y; y++) {
    for (unsigned x = 0; x < picture.getSize().x; x++) {
      const sf::Color pixel = picture.getPixel(x, y);
      yellow += pixel.r > 128 && pixel.g > 128 && pixel.b < 64;
    }
  }
  EXPECT_EQ(yellow, 0);
  // The runner's animation alternates every second frame.
  EXPECT_EQ(p_runner->getAnimation().getIndex(), ((STEPS + 1) / 2) % 2);

  display.shutDown();
  world.shutDown();
}
