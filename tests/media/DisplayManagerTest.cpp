// Display manager tests that need no X server: headless mode, failing
// start-ups, colours and cell geometry.
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
void expectEveryDrawingCallFails(vt::DisplayManager& display_manager) {
  const vt::Vector where(3, 4);
  const sf::RectangleShape shape({5.0f, 5.0f});
  const int results[] = {display_manager.drawCh(where, 'a', vt::RED),
                         display_manager.drawCh(where, 'a', 1, 2, 3),
                         display_manager.drawString(where, "abc", vt::CENTER_JUSTIFIED, vt::BLUE),
                         display_manager.drawLine(where, vt::Vector(9, 9)),
                         display_manager.drawDrawable(shape),
                         display_manager.swapBuffers()};
  for (int result : results) EXPECT_EQ(result, -1);
}

TEST(DisplayManagerHeadless, StartsWithoutWindowAndRefusesDrawingQuietly) {
  vt::test::TestConfig config(true);
  vt::LogManager::getInstance().setLogLevel(30);
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  ASSERT_EQ(display_manager.startUp(), 0);
  EXPECT_TRUE(display_manager.isStarted());
  EXPECT_EQ(display_manager.getWindow(), nullptr);
  EXPECT_EQ(display_manager.getHorizontal(), 80);
  EXPECT_EQ(display_manager.getVertical(), 24);
  const std::string log_after_start = config.logText();
  EXPECT_TRUE(contains(log_after_start,
                       "DisplayManager::startUp(): not doing graphics since in headless mode."));
  EXPECT_TRUE(contains(log_after_start, "DisplayManager::startUp(): successfully started."));

  expectEveryDrawingCallFails(display_manager);
  EXPECT_FALSE(display_manager.setBackgroundColor(vt::RED));
  EXPECT_EQ(config.logText(), log_after_start);

  display_manager.shutDown();
  EXPECT_FALSE(display_manager.isStarted());
  EXPECT_TRUE(contains(config.logText(), "DisplayManager::shutDown(): successfully stopped."));
}

TEST(DisplayManagerHeadless, SecondStartUpIsRefused) {
  vt::test::TestConfig config(true);
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  ASSERT_EQ(display_manager.startUp(), 0);
  EXPECT_EQ(display_manager.startUp(), -1);
  EXPECT_TRUE(display_manager.isStarted());
  EXPECT_TRUE(contains(config.logText(),
                       "DisplayManager::startup(): Warning! DisplayManager already started."));
  display_manager.shutDown();
}

TEST(DisplayManagerNotStarted, EveryDrawingCallLogsAndFails) {
  vt::test::TestConfig config(false);
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  expectEveryDrawingCallFails(display_manager);
  const std::string log = config.logText();
  std::size_t lines = 0;
  for (std::size_t at = log.find("DisplayManager not started!"); at != std::string::npos;
       at = log.find("DisplayManager not started!", at + 1)) {
    lines++;
  }
  // drawString stops at its own check, before drawing any character.
  EXPECT_EQ(lines, 6u);
}

class DisplayManagerNoDisplay : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* p_display = std::getenv("DISPLAY");
    had_display = p_display != nullptr;
    if (had_display) saved_display = p_display;
  }
  void TearDown() override {
    if (had_display) setenv("DISPLAY", saved_display.c_str(), 1);
  }

  void expectCleanFailure(const std::string& display_in_log) {
    vt::test::TestConfig config(false);
    vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
    EXPECT_EQ(display_manager.startUp(), -1);
    EXPECT_FALSE(display_manager.isStarted());
    EXPECT_EQ(display_manager.getWindow(), nullptr);
    EXPECT_TRUE(contains(
        config.logText(),
        "DisplayManager::startUp(): Error! Cannot open X display '" + display_in_log + "'."))
        << config.logText();
    EXPECT_EQ(display_manager.drawCh(vt::Vector(1, 1), 'x', vt::WHITE), -1);
  }

  bool had_display = false;
  std::string saved_display;
};

TEST_F(DisplayManagerNoDisplay, FailsCleanlyWhenDisplayIsUnset) {
  unsetenv("DISPLAY");
  expectCleanFailure("");
}

TEST_F(DisplayManagerNoDisplay, FailsCleanlyWhenDisplayIsUnreachable) {
  setenv("DISPLAY", ":4321", 1);
  expectCleanFailure(":4321");
}

TEST(ColorToSFML, MapsTheEightNamedColours) {
  const struct {
    vt::Color color;
    sf::Color expected;
  } table[] = {{vt::BLACK, sf::Color::Black}, {vt::RED, sf::Color::Red},
               {vt::GREEN, sf::Color::Green}, {vt::YELLOW, sf::Color::Yellow},
               {vt::BLUE, sf::Color::Blue},   {vt::MAGENTA, sf::Color::Magenta},
               {vt::CYAN, sf::Color::Cyan},   {vt::WHITE, sf::Color::White}};
  for (const auto& entry : table) {
    EXPECT_EQ(vt::colorToSFML(entry.color), entry.expected) << vt::colorToString(entry.color);
    unsigned char r = 0;
    unsigned char g = 0;
    unsigned char b = 0;
    vt::colorToRGB(entry.color, r, g, b);
    EXPECT_EQ(vt::colorToSFML(entry.color), sf::Color(r, g, b));
  }
}

TEST(ColorToSFML, OtherValuesGiveWhiteAndALogLine) {
  vt::test::TestConfig config(true);
  vt::LogManager::getInstance().setLogLevel(5);
  EXPECT_EQ(vt::colorToSFML(vt::CUSTOM), sf::Color::White);
  EXPECT_EQ(vt::colorToSFML(static_cast<vt::Color>(-1)), sf::Color::White);
  EXPECT_EQ(vt::colorToSFML(static_cast<vt::Color>(42)), sf::Color::White);
  const std::string log = config.logText();
  EXPECT_TRUE(contains(log, "colorToSFML(): Color is CUSTOM.\n"));
  EXPECT_TRUE(contains(log, "colorToSFML(): Color -1 not supported.\n"));
  EXPECT_TRUE(contains(log, "colorToSFML(): Color 42 not supported.\n"));
}

TEST(ColorToSFML, LogsNothingBelowLevelFive) {
  vt::test::TestConfig config(true);
  vt::LogManager::getInstance().setLogLevel(4);
  const std::string before = config.logText();
  vt::colorToSFML(vt::CUSTOM);
  vt::colorToSFML(static_cast<vt::Color>(-1));
  EXPECT_EQ(config.logText(), before);
}

class CellGeometry : public ::testing::Test {
 protected:
  void SetUp() override { setWindow(1000, 500, 50, 20); }
  void TearDown() override { setWindow(1024, 768, 80, 24); }

  static void setWindow(int width, int height, int columns, int rows) {
    vt::Config& config = vt::Config::getInstance();
    config.setWindowHorizontalPixels(width);
    config.setWindowVerticalPixels(height);
    config.setWindowHorizontalChars(columns);
    config.setWindowVerticalChars(rows);
  }
};

TEST_F(CellGeometry, CellSizeFollowsTheConfiguration) {
  EXPECT_FLOAT_EQ(vt::charWidth(), 20.0f);
  EXPECT_FLOAT_EQ(vt::charHeight(), 25.0f);
  setWindow(1024, 768, 80, 24);
  EXPECT_FLOAT_EQ(vt::charWidth(), 12.8f);
  EXPECT_FLOAT_EQ(vt::charHeight(), 32.0f);
}

TEST_F(CellGeometry, ConvertsBetweenSpacesAndPixels) {
  const vt::Vector pixels = vt::spacesToPixels(vt::Vector(2.5f, -3.0f));
  EXPECT_FLOAT_EQ(pixels.getX(), 2.5f * vt::charWidth());
  EXPECT_FLOAT_EQ(pixels.getY(), -3.0f * vt::charHeight());
  const vt::Vector spaces = vt::pixelsToSpaces(vt::Vector(50.0f, 80.0f));
  EXPECT_FLOAT_EQ(spaces.getX(), 50.0f / vt::charWidth());
  EXPECT_FLOAT_EQ(spaces.getY(), 80.0f / vt::charHeight());
  const vt::Vector round_trip = vt::pixelsToSpaces(vt::spacesToPixels(vt::Vector(7.25f, 3.5f)));
  EXPECT_FLOAT_EQ(round_trip.getX(), 7.25f);
  EXPECT_FLOAT_EQ(round_trip.getY(), 3.5f);
}

TEST_F(CellGeometry, LogsConversionsAtLevelThirty) {
  vt::test::TestConfig config(true);
  vt::LogManager::getInstance().setLogLevel(29);
  vt::spacesToPixels(vt::Vector(1, 1));
  EXPECT_FALSE(contains(config.logText(), "spacesToPixels"));
  vt::LogManager::getInstance().setLogLevel(30);
  vt::spacesToPixels(vt::Vector(2, 3));
  vt::pixelsToSpaces(vt::Vector(40, 75));
  const std::string log = config.logText();
  EXPECT_TRUE(contains(log, "spacesToPixels(int): spaces (2.00,3.00) = pixels (40.00,75.00)"));
  EXPECT_TRUE(contains(log, "pixelsToSpaces(): pixels (40.00,75.00) = spaces (2.00,3.00)"));
}

TEST(ViewConversion, WorldAndViewDifferByTheViewCorner) {
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  const vt::Box saved_view = world_manager.getView();
  world_manager.setView(vt::Box(vt::Vector(10.0f, 5.5f), 80, 24));
  EXPECT_EQ(vt::worldToView(vt::Vector(12.0f, 7.0f)), vt::Vector(2.0f, 1.5f));
  EXPECT_EQ(vt::viewToWorld(vt::Vector(2.0f, 1.5f)), vt::Vector(12.0f, 7.0f));
  EXPECT_EQ(vt::worldToView(vt::Vector(0.0f, 0.0f)), vt::Vector(-10.0f, -5.5f));
  world_manager.setView(vt::Box(vt::Vector(0, 0), 80, 24));
  EXPECT_EQ(vt::worldToView(vt::Vector(12.0f, 7.0f)), vt::Vector(12.0f, 7.0f));
  world_manager.setView(saved_view);
}

}  // namespace

TEST(DisplayManagerHeadless, RefusesAWindowWithoutCells) {
  vt::test::TestConfig config(true);
  vt::Config::getInstance().loadConfig("window_vertical_chars:0,");
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  EXPECT_EQ(display_manager.startUp(), -1);
  EXPECT_FALSE(display_manager.isStarted());
  EXPECT_TRUE(contains(config.logText(),
                       "DisplayManager::startUp(): Error! Window of 1024x768 "
                       "pixels and 80x0 characters."));
}
