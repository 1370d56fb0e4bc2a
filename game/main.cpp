// The shooter's entry point: start the engine, play, stop the engine.
#include "Setup.h"
#include "core/GameManager.h"
#include "core/LogManager.h"

int main() {
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  if (game_manager.startUp() != 0) {
    vt::LogManager::getInstance().writeLog("Error starting game manager!");
    game_manager.shutDown();
    return 1;
  }
  vt::LogManager::getInstance().setFlush(false);
  playGame();
  game_manager.shutDown();
  return 0;
}
