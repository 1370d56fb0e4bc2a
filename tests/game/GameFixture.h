#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "Setup.h"
#include "core/EventStep.h"
#include "core/GameManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "world/EventCollision.h"
#include "world/WorldManager.h"

// The game's world without a window: the resources of the game folder are
// loaded and the view is the default 80 x 24 screen.
class GameFixture : public testing::Test {
 public:
  void SetUp() override {
    ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
    vt::ResourceManager::getInstance().startUp();
    loadResources();
    const vt::Box screen(vt::Vector(0, 0), 80, 24);
    world().setBoundary(screen);
    world().setView(screen);
  }

  void TearDown() override {
    world().shutDown();
    vt::ResourceManager::getInstance().shutDown();
  }

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

  // One game step without a window: step events, then the world update.
  static void step(int count = 1) {
    for (int i = 0; i < count; i++) {
      const vt::EventStep step_event(step_number++);
      vt::GameManager::getInstance().onEvent(&step_event);
      world().update();
    }
  }

  static void press(vt::Object* p_object, int key, int action = vt::KEY_PRESSED) {
    vt::EventKeyboard event;
    event.setKey(key);
    event.setKeyboardAction(action);
    p_object->eventHandler(&event);
  }

  // The left button held down over the hero, which fires when it may.
  static void holdFire(vt::Object* p_hero) {
    vt::EventMouse held;
    held.setMouseAction(vt::PRESSED);
    held.setMouseButton(vt::Mouse::LEFT);
    p_hero->eventHandler(&held);
  }

  // Tells both objects of a collision between them, as the world does.
  static void collide(vt::Object* p_mover, vt::Object* p_other) {
    const vt::EventCollision collision(p_mover, p_other, p_mover->getPosition());
    p_mover->eventHandler(&collision);
    p_other->eventHandler(&collision);
  }

  test::HeadlessEngine engine;
  static inline int step_number = 1;
};
