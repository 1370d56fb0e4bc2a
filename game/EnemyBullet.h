#pragma once

#include "world/EventCollision.h"
#include "world/Object.h"

// An enemy's shot: slow, deadly to the hero, wiped out by a nuke.
class EnemyBullet : public vt::Object {
 public:
  explicit EnemyBullet(vt::Vector start);

  int eventHandler(const vt::Event* p_event) override;

 private:
  void out();
  void hit(const vt::EventCollision* p_collision);
};
