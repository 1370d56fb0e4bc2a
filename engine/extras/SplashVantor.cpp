#include "extras/SplashVantor.h"

#include "core/GameManager.h"
#include "extras/Splash.h"
#include "extras/SplashArt.h"
#include "media/Animation.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

void showSprite(Object* p_object, Sprite* p_sprite, int index) {
  Animation animation;
  animation.setSprite(p_sprite);
  animation.setIndex(index);
  p_object->setAnimation(animation);
}

}  // namespace

SplashVantor::SplashVantor(Vector target) : target_position(target), p_emblem(makeEmblemSprite()) {
  showSprite(this, p_emblem.get(), 0);
  setType("SplashVantor");
  setSolidness(SPECTRAL);
  const Box view = WorldManager::getInstance().getView();
  const float start_y = view.getCorner().getY() + view.getVertical() + 6;
  setPosition(Vector(target.getX(), start_y));
  setVelocity(Vector(0, -(start_y - target.getY()) / 30));
  registerInterest(STEP_EVENT);
  registerInterest(KEYBOARD_EVENT);
}

SplashVantor::~SplashVantor() = default;

int SplashVantor::eventHandler(const Event* p_event) {
  int result = 0;
  if (leaveOrSkip(this, p_event, result)) return result;
  if (p_event->getType() != STEP_EVENT) return 0;
  step();
  return 1;
}

void SplashVantor::step() {
  countdown--;
  if (countdown < 1 && target_position.getY() >= getPosition().getY()) {
    setVelocity(Vector(0, 0));
  }
  if (countdown == -15) showSecondEmblem();
  if (countdown == -45) {
    // The splash is over: the loop's next run clears the game-over flag, so
    // the emblem leaves now rather than on a later event.
    GameManager::getInstance().setGameOver();
    WorldManager::getInstance().markForDelete(this);
  }
}

void SplashVantor::showSecondEmblem() {
  p_emblem = makeSecondEmblemSprite();
  // Index 1 is one past the only frame: the first draw shows nothing and
  // wraps the animation round to that frame.
  showSprite(this, p_emblem.get(), 1);
  setPosition(getPosition() - Vector(1, 0));
}

}  // namespace vt
