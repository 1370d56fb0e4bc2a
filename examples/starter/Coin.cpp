#include "Coin.h"

#include "World.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/EventView.h"
#include "world/EventCollision.h"
#include "world/WorldManager.h"

Coin::Coin(vt::Vector where) {
  setType("Coin");
  setSprite("coin");
  // SOFT: reports the touch without blocking the player's way.
  setSolidness(vt::SOFT);
  setPosition(where);
}

int Coin::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::COLLISION_EVENT) return Object::eventHandler(p_event);
  const auto* p_collision = static_cast<const vt::EventCollision*>(p_event);
  const vt::Object* p_other =
      p_collision->getObject1() == this ? p_collision->getObject2() : p_collision->getObject1();
  if (p_other->getType() != "Player") return 0;
  collect();
  return 1;
}

void Coin::collect() {
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  // The coin stays in the world until the end of this update: SPECTRAL, it
  // is touched no more and no longer counts among the coins left.
  setSolidness(vt::SPECTRAL);
  world_manager.markForDelete(this);
  // View events go through the world manager to every view object whose
  // label is the event's tag.
  const vt::EventView score(SCORE_LABEL, 1, true);
  world_manager.onEvent(&score);
  vt::LogManager::getInstance().writeLog("Coin collected at (%.0f, %.0f)", getPosition().getX(),
                                         getPosition().getY());
  if (coinsLeft() == 0) vt::GameManager::getInstance().setGameOver();
}

int Coin::coinsLeft() {
  int count = 0;
  for (const vt::Object* p_coin : vt::WorldManager::getInstance().objectsOfType("Coin")) {
    if (p_coin->isSolid()) count++;
  }
  return count;
}
