#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/Harness.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using test::RecordingObject;
using vt::GameManager;

namespace {

// Starts the game headless through the harness, from a configuration file of its own.
struct GameManagerTest : testing::Test {
  ~GameManagerTest() override { test::restoreEngineSettings(); }
  void startWith(const std::string& settings) {
    test::writeConfig(settings);
    ASSERT_EQ(harness.startUp(), 0);
  }
  vt::Harness harness;
};

}  // namespace

TEST_F(GameManagerTest, StepsAreCountedAndGameOverFinishesTheIteration) {
  // Flat out, without warnings, with repeatable random numbers.
  startWith("frame_time:0,\nrandom_seed:5,\n");
  const int first_draw = std::rand();
  std::srand(5);
  EXPECT_EQ(first_draw, std::rand());
  EXPECT_EQ(GameManager::getInstance().startUp(), -1);
  RecordingObject* p_object = RecordingObject::untilStep(4);
  p_object->setSolidness(vt::SPECTRAL);
  p_object->setVelocity(vt::Vector(1, 0));
  const float start_x = p_object->getPosition().getX();
  GameManager::getInstance().run();
  EXPECT_EQ(p_object->steps, (std::vector<int>{0, 1, 2, 3, 4}));
  // The world was updated in the iteration that set game over too.
  EXPECT_FLOAT_EQ(p_object->getPosition().getX(), start_x + 5);
  EXPECT_EQ(GameManager::getInstance().getStepCount(), 5);
  harness.shutDown();
  EXPECT_EQ(harness.logText().find("Can't keep up"), std::string::npos);
}

// Late frames are reported, but never the first step nor a step whose frame restarted after a wait
// on purpose, as a pause's does. Steps 0 to 4 overrun their frame; step 2 restarts it. (Step 3 is
// forgiven the oversleep of the restarted frame before it, if there was any.)
TEST_F(GameManagerTest, LateFramesAreReportedButNotTheFirstNorARestartedOne) {
  startWith("frame_time:20,\n");
  RecordingObject::untilStep(5, [](int step) {
    if (step > 4) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    if (step == 2) GameManager::getInstance().restartFrame();
  });
  GameManager::getInstance().run();
  harness.shutDown();
  const std::string log = harness.logText();
  for (const auto& [step, late] : {std::pair("0", false), {"1", true}, {"2", false}, {"4", true}}) {
    const std::string line =
        " " + std::string(step) + " GameManager::run(): Can't keep up! frame_time 20 ms";
    EXPECT_EQ(log.find(line) != std::string::npos, late) << step << log;
  }
}

TEST_F(GameManagerTest, StartUpFailsWhenTheLogCannotBeOpened) {
  setenv("VANTOR_LOG", "/nonexistent/dir/vantor.log", 1);
  setenv("VANTOR_CONFIG", "/nonexistent/config.txt", 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(GameManager::getInstance().startUp(), -1);
  EXPECT_FALSE(vt::LogManager::getInstance().isStarted());
  EXPECT_EQ(vt::LogManager::getInstance().startUp(), -1);
  testing::internal::GetCapturedStderr();
}
