#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <regex>
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
  void TearDown() override {
    if (GameManager::getInstance().isStarted()) GameManager::getInstance().shutDown();
    test::restoreEngineSettings();
  }

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

  // Ends the loop once the step of that number has been delivered.
  static RecordingObject* stopAfterStep(int last_step) {
    auto* p_object = new RecordingObject;
    p_object->registerInterest(vt::STEP_EVENT);
    p_object->on_event = [last_step](const vt::Event* p_event) {
      if (static_cast<const vt::EventStep*>(p_event)->getStepCount() == last_step) {
        GameManager::getInstance().setGameOver();
      }
    };
    return p_object;
  }

  std::string directory;
};

}  // namespace

TEST_F(GameManagerTest, StartsAndStopsWithTheBanners) {
  startWith("frame_time:10,\nrandom_seed:5,\n");
  // The configured seed makes the game's random numbers repeatable.
  const int first_draw = std::rand();
  std::srand(5);
  EXPECT_EQ(first_draw, std::rand());
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
  // A frame time of 0 runs flat out, without warnings.
  startWith("frame_time:0,\n");
  RecordingObject* p_object = stopAfterStep(4);
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
  EXPECT_EQ(stopAndReadLog().find("Can't keep up"), std::string::npos);
}

TEST_F(GameManagerTest, LateFramesAreReportedButNeverOnTheFirstStep) {
  startWith("frame_time:10,\n");
  stopAfterStep(3);
  // Steps 0 to 3 overrun the frame; no frame before them slept, so there is
  // no oversleep to forgive.
  auto* p_slow = new RecordingObject;
  p_slow->registerInterest(vt::STEP_EVENT);
  p_slow->on_event = [](const vt::Event*) {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  };
  GameManager::getInstance().run();
  const std::string log = stopAndReadLog();
  const std::regex late(
      " +([0-9]+) GameManager::run\\(\\): Can't keep up! frame_time 10 ms, "
      "split [0-9]+ ms\n");
  std::vector<std::string> late_steps;
  for (std::sregex_iterator it(log.begin(), log.end(), late), end; it != end; ++it) {
    late_steps.push_back((*it)[1]);
  }
  EXPECT_EQ(late_steps, (std::vector<std::string>{"1", "2", "3"}));
}

// A frame time of almost an hour: the loop sleeps after its first step
// instead of running on, whatever the size of the frame time in microseconds.
TEST_F(GameManagerTest, AVeryLongFrameTimeSleeps) {
  int steps_pipe[2];
  ASSERT_EQ(pipe(steps_pipe), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    close(steps_pipe[0]);
    startWith("frame_time:3000000,\n");
    auto* p_object = new RecordingObject;
    p_object->registerInterest(vt::STEP_EVENT);
    p_object->on_event = [&](const vt::Event*) {
      if (write(steps_pipe[1], "s", 1) != 1) _exit(3);
    };
    GameManager::getInstance().run();
    _exit(0);
  }
  close(steps_pipe[1]);
  pollfd reader{steps_pipe[0], POLLIN, 0};
  char buffer[64];
  ASSERT_EQ(poll(&reader, 1, 30000), 1);
  ASSERT_EQ(read(steps_pipe[0], buffer, 1), 1);
  // No second step arrives while the first frame lasts.
  EXPECT_EQ(poll(&reader, 1, 1000), 0);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(steps_pipe[0]);
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
