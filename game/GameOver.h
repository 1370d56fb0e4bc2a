#pragma once

#include "media/Music.h"
#include "media/ViewObject.h"

// The closing screen, defeat or victory: clears the board, plays its
// animation once and hands back to the title screen.
class GameOver : public vt::ViewObject {
 public:
  explicit GameOver(bool init_win);
  // Reactivates the title screen and restarts its music.
  ~GameOver() override;

  int eventHandler(const vt::Event* p_event) override;
  // The screen is its sprite alone.
  int draw() override;

  bool getWin() const { return win; }
  int getTimeToLive() const { return time_to_live; }

 private:
  void clearBoard();

  bool win;
  int time_to_live = 0;
  vt::Music* p_music = nullptr;
};
