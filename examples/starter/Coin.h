#pragma once

#include "world/Object.h"

// Something to collect: the player's touch adds one to the score; the last
// coin taken ends the game.
class Coin : public vt::Object {
 public:
  explicit Coin(vt::Vector where);

  int eventHandler(const vt::Event* p_event) override;
  // The coins still to collect.
  static int coinsLeft();

 private:
  void collect();
};
