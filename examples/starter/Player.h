#pragma once

#include "world/Object.h"

// The player: moved a cell a step by W, A, S, D (or the arrows) while they
// are held, kept inside the world; Q ends the game.
class Player : public vt::Object {
 public:
  explicit Player(vt::Vector start);

  int eventHandler(const vt::Event* p_event) override;

 private:
  void move(vt::Vector offset);
};
