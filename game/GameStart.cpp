#include "GameStart.h"

#include "Drelk.h"
#include "Hero.h"
#include "Points.h"
#include "core/GameManager.h"
#include "media/EventKeyboard.h"
#include "media/ResourceManager.h"

GameStart::GameStart() {
  setType("GameStart");
  setSprite("gamestart");
  setLocation(vt::CENTER_CENTER);
  registerInterest(vt::KEYBOARD_EVENT);
  p_music = vt::ResourceManager::getInstance().getMusic("start music");
  playMusic();
}

int GameStart::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() != vt::KEYBOARD_EVENT) return ViewObject::eventHandler(p_event);
  // Press and release both act; the first one makes the screen inactive.
  const int key = static_cast<const vt::EventKeyboard*>(p_event)->getKey();
  if (key == vt::Keyboard::P) start();
  if (key == vt::Keyboard::Q) vt::GameManager::getInstance().setGameOver();
  return 1;
}

int GameStart::draw() {
  return Object::draw();
}

void GameStart::start() {
  new Hero;
  for (int i = 0; i < 11; i++) new Drelk;
  new Points;
  auto* p_nukes = new vt::ViewObject;
  p_nukes->setLocation(vt::TOP_LEFT);
  p_nukes->setViewString("WIPE: ");
  p_nukes->setValue(5);
  p_nukes->setColor(vt::YELLOW);
  // Paused, not stopped, so that it resumes where it was.
  if (p_music != nullptr) p_music->pause();
  setActive(false);
}

void GameStart::playMusic() {
  if (p_music != nullptr) p_music->play(true);
}
