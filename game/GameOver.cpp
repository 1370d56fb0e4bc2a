#include "GameOver.h"

#include <set>

#include "GameStart.h"
#include "media/ResourceManager.h"
#include "world/WorldManager.h"

GameOver::GameOver(bool init_win) : win(init_win) {
  setType("GameOver");
  vt::ResourceManager& resource_manager = vt::ResourceManager::getInstance();
  const std::string sprite = win ? "win" : "gameover";
  if (setSprite(sprite) == 0) {
    // Long enough for the animation to play exactly once.
    const vt::Sprite* p_sprite = resource_manager.getSprite(sprite);
    time_to_live = p_sprite->getFrameCount() * p_sprite->getSlowdown();
  }
  p_music = resource_manager.getMusic(win ? "VictoryBGM" : "GameDead");
  if (p_music != nullptr) p_music->play(true);
  setLocation(vt::CENTER_CENTER);
  registerInterest(vt::STEP_EVENT);
  clearBoard();
}

void GameOver::clearBoard() {
  // The score display ("Points"), stars, explosions, the pause object and
  // the screens survive; the nuke counter is a plain view object and goes.
  static const std::set<std::string> CLEARED = {"Drelk",       "Bullet", "ViewObject",
                                                "EnemyBullet", "Boss",   "Hero"};
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  for (vt::Object* p_object : world_manager.getAllObjects(true)) {
    if (CLEARED.count(p_object->getType()) > 0) world_manager.markForDelete(p_object);
  }
}

GameOver::~GameOver() {
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  for (vt::Object* p_object : world_manager.getAllObjects(true)) {
    if (p_object->getType() != "GameStart") continue;
    auto* p_title = static_cast<GameStart*>(p_object);
    p_title->setActive(true);
    if (p_title->getMusic() != nullptr) p_title->getMusic()->stop();
    p_title->setMusic(vt::ResourceManager::getInstance().getMusic("start music"));
    if (p_music != nullptr) p_music->stop();
    p_title->playMusic();
  }
}

int GameOver::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::STEP_EVENT) return ViewObject::eventHandler(p_event);
  time_to_live--;
  if (time_to_live < 1) vt::WorldManager::getInstance().markForDelete(this);
  return 1;
}

int GameOver::draw() {
  return Object::draw();
}
