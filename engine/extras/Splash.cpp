#include "extras/Splash.h"

#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/SplashArt.h"
#include "extras/SplashVantor.h"
#include "media/Animation.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

// Steps the banner takes to slide in.
const int SPLASH_STEPS = 30;

}  // namespace

int splash() {
  LogManager& log_manager = LogManager::getInstance();
  log_manager.writeLog(10, "splash(): Started.");
  GameManager& game_manager = GameManager::getInstance();
  if (!game_manager.isStarted()) {
    log_manager.writeLog("splash(): Error! Cannot run splash screen until game manger is started.");
    return -1;
  }
  new Splash;
  game_manager.run();
  log_manager.writeLog(10, "splash(): Finished.");
  return 0;
}

bool leaveOrSkip(Object* p_object, const Event* p_event, int& result) {
  GameManager& game_manager = GameManager::getInstance();
  if (game_manager.getGameOver()) {
    WorldManager::getInstance().markForDelete(p_object);
    result = 0;
    return true;
  }
  if (p_event->getType() == KEYBOARD_EVENT) {
    game_manager.setGameOver();
    WorldManager::getInstance().markForDelete(p_object);
    result = 1;
    return true;
  }
  return false;
}

Splash::Splash() : p_banner(makeBannerSprite()) {
  Animation banner;
  banner.setSprite(p_banner.get());
  // Held on its first frame while it slides.
  banner.setSlowdownCount(-1);
  setAnimation(banner);
  setType("Splash");
  setSolidness(SPECTRAL);
  const Box view = WorldManager::getInstance().getView();
  const float width = getBox().getHorizontal();
  setPosition(Vector(view.getCorner().getX() + view.getHorizontal() + width / 2,
                     view.getCorner().getY() + view.getVertical() / 2));
  const float distance = view.getHorizontal() / 2 + width / 2 + 11;
  setVelocity(Vector(-distance / static_cast<float>(SPLASH_STEPS / 2), 0));
  registerInterest(STEP_EVENT);
  registerInterest(KEYBOARD_EVENT);
}

Splash::~Splash() = default;

int Splash::eventHandler(const Event* p_event) {
  int result = 0;
  if (leaveOrSkip(this, p_event, result)) return result;
  if (p_event->getType() != STEP_EVENT) return 0;
  countdown--;
  if (countdown == 0) {
    Animation upright = getAnimation();
    upright.setIndex(1);
    setAnimation(upright, false);
    setVelocity(Vector(0, 0));
    new SplashVantor(getPosition() + Vector(24, 1));
  } else if (countdown == -75) {
    WorldManager::getInstance().markForDelete(this);
  }
  return 1;
}

}  // namespace vt
