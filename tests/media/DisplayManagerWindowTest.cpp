// Display manager tests with a real window, each under a private Xvfb.
#include <gtest/gtest.h>

#include <SFML/Graphics.hpp>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "media/Frame.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

namespace {

struct Cell {
  vt::Vector position;
  char ch;
  vt::Color color;
};

// The pixels that differ from the background colour, as a bounding box.
sf::IntRect inkBounds(const sf::Image& image, sf::Color background) {
  int left = static_cast<int>(image.getSize().x);
  int top = static_cast<int>(image.getSize().y);
  int right = -1;
  int bottom = -1;
  for (unsigned int y = 0; y < image.getSize().y; y++) {
    for (unsigned int x = 0; x < image.getSize().x; x++) {
      if (image.getPixel(x, y) == background) continue;
      left = std::min(left, static_cast<int>(x));
      top = std::min(top, static_cast<int>(y));
      right = std::max(right, static_cast<int>(x));
      bottom = std::max(bottom, static_cast<int>(y));
    }
  }
  return {left, top, right - left + 1, bottom - top + 1};
}

long countPixels(const sf::Image& image, sf::Color color, sf::IntRect area) {
  long count = 0;
  for (int y = area.top; y < area.top + area.height; y++) {
    for (int x = area.left; x < area.left + area.width; x++) {
      if (image.getPixel(static_cast<unsigned int>(x), static_cast<unsigned int>(y)) == color) {
        count++;
      }
    }
  }
  return count;
}

// A full screen of assorted characters and colours, a few of them at half
// cells, in row order.
std::vector<Cell> busyScreen(int columns, int rows) {
  std::mt19937 generator(7);
  std::uniform_int_distribution<int> printable(32, 126);
  std::uniform_int_distribution<int> colour(vt::RED, vt::WHITE);
  std::vector<Cell> cells;
  for (int y = 0; y < rows; y++) {
    for (int x = 0; x < columns; x++) {
      const float shift = (x % 7 == 3) ? 0.5f : 0.0f;
      cells.push_back({vt::Vector(static_cast<float>(x) + shift, static_cast<float>(y) + shift),
                       static_cast<char>(printable(generator)),
                       static_cast<vt::Color>(colour(generator))});
    }
  }
  return cells;
}

// Something drawn straight into the window, across the middle rows.
sf::RectangleShape bigPanel() {
  sf::RectangleShape panel({300.0f, 220.0f});
  panel.setPosition(200.0f, 280.0f);
  panel.setFillColor(sf::Color(200, 120, 40));
  return panel;
}

// Draws cells as one rectangle and one text each, the way the display
// manager's output must look.
class ReferencePainter {
 public:
  explicit ReferencePainter(sf::RenderWindow& window) : window(window) {
    font.loadFromFile(VANTOR_FONT_PATH);
    const float cell = std::min(vt::charWidth(), vt::charHeight());
    text.setFont(font);
    text.setStyle(sf::Text::Bold);
    text.setCharacterSize(
        static_cast<unsigned int>(cell * vt::Config::getInstance().getFontScale()));
    rectangle.setSize({vt::charWidth(), vt::charHeight()});
  }

  void paint(const Cell& cell, sf::Color background) {
    const vt::Vector pixels = vt::spacesToPixels(vt::worldToView(cell.position));
    rectangle.setFillColor(background);
    rectangle.setPosition(pixels.getX() - vt::charWidth() / 10,
                          pixels.getY() + vt::charHeight() / 5);
    window.draw(rectangle);
    text.setString(std::string(1, cell.ch));
    text.setPosition(pixels.getX(), pixels.getY());
    text.setFillColor(vt::colorToSFML(cell.color));
    window.draw(text);
  }

 private:
  sf::RenderWindow& window;
  sf::Font font;
  sf::Text text;
  sf::RectangleShape rectangle;
};

class DisplayWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(xvfb.isRunning());
    vt::WorldManager::getInstance().setView(vt::Box(vt::Vector(0, 0), 80, 24));
    ASSERT_EQ(display_manager.startUp(), 0) << config.logText();
    ASSERT_NE(display_manager.getWindow(), nullptr);
  }
  void TearDown() override {
    if (display_manager.isStarted()) display_manager.shutDown();
  }

  sf::Image showAndCapture() {
    display_manager.swapBuffers();
    return vt::test::captureWindow(*display_manager.getWindow());
  }

  // A frame of one white 'X' at a fixed cell; the box of its ink.
  sf::IntRect shownGlyph() {
    display_manager.drawCh(vt::Vector(10, 5), 'X', vt::WHITE);
    return inkBounds(showAndCapture(), sf::Color::Black);
  }

  const vt::test::XvfbServer& xvfb = vt::test::processXvfb();
  vt::test::TestConfig config{false};
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
};

TEST_F(DisplayWindowTest, OpensTheConfiguredWindowCentredOnTheScreen) {
  const sf::RenderWindow& window = *display_manager.getWindow();
  EXPECT_EQ(window.getSize(), sf::Vector2u(1024, 768));
  EXPECT_EQ(display_manager.getHorizontal(), 80);
  EXPECT_EQ(display_manager.getVertical(), 24);
  EXPECT_EQ(display_manager.getHorizontalPixels(), 1024);
  EXPECT_EQ(display_manager.getVerticalPixels(), 768);
  const vt::test::ScreenPlacement placement = vt::test::windowPlacement(window);
  const sf::Vector2i size(1024, 768);
  const sf::Vector2i margin_before = placement.position;
  const sf::Vector2i margin_after = placement.screen_size - placement.position - size;
  EXPECT_GE(margin_before.x, 0);
  EXPECT_GE(margin_before.y, 0);
  EXPECT_LE(std::abs(margin_before.x - margin_after.x), 1);
  EXPECT_LE(std::abs(margin_before.y - margin_after.y), 1);
}

TEST_F(DisplayWindowTest, LogsItsStartAndStop) {
  vt::LogManager::getInstance().setLogLevel(5);
  display_manager.shutDown();
  ASSERT_EQ(display_manager.startUp(), 0);
  EXPECT_EQ(display_manager.startUp(), -1);
  display_manager.shutDown();
  EXPECT_EQ(display_manager.getWindow(), nullptr);
  const std::string log = config.logText();
  EXPECT_NE(log.find("DisplayManager::startUp(): window resolution (1280, 1024) pixels."),
            std::string::npos);
  EXPECT_NE(log.find("DisplayManager::startUp(): successfully started."), std::string::npos);
  EXPECT_NE(log.find("DisplayManager::startup(): Warning! DisplayManager already started."),
            std::string::npos);
  EXPECT_NE(log.find("DisplayManager::shutDown(): successfully stopped."), std::string::npos);
}

// A full screen drawn per cell in the test and by the display manager, with
// a drawable under the second half of the cells and, when colour_change is
// set, a green background from a quarter on.
TEST_F(DisplayWindowTest, DrawsLikeOneRectangleAndOneTextPerCell) {
  sf::RenderWindow& window = *display_manager.getWindow();
  vt::WorldManager::getInstance().setView(vt::Box(vt::Vector(1, 1), 80, 24));
  const std::vector<Cell> cells =
      busyScreen(display_manager.getHorizontal(), display_manager.getVertical());
  const sf::RectangleShape panel = bigPanel();
  ReferencePainter reference(window);
  for (bool colour_change : {false, true}) {
    SCOPED_TRACE(colour_change ? "with a colour change" : "in one colour");
    const std::size_t quarter = colour_change ? cells.size() / 4 : cells.size();
    const std::size_t half = cells.size() / 2;
    window.clear(sf::Color::Blue);
    for (std::size_t i = 0; i < cells.size(); i++) {
      if (i == half) window.draw(panel);
      reference.paint(cells[i], i < quarter ? sf::Color::Blue : sf::Color::Green);
    }
    window.display();
    const sf::Image expected = vt::test::captureWindow(window);

    // From a cleared window, as in every frame after the first.
    display_manager.setBackgroundColor(vt::BLUE);
    display_manager.swapBuffers();
    for (std::size_t i = 0; i < cells.size(); i++) {
      if (i == quarter) display_manager.setBackgroundColor(vt::GREEN);
      if (i == half) {
        EXPECT_EQ(display_manager.drawDrawable(panel), 0);
      }
      ASSERT_EQ(display_manager.drawCh(cells[i].position, cells[i].ch, cells[i].color), 0);
    }
    const sf::Image actual = showAndCapture();

    const long different = vt::test::countDifferentPixels(expected, actual);
    RecordProperty(colour_change ? "different_pixels_colour_change" : "different_pixels",
                   std::to_string(different));
    EXPECT_GE(different, 0);
    EXPECT_LE(different, 20);
    // The comparison is not between two empty screens.
    const sf::IntRect whole(0, 0, 1024, 768);
    EXPECT_GT(whole.width * whole.height - countPixels(actual, sf::Color::Blue, whole) -
                  countPixels(actual, sf::Color::Green, whole),
              100000);
    if (colour_change) {
      EXPECT_GT(countPixels(actual, sf::Color::Green, whole), 100000);
    }
  }
}

TEST_F(DisplayWindowTest, JustifiesStringsAroundTheGivenPosition) {
  struct Case {
    std::string text;
    vt::Justification just;
    int first_x;  // where the string's first character must land
  };
  const int x = 40;
  const Case cases[] = {{"ABCD", vt::LEFT_JUSTIFIED, x},
                        {"ABCD", vt::CENTER_JUSTIFIED, x - 2},
                        {"ABCDE", vt::CENTER_JUSTIFIED, x - 2},
                        {"A", vt::CENTER_JUSTIFIED, x},
                        {"ABCD", vt::RIGHT_JUSTIFIED, x - 4}};
  const vt::Vector where(x, 6);
  const auto drawChars = [&](const std::string& text, int first_x) {
    for (std::size_t i = 0; i < text.size(); i++) {
      const float cell_x = static_cast<float>(first_x) + static_cast<float>(i);
      display_manager.drawCh(vt::Vector(cell_x, where.getY()), text[i], vt::GREEN);
    }
    return showAndCapture();
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text + " justified " + std::to_string(c.just));
    EXPECT_EQ(display_manager.drawString(where, c.text, c.just, vt::GREEN), 0);
    const sf::Image shown = showAndCapture();
    EXPECT_GT(inkBounds(shown, sf::Color::Black).width, 0);
    EXPECT_EQ(vt::test::countDifferentPixels(shown, drawChars(c.text, c.first_x)), 0);
    EXPECT_GT(vt::test::countDifferentPixels(shown, drawChars(c.text, c.first_x + 1)), 0);
  }
}

TEST_F(DisplayWindowTest, ShakesGlyphsBySeverityForTheGivenSteps) {
  const sf::IntRect still = shownGlyph();
  ASSERT_GT(still.width, 0);
  std::srand(11);
  display_manager.shake(2, 2, 3);
  display_manager.shake(0, 0, 27, true);
  display_manager.swapBuffers();
  std::set<int> offsets_x;
  std::set<int> offsets_y;
  for (int step = 0; step < 30; step++) {
    const sf::IntRect moved = shownGlyph();
    offsets_x.insert(moved.left - still.left);
    offsets_y.insert(moved.top - still.top);
    EXPECT_EQ(moved.width, still.width);
  }
  EXPECT_EQ(offsets_x, std::set<int>({-1, 1, 3}));
  EXPECT_EQ(offsets_y, std::set<int>({-1, 1, 3}));
  EXPECT_EQ(shownGlyph(), still);
}

TEST_F(DisplayWindowTest, AddedShakeLengthensAndStrengthens) {
  const sf::IntRect still = shownGlyph();
  display_manager.shake(0, 0, 2);
  display_manager.shake(2, 0, 3, true);
  display_manager.swapBuffers();
  int shaken_steps = 0;
  for (int step = 0; step < 8; step++) {
    const sf::IntRect moved = shownGlyph();
    const int offset = moved.left - still.left;
    if (offset != 0) shaken_steps++;
    EXPECT_TRUE(offset == 0 || offset == 3 || offset == 1 || offset == -1) << offset;
    // Severity 0 vertically still moves by one pixel while the shake lasts.
    EXPECT_EQ(moved.top - still.top, offset == 0 ? 0 : 1);
  }
  EXPECT_EQ(shaken_steps, 5);
}

TEST_F(DisplayWindowTest, LinesAndDrawablesLandBetweenTheCharactersDrawnBeforeAndAfter) {
  // Cell 5 is drawn before the line and cell 8 after it: only cell 8's
  // background covers the line.
  const vt::Vector before(5, 1);
  const vt::Vector after(8, 1);
  display_manager.drawCh(before, ' ', vt::WHITE);
  EXPECT_EQ(display_manager.drawLine(vt::Vector(1, 1.5f), vt::Vector(20, 1.5f), vt::RED), 0);
  display_manager.drawCh(after, ' ', vt::WHITE);
  const sf::Image shown = showAndCapture();
  const auto cellArea = [](vt::Vector cell) {
    const vt::Vector pixels = vt::spacesToPixels(cell);
    return sf::IntRect(static_cast<int>(std::ceil(pixels.getX())),
                       static_cast<int>(pixels.getY() + vt::charHeight() / 5) + 1,
                       static_cast<int>(vt::charWidth()) - 2,
                       static_cast<int>(vt::charHeight()) - 2);
  };
  EXPECT_GE(countPixels(shown, sf::Color::Red, cellArea(before)), 10);
  EXPECT_EQ(countPixels(shown, sf::Color::Red, cellArea(after)), 0);
  const sf::IntRect all(0, 0, 1024, 768);
  const long line_length = static_cast<long>(19 * vt::charWidth());
  const long covered = static_cast<long>(vt::charWidth());
  EXPECT_NEAR(countPixels(shown, sf::Color::Red, all), line_length - covered, 3);
}

TEST_F(DisplayWindowTest, ClearsToTheBackgroundColour) {
  EXPECT_TRUE(display_manager.setBackgroundColor(vt::MAGENTA));
  display_manager.swapBuffers();
  display_manager.drawCh(vt::Vector(3, 3), '#', vt::YELLOW);
  const sf::Image shown = showAndCapture();
  const sf::IntRect all(0, 0, 1024, 768);
  const long magenta = countPixels(shown, sf::Color::Magenta, all);
  const long yellow = countPixels(shown, sf::Color::Yellow, all);
  EXPECT_GT(yellow, 0);
  EXPECT_GT(magenta, all.width * all.height - 2000);
  EXPECT_EQ(display_manager.drawCh(vt::Vector(3, 3), '#', 10, 20, 30), 0);
  const sf::Image custom = showAndCapture();
  EXPECT_GT(countPixels(custom, sf::Color(10, 20, 30), all), 0);
}

TEST_F(DisplayWindowTest, FailsWithoutItsFont) {
  display_manager.shutDown();
  vt::Config::getInstance().setFontFile(config.folder() + "/missing.ttf");
  EXPECT_EQ(display_manager.startUp(), -1);
  EXPECT_FALSE(display_manager.isStarted());
  EXPECT_EQ(display_manager.getWindow(), nullptr);
  EXPECT_NE(config.logText().find("DisplayManager::startUp(): Unable to load font from file '" +
                                  config.folder() + "/missing.ttf'."),
            std::string::npos);
}

TEST_F(DisplayWindowTest, WindowAsLargeAsTheScreenIsWhollyVisible) {
  display_manager.shutDown();
  vt::Config& configuration = vt::Config::getInstance();
  configuration.setWindowHorizontalPixels(1280);
  configuration.setWindowVerticalPixels(1024);
  ASSERT_EQ(display_manager.startUp(), 0);
  const vt::test::ScreenPlacement placement =
      vt::test::windowPlacement(*display_manager.getWindow());
  EXPECT_EQ(placement.screen_size.x, 1280);
  EXPECT_EQ(placement.screen_size.y, 1024);
  EXPECT_EQ(placement.position.x, 0);
  EXPECT_EQ(placement.position.y, 0);
  display_manager.shutDown();
  configuration.setWindowHorizontalPixels(1024);
  configuration.setWindowVerticalPixels(768);
}

}  // namespace

// A frame is drawn centred on its position: a 4 x 2 frame puts its cells on
// half-cell positions, exactly as drawing them one by one there would.
TEST_F(DisplayWindowTest, FramesAreCentredOnTheirPositionEvenWhenEven) {
  const vt::Frame frame(4, 2, "ab#.cd+*");
  ASSERT_EQ(frame.draw(vt::Vector(20, 6), vt::CYAN, '.'), 0);
  const sf::Image drawn_as_frame = showAndCapture();

  const std::string cells = "ab#.cd+*";
  for (int i = 0; i < 8; i++) {
    if (cells[i] == '.') continue;
    const vt::Vector where(18.5f + static_cast<float>(i % 4), 5.5f + static_cast<float>(i / 4));
    display_manager.drawCh(where, cells[i], vt::CYAN);
  }
  const sf::Image drawn_by_hand = showAndCapture();
  EXPECT_GT(inkBounds(drawn_as_frame, sf::Color::Black).width, 0);
  EXPECT_EQ(vt::test::countDifferentPixels(drawn_as_frame, drawn_by_hand), 0);
}
