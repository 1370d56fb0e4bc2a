// Display manager rules that need no X server.
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

// Every drawing call of the manager fails.
void expectEveryDrawingCallFails() {
  vt::DisplayManager& display = vt::DisplayManager::getInstance();
  const vt::Vector at(3, 4);
  EXPECT_EQ(display.drawCh(at, 'a', vt::RED) + display.drawCh(at, 'a', 1, 2, 3) +
                display.drawString(at, "abc", vt::CENTER_JUSTIFIED, vt::BLUE) +
                display.drawLine(at, vt::Vector(9, 9)) +
                display.drawDrawable(sf::RectangleShape({5.0f, 5.0f})) + display.swapBuffers(),
            -6);
}

}  // namespace

TEST(DisplayManager, HeadlessOrFailedStartsLeaveNoWindowAndRefuseDrawing) {
  const char* p_display = std::getenv("DISPLAY");
  const std::string saved_display = p_display ? p_display : "";
  vt::DisplayManager& display = vt::DisplayManager::getInstance();
  const struct {
    bool headless;
    const char* display;  // nullptr: unset
    const char* config;
    std::string log_line;
  } cases[] = {
      {true, ":4321", "", "DisplayManager::startUp(): not doing graphics since in headless mode."},
      {false, ":4321", "window_vertical_chars:0,",
       "DisplayManager::startUp(): Error! Window of 1024x768 pixels and 80x0 characters."},
      {false, nullptr, "", "DisplayManager::startUp(): Error! Cannot open X display ''."},
      {false, ":4321", "", "DisplayManager::startUp(): Error! Cannot open X display ':4321'."}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.log_line);
    vt::test::TestConfig config(c.headless);
    vt::Config::getInstance().loadConfig(c.config);
    vt::LogManager::getInstance().setLogLevel(30);
    c.display ? setenv("DISPLAY", c.display, 1) : unsetenv("DISPLAY");
    EXPECT_EQ(display.startUp(), c.headless ? 0 : -1);
    EXPECT_EQ(display.isStarted(), c.headless);
    EXPECT_EQ(display.getWindow(), nullptr);
    EXPECT_NE(config.logText().find(c.log_line + "\n"), std::string::npos) << config.logText();
    // Headless drawing fails quietly; a manager that is not started says so.
    const std::string before = config.logText();
    expectEveryDrawingCallFails();
    const std::string log = config.logText().substr(before.size());
    std::size_t refusals = 0;
    for (auto at = log.find("DisplayManager not started!"); at != std::string::npos;
         at = log.find("DisplayManager not started!", at + 1)) {
      refusals++;
    }
    EXPECT_EQ(refusals, c.headless ? 0u : 6u) << log;
    if (c.headless) {
      EXPECT_FALSE(display.setBackgroundColor(vt::RED));
      EXPECT_EQ(display.startUp(), -1);
      EXPECT_EQ(display.getHorizontal() * 100 + display.getVertical(), 8024);
      display.shutDown();
      EXPECT_FALSE(display.isStarted());
    }
  }
  p_display ? setenv("DISPLAY", saved_display.c_str(), 1) : unsetenv("DISPLAY");
}

TEST(DisplayManager, CellGeometryFollowsTheConfigurationAndTheView) {
  vt::test::TestConfig config(true);
  vt::Config::getInstance().loadConfig(
      "window_horizontal_pixels:1000,window_vertical_pixels:500,window_horizontal_chars:50,"
      "window_vertical_chars:20,");
  EXPECT_EQ(vt::Vector(vt::charWidth(), vt::charHeight()), vt::Vector(20, 25));
  EXPECT_EQ(vt::spacesToPixels(vt::Vector(2.5f, -3.0f)), vt::Vector(50.0f, -75.0f));
  EXPECT_EQ(vt::pixelsToSpaces(vt::Vector(50.0f, 80.0f)), vt::Vector(2.5f, 3.2f));
  vt::WorldManager::getInstance().setView(vt::Box(vt::Vector(10.0f, 5.5f), 80, 24));
  EXPECT_EQ(vt::worldToView(vt::Vector(12.0f, 7.0f)), vt::Vector(2.0f, 1.5f));
  EXPECT_EQ(vt::viewToWorld(vt::Vector(2.0f, 1.5f)), vt::Vector(12.0f, 7.0f));
  vt::WorldManager::getInstance().setView(vt::Box());
}
