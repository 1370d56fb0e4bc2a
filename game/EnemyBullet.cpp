#include "EnemyBullet.h"

#include "Collisions.h"
#include "EventNuke.h"
#include "world/WorldManager.h"

EnemyBullet::EnemyBullet(vt::Vector start) {
  setSprite("enemy-bullet");
  setSolidness(vt::SOFT);
  setType("EnemyBullet");
  setPosition(vt::Vector(start.getX() + 3, start.getY()));
  setSpeed(0.25f);
  registerInterest(NUKE_EVENT);
}

int EnemyBullet::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() == vt::OUT_EVENT) {
    out();
    return 1;
  }
  if (p_event->getType() == vt::COLLISION_EVENT) {
    hit(static_cast<const vt::EventCollision*>(p_event));
    return 1;
  }
  if (p_event->getType() == NUKE_EVENT) {
    vt::WorldManager::getInstance().markForDelete(this);
    return 1;
  }
  return 0;
}

void EnemyBullet::out() {
  vt::WorldManager::getInstance().markForDelete(this);
}

void EnemyBullet::hit(const vt::EventCollision* p_collision) {
  if (involves(p_collision, "Hero")) defeatHero(p_collision);
}
