#pragma once

#include "world/Object.h"

class Maze;

// Cells a step a monster walks.
const float MONSTER_SPEED = 0.2f;

// A monster: walks the maze's corridors after the player, by paths of up,
// down, left and right steps that the maze asks for every CHASE_STEPS;
// catches the player when both stand in one cell.
class Monster : public vt::Object {
 public:
  Monster(vt::Vector home, Maze& maze);

  int eventHandler(const vt::Event* p_event) override;
  void chase(vt::Object* p_player);
  // Back home, and after the player from there.
  void restart(vt::Object* p_player);

 private:
  Maze& maze;
  vt::Vector home;
};
