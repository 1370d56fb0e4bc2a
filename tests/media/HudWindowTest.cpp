// Sprites of both file formats loaded from disk, shown with a heads-up
// counter that real key presses (through xdotool) change, and the screen
// checked where each of them should be.
#include <gtest/gtest.h>

#include <SFML/Graphics.hpp>
#include <cstdlib>
#include <fstream>
#include <string>

#include "core/Config.h"
#include "core/Utility.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventView.h"
#include "media/InputManager.h"
#include "media/ResourceManager.h"
#include "media/ViewObject.h"
#include "support/TestSupport.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

const std::string TITLE = "HudWindowTest";

// Counts every key press into the "Keys" display.
class KeyCounter : public vt::Object {
 public:
  KeyCounter() {
    setSolidness(vt::SPECTRAL);
    registerInterest(vt::KEYBOARD_EVENT);
  }
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() != vt::KEYBOARD_EVENT) return 0;
    if (static_cast<const vt::EventKeyboard*>(p_event)->getKeyboardAction() != vt::KEY_PRESSED) {
      return 1;
    }
    const vt::EventView count("Keys", 1, true);
    vt::WorldManager::getInstance().onEvent(&count);
    return 1;
  }
};

// Pixels of roughly this colour inside the rectangle of cells.
int inkInCells(const sf::Image& image, vt::Box cells, sf::Color color) {
  const Vector top_left = vt::spacesToPixels(cells.getCorner());
  const Vector size = vt::spacesToPixels(Vector(cells.getHorizontal(), cells.getVertical()));
  int count = 0;
  for (int y = static_cast<int>(top_left.getY()); y < top_left.getY() + size.getY(); y++) {
    for (int x = static_cast<int>(top_left.getX()); x < top_left.getX() + size.getX(); x++) {
      const sf::Color pixel = image.getPixel(static_cast<unsigned>(x), static_cast<unsigned>(y));
      count += (pixel.r > 128) == (color.r > 0) && (pixel.g > 128) == (color.g > 0) &&
               (pixel.b > 128) == (color.b > 0) && pixel != sf::Color::Black;
    }
  }
  return count;
}

vt::Object* showSprite(const std::string& label, Vector position) {
  auto* p_object = new vt::Object;
  p_object->setSolidness(vt::SPECTRAL);
  EXPECT_EQ(p_object->setSprite(label), 0) << label;
  p_object->setPosition(position);
  return p_object;
}

}  // namespace

TEST(HudWindowTest, SpriteFilesAndACounterThatRealKeysChange) {
  const vt::test::XvfbServer& xvfb = vt::test::processXvfb();
  ASSERT_TRUE(xvfb.isRunning());
  vt::test::TestConfig config{false};
  vt::Config::getInstance().setWindowTitle(TITLE);
  const std::string simple = config.folder() + "/rocket.txt";
  std::ofstream(simple) << "2\n3\n2\n4\nmagenta\n"
                        << " ^ \n/#\\\n"
                        << " ^ \n/*\\\n";
  const std::string sectioned = config.folder() + "/lander.txt";
  std::ofstream(sectioned)
      << "<HEADER>\nframes 1\nwidth 5\nheight 2\ncolor green\n</HEADER>\n"
      << "<BODY>\n(ooo)\n /_\\ \nend\n</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n";

  vt::DisplayManager& display = vt::DisplayManager::getInstance();
  vt::InputManager& input = vt::InputManager::getInstance();
  vt::ResourceManager& resources = vt::ResourceManager::getInstance();
  vt::WorldManager& world = vt::WorldManager::getInstance();
  ASSERT_EQ(display.startUp(), 0) << config.logText();
  ASSERT_EQ(input.startUp(), 0);
  ASSERT_EQ(resources.startUp(), 0);
  ASSERT_EQ(world.startUp(), 0);
  world.setView(vt::Box(Vector(0, 0), 80, 24));
  ASSERT_EQ(resources.loadSprite(simple, "rocket"), 0) << config.logText();
  ASSERT_EQ(resources.loadSprite(sectioned, "lander"), 0) << config.logText();

  showSprite("rocket", Vector(20, 12));
  showSprite("lander", Vector(60, 12));
  auto* p_counter = new vt::ViewObject;
  p_counter->setViewString("Keys");
  p_counter->setColor(vt::YELLOW);
  p_counter->setLocation(vt::TOP_CENTER);
  new KeyCounter;

  const std::string focus = "xdotool search --name " + TITLE + " windowfocus --sync";
  ASSERT_EQ(std::system((focus + " key a b c").c_str()), 0);
  // A round trip on the window's connection: the key events are queued.
  display.getWindow()->getPosition();
  for (int step = 0; step < 3; step++) {
    input.getInput();
    world.update();
  }
  EXPECT_EQ(p_counter->getValue(), 3);

  world.draw();
  display.swapBuffers();
  const sf::Image picture = vt::test::captureWindow(*display.getWindow());
  picture.saveToFile("hud-window.png");
  EXPECT_GT(inkInCells(picture, vt::Box(Vector(18.5f, 11), 3, 2), sf::Color::Magenta), 40);
  EXPECT_GT(inkInCells(picture, vt::Box(Vector(57.5f, 11), 5, 2), sf::Color::Green), 40);
  // The counter's text and frame sit at the top centre.
  EXPECT_GT(inkInCells(picture, vt::Box(Vector(34, 0), 12, 3), sf::Color::Yellow), 100);
  EXPECT_EQ(inkInCells(picture, vt::Box(Vector(0, 15), 80, 9), sf::Color::Yellow), 0);

  world.shutDown();
  resources.shutDown();
  input.shutDown();
  display.shutDown();
}
