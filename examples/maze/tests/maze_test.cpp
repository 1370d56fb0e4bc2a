// The maze's rules played without a window through the engine's harness:
// input reaches the game as the input manager delivers it, and the loop runs
// as many steps as asked, at once. A tiny main instead of a test framework,
// so that the game needs nothing but the engine.
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>

#include "Maze.h"
#include "Player.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/EventKeyboard.h"
#include "world/WorldManager.h"

namespace {

int failures = 0;
vt::WorldManager& world = vt::WorldManager::getInstance();

void check(bool condition, const char* game_case, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "FAILED in '%s': %s\n", game_case, what);
  failures++;
}

vt::Object* findOne(const char* type) {
  const vt::ObjectList found = world.objectsOfType(type);
  return found.isEmpty() ? nullptr : found[0];
}

std::string message() {
  return static_cast<vt::TextLabel*>(findOne("TextLabel"))->getText();
}

bool gameOver() {
  return vt::GameManager::getInstance().getGameOver();
}

// Starts the engine headless with the level of a map, plays one case and
// stops the engine again.
void play(const char* game_case, const std::string& map,
          const std::function<void(vt::Harness&, Maze&)>& moves) {
  vt::Harness harness;
  auto* p_maze = harness.startUp() == 0 && loadResources() == 0 ? new Maze : nullptr;
  if (p_maze == nullptr || p_maze->build(map) != 0) {
    check(false, game_case, "the engine, the sprites or the map did not load");
    return;
  }
  moves(harness, *p_maze);
}

void takingEveryCoinWins() {
  const char* name = "taking every coin wins";
  play(name, MAZE_TEST_MAPS "/corridor.txt", [name](vt::Harness& harness, Maze& maze) {
    harness.holdKey(vt::Keyboard::D);
    check(harness.stepUntil([&] { return maze.getCoinsLeft() == 0; }, 3 + MOVE_REPEAT_STEPS), name,
          "a press moves at once, a held key again after the repeat steps");
    harness.step(2 * MOVE_REPEAT_STEPS);
    check(findOne("Player")->getPosition() == vt::Vector(23, 4), name, "the wall stops the player");
    check(message() == "Every coin is yours!" && maze.getLives() == LIVES, name, "a won game");
    check(harness.stepUntil(gameOver, MESSAGE_STEPS), name, "the game ends after its message");
  });
}

void monstersChaseAndCatch() {
  const char* name = "monsters chase by corridors and catch";
  play(name, MAZE_TEST_MAPS "/chase.txt", [name](vt::Harness& harness, Maze& maze) {
    // The monster walks round the corner to the player, never across a wall
    // or a corner: one coordinate stays whole.
    bool strayed = false;
    const auto watchedGameOver = [&strayed] {
      for (const vt::Object* p_monster : world.objectsOfType("Monster")) {
        const vt::Vector at = p_monster->getPosition();
        strayed |= at.getX() != std::round(at.getX()) && at.getY() != std::round(at.getY());
        for (const vt::Object* p_other : world.objectsInCell(at))
          strayed |= p_other->getType() == "Wall";
      }
      return gameOver();
    };
    check(harness.stepUntil(watchedGameOver, 600), name, "three catches end the game");
    check(!strayed, name, "the monster keeps to the corridors");
    check(maze.getLives() == 0 && message() == "Caught! The game is over.", name, "a lost game");
    check(harness.logContains("Caught at (21, 4); 2 lives left"), name, "the log tells a catch");
  });
}

void theMazeLoadsAndQuits() {
  const char* name = "the game's maze loads, and Q quits";
  play(name, "maps/maze.txt", [name](vt::Harness& harness, Maze& maze) {
    check(world.objectsOfType("Monster").getCount() == 3 && maze.getCoinsLeft() > 100, name,
          "three monsters and the coins");
    harness.pressKey(vt::Keyboard::Q);
    check(harness.stepUntil(gameOver, 3), name, "Q quits at its press");
  });
}

}  // namespace

int main() {
  takingEveryCoinWins();
  monstersChaseAndCatch();
  theMazeLoadsAndQuits();
  if (failures == 0) std::printf("maze rules: all cases passed\n");
  return failures == 0 ? 0 : 1;
}
