#include "World.h"

#include "Coin.h"
#include "Player.h"
#include "media/ResourceManager.h"
#include "media/ViewObject.h"

int loadResources() {
  vt::ResourceManager& resource_manager = vt::ResourceManager::getInstance();
  if (resource_manager.loadSprite("sprites/player.txt", "player") != 0) return -1;
  if (resource_manager.loadSprite("sprites/coin.txt", "coin") != 0) return -1;
  return 0;
}

void populateWorld() {
  // Every object is made with new; the world manager owns it from now on.
  auto* p_score = new vt::ViewObject;
  p_score->setViewString(SCORE_LABEL);
  p_score->setLocation(vt::TOP_LEFT);
  p_score->setColor(vt::YELLOW);
  new Player(vt::Vector(10, 12));
  for (int i = 0; i < COIN_COUNT; i++) {
    new Coin(vt::Vector(20.0f + 10.0f * static_cast<float>(i), 12));
  }
}
