#include "Bullet.h"

#include "Audio.h"
#include "Collisions.h"
#include "world/WorldManager.h"

Bullet::Bullet(vt::Vector start) {
  setSprite("bullet");
  setSolidness(vt::SOFT);
  setType("Bullet");
  setPosition(vt::Vector(start.getX() + 3, start.getY()));
  setSpeed(1.0f);
}

int Bullet::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() == vt::OUT_EVENT) {
    out();
    return 1;
  }
  if (p_event->getType() == vt::COLLISION_EVENT) {
    hit(static_cast<const vt::EventCollision*>(p_event));
    return 1;
  }
  return 0;
}

void Bullet::out() {
  vt::WorldManager::getInstance().markForDelete(this);
}

void Bullet::hit(const vt::EventCollision* p_collision) {
  for (const char* enemy : {"Drelk", "Boss"}) {
    if (involves(p_collision, enemy)) {
      playSound("enemyhit");
      vt::WorldManager::getInstance().markForDelete(this);
    }
  }
}
