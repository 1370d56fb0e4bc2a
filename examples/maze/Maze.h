#pragma once

#include <string>
#include <vector>

#include "extras/Timers.h"
#include "media/InputActions.h"
#include "media/TextLabel.h"
#include "media/ViewObject.h"
#include "world/Object.h"

class Monster;
class Player;

// Where the map's top-left cell lies on the screen: below the score lines.
const vt::Vector MAP_ORIGIN(20, 3);
// Lives at the start of a game.
const int LIVES = 3;
// Steps between two searches of each monster's way to the player.
const int CHASE_STEPS = 10;
// Steps a message stays on the screen, and the end of a game takes.
const int MESSAGE_STEPS = 45;

// Loads the sprites, from the working directory; 0, or -1 when one is
// missing or broken (the log says why).
int loadResources();

// The game itself: builds the level from a map, keeps the lives and the
// coins left, sends the monsters after the player, and ends the game when
// the last coin is taken or the last life lost. It also holds the game's
// timers and input actions, which the player and monsters use.
class Maze : public vt::Object {
 public:
  Maze();

  // Builds the level of the map file (see data/maps/maze.txt: '#' walls,
  // '.' coins, 'P' the player, 'M' monsters, blanks empty); 0, or -1 when
  // the map is broken (the log says why) or lacks its player.
  int build(const std::string& map_file);

  void coinTaken();
  // A monster reached the player: a life goes, and everyone starts again.
  void caught();

  int getLives() const { return lives; }
  int getCoinsLeft() const { return coins_left; }
  bool isOver() const { return over; }
  const vt::InputActions& actions() const { return *p_actions; }

 private:
  void bindActions();
  void show(const std::string& message);
  // Shows the message, stops the monsters and ends the game a little later.
  void end(const std::string& message);

  vt::Timers* p_timers;
  vt::InputActions* p_actions;
  vt::ViewObject* p_lives_view;
  vt::ViewObject* p_coins_view;
  vt::TextLabel* p_message;
  Player* p_player = nullptr;
  std::vector<Monster*> monsters;
  int lives = LIVES;
  int coins_left = 0;
  bool over = false;
};
