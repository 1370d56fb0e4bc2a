#include <gtest/gtest.h>

#include <SFML/Graphics.hpp>
#include <algorithm>
#include <random>
#include <set>
#include <tuple>
#include <vector>

#include "core/Config.h"
#include "media/DisplayManager.h"
#include "media/Frame.h"
#include "media/ResourceManager.h"
#include "media/Shape.h"
#include "media/TextLabel.h"
#include "media/ViewObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

using Cells = std::vector<std::tuple<Vector, char, vt::Color>>;  // position, character, colour

// The text's cells from (x, y) on, a row per line, added to the list.
Cells cells(float x, float y, const std::string& text, vt::Color color = vt::WHITE,
            Cells list = {}) {
  Vector at(x, y);
  for (const char ch : text) {
    if (ch != '\n') list.emplace_back(at, ch, color);
    at = ch == '\n' ? Vector(x, at.getY() + 1) : at + Vector(1, 0);
  }
  return list;
}

// The bounding box of the pixels that are not black.
sf::IntRect inkBounds(const sf::Image& image) {
  int left = 1024, top = 768, right = -1, bottom = -1;
  for (int i = 0; i < 1024 * 768; i++) {
    const int x = i % 1024, y = i / 1024;
    if (image.getPixel(x, y) == sf::Color::Black) continue;
    left = std::min(left, x), top = std::min(top, y);
    right = std::max(right, x), bottom = std::max(bottom, y);
  }
  return {left, top, right - left + 1, bottom - top + 1};
}

long countPixels(const sf::Image& image, sf::Color color, sf::IntRect area = {0, 0, 1024, 768}) {
  long count = 0;
  for (int i = 0; i < area.width * area.height; i++)
    count += image.getPixel(area.left + i % area.width, area.top + i / area.width) == color;
  return count;
}

class DrawingWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(vt::test::startProcessXvfb());
    ASSERT_EQ(world.startUp(), 0);
    world.setView(vt::Box(Vector(0, 0), 80, 24));
    ASSERT_EQ(display.startUp(), 0) << config.logText();
  }
  void TearDown() override {
    world.shutDown();
    vt::ResourceManager::getInstance().shutDown();
    if (display.isStarted()) display.shutDown();
  }

  sf::Image showAndCapture() {
    EXPECT_EQ(display.swapBuffers(), 0);
    return vt::test::captureWindow(*display.getWindow());
  }

  // What was drawn since the last swap, and then the world, shows as the cells drawn one by one.
  void expectShownAs(const Cells& expected, const std::string& what) {
    world.draw();
    const sf::Image shown = showAndCapture();
    EXPECT_LT(countPixels(shown, sf::Color::Black), 1024 * 768) << what;
    for (const auto& [position, ch, color] : expected) display.drawCh(position, ch, color);
    EXPECT_EQ(vt::test::countDifferentPixels(shown, showAndCapture()), 0) << what;
  }

  sf::IntRect shownGlyph() {
    display.drawCh(Vector(10, 5), 'X', vt::WHITE);
    return inkBounds(showAndCapture());
  }

  test::HeadlessEngine config{test::HeadlessEngine::LOG_ONLY, false};
  vt::WorldManager& world = vt::WorldManager::getInstance();
  vt::DisplayManager& display = vt::DisplayManager::getInstance();
};

}  // namespace

TEST_F(DrawingWindowTest, OpensACentredWindowAndNeedsItsFont) {
  EXPECT_EQ(display.getWindow()->getSize(), sf::Vector2u(1024, 768));
  EXPECT_EQ(display.getWindow()->getPosition(), sf::Vector2i(128, 128));
  display.shutDown();
  // A window one cell wide is still a window, cleared to the configured colour.
  vt::Config::getInstance().setWindowHorizontalChars(1);
  vt::Config::getInstance().setWindowBackgroundColor(vt::BLUE);
  ASSERT_EQ(display.startUp(), 0);
  display.swapBuffers();
  EXPECT_EQ(showAndCapture().getPixel(500, 300), sf::Color::Blue);
  display.shutDown();
  vt::Config::getInstance().setFontFile(config.getDirectory() + "/missing.ttf");
  EXPECT_EQ(display.startUp(), -1);
  EXPECT_FALSE(display.isStarted() || display.getWindow());
}

TEST_F(DrawingWindowTest, StringsFramesSpritesLabelsAndViewObjectsLandOnTheirCells) {
  for (const auto& [justification, text, left] : {std::tuple(vt::LEFT_JUSTIFIED, "ABCD", 40.0f),
                                                  {vt::CENTER_JUSTIFIED, "ABCD", 38.0f},
                                                  {vt::CENTER_JUSTIFIED, "ABCDE", 38.0f},
                                                  {vt::RIGHT_JUSTIFIED, "ABCD", 36.0f}}) {
    display.drawString(Vector(40, 6), text, justification, vt::GREEN);
    expectShownAs(cells(left, 6, text, vt::GREEN), text);
  }
  // Frames are centred on their position, on half cells when even.
  EXPECT_EQ(vt::Frame(4, 2, "ab#.cd+*").draw(Vector(20, 6), vt::CYAN, '.'), 0);
  expectShownAs(cells(18.5f, 5.5f, "ab#\ncd+*", vt::CYAN), "frame with transparency");
  vt::Frame(3, 1, "a.b").draw(Vector(9, 9), vt::RED, 0);
  expectShownAs(cells(8, 9, "a.b", vt::RED), "frame without transparency");
  // Objects show their sprite's frame in its colour, transparent cells left out.
  vt::ResourceManager& resources = vt::ResourceManager::getInstance();
  ASSERT_EQ(resources.startUp(), 0);
  const std::string sprite = config.writeFile(
      "sprite.txt",
      "<HEADER>\nframes 1\nwidth 3\nheight 2\ncolor green\ntransparency #\n</HEADER>\n"
      "<BODY>\n(o)\n#_#\nend\n</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n");
  ASSERT_EQ(resources.loadSprite(sprite, "s"), 0);
  auto* p_object = new vt::Object;
  EXPECT_EQ(p_object->setSprite("s"), 0);
  p_object->setPosition(Vector(30, 10));
  expectShownAs(cells(30, 10.5f, "_", vt::GREEN, cells(29, 9.5f, "(o)", vt::GREEN)), "sprite");
  // An even width puts a sprite's characters on half cells; snapped, they and a label's land on
  // whole cells and keep their positions (in a window: elsewhere cells are rounded anyway).
  ASSERT_EQ(resources.loadSprite(config.writeFile("ab.txt", "1\n2\n1\n0\nwhite\nAB\n"), "ab"), 0);
  p_object->setSprite("ab");
  p_object->setPosition(Vector(20.3f, 5.4f));
  auto* p_label = new vt::TextLabel(Vector(30.6f, 7.2f), "CD", vt::GREEN);
  for (const bool snap : {false, true}) {
    p_object->setSnapToCell(snap);
    p_label->setSnapToCell(snap);
    world.draw();
    const sf::Image drawn = showAndCapture();
    EXPECT_EQ(display.drawString(Vector(20, 5), "AB", vt::LEFT_JUSTIFIED, vt::WHITE), 0);
    display.drawString(Vector(31, 7), "CD", vt::LEFT_JUSTIFIED, vt::GREEN);
    EXPECT_EQ(vt::test::countDifferentPixels(drawn, showAndCapture()) == 0, snap);
  }
  EXPECT_EQ(p_object->getPosition(), Vector(20.3f, 5.4f));
  EXPECT_EQ(world.markForDelete(p_object), 0);
  world.markForDelete(p_label);
  world.update();
  // A view object stays put on the screen when the view moves.
  auto* p_view = new vt::ViewObject;
  p_view->setViewString("Score");
  p_view->setValue(42);
  p_view->setLocation(vt::TOP_LEFT);
  world.setView(vt::Box(Vector(5, 2), 80, 24));
  const float x = 80.0f / 6 + 5;
  expectShownAs(
      cells(x - 6, 3, "|", vt::WHITE,
            cells(x + 5, 3, "|", vt::WHITE, cells(x - 5, 2, "----------\n Score 42 \n----------"))),
      "view object with border");
  p_view->setBorder(false);
  p_view->setLocation(vt::TOP_LEFT);
  expectShownAs(cells(x - 4, 2, "Score 42"), "view object without border");
  p_view->setDrawValue(false);
  expectShownAs(cells(x - 2, 2, "Score"), "view object without value");
}

TEST_F(DrawingWindowTest, GlyphsSitInTheirCellAndShakeBySeverityForTheGivenSteps) {
  // Cell (10, 5) starts at pixel (128, 160); the bold glyph is a little wider.
  const sf::IntRect still = shownGlyph();
  EXPECT_EQ(still, sf::IntRect(128, 166, 15, 20));
  // Steps add up when asked to; offsets follow the last severity; severity 0 moves 1 pixel down.
  display.shake(2, 2, 3);
  display.shake(0, 0, 27, true);
  display.swapBuffers();
  std::set<std::pair<int, int>> offsets;
  for (int step = 0; step < 30; step++) {
    const sf::IntRect moved = shownGlyph();
    offsets.insert({moved.left - still.left, moved.top - still.top});
  }
  EXPECT_EQ(offsets,
            (std::set<std::pair<int, int>>{
                {-1, -1}, {-1, 1}, {-1, 3}, {1, -1}, {1, 1}, {1, 3}, {3, -1}, {3, 1}, {3, 3}}));
  EXPECT_EQ(shownGlyph(), still);
}

TEST_F(DrawingWindowTest, LinesShapesAndBackgroundsLayerInCallOrder) {
  // Cell 5 is drawn before the line and cell 8 after it: only cell 8's background covers it.
  EXPECT_EQ(display.drawCh(Vector(5, 1), ' ', vt::WHITE), 0);
  EXPECT_EQ(display.drawLine(Vector(1, 1.5f), Vector(20, 1.5f), vt::RED), 0);
  display.drawCh(Vector(8, 1), ' ', vt::WHITE);
  const sf::Image shown = showAndCapture();
  EXPECT_GE(countPixels(shown, sf::Color::Red, {65, 40, 10, 30}), 10);
  EXPECT_EQ(countPixels(shown, sf::Color::Red, {104, 40, 10, 30}), 0);
  EXPECT_NEAR(countPixels(shown, sf::Color::Red), 18 * 12.8, 3);
  // All shapes share one figure whose turn for squares stays, so a square
  // comes first, whatever ran before. An unknown type leaves a circle.
  vt::Shape shape;
  shape.setType(vt::SQUARE);
  shape.draw(Vector(10, 10));
  shape.setType(vt::CIRCLE);
  shape.setSize(12);
  shape.setColor(vt::CUSTOM);
  shape.setRGB(10, 200, 30);
  display.swapBuffers();
  for (const auto& [type, bounds] : {std::pair(-2, sf::IntRect(110, 319, 24, 24)),
                                     {vt::SQUARE, sf::IntRect(130, 317, 8, 9)},
                                     {vt::TRIANGLE, sf::IntRect(117, 318, 9, 10)}}) {
    shape.setType(type);
    shape.draw(Vector(10, 10));
    EXPECT_EQ(inkBounds(showAndCapture()), bounds) << type;
  }
  // A new background colour shows from the next cell on, each cell's background inset.
  EXPECT_TRUE(display.setBackgroundColor(vt::BLUE));
  display.drawCh(Vector(10, 10), ' ', vt::WHITE);
  EXPECT_EQ(inkBounds(showAndCapture()), sf::IntRect(127, 326, 13, 32));
  // A named colour replaces the red, green and blue; opacity is the alpha.
  shape.setType(vt::CIRCLE);
  shape.setColor(vt::RED);
  shape.setOpacity(128);
  shape.draw(Vector(10, 10));
  display.drawCh(Vector(3, 3), '#', vt::YELLOW);
  display.drawCh(Vector(6, 3), '#', 10, 20, 30);
  const sf::Image coloured = showAndCapture();
  EXPECT_EQ(countPixels(coloured, {10, 200, 30}), 0);
  EXPECT_GT(countPixels(coloured, {128, 0, 127}) + countPixels(coloured, {128, 0, 126}), 20);
  EXPECT_GT(countPixels(coloured, sf::Color::Yellow) * countPixels(coloured, {10, 20, 30}), 0);
  EXPECT_GT(countPixels(coloured, sf::Color::Blue), 1024 * 768 - 2000);
}

// The window keeps its pixels between frames and each frame redraws only what changed: after any
// run of frames it must show what a fresh window shows for the last one.
TEST_F(DrawingWindowTest, AFrameDrawnOverEarlierOnesLooksAsIfDrawnAlone) {
  ASSERT_TRUE(display.keepsPixels()) << "Mesa's drivers, the software one included, keep them";
  std::mt19937 random(11);
  // Some cells differ from frame to frame: they come from random.
  const auto drawScreen = [&](unsigned int seed, bool fractional) {
    std::mt19937 cells(seed);
    for (int cell = 0; cell < 80 * 24; cell++) {
      if (cells() % 3 == 0) continue;
      const char ch = static_cast<char>('!' + cells() % 94);
      display.drawCh(Vector(cell % 80 + (fractional ? 0.5f : 0.0f), cell / 80), ch,
                     static_cast<vt::Color>(vt::RED + cells() % 7));
    }
    // A heads-up line drawn over itself, as a stack of score displays is.
    for (int i = 0; i < 3; i++)
      display.drawString(Vector(40, 0), "Points " + std::to_string(seed % 1000 + i),
                         vt::CENTER_JUSTIFIED, vt::YELLOW);
    for (int i = 0; i < 40; i++)
      display.drawCh(Vector(random() % 80, random() % 24), '@', vt::GREEN);
  };
  // Frames alike but for a few cells, whole new frames, frames at half-cell positions, a line among
  // the cells and a new background colour: seed, half cells, line and background of each.
  const std::tuple<unsigned int, bool, bool, vt::Color> steps[] = {
      {1, false, false, vt::BLACK}, {1, false, false, vt::BLACK}, {2, false, false, vt::BLACK},
      {2, true, false, vt::BLACK},  {3, false, true, vt::BLACK},  {3, false, false, vt::BLACK},
      {3, false, false, vt::BLUE},  {4, false, false, vt::BLUE}};
  for (const auto& [seed, fractional, line, background] : steps) {
    display.setBackgroundColor(background);
    drawScreen(seed, fractional);
    if (line) display.drawLine(Vector(0, 12.5f), Vector(79, 12.5f), vt::RED);
    display.swapBuffers();
  }
  const std::mt19937 last_random = random;
  drawScreen(4, false);
  const sf::Image over_earlier = showAndCapture();
  display.shutDown();
  ASSERT_EQ(display.startUp(), 0);
  // A new background colour clears the window from the next frame on.
  EXPECT_TRUE(display.setBackgroundColor(vt::BLUE));
  display.swapBuffers();
  random = last_random;
  drawScreen(4, false);
  EXPECT_EQ(vt::test::countDifferentPixels(over_earlier, showAndCapture()), 0);
}
