#pragma once

#include "EventPhase.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/Music.h"
#include "world/Object.h"

// The player's ship: moves with A, D, W and S, fires while the left mouse
// button is held, spends nukes with Space, and brings in the boss.
class Hero : public vt::Object {
 public:
  Hero();
  // Stops the hero's music and bursts into particles.
  ~Hero() override;

  int eventHandler(const vt::Event* p_event) override;
  int getNukeCount() const { return nuke_count; }

 private:
  void keyboard(const vt::EventKeyboard* p_keyboard);
  void mouse(const vt::EventMouse* p_mouse);
  // Moves one cell when the move countdown allows and the new place stays
  // clear of the view's edges.
  void move(vt::Vector delta);
  void fire();
  void nuke();
  void step();
  void phase(const EventPhase* p_phase);

  vt::Music* p_music = nullptr;
  int fire_slowdown = 5;
  int fire_countdown = 5;
  int move_slowdown = 2;
  int move_countdown = 2;
  int nuke_count = 5;
};
