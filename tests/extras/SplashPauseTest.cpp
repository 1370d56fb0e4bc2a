#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "extras/Pause.h"
#include "extras/Splash.h"
#include "media/EventKeyboard.h"
#include "support/HeadlessEngine.h"
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

}  // namespace

TEST(Splash, RunsItsTimelineAndEndsByItself) {
  const std::string directory = test::makeTempDir();
  std::ofstream(directory + "/config.txt")
      << "headless:true,\nframe_time:1,\nlogfile:" << directory << "/vantor.log,\n";
  setenv("VANTOR_CONFIG", (directory + "/config.txt").c_str(), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(vt::splash(), -1);
  EXPECT_NE(testing::internal::GetCapturedStderr().find(
                "splash(): Error! Cannot run splash screen until game manger is started."),
            std::string::npos);
  ASSERT_EQ(GameManager::getInstance().startUp(), 0);
  EXPECT_EQ(vt::splash(), 0);
  // The emblem ends the splash 45 steps after reaching its row.
  EXPECT_EQ(GameManager::getInstance().getStepCount(), 90);
  // The banner went in the last step; the emblem goes on the next event.
  EXPECT_EQ(countOfType("Splash"), 0);
  ASSERT_EQ(countOfType("SplashVantor"), 1);
  const vt::EventStep step;
  WorldManager::getInstance().objectsOfType("SplashVantor")[0]->eventHandler(&step);
  WorldManager::getInstance().update();
  EXPECT_EQ(countOfType("SplashVantor"), 0);
  GameManager::getInstance().shutDown();
}

TEST(Splash, AnyKeySkipsIt) {
  test::HeadlessEngine engine;
  auto* p_splash = new vt::Splash;
  // The banner slides in from beyond the right edge.
  EXPECT_GT(p_splash->getPosition().getX(), 0);
  EXPECT_LT(p_splash->getVelocity().getX(), 0);
  const vt::EventKeyboard key = keyEvent(vt::Keyboard::X);
  EXPECT_EQ(p_splash->eventHandler(&key), 1);
  EXPECT_TRUE(GameManager::getInstance().getGameOver());
  WorldManager::getInstance().update();
  EXPECT_EQ(countOfType("Splash"), 0);
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
