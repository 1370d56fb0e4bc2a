#include <gtest/gtest.h>

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/NetworkManager.h"
#include "media/DisplayManager.h"
#include "media/InputManager.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

using test::RecordingObject;

namespace {

// A manager that delivers any event type.
struct OpenManager : vt::Manager {
  bool isValid(std::string) const override { return true; }
};

int deliver(const vt::Manager& manager, const std::string& type) {
  vt::Event event;
  event.setType(type);
  return manager.onEvent(&event);
}

}  // namespace

TEST(Manager, DeliversInOrderToActiveObjectsOfUpTo100TypesItAccepts) {
  test::HeadlessEngine engine;
  OpenManager manager;
  std::vector<int> order;
  RecordingObject objects[3];
  for (int i : {2, 0, 1}) {
    objects[i].on_event = [&order, i](const vt::Event*) { order.push_back(i); };
    ASSERT_EQ(manager.registerInterest(&objects[i], "ping"), 0);
  }
  objects[0].setActive(false);
  // The first in line unregisters the last, which still gets this event.
  objects[2].on_event = [&](const vt::Event*) {
    order.push_back(2);
    manager.unregisterInterest(&objects[1], "ping");
  };
  EXPECT_EQ(deliver(manager, "ping"), 2);
  EXPECT_EQ(order, (std::vector<int>{2, 1}));
  EXPECT_EQ(deliver(manager, "ping"), 1);
  // Up to 100 types; emptying slot 0 moves every later type down.
  OpenManager types;
  auto* p_object = new RecordingObject;
  for (int i = 0; i < vt::MAX_EVENTS; i++)
    ASSERT_EQ(types.registerInterest(p_object, "type" + std::to_string(i)), 0);
  EXPECT_EQ(types.registerInterest(p_object, "one too many"), -1);
  ASSERT_EQ(types.unregisterInterest(p_object, "type0"), 0);
  EXPECT_EQ(types.unregisterInterest(p_object, "type0"), -1);
  ASSERT_EQ(types.registerInterest(p_object, "one more"), 0);
  for (const char* type : {"type1", "type99", "one more"}) EXPECT_EQ(deliver(types, type), 1);
  EXPECT_EQ(deliver(types, "type0"), 0);
  // A manager takes interests only in the events it delivers.
  EXPECT_EQ(vt::WorldManager::getInstance().registerInterest(p_object, vt::STEP_EVENT), -1);
}

// A manager started twice refuses the second start; calls that need a
// started manager refuse before it starts, each with its failure result.
TEST(Manager, AStartTooManyOrACallBeforeTheStartIsRefused) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  vt::NetworkManager& network = vt::NetworkManager::getInstance();
  ASSERT_EQ(network.startUp(), 0) << "started only for games that network";
  vt::Manager* const MANAGERS[] = {
      &vt::LogManager::getInstance(),   &vt::DisplayManager::getInstance(),
      &vt::InputManager::getInstance(), &vt::ResourceManager::getInstance(),
      &vt::WorldManager::getInstance(), &vt::PathManager::getInstance(),
      &vt::GameManager::getInstance(),  &vt::NetworkManager::getInstance()};
  for (vt::Manager* p_manager : MANAGERS) {
    EXPECT_EQ(p_manager->startUp(), -1) << p_manager->getType();
    EXPECT_NE(p_manager->getStartFailure().find("already started"), std::string::npos);
  }
  harness.shutDown();
  network.shutDown();
  vt::ResourceManager& resources = vt::ResourceManager::getInstance();
  vt::PathManager& paths = vt::PathManager::getInstance();
  const int REFUSED[][2] = {{resources.loadSprite("sprites/ship.txt", "ship"), -1},
                            {resources.unloadSprite("ship"), -1},
                            {resources.loadSound("sounds/fire.wav", "fire"), -1},
                            {resources.unloadSound("fire"), -1},
                            {resources.loadMusic("sounds/tune.wav", "tune"), -1},
                            {resources.unloadMusic("tune"), -1},
                            {paths.cycle(10), 0},
                            {paths.cycleTurns(10), 0},
                            {paths.insert(nullptr), -1},
                            {network.setServer(true, "0"), -1},
                            {network.connect("localhost", "1"), -1},
                            {network.isData(0), -1}};
  for (const auto& [result, refusal] : REFUSED) EXPECT_EQ(result, refusal);
  // A good start forgets why an earlier one failed.
  ASSERT_EQ(harness.startUp(), 0);
  EXPECT_EQ(vt::WorldManager::getInstance().getStartFailure(), "");
}
