#include "Hero.h"

#include "Audio.h"
#include "Boss.h"
#include "Bullet.h"
#include "EventNuke.h"
#include "extras/Particles.h"
#include "media/EventView.h"
#include "media/ResourceManager.h"
#include "world/WorldManager.h"

Hero::Hero() {
  setSprite("ship");
  registerInterest(vt::KEYBOARD_EVENT);
  registerInterest(vt::MOUSE_EVENT);
  registerInterest(PHASE_EVENT);
  registerInterest(vt::STEP_EVENT);
  setType("Hero");
  const vt::Box view = vt::WorldManager::getInstance().getView();
  setPosition(vt::Vector(view.getHorizontal() / 2, view.getVertical() - 4));
  p_music = vt::ResourceManager::getInstance().getMusic("InGameBGM");
  if (p_music != nullptr) p_music->play(true);
}

Hero::~Hero() {
  if (p_music != nullptr) p_music->stop();
  const vt::Vector position = getPosition();
  vt::addParticles(vt::PARTICLE_BURST, position, 2.0f, vt::BLUE);
  vt::addParticles(vt::PARTICLE_BURST, position, 2.0f, vt::YELLOW);
  vt::addParticles(vt::PARTICLE_BURST, position, 3.0f, vt::RED);
  vt::addParticles(vt::PARTICLE_BURST, position, 3.0f, vt::RED);
}

int Hero::eventHandler(const vt::Event* p_event) {
  const std::string type = p_event->getType();
  if (type == vt::KEYBOARD_EVENT) {
    keyboard(static_cast<const vt::EventKeyboard*>(p_event));
  } else if (type == vt::MOUSE_EVENT) {
    mouse(static_cast<const vt::EventMouse*>(p_event));
  } else if (type == vt::STEP_EVENT) {
    step();
  } else if (type == PHASE_EVENT) {
    phase(static_cast<const EventPhase*>(p_event));
  } else {
    return 0;
  }
  return 1;
}

void Hero::keyboard(const vt::EventKeyboard* p_keyboard) {
  const int key = p_keyboard->getKey();
  const int action = p_keyboard->getKeyboardAction();
  if (action == vt::KEY_PRESSED) {
    if (key == vt::Keyboard::SPACE) nuke();
    // Quitting during play only removes the hero.
    if (key == vt::Keyboard::Q) vt::WorldManager::getInstance().markForDelete(this);
  } else if (action == vt::KEY_DOWN) {
    if (key == vt::Keyboard::A) move(vt::Vector(-1, 0));
    if (key == vt::Keyboard::D) move(vt::Vector(1, 0));
    if (key == vt::Keyboard::W) move(vt::Vector(0, -1));
    if (key == vt::Keyboard::S) move(vt::Vector(0, 1));
  }
}

void Hero::mouse(const vt::EventMouse* p_mouse) {
  if (p_mouse->getMouseAction() == vt::PRESSED && p_mouse->getMouseButton() == vt::Mouse::LEFT) {
    fire();
  }
}

void Hero::move(vt::Vector delta) {
  if (move_countdown >= 1) return;
  move_countdown = move_slowdown;
  const vt::Vector target = getPosition() + delta;
  const vt::Box view = vt::WorldManager::getInstance().getView();
  const bool inside = target.getX() > 3 && target.getX() < view.getHorizontal() - 1 &&
                      target.getY() > 3 && target.getY() < view.getVertical() - 1;
  if (inside) vt::WorldManager::getInstance().moveObject(this, target);
}

void Hero::fire() {
  if (fire_countdown >= 1) return;
  fire_countdown = fire_slowdown;
  // Shots go straight up from both guns, whatever the mouse points at.
  auto* p_left = new Bullet(getPosition() - vt::Vector(2.5f, 0));
  auto* p_right = new Bullet(getPosition() - vt::Vector(3.5f, 0));
  p_left->setVelocity(vt::Vector(0, -1.2f));
  p_right->setVelocity(vt::Vector(0, -1.2f));
  playSound("fire");
}

void Hero::nuke() {
  if (nuke_count == 0) return;
  nuke_count--;
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  const EventNuke nuke_event;
  world_manager.onEvent(&nuke_event);
  const vt::EventView counter("WIPE: ", -1, true);
  world_manager.onEvent(&counter);
  playSound("nuke");
}

void Hero::step() {
  if (move_countdown > 0) move_countdown--;
  if (fire_countdown > 0) fire_countdown--;
}

void Hero::phase(const EventPhase* p_phase) {
  if (p_phase->getPhaseName() != "boss" || p_phase->getPhaseNumber() != 2) return;
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  // Only the drelks go: enemy bullets already in flight stay.
  for (vt::Object* p_object : world_manager.getAllObjects(true)) {
    if (p_object->getType() == "Drelk") world_manager.markForDelete(p_object);
  }
  new Boss;
  if (p_music != nullptr) p_music->pause();
  p_music = vt::ResourceManager::getInstance().getMusic("Boss1BattleBGM");
  if (p_music != nullptr) p_music->play(true);
}
