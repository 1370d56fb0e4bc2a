#pragma once

#include <memory>

#include "media/Sprite.h"
#include "world/Object.h"

namespace vt {

// Runs the engine's animated title before the game: the banner slides in
// from the right, the emblem rises beside it, and any key skips it all.
// Returns 0, or -1 when the game manager is not started.
int splash();

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
