#include <cstdlib>
#include <functional>
#include <set>
#include <tuple>
#include <vector>

#include "Boss.h"
#include "Bullet.h"
#include "Drelk.h"
#include "EnemyBullet.h"
#include "Explosion.h"
#include "GameFixture.h"
#include "GameOver.h"
#include "GameStart.h"
#include "Hero.h"
#include "Points.h"
#include "Reticle.h"
#include "Star.h"
#include "core/GameManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/ResourceManager.h"

using vt::Vector;
namespace Key = vt::Keyboard;

TEST_F(GameFixture, TheBossComesOnceAfterTheScorePasses1000) {
  new Hero;
  auto* p_points = new Points;
  // Steps 1 to 4 are no multiples of 30: the score stays as set.
  for (const auto& [score, bosses] : {std::pair(1000, 0), {1001, 1}, {5000, 1}, {5000, 1}}) {
    p_points->setValue(score);
    step();
    EXPECT_EQ(countOf("Boss"), bosses) << score;
  }
}

TEST_F(GameFixture, TheBossAbsorbs400HitsAndDiesOnThe401st) {
  auto* p_boss = new Boss;
  shootAt(p_boss, 400);
  step();
  EXPECT_EQ(std::tuple(p_boss->getHealth(), countOf("Bullet"), countOf("GameOver")),
            std::tuple(0, 0, 0));
  // The killing hit and a second bullet in the same step win only once.
  shootAt(p_boss, 2);
  step();
  ASSERT_EQ(countOf("GameOver"), 1);
  EXPECT_TRUE(static_cast<GameOver*>(firstOf("GameOver"))->getWin());
  EXPECT_EQ(std::tuple(countOf("Boss"), countOf("Explosion")), std::tuple(0, 1));
}

TEST_F(GameFixture, TheBossFiresAFanOfThirteenEvery25Steps) {
  auto* p_boss = new Boss;
  step(24);
  EXPECT_EQ(countOf("EnemyBullet"), 0);
  // The volley's draws, in order: two unused, six offsets, then for each
  // side shot its vertical speed and its drift.
  const unsigned seed = 5;
  std::srand(seed);
  const auto fraction = [] { return (std::rand() / (RAND_MAX / 32768 + 1)) / 32767.0; };
  fraction();
  fraction();
  const double spreads[] = {-10, -5, -1, 1, 5, 10};
  std::vector<float> offsets;
  for (const double spread : spreads)
    offsets.push_back(static_cast<float>(fraction() * spread + 0.05));
  std::vector<std::pair<float, Vector>> expected;  // offset and velocity
  for (int pair = 0; pair < 6; pair++) {
    if (pair == 2) expected.push_back({0, Vector(0, 0.2f)});
    for (const float side : {1.0f, -1.0f}) {
      const auto vy = static_cast<float>(fraction() * 0.2 + 0.1);
      const auto drift = static_cast<float>(fraction());
      expected.push_back(
          {side * offsets[pair], Vector(side > 0 ? -drift + 0.05f : drift + 0.05f, vy)});
    }
  }
  std::srand(seed);
  step();
  const vt::ObjectList shots = world().objectsOfType("EnemyBullet");
  ASSERT_EQ(shots.getCount(), 13);
  for (int i = 0; i < 13; i++) {
    const Vector velocity = shots[i]->getVelocity();
    EXPECT_NEAR(velocity.getX(), expected[i].second.getX(), 1e-5) << i;
    EXPECT_NEAR(velocity.getY(), expected[i].second.getY(), 1e-5) << i;
    EXPECT_GE(velocity.getY(), 0.1f);
    EXPECT_LE(velocity.getY(), 0.3f);
    // Shots leave from the boss's maw and have made one move since.
    const Vector start = p_boss->getPosition() + Vector(3 + expected[i].first, 0);
    EXPECT_NEAR(shots[i]->getPosition().getX(), start.getX() + velocity.getX(), 1e-4) << i;
    EXPECT_NEAR(shots[i]->getPosition().getY(), start.getY() + velocity.getY(), 1e-4) << i;
  }
  step(24);
  EXPECT_EQ(countOf("EnemyBullet"), 13);
  step();
  EXPECT_EQ(countOf("EnemyBullet"), 26);
}

TEST_F(GameFixture, NukesDestroyEnemyBulletsOnlyAndCost200) {
  auto* p_hero = new Hero;
  auto* p_points = new Points;
  p_points->setValue(150);
  for (const float x : {10.0f, 20.0f}) new EnemyBullet(Vector(x, 5));
  new Drelk;
  harness.tapKey(Key::SPACE);
  step();
  EXPECT_EQ(std::tuple(countOf("EnemyBullet"), countOf("Drelk")), std::tuple(0, 1));
  EXPECT_EQ(std::pair(p_hero->getNukeCount(), p_points->getValue()), std::pair(4, -50));
  // Four more, and a sixth that finds none left.
  for (int i = 0; i < 5; i++) {
    harness.tapKey(Key::SPACE);
    step();
  }
  EXPECT_EQ(std::pair(p_hero->getNukeCount(), p_points->getValue()), std::pair(0, -50 - 4 * 200));
}

TEST_F(GameFixture, EveryDrelkDeletionScores10AndKillsAreReplaced) {
  auto* p_points = new Points;
  auto* p_drelk = new Drelk;
  p_drelk->setPosition(Vector(60, 8));
  // Two bullets into it in one step: one kill, one explosion, one newcomer.
  shootAt(p_drelk, 2);
  step();
  EXPECT_EQ(std::tuple(countOf("Drelk"), countOf("Explosion"), countOf("Bullet")),
            std::tuple(1, 1, 0));
  EXPECT_EQ(p_points->getValue(), 10);

  // Two drelks that overlap leave each other alone.
  vt::Object* p_survivor = firstOf("Drelk");
  (new Drelk)->setPosition(p_survivor->getPosition());
  step();
  EXPECT_EQ(countOf("Drelk"), 2);

  world().markForDelete(p_survivor);
  step();
  EXPECT_EQ(p_points->getValue(), 20);
}

TEST_F(GameFixture, DrelksStartBeyondTheRightEdgeAndReenterFromIt) {
  // The start column is drawn before the row.
  std::srand(3);
  const int column_draw = std::rand();
  const int row_draw = std::rand();
  std::srand(3);
  auto* p_drelk = new Drelk;
  EXPECT_EQ(p_drelk->getPosition(), Vector(80 + column_draw % 80 + 3, row_draw % 8 + 4));
  // Once off the left edge it starts again beyond the right one.
  p_drelk->setPosition(Vector(2, 6));
  EXPECT_TRUE(harness.stepUntil([&] { return p_drelk->getPosition().getX() > 80; }, 12));
  // Leaving by the right edge changes nothing.
  p_drelk->setPosition(Vector(84, 6));
  p_drelk->setVelocity(Vector(1, 0));
  step(6);
  EXPECT_EQ(p_drelk->getPosition(), Vector(90, 6));
  // A start column taken by another drelk moves it right until free.
  for (int i = 0; i < 30; i++) new Drelk;
  for (vt::Object* p_one : world().objectsOfType("Drelk")) {
    EXPECT_TRUE(world().getCollisions(p_one, p_one->getPosition()).isEmpty());
  }
}

TEST_F(GameFixture, HeroMovesInsideItsBoundsAndFiresEveryFifthStep) {
  auto* p_hero = new Hero;
  EXPECT_EQ(p_hero->getPosition(), Vector(40, 20));
  // A held key moves the hero one cell every other step.
  harness.holdKey(Key::D);
  step(10);
  EXPECT_EQ(p_hero->getPosition(), Vector(45, 20));
  // Held keys stop one cell inside the bounds on every side.
  const struct {
    int key;
    Vector end;
  } HOLDS[] = {{Key::D, Vector(78, 20)},
               {Key::S, Vector(78, 22)},
               {Key::W, Vector(78, 4)},
               {Key::A, Vector(4, 4)}};
  for (const auto& hold : HOLDS) {
    harness.holdKey(hold.key);
    step(200);
    harness.releaseKey(hold.key);
    EXPECT_EQ(p_hero->getPosition(), hold.end) << hold.key;
  }
  // A tap (not a hold) does not move.
  harness.tapKey(Key::D);
  step(3);
  EXPECT_EQ(p_hero->getPosition(), Vector(4, 4));

  // The held button fires in steps 1, 6, 11, 16 and 21.
  harness.holdMouse(vt::Mouse::LEFT, Vector(40, 2));
  std::set<int> shots;
  for (int i = 0; i < 21; i++) {
    step();
    for (const vt::Object* p_shot : allOf("Bullet")) shots.insert(p_shot->getId());
  }
  EXPECT_EQ(shots.size(), 10u);
}

TEST_F(GameFixture, ADrelkAShotOrTheBossTouchingTheHeroLoses) {
  // Each puts an enemy where the next step brings it onto the hero.
  const struct {
    const char* enemy;
    std::function<void(vt::Object*)> place;
  } THREATS[] = {
      {"drelk flying in",
       [](vt::Object* p_hero) {
         (new Drelk)->setPosition(p_hero->getPosition() + Vector(9.5f, 0));
       }},
      {"shot falling",
       [](vt::Object* p_hero) {
         (new EnemyBullet(p_hero->getPosition() - Vector(3, 2.5f)))->setVelocity(Vector(0, 1));
       }},
      // The boss puts itself back on its spot every step, now over the hero.
      {"boss",
       [](vt::Object* p_hero) { p_hero->setPosition((new Boss)->getPosition() + Vector(0, 5)); }}};
  for (const auto& threat : THREATS) {
    SCOPED_TRACE(threat.enemy);
    ASSERT_NO_FATAL_FAILURE(start());
    auto* p_hero = new Hero;
    threat.place(p_hero);
    step();
    EXPECT_EQ(vt::ResourceManager::getInstance().getSound("game over")->getStatus(),
              sf::SoundSource::Playing);
    ASSERT_EQ(countOf("GameOver"), 1);
    EXPECT_FALSE(static_cast<GameOver*>(firstOf("GameOver"))->getWin());
    EXPECT_EQ(countOf("Hero"), 0);
    // The hero went out in four bursts of particles: two of 20, two of 30.
    EXPECT_EQ(countOf("Particle"), 100);
  }
}

TEST_F(GameFixture, EveryResourceOfTheGameLoads) {
  // A file that fails to load or parse leaves an error or a "not loaded" line.
  const std::string log = harness.logText();
  for (const char* failure : {"Error", "not loaded", "NOT loaded"}) {
    EXPECT_EQ(log.find(failure), std::string::npos) << failure;
  }
  // The last sprite loaded is whole; the music test uses the musics.
  const vt::Sprite* p_win = vt::ResourceManager::getInstance().getSprite("win");
  EXPECT_EQ(p_win ? p_win->getFrameCount() : 0, 36);
}

// Each screen's music, the wipe counter and Q on the title show in the
// replayed sessions; Q during a game removes only the hero.
TEST_F(GameFixture, QDuringAGameRemovesOnlyTheHero) {
  auto* p_title = new GameStart;
  harness.tapKey(Key::P);
  step();
  harness.tapKey(Key::Q);
  step();
  EXPECT_EQ(std::tuple(countOf("Hero"), countOf("Drelk"), countOf("GameOver")),
            std::tuple(0, 11, 0));
  EXPECT_FALSE(p_title->isActive() || vt::GameManager::getInstance().getGameOver());
}
