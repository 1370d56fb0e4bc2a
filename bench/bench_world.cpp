// World update cost: many moving solid objects (collision tests against
// each other) and many moving spectral ones (movement only).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>

#include "extras/Harness.h"
#include "world/Object.h"
#include "world/WorldManager.h"

namespace {

// Spreads count objects over a world sized for them, moving in all
// directions, and bounces them back when they leave.
class Drifter : public vt::Object {
 public:
  Drifter(vt::Solidness solidness, float world_size) : size(world_size) {
    setSolidness(solidness);
    setPosition(vt::Vector(randomCoordinate(), randomCoordinate()));
    setVelocity(vt::Vector(randomSpeed(), randomSpeed()));
  }
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() == vt::OUT_EVENT) setVelocity(getVelocity() * -1.0f);
    return 1;
  }

 private:
  float randomCoordinate() const { return static_cast<float>(std::rand() % 1000) / 1000 * size; }
  static float randomSpeed() { return static_cast<float>(std::rand() % 200 - 100) / 200; }
  float size;
};

void runWorld(benchmark::State& state, vt::Solidness solidness) {
  vt::Harness harness;
  if (harness.startUp() != 0) {
    state.SkipWithError("the engine did not start");
    return;
  }
  const auto count = static_cast<int>(state.range(0));
  // About one object per 16 cells keeps collisions realistic.
  const float world_size = std::sqrt(static_cast<float>(count) * 16);
  vt::WorldManager& world_manager = vt::WorldManager::getInstance();
  world_manager.setBoundary(vt::Box(vt::Vector(), world_size, world_size));
  std::srand(1);
  for (int i = 0; i < count; i++) new Drifter(solidness, world_size);
  for (auto _ : state) world_manager.update();
  state.SetComplexityN(count);
}

void BM_WorldUpdateSolid(benchmark::State& state) {
  runWorld(state, vt::HARD);
}
void BM_WorldUpdateSpectral(benchmark::State& state) {
  runWorld(state, vt::SPECTRAL);
}

}  // namespace

BENCHMARK(BM_WorldUpdateSolid)
    ->Arg(1000)
    ->Arg(2000)
    ->Arg(4000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(BM_WorldUpdateSpectral)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
