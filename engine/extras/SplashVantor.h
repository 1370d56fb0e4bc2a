#pragma once

#include <memory>

#include "media/Sprite.h"
#include "world/Object.h"

namespace vt {

// The splash screen's emblem: rises from below the view to its target row
// beside the banner, changes its picture, then ends the splash.
class SplashVantor : public Object {
 public:
  explicit SplashVantor(Vector target);
  ~SplashVantor() override;

  int eventHandler(const Event* p_event) override;

 private:
  void step();
  void showSecondEmblem();

  Vector target_position;
  std::unique_ptr<Sprite> p_emblem;
  int countdown = 30;
};

}  // namespace vt
