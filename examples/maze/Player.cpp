#include "Player.h"

#include "Maze.h"
#include "core/GameManager.h"
#include "world/WorldManager.h"

namespace {

bool holds(const vt::ObjectList& objects, const char* type) {
  for (const vt::Object* p_object : objects) {
    if (p_object->getType() == type) return true;
  }
  return false;
}

}  // namespace

Player::Player(vt::Vector init_start, Maze& init_maze) : maze(init_maze), start(init_start) {
  setType("Player");
  setSprite("player");
  fitBoxInCell();
  // Nothing collides with the player: walls are asked about before a move,
  // monsters look for the player in their own cell.
  setSolidness(vt::SPECTRAL);
  setPosition(start);
  registerInterest(vt::STEP_EVENT);
}

int Player::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::STEP_EVENT) return Object::eventHandler(p_event);
  const vt::InputActions& actions = maze.actions();
  if (actions.isPressed("quit")) vt::GameManager::getInstance().setGameOver();
  if (maze.isOver()) return 1;
  const struct {
    const char* action;
    vt::Vector offset;
  } directions[] = {{"up", vt::Vector(0, -1)},
                    {"down", vt::Vector(0, 1)},
                    {"left", vt::Vector(-1, 0)},
                    {"right", vt::Vector(1, 0)}};
  repeat_wait--;
  for (const auto& direction : directions) {
    if (actions.isPressed(direction.action) ||
        (actions.isHeld(direction.action) && repeat_wait <= 0)) {
      move(direction.offset);
      repeat_wait = MOVE_REPEAT_STEPS;
      break;
    }
  }
  return 1;
}

void Player::move(vt::Vector offset) {
  const vt::Vector target = getPosition() + offset;
  if (holds(vt::WorldManager::getInstance().objectsInCell(target), "Wall")) return;
  setPosition(target);
  takeCoins();
}

void Player::takeCoins() {
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  for (vt::Object* p_object : world_manager.objectsInCell(getPosition())) {
    if (p_object->getType() != "Coin") continue;
    // Out of the game at once, so that it is not taken twice.
    p_object->setActive(false);
    world_manager.markForDelete(p_object);
    maze.coinTaken();
  }
}

void Player::restart() {
  setPosition(start);
  repeat_wait = 0;
}
