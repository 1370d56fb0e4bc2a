#include <gtest/gtest.h>

#include <string>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using test::RecordingObject;
using vt::InputManager;

TEST(InputManager, RefusesToStartBeforeTheDisplayManager) {
  const test::HeadlessEngine engine;
  vt::Config::getInstance().setHeadless(false);
  InputManager& input_manager = InputManager::getInstance();
  EXPECT_EQ(input_manager.startUp(), -1);
  EXPECT_FALSE(input_manager.isStarted());
  // Not started: a round of input only reports that.
  input_manager.getInput();
  const std::string log = engine.logText();
  EXPECT_NE(log.find("InputManager::startUp(): Error starting InputManager. DisplayManager must be "
                     "started first.\n"),
            std::string::npos);
  EXPECT_NE(log.find("InputManager not started!\n"), std::string::npos);
}

TEST(InputManager, StartsAndStopsHeadlessWithoutTouchingAWindow) {
  const test::HeadlessEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
  InputManager& input_manager = InputManager::getInstance();
  ASSERT_EQ(input_manager.startUp(), 0);
  EXPECT_TRUE(input_manager.isStarted());
  EXPECT_EQ(input_manager.startUp(), -1);
  auto* p_object = new RecordingObject;
  ASSERT_EQ(p_object->registerInterest(vt::KEYBOARD_EVENT), 0);
  input_manager.getInput();
  EXPECT_TRUE(p_object->received.empty());
  input_manager.shutDown();
  EXPECT_FALSE(input_manager.isStarted());
  vt::LogManager::getInstance().setLogLevel(0);

  const std::string log = engine.logText();
  const char* const expected_in_order[] = {
      "InputManager::startUp(): not doing input since in headless mode.\n",
      "InputManager::startUp(): successfully started.\n",
      "InputManager::startup(): Warning! InputManager already started.\n",
      "InputManager::shutDown(): successfully stopped.\n",
  };
  std::size_t at = 0;
  for (const char* p_line : expected_in_order) {
    at = log.find(p_line, at);
    EXPECT_NE(at, std::string::npos) << p_line;
  }
  EXPECT_EQ(log.find("Keyboard repeat"), std::string::npos);
  EXPECT_EQ(log.find("null window"), std::string::npos);
}

TEST(InputManager, KeyboardAndMouseInterestsAreRegisteredHere) {
  const test::HeadlessEngine engine;
  InputManager& input_manager = InputManager::getInstance();
  EXPECT_TRUE(input_manager.isValid("vt-keyboard"));
  EXPECT_TRUE(input_manager.isValid("vt-mouse"));
  EXPECT_FALSE(input_manager.isValid("vt-step"));
  EXPECT_FALSE(input_manager.isValid("vt-view"));
  EXPECT_FALSE(input_manager.isValid("vt-keyboard-network"));

  auto* p_keys = new RecordingObject;
  auto* p_mouse = new RecordingObject;
  ASSERT_EQ(p_keys->registerInterest(vt::KEYBOARD_EVENT), 0);
  ASSERT_EQ(p_mouse->registerInterest(vt::MOUSE_EVENT), 0);
  const vt::EventKeyboard keyboard_event;
  const vt::EventMouse mouse_event;
  EXPECT_EQ(input_manager.onEvent(&keyboard_event), 1);
  EXPECT_EQ(input_manager.onEvent(&mouse_event), 1);
  EXPECT_EQ(p_keys->received, std::vector<std::string>{"vt-keyboard"});
  EXPECT_EQ(p_mouse->received, std::vector<std::string>{"vt-mouse"});

  ASSERT_EQ(p_keys->unregisterInterest(vt::KEYBOARD_EVENT), 0);
  EXPECT_EQ(input_manager.onEvent(&keyboard_event), 0);
  EXPECT_EQ(engine.logText().find("not valid"), std::string::npos);
}
