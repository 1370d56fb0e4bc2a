#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "support/HeadlessEngine.h"
#include "world/EventPath.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

using vt::GameManager;
using vt::Vector;

namespace {

// Heads for a goal once the loop runs, and ends the game on arrival or when
// it has taken too long.
class Walker : public vt::Object {
 public:
  Walker(Vector start, Vector init_goal) : goal(init_goal) {
    setPosition(start);
    setSpeed(1.0f);
    registerInterest(vt::STEP_EVENT);
  }

  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() == vt::COLLISION_EVENT) collisions++;
    if (p_event->getType() == vt::PATH_EVENT) path_events++;
    if (p_event->getType() != vt::STEP_EVENT) return Object::eventHandler(p_event);
    const int step = static_cast<const vt::EventStep*>(p_event)->getStepCount();
    if (step == 0) pathTo(goal);
    if (getPosition() == goal || step == 1000) GameManager::getInstance().setGameOver();
    steps = step;
    return 1;
  }

  Vector goal;
  int collisions = 0;
  int path_events = 0;
  int steps = 0;
};

}  // namespace

TEST(PathInRunningWorld, AnObjectWalksRoundAWallToItsGoal) {
  const std::string directory = test::makeTempDir();
  const std::string config_path = directory + "/config.txt";
  std::ofstream(config_path) << "headless:true,\nframe_time:10,\nlogfile:" << directory
                             << "/game.log,\n";
  setenv("VANTOR_CONFIG", config_path.c_str(), 1);
  unsetenv("VANTOR_LOG");
  ASSERT_EQ(GameManager::getInstance().startUp(), 0);
  EXPECT_TRUE(vt::PathManager::getInstance().isStarted());
  ASSERT_EQ(vt::WorldManager::getInstance().getBoundary().getHorizontal(), 80);

  // A wall down the middle of the screen, open only in the bottom rows.
  for (int y = 0; y < 20; y++) {
    auto* p_wall = new vt::Object;
    p_wall->setPosition(Vector(40, static_cast<float>(y)));
  }
  auto* p_walker = new Walker(Vector(10, 5), Vector(70, 5));
  GameManager::getInstance().run();
  EXPECT_EQ(p_walker->getPosition(), Vector(70, 5));
  EXPECT_EQ(p_walker->path_events, 1);
  EXPECT_EQ(p_walker->collisions, 0);
  // Round the wall takes longer than the straight line would.
  EXPECT_GT(p_walker->steps, 60);
  EXPECT_LT(p_walker->steps, 1000);
  GameManager::getInstance().shutDown();
  EXPECT_FALSE(vt::PathManager::getInstance().isStarted());
  const std::string log = test::readFile(directory + "/game.log");
  EXPECT_NE(log.find("PathManager::startUp(): successfully started."), std::string::npos);
  EXPECT_NE(log.find("PathManager::shutDown(): successfully stopped."), std::string::npos);
}
