#include "Collisions.h"

#include "Audio.h"
#include "GameOver.h"
#include "world/Object.h"
#include "world/WorldManager.h"

bool involves(const vt::EventCollision* p_collision, const std::string& type) {
  return p_collision->getObject1()->getType() == type ||
         p_collision->getObject2()->getType() == type;
}

void defeatHero(const vt::EventCollision* p_collision) {
  playSound("game over");
  new GameOver(false);
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  world_manager.markForDelete(p_collision->getObject1());
  world_manager.markForDelete(p_collision->getObject2());
}
