// The shooter's rules at the edges its recorded sessions do not reach: the sessions, replayed in
// ShooterReplayTest, compare every object with the recording every 30 steps.
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <tuple>
#include <vector>

#include "Boss.h"
#include "Bullet.h"
#include "Drelk.h"
#include "EnemyBullet.h"
#include "Explosion.h"
#include "GameOver.h"
#include "GameStart.h"
#include "Hero.h"
#include "Points.h"
#include "Reticle.h"
#include "Setup.h"
#include "Star.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;
namespace Key = vt::Keyboard;

namespace {

vt::WorldManager& world = vt::WorldManager::getInstance();

// The objects of the type, inactive ones too, in the order the world keeps them.
std::vector<vt::Object*> allOf(const std::string& type) {
  std::vector<vt::Object*> found;
  for (vt::Object* p_object : world.getAllObjects(true))
    if (p_object->getType() == type) found.push_back(p_object);
  return found;
}
int countOf(const std::string& type) {
  return static_cast<int>(allOf(type).size());
}

// Hero bullets one row below the target, flying up into it at the next
// step. A bullet starts three cells right of the point it is given.
void shootAt(const vt::Object* p_target, int count = 1) {
  const float below = p_target->getBox().getVertical() / 2 + 1;
  for (int i = 0; i < count; i++)
    (new Bullet(p_target->getPosition() + Vector(-3, below)))->setVelocity(Vector(0, -1.2f));
}

// The whole engine headless in the game's folder with its resources loaded;
// step 0 is played, so that the score does not tick again before step 30.
class GameRules : public testing::Test {
 protected:
  void SetUp() override { start(); }
  void TearDown() override {
    EXPECT_FALSE(harness.logContains("Error") || harness.logContains("Warning"));
  }
  void start() {
    harness.shutDown();
    ASSERT_EQ(chdir(VANTOR_GAME_DIR), 0);
    ASSERT_EQ(harness.startUp(), 0);
    loadResources();
    step();
  }
  void step(int count = 1) { EXPECT_EQ(harness.step(count), count); }
  vt::Harness harness;
};

}  // namespace

TEST_F(GameRules, FiveNukesAGameDestroyEnemyBulletsOnlyFor200Each) {
  auto* p_hero = new Hero;
  auto* p_points = new Points;
  for (const float x : {10.0f, 20.0f}) new EnemyBullet(Vector(x, 5));
  new Drelk;
  // Five, and a sixth that finds none left.
  for (int i = 0; i < 6; i++) {
    harness.tapKey(Key::SPACE);
    step();
    EXPECT_EQ(std::tuple(countOf("EnemyBullet"), countOf("Drelk")), std::tuple(0, 1));
  }
  EXPECT_EQ(std::pair(p_hero->getNukeCount(), p_points->getValue()), std::pair(0, -1000));
}

TEST_F(GameRules, EveryDrelkDeletionScores10KillsAreReplacedAndTheLeftEdgeLeadsRight) {
  auto* p_points = new Points;
  auto* p_drelk = new Drelk;
  p_drelk->setPosition(Vector(60, 8));
  // Two bullets into it in one step: one kill, one explosion, one newcomer.
  shootAt(p_drelk, 2);
  step();
  EXPECT_EQ(
      std::tuple(countOf("Drelk"), countOf("Explosion"), countOf("Bullet"), p_points->getValue()),
      std::tuple(1, 1, 0, 10));
  // Two drelks that overlap leave each other alone.
  vt::Object* p_survivor = allOf("Drelk").at(0);
  (new Drelk)->setPosition(p_survivor->getPosition());
  step();
  EXPECT_EQ(countOf("Drelk"), 2);
  world.markForDelete(p_survivor);
  step();
  EXPECT_EQ(p_points->getValue(), 20);
  // Off the left edge a drelk starts again beyond the right one. That drelks start on a free column
  // there, and that leaving by another edge changes nothing, the sessions show.
  auto* p_runner = new Drelk;
  p_runner->setPosition(Vector(2, 6));
  EXPECT_TRUE(harness.stepUntil([&] { return p_runner->getPosition().getX() > 80; }, 12));
}

TEST_F(GameRules, HeldKeysMoveTheHeroInsideItsBounds) {
  auto* p_hero = new Hero;
  // Stopping one cell inside the bounds. Where the hero starts and how fast
  // it goes, a cell every other step, the sessions show.
  const std::pair<int, Vector> HOLDS[] = {
      {Key::D, {78, 20}}, {Key::S, {78, 22}}, {Key::W, {78, 4}}, {Key::A, {4, 4}}};
  for (const auto& [key, end] : HOLDS) {
    harness.holdKey(key);
    step(200);
    harness.releaseKey(key);
    EXPECT_EQ(p_hero->getPosition(), end) << key;
  }
  harness.tapKey(Key::D);  // a tap is no hold
  step(3);
  EXPECT_EQ(p_hero->getPosition(), Vector(4, 4));
}

TEST_F(GameRules, ADrelkAShotOrTheBossTouchingTheHeroLoses) {
  // Each puts an enemy where the next step brings it onto the hero; the boss puts itself back on
  // its spot every step, now over the hero. (A drelk's touch the sessions show.)
  const std::function<void(vt::Object*)> THREATS[] = {
      [](vt::Object* p_hero) {
        (new EnemyBullet(p_hero->getPosition() - Vector(3, 2.5f)))->setVelocity(Vector(0, 1));
      },
      [](vt::Object* p_hero) { p_hero->setPosition((new Boss)->getPosition() + Vector(0, 5)); }};
  for (const auto& place : THREATS) {
    SCOPED_TRACE(&place - THREATS);
    ASSERT_NO_FATAL_FAILURE(start());
    auto* p_hero = new Hero;
    place(p_hero);
    step();
    EXPECT_EQ(vt::ResourceManager::getInstance().getSound("game over")->getStatus(),
              sf::SoundSource::Playing);
    ASSERT_EQ(countOf("GameOver"), 1);
    EXPECT_FALSE(static_cast<GameOver*>(allOf("GameOver").at(0))->getWin());
    // The hero went out in four bursts of particles: two of 20, two of 30.
    EXPECT_EQ(std::pair(countOf("Hero"), countOf("Particle")), std::pair(0, 100));
  }
}

TEST_F(GameRules, EveryResourceLoadsAndQInPlayRemovesOnlyTheHero) {
  auto* p_title = new GameStart;
  harness.tapKey(Key::P);
  step();
  harness.tapKey(Key::Q);
  step();
  EXPECT_EQ(std::tuple(countOf("Hero"), countOf("Drelk"), countOf("GameOver")),
            std::tuple(0, 11, 0));
  EXPECT_FALSE(p_title->isActive() || vt::GameManager::getInstance().getGameOver());
}

// The game does not make one, but a reticle starts mid-view and follows the mouse.
TEST_F(GameRules, TheReticleIsARedPlusWhereTheMouseMoved) {
  new Reticle;
  for (const Vector where : {Vector(40, 12), Vector(7, 3)}) {
    step();
    const auto cell = vt::DisplayManager::getInstance().getFrame().at(where.getX(), where.getY());
    EXPECT_EQ(std::tuple(cell.ch, cell.r, cell.g, cell.b), std::tuple('+', 255, 0, 0));
    harness.moveMouse(Vector(7, 3));
  }
}

// Each object is made at its altitude and with its solidness, and answers whether it handled an
// event, which a subclass that passes events on to its base relies on.
TEST_F(GameRules, EachObjectIsMadeAsItsRoleWantsAndAnswersWhetherItHandledTheEvent) {
  EXPECT_EQ(test::describeRoles({new Hero, new Points, new Boss, new Bullet({}), new Drelk,
                                 new EnemyBullet({}), new Explosion, new GameOver(false),
                                 new GameStart, new Reticle, new Star}),
            "Hero@2/0:10110 Points@4/2:10000 Boss@2/0:10000 Bullet@2/1:01000 Drelk@2/0:11000 "
            "EnemyBullet@2/1:01000 Explosion@2/2:10000 GameOver@4/2:10001 GameStart@4/2:00101 "
            "Reticle@4/2:00010 Star@0/2:01000");
}
