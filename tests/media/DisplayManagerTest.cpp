// Display manager rules that need no X server: headless mode, failing
// start-ups and cell geometry.
#include <gtest/gtest.h>

#include <SFML/Graphics.hpp>
#include <cstdlib>
#include <string>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

namespace {

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Every drawing call of the manager must return -1.
void expectEveryDrawingCallFails() {
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  const vt::Vector where(3, 4);
  const int results[] = {display_manager.drawCh(where, 'a', vt::RED),
                         display_manager.drawCh(where, 'a', 1, 2, 3),
                         display_manager.drawString(where, "abc", vt::CENTER_JUSTIFIED, vt::BLUE),
                         display_manager.drawLine(where, vt::Vector(9, 9)),
                         display_manager.drawDrawable(sf::RectangleShape({5.0f, 5.0f})),
                         display_manager.swapBuffers()};
  for (int result : results) EXPECT_EQ(result, -1);
}

}  // namespace

TEST(DisplayManager, HeadlessStartsWithoutWindowAndRefusesDrawingQuietly) {
  vt::test::TestConfig config(true);
  vt::LogManager::getInstance().setLogLevel(30);
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  ASSERT_EQ(display_manager.startUp(), 0);
  EXPECT_EQ(display_manager.startUp(), -1);
  EXPECT_TRUE(display_manager.isStarted());
  EXPECT_EQ(display_manager.getWindow(), nullptr);
  EXPECT_EQ(display_manager.getHorizontal(), 80);
  EXPECT_EQ(display_manager.getVertical(), 24);
  const std::string log_after_start = config.logText();
  EXPECT_TRUE(contains(log_after_start,
                       "DisplayManager::startUp(): not doing graphics since in headless mode."));
  EXPECT_TRUE(contains(log_after_start, "DisplayManager::startUp(): successfully started."));
  EXPECT_TRUE(contains(log_after_start,
                       "DisplayManager::startup(): Warning! DisplayManager already started."));
  expectEveryDrawingCallFails();
  EXPECT_FALSE(display_manager.setBackgroundColor(vt::RED));
  EXPECT_EQ(config.logText(), log_after_start);
  display_manager.shutDown();
  EXPECT_FALSE(display_manager.isStarted());
  EXPECT_TRUE(contains(config.logText(), "DisplayManager::shutDown(): successfully stopped."));
}

// A failed start leaves a manager that logs and refuses every drawing call.
TEST(DisplayManager, StartUpFailsCleanlyWithoutCellsOrDisplay) {
  const char* p_display = std::getenv("DISPLAY");
  const std::string saved_display = p_display ? p_display : "";
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  const struct {
    const char* display;  // nullptr: unset
    std::string config;
    std::string log_line;
  } cases[] = {{":4321", "window_vertical_chars:0,",
                "DisplayManager::startUp(): Error! Window of 1024x768 pixels and 80x0 characters."},
               {nullptr, "", "DisplayManager::startUp(): Error! Cannot open X display ''."},
               {":4321", "", "DisplayManager::startUp(): Error! Cannot open X display ':4321'."}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.log_line);
    vt::test::TestConfig config(false);
    if (!c.config.empty()) vt::Config::getInstance().loadConfig(c.config);
    if (c.display == nullptr) {
      unsetenv("DISPLAY");
    } else {
      setenv("DISPLAY", c.display, 1);
    }
    EXPECT_EQ(display_manager.startUp(), -1);
    EXPECT_FALSE(display_manager.isStarted());
    EXPECT_EQ(display_manager.getWindow(), nullptr);
    expectEveryDrawingCallFails();
    const std::string log = config.logText();
    EXPECT_TRUE(contains(log, c.log_line)) << log;
    int refusals = 0;
    for (auto at = log.find("DisplayManager not started!"); at != std::string::npos;
         at = log.find("DisplayManager not started!", at + 1)) {
      refusals++;
    }
    // drawString stops at its own check, before drawing any character.
    EXPECT_EQ(refusals, 6);
  }
  if (p_display != nullptr) {
    setenv("DISPLAY", saved_display.c_str(), 1);
  } else {
    unsetenv("DISPLAY");
  }
}

TEST(DisplayManager, CellGeometryFollowsTheConfigurationAndTheView) {
  vt::test::TestConfig config(true);
  vt::Config::getInstance().loadConfig(
      "window_horizontal_pixels:1000,window_vertical_pixels:500,window_horizontal_chars:50,"
      "window_vertical_chars:20,");
  EXPECT_FLOAT_EQ(vt::charWidth(), 20.0f);
  EXPECT_FLOAT_EQ(vt::charHeight(), 25.0f);
  EXPECT_EQ(vt::spacesToPixels(vt::Vector(2.5f, -3.0f)), vt::Vector(50.0f, -75.0f));
  EXPECT_EQ(vt::pixelsToSpaces(vt::Vector(50.0f, 80.0f)), vt::Vector(2.5f, 3.2f));
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  world_manager.setView(vt::Box(vt::Vector(10.0f, 5.5f), 80, 24));
  EXPECT_EQ(vt::worldToView(vt::Vector(12.0f, 7.0f)), vt::Vector(2.0f, 1.5f));
  EXPECT_EQ(vt::viewToWorld(vt::Vector(2.0f, 1.5f)), vt::Vector(12.0f, 7.0f));
  world_manager.setView(vt::Box());
}
