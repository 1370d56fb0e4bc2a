// Path search cost: a whole search, from the PathFind's construction to its
// last step, across worlds full of wall objects.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <set>
#include <utility>

#include "support/HeadlessEngine.h"
#include "world/PathFind.h"
#include "world/WorldManager.h"

namespace {

void makeWall(int x, int y) {
  auto* p_wall = new vt::Object;
  p_wall->setPosition(vt::Vector(static_cast<float>(x), static_cast<float>(y)));
}

// Nine walls across the 80 by 24 screen, 22 cells each, open at the bottom
// and the top in turn, and two more in the corners: 200 objects that make a
// path from the left side to the right wind through every gap.
void buildSerpentine() {
  for (int column = 1; column <= 9; column++) {
    const int gap_top = column % 2 == 1 ? 22 : 0;
    for (int y = 0; y < 24; y++) {
      if (y < gap_top || y >= gap_top + 2) makeWall(column * 8, y);
    }
  }
  makeWall(79, 0);
  makeWall(79, 23);
}

// Walls at random cells, the corners left free.
void buildScattered(int size, int count) {
  std::srand(7);
  std::set<std::pair<int, int>> taken{{0, 0}, {size - 1, size - 1}};
  while (static_cast<int>(taken.size()) < count + 2) {
    const int x = std::rand() % size;
    const int y = std::rand() % size;
    if (taken.insert({x, y}).second) makeWall(x, y);
  }
}

void searchRepeatedly(benchmark::State& state, vt::Vector start, vt::Vector goal) {
  auto* p_seeker = new vt::Object;
  p_seeker->setPosition(start);
  std::size_t waypoints = 0;
  for (auto _ : state) {
    vt::PathFind search(p_seeker, start, goal);
    int status = vt::PATH_SEARCHING;
    while (status == vt::PATH_SEARCHING) status = search.cycleOnce();
    if (status != vt::PATH_FOUND) state.SkipWithError("no path found");
    waypoints = search.getPath().size();
  }
  state.counters["waypoints"] = static_cast<double>(waypoints);
}

void BM_PathAcrossScreen(benchmark::State& state) {
  test::HeadlessEngine engine;
  vt::WorldManager::getInstance().setBoundary(vt::Box(vt::Vector(), 80, 24));
  buildSerpentine();
  searchRepeatedly(state, vt::Vector(0, 12), vt::Vector(79, 12));
}

void BM_PathAcrossLargeWorld(benchmark::State& state) {
  test::HeadlessEngine engine;
  vt::WorldManager::getInstance().setBoundary(vt::Box(vt::Vector(), 256, 256));
  buildScattered(256, 2000);
  searchRepeatedly(state, vt::Vector(0, 0), vt::Vector(255, 255));
}

}  // namespace

BENCHMARK(BM_PathAcrossScreen)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PathAcrossLargeWorld)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
