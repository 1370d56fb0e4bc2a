#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "extras/Pause.h"
#include "extras/Splash.h"
#include "media/EventKeyboard.h"
#include "media/InputManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/WorldManager.h"

using vt::GameManager;
using vt::WorldManager;

namespace {

vt::EventKeyboard keyEvent(int key) {
  vt::EventKeyboard event;
  event.setKey(key);
  event.setKeyboardAction(vt::KEY_PRESSED);
  return event;
}

int countOfType(const std::string& type) {
  return WorldManager::getInstance().objectsOfType(type).getCount();
}

// The engine started headless through the game manager, with frames that
// take no time.
class SplashTest : public testing::Test {
 protected:
  void SetUp() override {
    directory = test::makeTempDir();
    std::ofstream(directory + "/config.txt")
        << "headless:true,\nframe_time:0,\nlogfile:" << directory << "/vantor.log,\n";
    setenv("VANTOR_CONFIG", (directory + "/config.txt").c_str(), 1);
  }

  void TearDown() override {
    GameManager::getInstance().shutDown();
    test::restoreEngineSettings();
  }

  // A key press delivered as the input manager delivers it.
  static void pressKey() {
    const vt::EventKeyboard key = keyEvent(vt::Keyboard::P);
    vt::InputManager::getInstance().onEvent(&key);
  }

  std::string directory;
};

}  // namespace

// Played to its end or skipped by a key at some step, the splash leaves no
// object behind, and the first key of the game proper does not end it.
TEST_F(SplashTest, LeavesNothingBehindWhetherPlayedOutOrSkipped) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(vt::splash(), -1);
  EXPECT_NE(testing::internal::GetCapturedStderr().find(
                "splash(): Error! Cannot run splash screen until game manger is started."),
            std::string::npos);
  ASSERT_EQ(GameManager::getInstance().startUp(), 0);
  const struct {
    int key_step;  // -1: no key
    int last_step;
  } RUNS[] = {{-1, 89}, {3, 3}, {40, 40}};
  for (const auto& run : RUNS) {
    auto* p_player = new test::RecordingObject;
    p_player->setSolidness(vt::SPECTRAL);
    p_player->registerInterest(vt::STEP_EVENT);
    p_player->on_event = [&run](const vt::Event* p_event) {
      if (static_cast<const vt::EventStep*>(p_event)->getStepCount() == run.key_step) pressKey();
    };
    EXPECT_EQ(vt::splash(), 0);
    EXPECT_EQ(GameManager::getInstance().getStepCount(), run.last_step + 1) << run.key_step;
    EXPECT_EQ(countOfType("Splash"), 0) << run.key_step;
    EXPECT_EQ(countOfType("SplashVantor"), 0) << run.key_step;
    // The game proper: a key at its first step, the game ending itself at
    // its third.
    p_player->on_event = [](const vt::Event* p_event) {
      const int step = static_cast<const vt::EventStep*>(p_event)->getStepCount();
      if (step == 0) pressKey();
      if (step == 2) GameManager::getInstance().setGameOver();
    };
    GameManager::getInstance().run();
    EXPECT_EQ(GameManager::getInstance().getStepCount(), 3) << run.key_step;
    WorldManager::getInstance().markForDelete(p_player);
    WorldManager::getInstance().update();
  }
}

TEST_F(SplashTest, TheBannerSlidesInAndTheEmblemRisesBesideIt) {
  ASSERT_EQ(GameManager::getInstance().startUp(), 0);
  auto* p_banner = new vt::Splash;
  const vt::Box view = WorldManager::getInstance().getView();
  EXPECT_GT(p_banner->getPosition().getX(), view.getHorizontal());
  for (int step = 0; step < 15; step++) {
    const vt::EventStep step_event(step);
    GameManager::getInstance().onEvent(&step_event);
    WorldManager::getInstance().update();
  }
  // At rest left of the centre, the emblem below the view.
  EXPECT_EQ(p_banner->getVelocity(), vt::Vector());
  EXPECT_LT(p_banner->getPosition().getX(), view.getHorizontal() / 2);
  EXPECT_GT(p_banner->getPosition().getX(), view.getHorizontal() / 2 - 24);
  ASSERT_EQ(countOfType("SplashVantor"), 1);
  vt::Object* p_emblem = WorldManager::getInstance().objectsOfType("SplashVantor")[0];
  EXPECT_GT(p_emblem->getPosition().getY(), view.getVertical());
  EXPECT_EQ(p_emblem->getPosition().getX(), p_banner->getPosition().getX() + 24);
}

TEST(Pause, OnlyItsKeyPausesAndWithoutAWindowTheGameGoesOn) {
  test::HeadlessEngine engine;
  auto* p_pause = new vt::Pause(vt::Keyboard::F10);
  EXPECT_EQ(p_pause->getSolidness(), vt::SPECTRAL);
  const vt::EventKeyboard other = keyEvent(vt::Keyboard::P);
  EXPECT_EQ(p_pause->eventHandler(&other), 1);
  const vt::EventKeyboard pause_key = keyEvent(vt::Keyboard::F10);
  EXPECT_EQ(p_pause->eventHandler(&pause_key), 0);
  const vt::EventStep step;
  EXPECT_EQ(p_pause->eventHandler(&step), 0);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("Pause::Pause(): Pause enabled.  Press any other key to resume."),
            std::string::npos);
  EXPECT_NE(log.find("Pause::eventHandler(): DisplayManager unexpectedly returned null window!  "
                     "Cannot pause."),
            std::string::npos);
}
