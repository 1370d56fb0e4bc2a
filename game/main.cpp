// The shooter's entry point: start the engine, show the splash, set up the
// game, run the loop.
#include "Setup.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/Pause.h"
#include "extras/Splash.h"
#include "media/EventKeyboard.h"

int main() {
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  if (game_manager.startUp() != 0) {
    vt::LogManager::getInstance().writeLog("Error starting game manager!");
    game_manager.shutDown();
    return 1;
  }
  vt::LogManager::getInstance().setFlush(false);
  vt::splash();
  loadResources();
  populateWorld();
  new vt::Pause(vt::Keyboard::F10);
  game_manager.run();
  game_manager.shutDown();
  return 0;
}
