// A game that runs in a terminal until it is told to end: by Q, by itself
// ("end"), by an exception ("throw"), or by a signal from outside, even stuck
// in a step ("hang"). It shows its step count, and below it a box, a slanting
// line and a circle; it writes its process id into the file named second.
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/Shape.h"
#include "world/Object.h"

namespace {

const int LAST_STEP = 30;

class Probe : public vt::Object {
 public:
  explicit Probe(std::string ending) : ending(std::move(ending)) {
    setType("Probe");
    registerInterest(vt::STEP_EVENT);
    registerInterest(vt::KEYBOARD_EVENT);
  }

  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() == vt::KEYBOARD_EVENT) {
      const auto* p_key = static_cast<const vt::EventKeyboard*>(p_event);
      if (p_key->getKey() == vt::Keyboard::Q) vt::GameManager::getInstance().setGameOver();
      return 1;
    }
    if (++steps < LAST_STEP) return 1;
    if (ending == "end") vt::GameManager::getInstance().setGameOver();
    if (ending == "throw") throw std::runtime_error("the probe throws");
    // A game stuck in a step: only a second interrupt ends it.
    while (ending == "hang") pause();
    return 1;
  }

  int draw() override {
    vt::DisplayManager& display = vt::DisplayManager::getInstance();
    vt::Box(vt::Vector(2, 3), 6, 3).draw();
    display.drawLine(vt::Vector(10, 3), vt::Vector(13, 6), vt::CYAN);
    vt::Shape circle;
    circle.setType(vt::CIRCLE);
    circle.draw(vt::Vector(15, 4));
    return display.drawString(vt::Vector(1, 1), "probe step " + std::to_string(steps),
                              vt::LEFT_JUSTIFIED, vt::GREEN);
  }

 private:
  std::string ending;
  int steps = 0;
};

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 3) return 2;
  std::ofstream(argv[2]) << getpid() << "\n";
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  if (game_manager.startUp() != 0) return 1;
  new Probe(argv[1]);
  game_manager.run();
  game_manager.shutDown();
  return 0;
}
