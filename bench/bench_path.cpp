// Path search cost: a whole search, from the PathFind's construction to its
// last step, across worlds full of wall objects; and in huge worlds, the
// longest single frame's path cycle against its budget.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <set>
#include <utility>

#include "core/Clock.h"
#include "extras/Harness.h"
#include "world/EventPath.h"
#include "world/PathFind.h"
#include "world/PathManager.h"
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

// The engine started headless; false, with the benchmark marked skipped,
// when it does not start.
bool startEngine(benchmark::State& state, vt::Harness& harness) {
  if (harness.startUp() == 0) return true;
  state.SkipWithError("the engine did not start");
  return false;
}

void BM_PathAcrossScreen(benchmark::State& state) {
  vt::Harness harness;
  if (!startEngine(state, harness)) return;
  vt::WorldManager::getInstance().setBoundary(vt::Box(vt::Vector(), 80, 24));
  buildSerpentine();
  searchRepeatedly(state, vt::Vector(0, 12), vt::Vector(79, 12));
}

void BM_PathAcrossLargeWorld(benchmark::State& state) {
  vt::Harness harness;
  if (!startEngine(state, harness)) return;
  vt::WorldManager::getInstance().setBoundary(vt::Box(vt::Vector(), 256, 256));
  buildScattered(256, 2000);
  searchRepeatedly(state, vt::Vector(0, 0), vt::Vector(255, 255));
}

// Remembers how its search ended.
class Seeker : public vt::Object {
 public:
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() == vt::PATH_EVENT) {
      status = static_cast<const vt::EventPath*>(p_event)->getStatus();
    }
    return Object::eventHandler(p_event);
  }
  int status = vt::PATH_SEARCHING;
};

double threadCpuMs() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1000 + static_cast<double>(now.tv_nsec) / 1e6;
}

// A search from corner to corner of a square world of the given side, with
// a wall across the middle that leaves a gap at the far end (or none, when
// walled), run as the game loop would: one path cycle of budget_ms per
// frame. Reports the longest cycle, the frames taken and the peak memory.
void BM_PathCyclesInHugeWorld(benchmark::State& state) {
  const auto side = static_cast<float>(state.range(0));
  const bool walled = state.range(1) != 0;
  const int budget_ms = 5;
  vt::Harness harness;
  if (!startEngine(state, harness)) return;
  vt::PathManager& path_manager = vt::PathManager::getInstance();
  vt::WorldManager::getInstance().setBoundary(vt::Box(vt::Vector(), side, side));
  for (int x = 0; x < 200; x++) makeWall(x, 100);
  if (walled) makeWall(200, 100);
  for (auto _ : state) {
    auto* p_seeker = new Seeker;
    p_seeker->setPosition(vt::Vector(1, 1));
    p_seeker->pathTo(vt::Vector(side - 1, side - 1));
    double longest_ms = 0;
    double longest_cpu_ms = 0;
    int frames = 0;
    while (p_seeker->status == vt::PATH_SEARCHING && frames < 100000) {
      const auto start = std::chrono::steady_clock::now();
      const double cpu_start = threadCpuMs();
      path_manager.cycle(budget_ms);
      const std::chrono::duration<double, std::milli> taken =
          std::chrono::steady_clock::now() - start;
      longest_ms = std::max(longest_ms, taken.count());
      longest_cpu_ms = std::max(longest_cpu_ms, threadCpuMs() - cpu_start);
      frames++;
    }
    state.counters["longest_cycle_ms"] = longest_ms;
    state.counters["longest_cycle_cpu_ms"] = longest_cpu_ms;
    state.counters["budget_ms"] = budget_ms;
    state.counters["frames"] = frames;
    state.counters["found"] = p_seeker->status == vt::PATH_FOUND;
    vt::WorldManager::getInstance().markForDelete(p_seeker);
    vt::WorldManager::getInstance().update();
  }
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}

}  // namespace

BENCHMARK(BM_PathCyclesInHugeWorld)
    ->ArgsProduct({{3000, 100000}, {0, 1}})
    ->ArgNames({"side", "walled"})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PathAcrossScreen)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PathAcrossLargeWorld)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
