#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <list>
#include <vector>

#include "extras/Harness.h"
#include "media/ResourceManager.h"
#include "media/TextLabel.h"
#include "support/TestSupport.h"
#include "world/MapLoader.h"
#include "world/WorldManager.h"

using vt::Vector;

namespace {

vt::WorldManager& world = vt::WorldManager::getInstance();
vt::ResourceManager& resources = vt::ResourceManager::getInstance();

// A one-cell object with the sprite's box or the in-cell one; notes how its searches end.
class Piece : public vt::Object {
 public:
  Piece(Vector at, bool in_cell, const char* type = "Wall") {
    setType(type);
    setSprite("cell");
    if (in_cell) fitBoxInCell();
    setPosition(at);
  }
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() == vt::PATH_EVENT)
      status = static_cast<const vt::EventPath*>(p_event)->getStatus();
    return Object::eventHandler(p_event);
  }
  int status = -1;
};

class GridTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(harness.startUp(), 0);
    ASSERT_EQ(resources.loadSprite(VANTOR_GAME_DIR "/sprites/bullet-spr.txt", "cell"), 0);
  }
  // The path once the search the call starts ends; empty without one.
  std::list<Vector> search(Piece* p_searcher, const std::function<void()>& start_search) {
    p_searcher->status = -1;
    start_search();
    EXPECT_TRUE(harness.stepUntil([&] { return p_searcher->status != -1; }, 5));
    return p_searcher->status == vt::PATH_FOUND ? p_searcher->getPath() : std::list<Vector>();
  }
  vt::Harness harness;
};

}  // namespace

TEST_F(GridTest, OnlyBoxesInsideTheirCellsGoAlongOneCellCorridorsAndNoPathLeadsIntoAWall) {
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
}

TEST_F(GridTest, ACellHoldsWhatReachesInsideItNotWhatTouchesItsEdge) {
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
}

TEST_F(GridTest, MapsBuildTheirCellsOrFailWithoutBuildingAnything) {
  // The harness's own folder, removed with it.
  const std::string folder = std::filesystem::path(harness.getLogFile()).parent_path();
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
    const std::string file = folder + "/map" + std::to_string(i);
    if (i > 0) std::ofstream(file) << bad_maps[i].first;
    EXPECT_EQ(map.load(file), -1);
    EXPECT_TRUE(harness.logContains(bad_maps[i].second)) << bad_maps[i].second;
  }
  EXPECT_TRUE(walls.empty() && players.empty());
  std::ofstream(folder + "/good") << "#P#\r\n#.#";
  ASSERT_EQ(map.load(folder + "/good", Vector(10, 3)), 0);
  EXPECT_EQ(walls, (std::vector<Vector>{{10, 3}, {12, 3}, {10, 4}, {12, 4}}));
  EXPECT_EQ(players, std::vector<Vector>{Vector(11, 3)});
  EXPECT_TRUE(map.getColumns() == 3 && map.getRows() == 2);
}

// Snapping shows only in a window: elsewhere characters count for their nearest cell anyway.
TEST(SnapToCell, SnappedSpritesAndLabelsAreDrawnOnWholeCellsAndKeepTheirPositions) {
  ASSERT_TRUE(vt::test::startProcessXvfb());
  vt::test::TestConfig config(false);
  vt::DisplayManager& display = vt::DisplayManager::getInstance();
  ASSERT_EQ(world.startUp() + display.startUp() + resources.startUp(), 0);
  world.setView(vt::Box(Vector(0, 0), 80, 24));
  std::ofstream(config.folder() + "/ab.txt") << "1\n2\n1\n0\nwhite\nAB\n";
  ASSERT_EQ(resources.loadSprite(config.folder() + "/ab.txt", "ab"), 0);
  const auto shown = [&] {
    display.swapBuffers();
    return vt::test::captureWindow(*display.getWindow());
  };
  // An even width puts a sprite's characters on half cells.
  auto* p_sprite = new vt::Object;
  p_sprite->setSprite("ab");
  p_sprite->setPosition(Vector(20.3f, 5.4f));
  auto* p_label = new vt::TextLabel(Vector(30.6f, 7.2f), "CD", vt::GREEN);
  for (const bool snap : {false, true}) {
    p_sprite->setSnapToCell(snap);
    p_label->setSnapToCell(snap);
    world.draw();
    const sf::Image drawn = shown();
    display.drawString(Vector(20, 5), "AB", vt::LEFT_JUSTIFIED, vt::WHITE);
    display.drawString(Vector(31, 7), "CD", vt::LEFT_JUSTIFIED, vt::GREEN);
    EXPECT_EQ(vt::test::countDifferentPixels(drawn, shown()) == 0, snap);
  }
  EXPECT_EQ(p_sprite->getPosition(), Vector(20.3f, 5.4f));
  world.shutDown();
  resources.shutDown();
  display.shutDown();
}
