#pragma once

#include "world/Object.h"

class Maze;

// Steps until a held direction moves the player another cell.
const int MOVE_REPEAT_STEPS = 4;

// The player: a cell a press of an arrow or W, A, S, D, and another every
// MOVE_REPEAT_STEPS while it is held; walls stop it, coins in its cell are
// taken. Q quits. Monsters find it by its type, "Player".
class Player : public vt::Object {
 public:
  Player(vt::Vector start, Maze& maze);

  int eventHandler(const vt::Event* p_event) override;
  // Back to where the player started.
  void restart();

 private:
  void move(vt::Vector offset);
  void takeCoins();

  Maze& maze;
  vt::Vector start;
  int repeat_wait = 0;
};
