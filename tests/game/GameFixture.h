#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Bullet.h"
#include "Setup.h"
#include "extras/Harness.h"
#include "world/WorldManager.h"

// The whole engine without a window, started in the game's folder with the
// game's resources loaded, on the default 80 x 24 screen. Time passes only by
// stepping the game loop, and keys and the mouse reach the game through the
// input manager.
class GameFixture : public testing::Test {
 public:
  void SetUp() override { start(); }
  void TearDown() override { harness.shutDown(); }

  // Starts the engine afresh, stopping it first if it runs, and plays step 0
  // so that the score does not tick again before step 30.
  void start() {
    harness.shutDown();
    ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
    ASSERT_EQ(harness.startUp(), 0);
    loadResources();
    step();
  }

  // Game loop iterations; the loop must not end meanwhile.
  void step(int count = 1) { EXPECT_EQ(harness.step(count), count); }

  static vt::WorldManager& world() { return vt::WorldManager::getInstance(); }

  // The objects of the type, in the order the world keeps them.
  static std::vector<vt::Object*> allOf(const std::string& type) {
    std::vector<vt::Object*> found;
    for (vt::Object* p_object : world().getAllObjects(true)) {
      if (p_object->getType() == type) found.push_back(p_object);
    }
    return found;
  }
  static int countOf(const std::string& type) { return static_cast<int>(allOf(type).size()); }
  static vt::Object* firstOf(const std::string& type) {
    const std::vector<vt::Object*> found = allOf(type);
    return found.empty() ? nullptr : found.front();
  }

  // Hero bullets one row below the target, flying up into it at the next
  // step. A bullet starts three cells right of the point it is given.
  static void shootAt(const vt::Object* p_target, int count = 1) {
    const float below = p_target->getBox().getVertical() / 2 + 1;
    for (int i = 0; i < count; i++) {
      (new Bullet(p_target->getPosition() + vt::Vector(-3, below)))
          ->setVelocity(vt::Vector(0, -1.2f));
    }
  }

  vt::Harness harness;
};
