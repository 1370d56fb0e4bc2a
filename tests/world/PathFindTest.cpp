#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <vector>

#include "extras/Harness.h"
#include "support/HeadlessEngine.h"
#include "world/EventPath.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

vt::PathManager& paths = vt::PathManager::getInstance();

// Notes the status of every path event and every collision it gets.
class Seeker : public vt::Object {
 public:
  explicit Seeker(Vector position) { setPosition(position); }
  int eventHandler(const vt::Event* p_event) override {
    const auto* p_path_event = dynamic_cast<const vt::EventPath*>(p_event);
    const int handled = Object::eventHandler(p_event);
    // A path event the object did not take as handled shows as status -1.
    if (p_path_event != nullptr) statuses.push_back(handled == 1 ? p_path_event->getStatus() : -1);
    collisions += p_event->getType() == vt::COLLISION_EVENT ? 1 : 0;
    return handled;
  }
  std::vector<int> statuses;
  int collisions = 0;
};

void makeWall(int x, int y, vt::Solidness solidness = vt::HARD) {
  auto* p_wall = new vt::Object;
  p_wall->setPosition(Vector(static_cast<float>(x), static_cast<float>(y)));
  p_wall->setSolidness(solidness);
}

// A headless world of the given size with the path manager running; unless
// a test says otherwise, a frame lets every search run to its end.
class PathFindTest : public testing::Test {
 protected:
  void SetUp() override {
    startWorld(40, 20);
    paths.setMinTime(10000);
  }
  void TearDown() override {
    paths.setMinTime(0);
    paths.shutDown();
  }
  void startWorld(float width, float height) {
    vt::WorldManager::getInstance().setBoundary(vt::Box(Vector(0, 0), width, height));
    ASSERT_TRUE(paths.isStarted() || paths.startUp() == 0);
  }
  std::unique_ptr<test::HeadlessEngine> engine = std::make_unique<test::HeadlessEngine>();
};

// The cost of a cheapest path from (1, 7) to (28, 7) across a 30 x 15 world
// (infinity if none): orthogonal steps cost 1, diagonal ones the square root
// of 2 and need one of the two cells beside them free.
const int W = 30, H = 15;
float cheapestCost(const std::vector<bool>& blocked) {
  const auto free = [&](int x, int y) {
    return x >= 0 && x < W && y >= 0 && y < H && !blocked[y * W + x];
  };
  std::vector<float> cost(W * H, std::numeric_limits<float>::infinity());
  cost[7 * W + 1] = 0;
  for (bool changed = true; changed;) {
    changed = false;
    for (int cell = 0; cell < W * H; cell++) {
      const int x = cell % W, y = cell / W;
      for (int d = 0; d < 9 && free(x, y); d++) {
        const int dx = d % 3 - 1, dy = d / 3 - 1;
        if (!free(x + dx, y + dy) || (dx != 0 && dy != 0 && !free(x + dx, y) && !free(x, y + dy)))
          continue;
        const float next =
            cost[(y + dy) * W + x + dx] + (dx != 0 && dy != 0 ? std::sqrt(2.0f) : 1.0f);
        changed |= next < cost[cell];
        cost[cell] = std::min(cost[cell], next);
      }
    }
  }
  return cost[7 * W + 28];
}

}  // namespace

TEST_F(PathFindTest, PathsAreCheapestAndEndWithoutAPathWhenThereIsNone) {
  int found = 0, unreachable = 0;
  for (int layout = 0; layout < 40; layout++) {
    SCOPED_TRACE(layout);
    engine = nullptr;
    engine = std::make_unique<test::HeadlessEngine>();
    startWorld(W, H);
    std::srand(static_cast<unsigned>(layout));
    // Denser layouts later on, so that some block the way completely; one
    // object in eight is SOFT or SPECTRAL, which never blocks.
    std::vector<bool> blocked(W * H, false), taken(W * H, false);
    for (int walls = 0; walls < 60 + layout * 4;) {
      const int x = std::rand() % W, y = std::rand() % H, kind = std::rand() % 16;
      if ((y == 7 && (x == 1 || x == 28)) || taken[y * W + x]) continue;
      taken[y * W + x] = true;
      blocked[y * W + x] = kind > 1;
      makeWall(x, y, kind == 0 ? vt::SOFT : kind == 1 ? vt::SPECTRAL : vt::HARD);
      walls++;
    }
    auto* p_seeker = new Seeker(Vector(1, 7));
    p_seeker->pathTo(Vector(28, 7));
    paths.cycle(0);
    const float expected = cheapestCost(blocked);
    const bool reachable = !std::isinf(expected);
    (reachable ? found : unreachable)++;
    EXPECT_EQ(p_seeker->statuses,
              std::vector<int>{reachable ? vt::PATH_FOUND : vt::PATH_NOT_FOUND});
    EXPECT_EQ(p_seeker->getFollowPath(), reachable);
    const std::list<Vector> path = p_seeker->getPath();
    ASSERT_EQ(path.empty(), !reachable);
    if (!reachable) continue;
    EXPECT_EQ(path.front(), Vector(1, 7));
    EXPECT_EQ(path.back(), Vector(28, 7));
    float cost = 0;
    for (auto at = path.begin(); std::next(at) != path.end(); ++at)
      cost += (*std::next(at) - *at).getMagnitude();
    EXPECT_NEAR(cost, expected, 1e-3);
  }
  EXPECT_TRUE(found > 5 && unreachable > 5) << found << " found, " << unreachable << " not";
}

TEST_F(PathFindTest, SearchesOutsideTheWorldOrTooBigFail) {
  makeWall(3, 3);
  auto* p_seeker = new Seeker(Vector(3, 4));
  p_seeker->pathTo(Vector(10, 20.5f));
  paths.cycle(0);
  EXPECT_EQ(p_seeker->statuses, std::vector<int>{vt::PATH_NOT_FOUND});
  // The far edges of the boundary count as inside; a start inside a wall is
  // reported and searched from.
  p_seeker->setPosition(Vector(3, 3));
  p_seeker->pathTo(Vector(40, 20));
  paths.cycle(0);
  EXPECT_EQ(p_seeker->statuses.back(), vt::PATH_FOUND);
  EXPECT_EQ(p_seeker->getPath().back(), Vector(39, 19));
  EXPECT_EQ(p_seeker->getPath().size(), 37u);
  p_seeker->pathTo(nullptr);
  // A way too long for the cells a search may reach ends without a path.
  startWorld(100000, 100000);
  p_seeker->setPosition(Vector(1, 50000));
  p_seeker->pathTo(Vector(99998, 50000));
  for (int frame = 0; p_seeker->statuses.size() < 3 && frame < 1000; frame++) paths.cycle(0);
  EXPECT_EQ(p_seeker->statuses.back(), vt::PATH_NOT_FOUND);
  const std::string log = engine->logText();
  for (const char* line :
       {"PathFind::PathFind(): Error! Both start (3.00, 4.00) and end (10.00, 20.50) must be "
        "within world boundary (40, 20).",
        "PathFind::PathFind(): Warning! Can't get to start node.",
        "PathFind::cycleOnce(): node graph not allocated.  Cannot find path.",
        "Object::pathTo(): Error! Target object is NULL.",
        "Unable to allocate pathfinding for 100000 columns at row "}) {
    EXPECT_NE(log.find(line), std::string::npos) << line;
  }
}

TEST_F(PathFindTest, SearchesEndWithTheirObjectsAndTheManager) {
  auto* p_seeker = new Seeker(Vector(2, 2));
  p_seeker->setPath({Vector(3, 3)});
  p_seeker->setFollowPath(true);
  p_seeker->pathTo(Vector(30, 10));
  // A new search abandons the old path and the old search.
  EXPECT_FALSE(p_seeker->getFollowPath());
  p_seeker->pathTo(Vector(30, 12));
  // No time left in the frame, or a frame already late: nothing happens.
  paths.setMinTime(0);
  for (int budget : {0, -7}) paths.cycle(budget);
  EXPECT_TRUE(p_seeker->statuses.empty());
  EXPECT_EQ(paths.getPendingCount(), 1);
  EXPECT_EQ(paths.insert(nullptr) + paths.remove(nullptr), -2);
  vt::WorldManager::getInstance().markForDelete(p_seeker);
  vt::WorldManager::getInstance().update();
  EXPECT_EQ(paths.getPendingCount(), 0);
  paths.shutDown();
  (new Seeker(Vector(1, 1)))->pathTo(Vector(5, 5));
  EXPECT_EQ(paths.getPendingCount(), 0);
  EXPECT_NE(engine->logText().find("PathManager not started!"), std::string::npos);
}

TEST(PathInRunningWorld, AnObjectWalksRoundAWallToItsGoal) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  // A wall down the middle of the screen, open only in the bottom rows.
  for (int y = 0; y < 20; y++) makeWall(40, y);
  auto* p_walker = new Seeker(Vector(10, 5));
  p_walker->setSpeed(1);
  p_walker->pathTo(Vector(70, 5));
  ASSERT_TRUE(harness.stepUntil([&] { return !p_walker->statuses.empty(); }, 100));
  ASSERT_EQ(p_walker->statuses, std::vector<int>{vt::PATH_FOUND});
  const std::list<Vector> path = p_walker->getPath();
  EXPECT_TRUE(std::any_of(path.begin(), path.end(), [](Vector at) { return at.getY() >= 20; }));
  // A waypoint a step, round the wall, never touching it.
  EXPECT_TRUE(
      harness.stepUntil([&] { return !p_walker->getFollowPath(); }, static_cast<int>(path.size())));
  EXPECT_EQ(p_walker->getPosition(), Vector(70, 5));
  EXPECT_EQ(p_walker->collisions, 0);
  harness.shutDown();
  EXPECT_FALSE(paths.isStarted());
}
