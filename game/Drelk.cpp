#include "Drelk.h"

#include <algorithm>
#include <cstdlib>

#include "Audio.h"
#include "Collisions.h"
#include "EnemyBullet.h"
#include "EventNuke.h"
#include "Explosion.h"
#include "media/EventView.h"
#include "world/WorldManager.h"

Drelk::Drelk() {
  setSprite("drelk");
  setType("Drelk");
  setVelocity(vt::Vector(-1, 0));
  moveToStart();
  // Nukes reach drelks too, and they ignore them.
  registerInterest(NUKE_EVENT);
  registerInterest(vt::STEP_EVENT);
}

Drelk::~Drelk() {
  const vt::EventView score("Points", 10, true);
  vt::WorldManager::getInstance().onEvent(&score);
}

int Drelk::eventHandler(const vt::Event* p_event) {
  const std::string type = p_event->getType();
  if (type == vt::OUT_EVENT) {
    out();
    return 1;
  }
  if (type == vt::STEP_EVENT) {
    step();
    return 1;
  }
  if (type == vt::COLLISION_EVENT) {
    hit(static_cast<const vt::EventCollision*>(p_event));
    return 1;
  }
  return 0;
}

void Drelk::moveToStart() {
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  const vt::Box view = world_manager.getView();
  // The ranges need a view of at least 1 x 10 cells; smaller ones are
  // widened rather than divided by zero.
  const int width = std::max(1, static_cast<int>(view.getHorizontal()));
  const int half_height = static_cast<int>(view.getVertical()) / 2;
  const int rows = std::max(1, half_height - 4);
  // x is drawn before y.
  const int x = width + std::rand() % width + 3;
  const int y = std::rand() % rows + 4;
  vt::Vector start(static_cast<float>(x), static_cast<float>(y));
  while (!world_manager.getCollisions(this, start).isEmpty()) {
    start.setX(start.getX() + 1);
  }
  world_manager.moveObject(this, start);
}

void Drelk::out() {
  // Only a drelk that left by the left edge comes round again.
  if (getPosition().getX() < 0) moveToStart();
}

void Drelk::step() {
  if (fire_countdown > 0) fire_countdown--;
  fire();
}

void Drelk::fire() {
  if (fire_countdown >= 1) return;
  fire_countdown = fire_slowdown;
  auto* p_left = new EnemyBullet(getPosition() + vt::Vector(2.5f, 0));
  auto* p_right = new EnemyBullet(getPosition() + vt::Vector(3.5f, 0));
  p_left->setVelocity(vt::Vector(0.05f, 0.1f));
  p_right->setVelocity(vt::Vector(-0.05f, 0.1f));
}

void Drelk::hit(const vt::EventCollision* p_collision) {
  if (p_collision->getObject1()->getType() == "Drelk" &&
      p_collision->getObject2()->getType() == "Drelk") {
    return;
  }
  if (involves(p_collision, "Bullet") && !destroyed) {
    destroyed = true;
    vt::WorldManager::getInstance().markForDelete(this);
    auto* p_explosion = new Explosion;
    p_explosion->setPosition(getPosition());
    playSound("enemydead");
    new Drelk;
  }
  if (involves(p_collision, "Hero")) defeatHero(p_collision);
}
