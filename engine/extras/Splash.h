#pragma once

#include <memory>

#include "media/Sprite.h"
#include "world/Object.h"

namespace vt {

// Runs the engine's animated title before the game: the banner slides in
// from the right, the emblem rises beside it, and any key skips it all.
// Returns 0, or -1 when the game manager is not started.
int splash();

// What both splash objects do first with an event: once the game is over
// they leave, and any key ends the splash at once. True when the event was
// dealt with, its handler's result then in result.
bool leaveOrSkip(Object* p_object, const Event* p_event, int& result);

// The sliding banner of the splash screen.
class Splash : public Object {
 public:
  Splash();
  ~Splash() override;

  int eventHandler(const Event* p_event) override;

 private:
  int countdown = 15;
  std::unique_ptr<Sprite> p_banner;
};

}  // namespace vt
