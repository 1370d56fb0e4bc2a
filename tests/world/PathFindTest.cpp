#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <list>
#include <vector>

#include "extras/Harness.h"
#include "media/ResourceManager.h"
#include "world/EventPath.h"
#include "world/MapLoader.h"
#include "world/PathManager.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

vt::PathManager& paths = vt::PathManager::getInstance();
vt::WorldManager& world = vt::WorldManager::getInstance();
vt::ResourceManager& resources = vt::ResourceManager::getInstance();

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

// The cost of a cheapest path from (1, 7) to (28, 7) across a 30 x 15 world
// (infinity if none): orthogonal steps cost 1, diagonal ones the square root
// of 2 and need one of the two cells beside them free.
const int W = 30, H = 15;
float cheapestCost(const std::vector<bool>& blocked, bool four_directions) {
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
        const bool diagonal = dx != 0 && dy != 0;
        if (!free(x + dx, y + dy) ||
            (diagonal && (four_directions || (!free(x + dx, y) && !free(x, y + dy)))))
          continue;
        const float next = cost[(y + dy) * W + x + dx] + (diagonal ? std::sqrt(2.0f) : 1.0f);
        changed |= next < cost[cell];
        cost[cell] = std::min(cost[cell], next);
      }
    }
  }
  return cost[7 * W + 28];
}

// A one-cell object with the sprite's box or the in-cell one.
class Piece : public Seeker {
 public:
  Piece(Vector at, bool in_cell, const char* type = "Wall") : Seeker(at) {
    setType(type);
    setSprite("cell");
    if (in_cell) fitBoxInCell();
    setPosition(at);
  }
};

// A headless game with the one-cell sprite "cell"; unless a test says
// otherwise, a frame lets every search run to its end.
class PathFindTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(harness.startUp(), 0);
    ASSERT_EQ(resources.loadSprite(VANTOR_GAME_DIR "/sprites/bullet-spr.txt", "cell"), 0);
    paths.setMinTime(10000);
  }
  void TearDown() override { paths.setMinTime(0); }
  // The path once the search the call starts ends; empty without one.
  std::list<Vector> search(Seeker* p_searcher, const std::function<void()>& start_search) {
    p_searcher->statuses.clear();
    start_search();
    EXPECT_TRUE(harness.stepUntil([&] { return !p_searcher->statuses.empty(); }, 5));
    return p_searcher->statuses == std::vector<int>{vt::PATH_FOUND} ? p_searcher->getPath()
                                                                    : std::list<Vector>();
  }
  vt::Harness harness;
};

}  // namespace

TEST_F(PathFindTest, PathsAreCheapestAndEndWithoutAPathWhenThereIsNone) {
  int found = 0, unreachable = 0;
  for (int layout = 0; layout < 40; layout++) {
    SCOPED_TRACE(layout);
    harness.shutDown();
    ASSERT_EQ(harness.startUp(), 0);
    world.setBoundary(vt::Box(Vector(0, 0), W, H));
    std::srand(static_cast<unsigned>(layout));
    // Denser layouts later on, so that some block the way completely; one object in eight is SOFT
    // or SPECTRAL, which never blocks. Odd layouts are searched in four directions only.
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
    const bool four = layout % 2 == 1;
    p_seeker->pathTo(Vector(28, 7), four ? vt::FOUR_DIRECTIONS : vt::EIGHT_DIRECTIONS);
    paths.cycle(0);
    const float expected = cheapestCost(blocked, four);
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
  world.setBoundary(vt::Box(Vector(0, 0), 40, 20));
  makeWall(3, 3);
  auto* p_seeker = new Seeker(Vector(3, 4));
  p_seeker->pathTo(Vector(10, 20.5f));
  EXPECT_EQ(paths.cycle(0), 1);
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
  world.setBoundary(vt::Box(Vector(0, 0), 100000, 100000));
  p_seeker->setPosition(Vector(1, 50000));
  p_seeker->pathTo(Vector(99998, 50000));
  for (int frame = 0; p_seeker->statuses.size() < 3 && frame < 1000; frame++) paths.cycle(0);
  EXPECT_EQ(p_seeker->statuses.back(), vt::PATH_NOT_FOUND);
  const std::string log = harness.logText();
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
  EXPECT_NE(harness.logText().find("PathManager not started!"), std::string::npos);
}

TEST_F(PathFindTest, OnlyBoxesInsideTheirCellsGoAlongOneCellCorridorsAndNoPathLeadsIntoAWall) {
  for (const bool in_cell : {true, false}) {
    const float row = in_cell ? 5 : 11;
    for (int i = 0; i < 24; i++) new Piece(Vector(i % 12, row + (i < 12 ? -1 : 1)), in_cell);
    auto* p_walker = new Piece(Vector(1, row), in_cell, "Walker");
    EXPECT_EQ(world.moveObject(p_walker, Vector(2, row)), in_cell ? 0 : -1);
    p_walker->setSpeed(1);
    EXPECT_EQ(search(p_walker, [&] { p_walker->pathTo(Vector(10, row)); }).size(),
              in_cell ? 9u : 0u);
    EXPECT_TRUE(harness.stepUntil([&] { return !p_walker->getFollowPath(); }, 10));
    EXPECT_EQ(p_walker->getPosition(), Vector(in_cell ? 10 : 1, row));
    // A waypoint a step, never touching the walls.
    EXPECT_TRUE(!in_cell || p_walker->collisions == 0) << p_walker->collisions;
  }
  EXPECT_TRUE(harness.logContains("to (10, 11): every cell it can reach was searched."));
  // Into a wall no path leads; to an object sought, one does.
  auto* p_seeker = new Piece(Vector(22, 14), true, "Seeker");
  new Piece(Vector(30, 20), true);
  auto* p_quarry = new Piece(Vector(30, 14), true, "Quarry");
  EXPECT_TRUE(search(p_seeker, [&] { p_seeker->pathTo(Vector(30, 20)); }).empty());
  EXPECT_TRUE(harness.logContains(
      "No path from (22, 14) to (30, 20): the goal lies inside a HARD 'Wall'."));
  EXPECT_EQ(search(p_seeker, [&] { p_seeker->pathTo(p_quarry, vt::FOUR_DIRECTIONS); }).back(),
            Vector(30, 14));
  harness.shutDown();
  EXPECT_FALSE(paths.isStarted());
}

TEST_F(PathFindTest, ACellHoldsWhatReachesInsideItAndMapsBuildCellsOrNothing) {
  // One-cell sprites fill their cells to the edges, and so touch their neighbours.
  auto* p_wall = new Piece(Vector(5, 5), false);
  new Piece(Vector(6, 5), false);
  new Piece(Vector(5, 6), false);
  auto* p_mover = new Piece(Vector(7.5f, 6), false, "Mover");
  EXPECT_EQ(world.objectsAtPosition(Vector(6, 6)).getCount(), 3);
  const std::vector<std::pair<Vector, std::vector<vt::Object*>>> cases = {
      {{6, 6}, {}}, {{5.3f, 4.6f}, {p_wall}}, {{7, 6}, {p_mover}}, {{8.4f, 5.6f}, {p_mover}}};
  for (const auto& [where, expected] : cases) {
    const vt::ObjectList found = world.objectsInCell(where);
    EXPECT_EQ(std::vector<vt::Object*>(found.begin(), found.end()), expected) << where.toString();
  }
  // Maps build their cells, or fail without building anything.
  std::string huge;
  for (int row = 0; row < 300; row++) huge += std::string(4000, '#') + "\n";
  const std::vector<std::pair<std::string, std::string>> bad_maps = {
      {"", "Cannot open map file"},
      {"#####\n#  #\n", "line 2 has 4 characters, the lines before it 5."},
      {"#P#\n#X#\n", "line 2, column 2: no handler for the character 'X'."},
      {std::string(5000, '#'), "could not be read past line 1."},
      {huge, "has more than 1048576 cells by line 263."},
      {"\n", "holds no cells."}};
  std::vector<Vector> walls, players;
  vt::MapLoader map;
  map.on('#', [&](Vector at) { walls.push_back(at); });
  map.on('P', [&](Vector at) { players.push_back(at); });
  map.on('.', nullptr);
  for (std::size_t i = 0; i < bad_maps.size(); i++) {
    // Beside the harness's log, removed with it.
    const std::string file = harness.getLogFile() + ".map" + std::to_string(i);
    if (i > 0) std::ofstream(file) << bad_maps[i].first;
    EXPECT_EQ(map.load(file), -1);
    EXPECT_TRUE(harness.logContains(bad_maps[i].second)) << bad_maps[i].second;
  }
  EXPECT_TRUE(walls.empty() && players.empty());
  std::ofstream(harness.getLogFile() + ".good") << "#P#\r\n#.#";
  ASSERT_EQ(map.load(harness.getLogFile() + ".good", Vector(10, 3)), 0);
  EXPECT_EQ(walls, (std::vector<Vector>{{10, 3}, {12, 3}, {10, 4}, {12, 4}}));
  EXPECT_EQ(players, std::vector<Vector>{Vector(11, 3)});
  EXPECT_TRUE(map.getColumns() == 3 && map.getRows() == 2);
}
