#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using test::RecordingObject;
using vt::GameManager;

namespace {

// Starts the game manager headless from a configuration file of its own.
struct GameManagerTest : testing::Test {
  ~GameManagerTest() override {
    if (GameManager::getInstance().isStarted()) GameManager::getInstance().shutDown();
    test::restoreEngineSettings();
  }
  void startWith(const std::string& settings) {
    std::ofstream(directory + "/config.txt")
        << "headless:true,\nlogfile:" << directory << "/game.log,\n"
        << settings;
    setenv("VANTOR_CONFIG", (directory + "/config.txt").c_str(), 1);
    ASSERT_EQ(GameManager::getInstance().startUp(), 0);
  }
  std::string stopAndReadLog() {
    GameManager::getInstance().shutDown();
    return test::readFile(directory + "/game.log");
  }
  // Calls on_step with each step's number; ends the loop after last_step.
  static RecordingObject* onSteps(int last_step, std::function<void(int)> on_step = {}) {
    auto* p_object = new RecordingObject;
    p_object->registerInterest(vt::STEP_EVENT);
    p_object->on_event = [=](const vt::Event*) {
      if (on_step) on_step(p_object->steps.back());
      if (p_object->steps.back() == last_step) GameManager::getInstance().setGameOver();
    };
    return p_object;
  }
  const std::string directory = test::makeTempDir();
};

}  // namespace

TEST_F(GameManagerTest, StepsAreCountedAndGameOverFinishesTheIteration) {
  // Flat out, without warnings, with repeatable random numbers.
  startWith("frame_time:0,\nrandom_seed:5,\n");
  const int first_draw = std::rand();
  std::srand(5);
  EXPECT_EQ(first_draw, std::rand());
  EXPECT_EQ(GameManager::getInstance().startUp(), -1);
  RecordingObject* p_object = onSteps(4);
  p_object->setSolidness(vt::SPECTRAL);
  p_object->setVelocity(vt::Vector(1, 0));
  const float start_x = p_object->getPosition().getX();
  GameManager::getInstance().run();
  EXPECT_EQ(p_object->steps, (std::vector<int>{0, 1, 2, 3, 4}));
  // The world was updated in the iteration that set game over too.
  EXPECT_FLOAT_EQ(p_object->getPosition().getX(), start_x + 5);
  EXPECT_EQ(GameManager::getInstance().getStepCount(), 5);
  EXPECT_EQ(stopAndReadLog().find("Can't keep up"), std::string::npos);
}

// Frames are slept out, and no more: twenty of 20 ms take at least 400 ms,
// and with the world idle well under half as long again even on a busy
// machine (a game at two thirds of its speed would take 600 ms).
TEST_F(GameManagerTest, TheLoopSleepsOutEachFrame) {
  startWith("frame_time:20,\n");
  std::chrono::steady_clock::time_point started, ended;
  onSteps(20, [&](int step) { (step == 0 ? started : ended) = std::chrono::steady_clock::now(); });
  GameManager::getInstance().run();
  EXPECT_GE(ended - started, std::chrono::milliseconds(399));
  EXPECT_LT(ended - started, std::chrono::milliseconds(600));
}

TEST_F(GameManagerTest, LateFramesAreReportedButNeverOnTheFirstStep) {
  startWith("frame_time:10,\n");
  // Steps 0 to 3 overrun the frame, with no oversleep before them to forgive.
  onSteps(3, [](int) { std::this_thread::sleep_for(std::chrono::milliseconds(25)); });
  GameManager::getInstance().run();
  const std::string log = stopAndReadLog();
  for (const std::string step : {"0", "1", "2", "3"}) {
    const std::string line = " " + step + " GameManager::run(): Can't keep up! frame_time 10 ms";
    EXPECT_EQ(log.find(line) != std::string::npos, step != "0") << step;
  }
}

// Steps 1 to 4 wait far past their frame, as a pause does; step 2 then
// restarts its frame, as the pause does when a key ends it, and is not
// late. Steps 1 and 3 overrun too, so that no oversleep before steps 2 and
// 4 forgives them.
TEST_F(GameManagerTest, AFrameRestartedAfterAWaitIsNotLate) {
  startWith("frame_time:20,\n");
  onSteps(5, [](int step) {
    if (step < 1 || step > 4) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    if (step == 2) GameManager::getInstance().restartFrame();
  });
  GameManager::getInstance().run();
  const std::string log = stopAndReadLog();
  EXPECT_EQ(log.find(" 2 GameManager::run(): Can't keep up!"), std::string::npos) << log;
  EXPECT_NE(log.find(" 4 GameManager::run(): Can't keep up!"), std::string::npos) << log;
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
