#include "Star.h"

#include <cstdlib>

#include "media/DisplayManager.h"
#include "world/WorldManager.h"

namespace {

// A whole number of view cells, at least 1 so that it can divide.
int viewCells(float extent) {
  const int cells = static_cast<int>(extent);
  return cells < 1 ? 1 : cells;
}

}  // namespace

Star::Star() {
  setType("Star");
  setSolidness(vt::SPECTRAL);
  setVelocity(vt::Vector(-1.0f / static_cast<float>(std::rand() % 9 + 2), 0));
  setAltitude(0);
  const vt::Box view = vt::WorldManager::getInstance().getView();
  const int y = std::rand() % viewCells(view.getVertical());
  const int x = std::rand() % viewCells(view.getHorizontal());
  setPosition(vt::Vector(static_cast<float>(x), static_cast<float>(y)));
}

int Star::draw() {
  return vt::DisplayManager::getInstance().drawCh(getPosition(), '.', vt::WHITE);
}

int Star::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::OUT_EVENT) return 0;
  out();
  return 1;
}

void Star::out() {
  const vt::Box view = vt::WorldManager::getInstance().getView();
  const int y = std::rand() % viewCells(view.getVertical());
  const float x = view.getHorizontal() + static_cast<float>(std::rand() % 20);
  setPosition(vt::Vector(x, static_cast<float>(y)));
}
