#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using test::RecordingObject;
using vt::GameManager;

namespace {

// Starts the game manager headless from a configuration file of its own.
class GameManagerTest : public testing::Test {
 protected:
  void startWith(const std::string& settings) {
    directory = test::makeTempDir();
    const std::string config_path = directory + "/config.txt";
    std::ofstream(config_path) << "headless:true,\nlogfile:" << directory << "/game.log,\n"
                               << settings;
    setenv("VANTOR_CONFIG", config_path.c_str(), 1);
    unsetenv("VANTOR_LOG");
    ASSERT_EQ(GameManager::getInstance().startUp(), 0);
  }

  std::string stopAndReadLog() {
    GameManager::getInstance().shutDown();
    return test::readFile(directory + "/game.log");
  }

  static int occurrences(const std::string& text, const std::string& part) {
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) count++;
    return count;
  }

  std::string directory;
};

}  // namespace

TEST_F(GameManagerTest, StartsAndStopsWithTheBanners) {
  startWith("frame_time:10,\n");
  EXPECT_TRUE(GameManager::getInstance().isStarted());
  EXPECT_EQ(GameManager::getInstance().getFrameTime(), 10);
  EXPECT_EQ(GameManager::getInstance().startUp(), -1);
  const std::string log = stopAndReadLog();
  const std::string stars(52, '*');
  EXPECT_NE(log.find(stars + "\n"), std::string::npos);
  EXPECT_NE(log.find("** Vantor version 4.17 **\n"), std::string::npos);
  EXPECT_NE(log.find("** Game engine started **\n"), std::string::npos);
  EXPECT_NE(log.find("GameManager::startup(): Warning! GameManager already started."),
            std::string::npos);
  // The level-1 life-cycle notes are dropped at the default log level.
  EXPECT_EQ(log.find("Vantor configuration:"), std::string::npos);
  ASSERT_GE(log.size(), 26u);
  EXPECT_EQ(log.substr(log.size() - 26), "** Game engine stopped **\n");
}

TEST_F(GameManagerTest, StepsAreCountedAndGameOverFinishesTheIteration) {
  startWith("frame_time:5,\n");
  auto* p_object = new RecordingObject;
  ASSERT_EQ(p_object->registerInterest(vt::STEP_EVENT), 0);
  p_object->on_event = [](const vt::Event* p_event) {
    if (static_cast<const vt::EventStep*>(p_event)->getStepCount() == 4) {
      GameManager::getInstance().setGameOver();
    }
  };
  p_object->setSolidness(vt::SPECTRAL);
  p_object->setVelocity(vt::Vector(1, 0));
  const float start_x = p_object->getPosition().getX();
  // A game over set before the loop is forgotten.
  GameManager::getInstance().setGameOver();
  GameManager::getInstance().run();
  EXPECT_EQ(p_object->steps, (std::vector<int>{0, 1, 2, 3, 4}));
  // The world was updated in the iteration that set game over too.
  EXPECT_FLOAT_EQ(p_object->getPosition().getX(), start_x + 5);
  EXPECT_EQ(GameManager::getInstance().getStepCount(), 5);
  stopAndReadLog();
}

TEST_F(GameManagerTest, LateFramesAreReportedButNeverOnTheFirstStep) {
  startWith("frame_time:10,\n");
  auto* p_object = new RecordingObject;
  p_object->registerInterest(vt::STEP_EVENT);
  p_object->on_event = [](const vt::Event* p_event) {
    const int step = static_cast<const vt::EventStep*>(p_event)->getStepCount();
    // Steps 0 to 3 overrun the frame; no frame before them slept, so there
    // is no oversleep to forgive.
    if (step <= 3) std::this_thread::sleep_for(std::chrono::milliseconds(25));
    if (step == 3) GameManager::getInstance().setGameOver();
  };
  GameManager::getInstance().run();
  const std::string log = stopAndReadLog();
  EXPECT_EQ(occurrences(log, "GameManager::run(): Can't keep up! frame_time 10 ms, split 2"), 3);
  EXPECT_EQ(log.find("   0 GameManager::run(): Can't keep up!"), std::string::npos);
}

TEST_F(GameManagerTest, FrameTimeZeroRunsFlatOutWithoutWarnings) {
  startWith("frame_time:0,\n");
  auto* p_object = new RecordingObject;
  p_object->registerInterest(vt::STEP_EVENT);
  p_object->on_event = [](const vt::Event* p_event) {
    if (static_cast<const vt::EventStep*>(p_event)->getStepCount() == 199) {
      GameManager::getInstance().setGameOver();
    }
  };
  const auto start = std::chrono::steady_clock::now();
  GameManager::getInstance().run();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(p_object->steps.size(), 200u);
  EXPECT_EQ(stopAndReadLog().find("Can't keep up"), std::string::npos);
}

TEST_F(GameManagerTest, StartUpFailsWhenTheLogCannotBeOpened) {
  setenv("VANTOR_LOG", "/nonexistent/dir/vantor.log", 1);
  setenv("VANTOR_CONFIG", "/nonexistent/config.txt", 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(GameManager::getInstance().startUp(), -1);
  GameManager::getInstance().shutDown();
  const std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find("Error starting log manager!"), std::string::npos);
}
