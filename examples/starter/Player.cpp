#include "Player.h"

#include "core/GameManager.h"
#include "core/Utility.h"
#include "media/EventKeyboard.h"
#include "world/WorldManager.h"

namespace {

// The move of a held key, or (0, 0) for a key that does not move.
vt::Vector offsetOf(int key) {
  switch (key) {
    case vt::Keyboard::W:
    case vt::Keyboard::UPARROW:
      return vt::Vector(0, -1);
    case vt::Keyboard::S:
    case vt::Keyboard::DOWNARROW:
      return vt::Vector(0, 1);
    case vt::Keyboard::A:
    case vt::Keyboard::LEFTARROW:
      return vt::Vector(-1, 0);
    case vt::Keyboard::D:
    case vt::Keyboard::RIGHTARROW:
      return vt::Vector(1, 0);
    default:
      return vt::Vector(0, 0);
  }
}

}  // namespace

Player::Player(vt::Vector start) {
  setType("Player");
  setSprite("player");
  setPosition(start);
  // Collisions come unasked; keys must be asked for.
  registerInterest(vt::KEYBOARD_EVENT);
}

int Player::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::KEYBOARD_EVENT) return Object::eventHandler(p_event);
  const auto* p_key = static_cast<const vt::EventKeyboard*>(p_event);
  // A held key arrives as one KEY_PRESSED, then a KEY_DOWN every step, then
  // one KEY_RELEASED: moving on KEY_DOWN moves a cell a step, quitting on
  // KEY_PRESSED quits once.
  if (p_key->getKeyboardAction() == vt::KEY_DOWN) {
    move(offsetOf(p_key->getKey()));
    return 1;
  }
  if (p_key->getKeyboardAction() == vt::KEY_PRESSED && p_key->getKey() == vt::Keyboard::Q) {
    vt::GameManager::getInstance().setGameOver();
    return 1;
  }
  return 0;
}

void Player::move(vt::Vector offset) {
  if (offset.getX() == 0 && offset.getY() == 0) return;
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  const vt::Vector target = getPosition() + offset;
  if (!vt::boxContainsBox(world_manager.getBoundary(), vt::getWorldBox(this, target))) return;
  world_manager.moveObject(this, target);
}
