#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/Config.h"
#include "core/EventStep.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "extras/Particle.h"
#include "extras/Particles.h"
#include "extras/Pause.h"
#include "extras/Splash.h"
#include "extras/SplashVantor.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/InputManager.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

using vt::GameManager;
using vt::Vector;
using vt::WorldManager;

namespace {

const vt::EventKeyboard& keyEvent(int key) {
  static vt::EventKeyboard event;
  event.setKey(key);
  event.setKeyboardAction(vt::KEY_PRESSED);
  return event;
}

int countOf(const std::string& type) {
  return WorldManager::getInstance().objectsOfType(type).getCount();
}

// Steps every step listener and the world; returns how many objects of the type are left.
int runSteps(int count, const std::string& type = "Particle") {
  for (int i = 0; i < count; i++) {
    const vt::EventStep step(i);
    GameManager::getInstance().onEvent(&step);
    WorldManager::getInstance().update();
  }
  return countOf(type);
}

struct SplashTest : testing::Test {
  SplashTest() {
    std::ofstream(directory + "/config.txt")
        << "headless:true,\nframe_time:0,\nlogfile:" << directory << "/vantor.log,\n";
    setenv("VANTOR_CONFIG", (directory + "/config.txt").c_str(), 1);
  }
  void SetUp() override { ASSERT_EQ(GameManager::getInstance().startUp(), 0); }
  ~SplashTest() override {
    GameManager::getInstance().shutDown();
    test::restoreEngineSettings();
  }
  const std::string directory = test::makeTempDir();
};

}  // namespace

TEST_F(SplashTest, LeavesNothingBehindWhetherPlayedOutOrSkipped) {
  int key_step = -1;
  auto* p_player = new test::RecordingObject;
  p_player->registerInterest(vt::STEP_EVENT);
  p_player->on_event = [&](const vt::Event*) {
    if (p_player->steps.back() == key_step) vt::InputManager::getInstance().onEvent(&keyEvent(0));
  };
  for (const auto& [key, steps] : {std::pair{-1, 90}, {3, 4}, {40, 41}}) {
    key_step = key;
    EXPECT_EQ(vt::splash(), 0);
    EXPECT_EQ(GameManager::getInstance().getStepCount(), steps) << key;
    EXPECT_EQ(countOf("Splash") + countOf("SplashVantor"), 0) << key;
  }
}

TEST_F(SplashTest, TheBannerSlidesInAndTheEmblemRisesBesideIt) {
  auto* p_banner = new vt::Splash;
  runSteps(50);
  const float middle = WorldManager::getInstance().getView().getHorizontal() / 2;
  EXPECT_EQ(p_banner->getVelocity(), vt::Vector());
  EXPECT_NEAR(p_banner->getPosition().getX(), middle - 12, 12);
  ASSERT_EQ(countOf("SplashVantor"), 1);
  const Vector emblem = WorldManager::getInstance().objectsOfType("SplashVantor")[0]->getPosition();
  EXPECT_NEAR((emblem - p_banner->getPosition() - Vector(24, 1)).getMagnitude(), 0, 0.01);
  // The emblem rises from 6 rows below the view in 30 steps.
  auto* p_emblem = new vt::SplashVantor(Vector(40, 10));
  EXPECT_EQ(std::pair(p_emblem->getPosition(), p_emblem->getVelocity()),
            std::pair(Vector(40, 30), Vector(0, -20.0f / 30)));
}

// Without a window the game goes on. With one, it is held inside the pause
// key's handler until a key is pressed there; other keys and focus events
// go through at once.
TEST(Pause, ItsKeyHoldsTheGameUntilTheNextKeyPress) {
  // A process of its own: one window in a process, and one X server.
  const pid_t child = fork();
  if (child == 0) {
    [] {
      ASSERT_TRUE(vt::test::startProcessXvfb());
      vt::test::TestConfig config(false);
      ASSERT_EQ(WorldManager::getInstance().startUp(), 0);
      auto* p_pause = new vt::Pause(vt::Keyboard::F10);
      EXPECT_EQ(p_pause->eventHandler(&keyEvent(vt::Keyboard::F10)), 0);
      ASSERT_EQ(vt::DisplayManager::getInstance().startUp(), 0);
      const std::string sent = config.folder() + "/sent", window = "xdotool search --name Vantor ";
      ASSERT_EQ(std::system((window + "windowfocus --sync").c_str()), 0);
      EXPECT_EQ(p_pause->eventHandler(&keyEvent(vt::Keyboard::P)), 1);
      ASSERT_EQ(std::system(("(sleep 0.3; touch " + sent + "; " + window + "key a) &").c_str()), 0);
      EXPECT_EQ(p_pause->eventHandler(&keyEvent(vt::Keyboard::F10)), 1);
      EXPECT_TRUE(std::filesystem::exists(sent));
    }();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

// The pause's message is drawn in the centre of the screen in the step its
// key comes in; a replay, which does not wait, shows it in that step's
// frame. Without a message the pause draws nothing.
TEST(Pause, ItsMessageIsShownInTheCentreOfTheScreen) {
  const std::string folder = test::makeTempDir();
  const std::string recording = folder + "/pause.vrec";
  {
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    new vt::Pause(vt::Keyboard::F10);
    ASSERT_EQ(harness.record(recording), 0);
    harness.step();
    harness.tapKey(vt::Keyboard::F10);
    harness.step(2);
    ASSERT_EQ(harness.finishReplay(), 0);
  }
  // The centre row of the frame in each step.
  const auto centreRow = [](const vt::Harness& harness) {
    std::istringstream frame(harness.frameText());
    std::string row;
    for (int i = 0; i < 2 + 12; i++) std::getline(frame, row);
    return std::getline(frame, row) ? row : "";
  };
  const std::string blank(80, ' ');
  for (const std::string message : {"", "Paused: any key resumes"}) {
    SCOPED_TRACE(message);
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    (new vt::Pause(vt::Keyboard::F10))->setMessage(message, vt::YELLOW);
    ASSERT_EQ(harness.replay(recording), 0);
    std::string shown = blank;
    shown.replace(40 - message.size() / 2, message.size(), message);
    for (const std::string& expected : {blank, shown, blank}) {
      harness.step();
      EXPECT_EQ(centreRow(harness), expected + "|");
    }
    EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
  }
  std::filesystem::remove_all(folder);
}

// Size 20 and a fixed seed: the shortest and longest lives both occur. Vertical
// speeds are halved, for cells twice as high as wide.
TEST(Particles, PresetsSprayTheirCountAtTheirSpeedsAndLiveTheirLives) {
  test::HeadlessEngine engine;
  WorldManager::getInstance().setBoundary(vt::Box(Vector(-500, -500), 1000, 1000));
  std::srand(7);
  const std::tuple<int, int, float, float, Vector, int, int> PRESETS[] = {
      {vt::PARTICLE_BURST, 200, 10.0f, 0.85f, Vector(), 8, 16},
      {vt::PARTICLE_SMOKE, 100, 0.15f, 0.95f, Vector(0, -0.02f), 20, 30},
      {vt::PARTICLE_SPARKLE, 160, 1.0f, 0.8f, Vector(), 5, 12}};
  const Vector origin(40, 12);
  for (const auto& [preset, count, max_speed, drag, gravity, min_life, max_life] : PRESETS) {
    SCOPED_TRACE(preset);
    ASSERT_EQ(vt::addParticles(preset, origin, 20.0f, vt::RED), 0);
    EXPECT_EQ(countOf("Particle"), count);
    runSteps(1);
    // Moved by their velocity, which was slowed by the drag and pulled by the gravity.
    for (const vt::Object* p_particle : WorldManager::getInstance().objectsOfType("Particle")) {
      const Vector v = p_particle->getVelocity();
      EXPECT_EQ(p_particle->getPosition(), origin + v);
      const Vector start = (v - gravity) * (1 / drag);
      const float speed = Vector(start.getX(), 2 * start.getY()).getMagnitude();
      EXPECT_TRUE(speed > 0.2999f * max_speed && speed < 1.0001f * max_speed) << speed;
    }
    EXPECT_EQ(runSteps(min_life - 2), count);
    EXPECT_LT(runSteps(1), count);
    EXPECT_GT(runSteps(max_life - min_life - 1), 0);
    EXPECT_EQ(runSteps(1), 0);
  }
  // A particle that leaves the world goes before its life ends.
  new vt::Particle(Vector(495, 0), Vector(10, 0), '*', vt::RED, 100);
  EXPECT_EQ(runSteps(2), 0);
  WorldManager::getInstance().setView(vt::Box(Vector(), 80, 24));
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_SNOW, Vector(), 1.0f, vt::WHITE), 0);
  EXPECT_EQ(runSteps(29, "Precipitation"), 1);
  // Snow falls for 30 steps, drifting sideways a tenth of a cell a step at most; a rocket
  // climbs and bursts; unknown presets are refused.
  EXPECT_GT(countOf("Particle"), 0);
  for (const vt::Object* p_flake : WorldManager::getInstance().objectsOfType("Particle"))
    EXPECT_LE(std::fabs(p_flake->getVelocity().getX()), 0.1001f);
  EXPECT_EQ(runSteps(1, "Precipitation"), 0);
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_FIREWORK, origin, 1.0f, vt::CYAN), 0);
  EXPECT_EQ(runSteps(20, "Firework"), 0);
  EXPECT_GT(countOf("Particle"), 0);
  EXPECT_EQ(vt::addParticles(42, Vector(), 1.0f, vt::WHITE), -1);
  // Their colour fades from their own to the background's over their life.
  unsigned char rgb[3];
  vt::Config::getInstance().setWindowBackgroundColor(vt::BLUE);
  for (const auto& [age, level, blue] :
       {std::tuple{0, 255, 0}, {5, 128, 128}, {10, 0, 255}, {15, 0, 255}}) {
    vt::Particle::fadedColor(vt::YELLOW, age, 10, rgb[0], rgb[1], rgb[2]);
    EXPECT_EQ(std::vector<int>(rgb, rgb + 3), (std::vector<int>{level, level, blue})) << age;
  }
}

// What each preset looks like a few steps in.
TEST(Particles, EachPresetLooksAsItsGoldenFrame) {
  for (int preset = vt::PARTICLE_BURST; preset <= vt::PARTICLE_SNOW; preset++) {
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    std::srand(1);
    ASSERT_EQ(vt::addParticles(preset, Vector(40, 12), 2.0f, vt::GREEN), 0);
    harness.step(8);
    const std::string golden =
        std::string(VANTOR_FRAMES_DIR) + "/particles-" + std::to_string(preset) + ".frame";
    EXPECT_EQ(harness.checkFrame(golden), "");
  }
}

// Particles are drawn under an altitude-4 banner by default and over it at
// altitude 4; a firework's burst and snow's flakes take the altitude given.
TEST(Particles, AnAltitudeOf4DrawsThemOverABanner) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_banner = new vt::ViewObject;
  p_banner->setBorder(false);
  p_banner->setDrawValue(false);
  p_banner->setViewString(std::string(21, '='));
  p_banner->setLocation(vt::CENTER_CENTER);
  harness.step();
  const std::string banner = harness.frameText();
  std::srand(1);
  const Vector middle = p_banner->getPosition();
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_SPARKLE, middle, 2.0f, vt::GREEN), 0);
  harness.step();
  EXPECT_EQ(harness.frameText(), banner);
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_SPARKLE, middle, 2.0f, vt::GREEN, 4), 0);
  harness.step();
  EXPECT_NE(harness.frameText(), banner);
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_FIREWORK, middle, 1.0f, vt::CYAN, 4), 0);
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_SNOW, Vector(), 1.0f, vt::WHITE, 4), 0);
  harness.step(20);
  ASSERT_GT(countOf("Particle"), 0);
  for (const vt::Object* p_particle : WorldManager::getInstance().objectsOfType("Particle"))
    EXPECT_EQ(p_particle->getAltitude(), 4);
  EXPECT_EQ(vt::addParticles(vt::PARTICLE_BURST, Vector(), 1.0f, vt::RED, 5), -1);
}
