// The starter's rules played without a window through the engine's
// harness: input is handed to the objects as the input manager hands it,
// and the loop runs as many steps as asked, at once. A tiny main instead of
// a test framework, so that the game needs nothing but the engine.
#include <cstdio>
#include <functional>
#include <string>

#include "Coin.h"
#include "World.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/EventKeyboard.h"
#include "media/ViewObject.h"
#include "world/WorldManager.h"

namespace {

int failures = 0;

void check(bool condition, const char* game_case, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "FAILED in '%s': %s\n", game_case, what);
  failures++;
}

vt::Object* findOne(const char* type) {
  const vt::ObjectList found = vt::WorldManager::getInstance().objectsOfType(type);
  return found.isEmpty() ? nullptr : found[0];
}

int score() {
  return static_cast<vt::ViewObject*>(findOne("ViewObject"))->getValue();
}

vt::Vector playerPosition() {
  return findOne("Player")->getPosition();
}

bool gameOver() {
  return vt::GameManager::getInstance().getGameOver();
}

// Starts the engine headless with the starter's world, plays one case and
// stops the engine again.
void play(const char* game_case, const std::function<void(vt::Harness&)>& moves) {
  vt::Harness harness;
  if (harness.startUp() != 0 || loadResources() != 0) {
    check(false, game_case, "the engine or the sprites did not load");
    return;
  }
  populateWorld();
  moves(harness);
}

void collectingEveryCoinWins() {
  const char* name = "collecting every coin ends the game";
  play(name, [name](vt::Harness& harness) {
    harness.holdKey(vt::Keyboard::D);
    check(harness.stepUntil([] { return score() == 1; }, 50), name, "the first coin scores");
    // The player overlaps a coin for several steps: it counts once.
    harness.step(3);
    check(score() == 1, name, "a coin counts once");
    check(harness.logContains("Coin collected at (20, 12)"), name, "the log tells the catch");
    check(harness.stepUntil(gameOver, 100), name, "the last coin ends the game");
    check(score() == COIN_COUNT && Coin::coinsLeft() == 0, name, "every coin scored");
    check(harness.step() == 0, name, "no step runs after game over");
  });
}

void keysMoveAndQuit() {
  const char* name = "keys move the player and Q quits on its press";
  play(name, [name](vt::Harness& harness) {
    harness.holdKey(vt::Keyboard::W);
    harness.step(3);
    check(playerPosition() == vt::Vector(10, 9), name, "a held key moves a cell a step");
    harness.releaseKey(vt::Keyboard::W);
    harness.step(2);
    check(playerPosition() == vt::Vector(10, 9), name, "a released key stops");
    harness.releaseKey(vt::Keyboard::Q);
    harness.step();
    check(!gameOver(), name, "releasing Q does not quit");
    harness.pressKey(vt::Keyboard::Q);
    check(harness.step(5) == 1 && gameOver(), name, "pressing Q quits at once");
    check(score() == 0, name, "nothing was collected");
  });
}

void playerStaysInside() {
  const char* name = "the player stays inside the world";
  play(name, [name](vt::Harness& harness) {
    harness.holdKey(vt::Keyboard::LEFTARROW);
    harness.step(40);
    const vt::Vector stopped = playerPosition();
    harness.step(5);
    check(playerPosition() == stopped, name, "the player stops at the edge");
    check(stopped.getX() > 0 && stopped.getX() < 3 && stopped.getY() == 12, name,
          "the edge is the world's left side");
  });
}

// A game played in a window with VANTOR_RECORD=sessions/win.vrec: up, down,
// then right through every coin. Replayed, it must unfold as it was played
// (the engine compares the world with the recording every 30 steps), and
// the screen half way must match its golden frame. After a change that
// alters the picture on purpose, VANTOR_UPDATE_GOLDEN=1 rewrites the frame.
void aRecordedGameReplays() {
  const char* name = "a recorded game replays as it was played";
  vt::Harness harness;
  // As in main: the replay starts before anything is made.
  if (harness.startUp() != 0 || harness.replay(STARTER_SESSIONS "/win.vrec") != 0 ||
      loadResources() != 0) {
    check(false, name, "the engine, the recording or the sprites did not load");
    return;
  }
  populateWorld();
  harness.atStep(59, [&harness, name] {
    const std::string differences = harness.checkFrame(STARTER_SESSIONS "/win-59.frame");
    check(differences.empty(), name, differences.c_str());
    check(score() == 1, name, "one coin by step 59");
  });
  check(harness.stepUntil(gameOver, 1000), name, "the last coin ends the game");
  check(score() == COIN_COUNT, name, "every coin scored");
  check(harness.finishReplay() == 0, name, harness.replayFailure().c_str());
}

}  // namespace

int main() {
  collectingEveryCoinWins();
  keysMoveAndQuit();
  playerStaysInside();
  aRecordedGameReplays();
  if (failures == 0) std::printf("starter rules: all cases passed\n");
  return failures == 0 ? 0 : 1;
}
