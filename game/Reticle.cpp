#include "Reticle.h"

#include "media/DisplayManager.h"
#include "media/EventMouse.h"
#include "world/WorldManager.h"

Reticle::Reticle() {
  setType("Reticle");
  setSolidness(vt::SPECTRAL);
  setAltitude(vt::MAX_ALTITUDE);
  registerInterest(vt::MOUSE_EVENT);
  const vt::Box view = vt::WorldManager::getInstance().getView();
  setPosition(vt::Vector(view.getHorizontal() / 2, view.getVertical() / 2));
}

int Reticle::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::MOUSE_EVENT) return 0;
  const auto* p_mouse = static_cast<const vt::EventMouse*>(p_event);
  if (p_mouse->getMouseAction() != vt::MOVED) return 0;
  setPosition(p_mouse->getMousePosition());
  return 1;
}

int Reticle::draw() {
  return vt::DisplayManager::getInstance().drawCh(getPosition(), '+', vt::RED);
}
