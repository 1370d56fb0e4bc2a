#pragma once

#include "media/Music.h"
#include "media/ViewObject.h"

// The title screen: P starts a game, Q quits.
class GameStart : public vt::ViewObject {
 public:
  GameStart();

  int eventHandler(const vt::Event* p_event) override;
  // The screen is its sprite alone.
  int draw() override;

  void start();
  // Plays the title music, looping, when there is one.
  void playMusic();
  vt::Music* getMusic() const { return p_music; }
  void setMusic(vt::Music* p_new_music) { p_music = p_new_music; }

 private:
  vt::Music* p_music = nullptr;
};
