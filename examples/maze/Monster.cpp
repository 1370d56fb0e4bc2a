#include "Monster.h"

#include "Maze.h"
#include "world/WorldManager.h"

Monster::Monster(vt::Vector init_home, Maze& init_maze) : maze(init_maze), home(init_home) {
  setType("Monster");
  setSprite("monster");
  // A one-cell sprite's box reaches the cell's edges and so touches the
  // walls beside a corridor: no path would get through.
  fitBoxInCell();
  // SOFT: monsters pass each other; the walls they never meet, keeping to
  // their paths.
  setSolidness(vt::SOFT);
  // Between two cells, shown in the nearer.
  setSnapToCell(true);
  setPosition(home);
  setSpeed(MONSTER_SPEED);
  registerInterest(vt::STEP_EVENT);
}

int Monster::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::STEP_EVENT) return Object::eventHandler(p_event);
  for (const vt::Object* p_object : vt::WorldManager::getInstance().objectsInCell(getPosition())) {
    if (p_object->getType() == "Player") {
      maze.caught();
      break;
    }
  }
  return 1;
}

void Monster::chase(vt::Object* p_player) {
  pathTo(p_player, vt::FOUR_DIRECTIONS);
}

void Monster::restart(vt::Object* p_player) {
  setPosition(home);
  // Standing still until the new path is found.
  setDirection(vt::Vector());
  chase(p_player);
}
