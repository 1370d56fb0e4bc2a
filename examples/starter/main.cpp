// The starter: collect every coin with W, A, S, D; Q quits.
#include <cstdio>

#include "World.h"
#include "core/GameManager.h"
#include "core/LogManager.h"

int main() {
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  // A failed start says why on standard error itself.
  if (game_manager.startUp() != 0) {
    game_manager.shutDown();
    return 1;
  }
  // A sprite that does not load is only told in the log.
  if (loadResources() != 0) {
    std::fprintf(stderr, "starter: a sprite did not load; see %s\n",
                 vt::LogManager::getInstance().getLogFileName().c_str());
    game_manager.shutDown();
    return 1;
  }
  populateWorld();
  game_manager.run();
  game_manager.shutDown();
  return 0;
}
