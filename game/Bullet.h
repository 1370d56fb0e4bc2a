#pragma once

#include "world/EventCollision.h"
#include "world/Object.h"

// The hero's shot: flies up and is spent on the first enemy it meets.
class Bullet : public vt::Object {
 public:
  explicit Bullet(vt::Vector start);

  int eventHandler(const vt::Event* p_event) override;

 private:
  void out();
  void hit(const vt::EventCollision* p_collision);
};
