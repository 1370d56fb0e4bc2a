#include "Boss.h"

#include <cstdlib>

#include "Audio.h"
#include "Collisions.h"
#include "EnemyBullet.h"
#include "Explosion.h"
#include "GameOver.h"
#include "world/WorldManager.h"

namespace {

// A fresh random number in [0, 1], from one draw of rand() brought onto
// 0..32767 whatever the C library's RAND_MAX.
double randomFraction() {
  return (std::rand() / (RAND_MAX / 32768 + 1)) / 32767.0;
}

void launch(vt::Vector position, float offset, vt::Vector velocity) {
  auto* p_bullet = new EnemyBullet(position + vt::Vector(offset, 0));
  p_bullet->setVelocity(velocity);
}

// A falling shot drifting left or right; the vertical speed is drawn first.
vt::Vector fanVelocity(bool leftward) {
  const auto vy = static_cast<float>(randomFraction() * 0.2 + 0.1);
  const auto r = static_cast<float>(randomFraction());
  return vt::Vector(leftward ? -r + 0.05f : r + 0.05f, vy);
}

}  // namespace

Boss::Boss() {
  setSprite("boss");
  setType("Boss");
  setVelocity(vt::Vector(0, 0));
  moveToStart();
  registerInterest(vt::STEP_EVENT);
}

int Boss::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() == vt::STEP_EVENT) {
    step();
    return 1;
  }
  if (p_event->getType() == vt::COLLISION_EVENT) {
    hit(static_cast<const vt::EventCollision*>(p_event));
    return 1;
  }
  return 0;
}

void Boss::moveToStart() {
  const vt::Box view = vt::WorldManager::getInstance().getView();
  const int x = static_cast<int>(view.getHorizontal()) / 2;
  const int y = static_cast<int>(view.getVertical()) / 2 - 7;
  vt::WorldManager::getInstance().moveObject(
      this, vt::Vector(static_cast<float>(x), static_cast<float>(y)));
}

void Boss::step() {
  moveToStart();
  if (fire_countdown > 0) fire_countdown--;
  fire();
}

void Boss::fire() {
  if (fire_countdown >= 1) return;
  fire_countdown = fire_slowdown;
  // Two draws that only advance the random sequence.
  randomFraction();
  randomFraction();
  const double spreads[] = {-10, -5, -1, 1, 5, 10};
  float offsets[6];
  for (int i = 0; i < 6; i++) offsets[i] = static_cast<float>(randomFraction() * spreads[i] + 0.05);
  const vt::Vector position = getPosition();
  for (int i = 0; i < 6; i++) {
    if (i == 2) launch(position, 0, vt::Vector(0, 0.2f));
    launch(position, offsets[i], fanVelocity(true));
    launch(position, -offsets[i], fanVelocity(false));
  }
}

void Boss::hit(const vt::EventCollision* p_collision) {
  if (involves(p_collision, "Bullet") && !destroyed) {
    if (health > 0) {
      health--;
      return;
    }
    destroyed = true;
    vt::WorldManager::getInstance().markForDelete(this);
    auto* p_explosion = new Explosion;
    p_explosion->setPosition(getPosition());
    playSound("explode");
    new GameOver(true);
  }
  if (involves(p_collision, "Hero")) defeatHero(p_collision);
}
