// The maze: take every coin before the monsters take your three lives.
// Arrows or W, A, S, D move; Q quits.
#include <cstdio>

#include "Maze.h"
#include "core/GameManager.h"
#include "core/LogManager.h"

int main() {
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  // A failed start says why on standard error itself.
  if (game_manager.startUp() != 0) {
    game_manager.shutDown();
    return 1;
  }
  // A sprite or a map that does not load is told in the log.
  if (loadResources() != 0 || (new Maze)->build("maps/maze.txt") != 0) {
    std::fprintf(stderr, "maze: a sprite or the map did not load; see %s\n",
                 vt::LogManager::getInstance().getLogFileName().c_str());
    game_manager.shutDown();
    return 1;
  }
  game_manager.run();
  game_manager.shutDown();
  return 0;
}
