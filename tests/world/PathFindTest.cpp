#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <queue>
#include <set>
#include <utility>
#include <vector>

#include "core/LogManager.h"
#include "support/HeadlessEngine.h"
#include "world/EventPath.h"
#include "world/PathFind.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

using Cell = std::pair<int, int>;

vt::PathManager& paths() {
  return vt::PathManager::getInstance();
}

// An object that notes the status of every "vt-path" event it gets and then
// lets Object handle it.
class Seeker : public vt::Object {
 public:
  explicit Seeker(Vector position) { setPosition(position); }

  int eventHandler(const vt::Event* p_event) override {
    const auto* p_path_event = dynamic_cast<const vt::EventPath*>(p_event);
    if (p_path_event != nullptr) statuses.push_back(p_path_event->getStatus());
    return Object::eventHandler(p_event);
  }

  std::vector<int> statuses;
};

vt::Object* makeWall(Cell cell) {
  auto* p_wall = new vt::Object;
  p_wall->setPosition(Vector(static_cast<float>(cell.first), static_cast<float>(cell.second)));
  return p_wall;
}

// A headless world of the given size with the path manager running.
class PathFindTest : public testing::Test {
 protected:
  void SetUp() override { startWorld(40, 20); }
  void TearDown() override { paths().shutDown(); }

  void startWorld(int width, int height) {
    vt::WorldManager::getInstance().setBoundary(
        vt::Box(Vector(0, 0), static_cast<float>(width), static_cast<float>(height)));
    if (!paths().isStarted()) {
      ASSERT_EQ(paths().startUp(), 0);
    }
  }

  // Runs the searches to their end within one generous frame.
  static void finishSearches() {
    paths().setMinTime(10000);
    paths().cycle(0);
    paths().setMinTime(0);
  }

  std::unique_ptr<test::HeadlessEngine> engine = std::make_unique<test::HeadlessEngine>();
};

// The cost of a cheapest path by Dijkstra's algorithm over the same moves:
// orthogonal steps cost 1, diagonal ones the square root of 2 and need one of
// the two cells beside them free (so a path through a diagonal between two
// walls would come out cheaper). Infinity when there is none.
float cheapestCost(int width, int height, const std::set<Cell>& walls, Cell from, Cell to) {
  const auto free = [&](int x, int y) {
    return x >= 0 && x < width && y >= 0 && y < height && walls.count({x, y}) == 0;
  };
  const float infinity = std::numeric_limits<float>::infinity();
  std::vector<float> cost(static_cast<std::size_t>(width * height), infinity);
  using Item = std::pair<float, Cell>;
  std::priority_queue<Item, std::vector<Item>, std::greater<Item>> queue;
  cost[from.second * width + from.first] = 0;
  queue.push({0.0f, from});
  while (!queue.empty()) {
    const auto [c, cell] = queue.top();
    queue.pop();
    if (c > cost[cell.second * width + cell.first]) continue;
    for (int dy = -1; dy <= 1; dy++) {
      for (int dx = -1; dx <= 1; dx++) {
        const int x = cell.first + dx;
        const int y = cell.second + dy;
        if ((dx == 0 && dy == 0) || !free(x, y)) continue;
        if (dx != 0 && dy != 0 && !free(x, cell.second) && !free(cell.first, y)) continue;
        const float next = c + (dx != 0 && dy != 0 ? std::sqrt(2.0f) : 1.0f);
        if (next < cost[y * width + x]) {
          cost[y * width + x] = next;
          queue.push({next, {x, y}});
        }
      }
    }
  }
  return cost[to.second * width + to.first];
}

float pathCost(const std::list<Vector>& path) {
  float cost = 0;
  for (auto it = path.begin(); std::next(it) != path.end(); ++it) {
    cost += (*std::next(it) - *it).getMagnitude();
  }
  return cost;
}

}  // namespace

TEST_F(PathFindTest, PathsAreCheapestAndEndWithoutAPathWhenThereIsNone) {
  const int width = 30;
  const int height = 15;
  const Cell start{1, 7};
  const Cell goal{28, 7};
  int found = 0;
  int unreachable = 0;
  for (int layout = 0; layout < 40; layout++) {
    engine.reset();
    engine = std::make_unique<test::HeadlessEngine>();
    startWorld(width, height);
    std::srand(static_cast<unsigned>(layout));
    std::set<Cell> walls;
    // Denser layouts later on, so that some block the way completely.
    const int wall_count = 60 + layout * 4;
    while (static_cast<int>(walls.size()) < wall_count) {
      const Cell cell{std::rand() % width, std::rand() % height};
      if (cell != start && cell != goal && walls.insert(cell).second) makeWall(cell);
    }
    auto* p_seeker = new Seeker(Vector(1, 7));
    p_seeker->pathTo(Vector(28, 7));
    finishSearches();
    const float expected = cheapestCost(width, height, walls, start, goal);
    ASSERT_EQ(p_seeker->statuses.size(), 1u) << "layout " << layout;
    if (std::isinf(expected)) {
      unreachable++;
      EXPECT_EQ(p_seeker->statuses[0], vt::PATH_NOT_FOUND) << "layout " << layout;
      EXPECT_TRUE(p_seeker->getPath().empty());
      EXPECT_FALSE(p_seeker->getFollowPath());
      continue;
    }
    found++;
    ASSERT_EQ(p_seeker->statuses[0], vt::PATH_FOUND) << "layout " << layout;
    const std::list<Vector> path = p_seeker->getPath();
    EXPECT_EQ(path.front(), Vector(1, 7));
    EXPECT_EQ(path.back(), Vector(28, 7));
    for (const Vector& waypoint : path) {
      const Cell cell{static_cast<int>(waypoint.getX()), static_cast<int>(waypoint.getY())};
      EXPECT_EQ(walls.count(cell), 0u) << "layout " << layout;
    }
    EXPECT_NEAR(pathCost(path), expected, 1e-3) << "layout " << layout;
    EXPECT_TRUE(p_seeker->getFollowPath());
  }
  // Both outcomes were exercised.
  EXPECT_GT(found, 5);
  EXPECT_GT(unreachable, 5);
  EXPECT_EQ(paths().getPendingCount(), 0);
}

TEST_F(PathFindTest, OnlyTheFirstHardObjectInACellCounts) {
  // A corridor along row 5 from x 2 to 10, walled above and below.
  for (int x = 1; x <= 11; x++) {
    makeWall({x, 4});
    makeWall({x, 6});
  }
  makeWall({1, 5});
  makeWall({11, 5});
  // A big HARD object over the goal end of the corridor, added before a
  // wall in the middle of the corridor: the big one is found first in that
  // cell and covers the goal, so the cell counts as free.
  auto* p_big = new vt::Object;
  p_big->setPosition(Vector(8, 5));
  p_big->setBox(vt::Box(Vector(-2.5f, -0.4f), 5, 0.8f));
  vt::Object* p_blocker = makeWall({7, 5});
  auto* p_seeker = new Seeker(Vector(2, 5));
  p_seeker->pathTo(Vector(10, 5));
  finishSearches();
  EXPECT_EQ(p_seeker->statuses, std::vector<int>{vt::PATH_FOUND});

  // Found first, the small wall decides: it does not cover the goal.
  p_big->setSolidness(vt::SPECTRAL);
  p_big->setSolidness(vt::HARD);
  p_seeker->pathTo(Vector(10, 5));
  finishSearches();
  EXPECT_EQ(p_seeker->statuses.back(), vt::PATH_NOT_FOUND);

  // A SOFT object never blocks.
  p_blocker->setSolidness(vt::SOFT);
  p_seeker->pathTo(Vector(10, 5));
  finishSearches();
  EXPECT_EQ(p_seeker->statuses.back(), vt::PATH_FOUND);
}

TEST_F(PathFindTest, TheOccupantOfTheGoalDoesNotBlockIt) {
  auto* p_target = new vt::Object;
  p_target->setPosition(Vector(20, 10));
  auto* p_seeker = new Seeker(Vector(5, 10));
  p_seeker->pathTo(p_target);
  EXPECT_TRUE(p_seeker->getAvoidCollisions());
  finishSearches();
  ASSERT_EQ(p_seeker->statuses, std::vector<int>{vt::PATH_FOUND});
  EXPECT_EQ(p_seeker->getPath().back(), Vector(20, 10));
  EXPECT_EQ(p_seeker->getPath().size(), 16u);

  p_seeker->pathTo(nullptr);
  EXPECT_NE(engine->logText().find("Object::pathTo(): Error! Target object is NULL."),
            std::string::npos);
}

TEST_F(PathFindTest, UnusableSearchesEndAtTheFirstStepWithTheirMessage) {
  makeWall({3, 3});
  auto* p_seeker = new Seeker(Vector(-3, 4));
  p_seeker->pathTo(Vector(10, 10));
  p_seeker->setPosition(Vector(3, 4));
  p_seeker->pathTo(Vector(10, 20.5f));
  paths().cycle(5);
  EXPECT_EQ(p_seeker->statuses, std::vector<int>{vt::PATH_NOT_FOUND});
  EXPECT_EQ(paths().getPendingCount(), 0);
  // The far edges of the boundary still count as inside; a start inside a
  // wall is reported and searched from.
  p_seeker->setPosition(Vector(3, 3));
  p_seeker->pathTo(Vector(40, 20));
  finishSearches();
  EXPECT_EQ(p_seeker->statuses.back(), vt::PATH_FOUND);
  EXPECT_EQ(p_seeker->getPath().back(), Vector(39, 19));
  vt::PathFind orphan(nullptr, Vector(1, 1), Vector(2, 2));
  EXPECT_EQ(orphan.cycleOnce(), vt::PATH_NOT_FOUND);
  const std::string log = engine->logText();
  for (const char* line :
       {"PathFind::PathFind(): Error! Both start (3.00, 4.00) and end (10.00, 20.50) must be "
        "within world boundary (40, 20).",
        "PathFind::PathFind(): Warning! Can't get to start node.",
        "PathFind::cycleOnce(): node graph not allocated.  Cannot find path.",
        "PathFind()::PathFind(): Fatal error! Object pointer is NULL.",
        "PathFind::PathFind(): allocated [y, x]: 20, 40"}) {
    EXPECT_NE(log.find(line), std::string::npos) << line;
  }
}

TEST_F(PathFindTest, TheBudgetSpreadsASearchOverFrames) {
  // Across a large world the search takes many frames of one millisecond.
  startWorld(3000, 3000);
  makeWall({1500, 1500});
  auto* p_seeker = new Seeker(Vector(5, 5));
  p_seeker->pathTo(Vector(2990, 2995));
  // No time left in the frame, or a frame already late: nothing happens.
  paths().cycle(0);
  paths().cycle(-7);
  paths().cycle(1);
  EXPECT_TRUE(p_seeker->statuses.empty());
  EXPECT_EQ(paths().getPendingCount(), 1);
  int frames = 1;
  while (p_seeker->statuses.empty() && frames < 100000) {
    paths().cycle(1);
    frames++;
  }
  EXPECT_GT(frames, 1);
  ASSERT_EQ(p_seeker->statuses, std::vector<int>{vt::PATH_FOUND});
  EXPECT_EQ(p_seeker->getPath().front(), Vector(5, 5));
  EXPECT_EQ(p_seeker->getPath().back(), Vector(2990, 2995));
  // The minimum budget outweighs a late frame's negative one.
  p_seeker->pathTo(Vector(200, 200));
  paths().setMinTime(60000);
  paths().cycle(-7);
  EXPECT_EQ(p_seeker->statuses.size(), 2u);
}

TEST_F(PathFindTest, AHugeWorldCostsOnlyWhatTheSearchReaches) {
  // Starting costs nothing however large the world; a way too long for the
  // cells a search may reach ends it without a path, with its message.
  startWorld(100000, 100000);
  auto* p_seeker = new Seeker(Vector(1, 50000));
  p_seeker->pathTo(Vector(99998, 50000));
  EXPECT_EQ(paths().getPendingCount(), 1);
  for (int frame = 0; p_seeker->statuses.empty() && frame < 100000; frame++) paths().cycle(100);
  EXPECT_EQ(p_seeker->statuses, std::vector<int>{vt::PATH_NOT_FOUND});
  EXPECT_NE(engine->logText().find("PathFind::PathFind(): Error!  Unable to allocate pathfinding "
                                   "for 100000 columns at row "),
            std::string::npos);
}

TEST_F(PathFindTest, SearchesAreReleasedByTheirObjects) {
  auto* p_seeker = new Seeker(Vector(2, 2));
  p_seeker->setPath({Vector(3, 3)});
  p_seeker->setFollowPath(true);
  p_seeker->pathTo(Vector(30, 10));
  // A new search abandons the old path and the old search.
  EXPECT_FALSE(p_seeker->getFollowPath());
  p_seeker->pathTo(Vector(30, 12));
  EXPECT_EQ(paths().getPendingCount(), 1);
  vt::WorldManager::getInstance().markForDelete(p_seeker);
  vt::WorldManager::getInstance().update();
  EXPECT_EQ(paths().getPendingCount(), 0);
  paths().cycle(10);
  // A search cannot be added twice, nor to a stopped manager.
  auto* p_other = new Seeker(Vector(1, 1));
  vt::PathFind search(p_other, Vector(1, 1), Vector(5, 5));
  EXPECT_EQ(paths().insert(&search), 0);
  EXPECT_EQ(paths().insert(&search), -1);
  EXPECT_EQ(paths().remove(&search), 0);
  EXPECT_EQ(paths().remove(&search), -1);
  paths().shutDown();
  EXPECT_EQ(paths().insert(&search), -1);
  EXPECT_NE(engine->logText().find("PathManager not started!"), std::string::npos);
}

TEST_F(PathFindTest, FoundPathsAreWalkedAndCloseWaypointsTakenTogether) {
  auto* p_walker = new Seeker(Vector(2, 2));
  auto* p_runner = new Seeker(Vector(2, 4));
  for (Seeker* p_seeker : {p_walker, p_runner}) {
    p_seeker->setSolidness(vt::SPECTRAL);
    p_seeker->pathTo(p_seeker->getPosition() + Vector(10, 0));
  }
  p_walker->setSpeed(1.0f);
  p_runner->setSpeed(1.5f);
  finishSearches();
  ASSERT_EQ(p_walker->getPath().size(), 11u);
  // Waypoints one cell apart lie beyond 0.75 x 1: the walker takes one cell
  // per step, after the start cell. Within 0.75 x 1.5, the runner takes all.
  vt::WorldManager& world = vt::WorldManager::getInstance();
  world.update();
  EXPECT_EQ(p_walker->getPosition(), Vector(2, 2));
  EXPECT_EQ(p_walker->getDirection(), Vector(1, 0));
  EXPECT_EQ(p_runner->getPosition(), Vector(12, 4));
  EXPECT_FALSE(p_runner->getFollowPath());
  for (int step = 2; step <= 11; step++) world.update();
  EXPECT_EQ(p_walker->getPosition(), Vector(12, 2));
  EXPECT_FALSE(p_walker->getFollowPath());
}
