// The starter: collect every coin with W, A, S, D; Q quits.
#include "World.h"
#include "core/GameManager.h"

int main() {
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  // A failed start says why on standard error and in the log.
  if (game_manager.startUp() != 0 || loadResources() != 0) {
    game_manager.shutDown();
    return 1;
  }
  populateWorld();
  game_manager.run();
  game_manager.shutDown();
  return 0;
}
