// Pacing of the game loop: 300 idle iterations at the default frame time,
// reporting the mean period and the spread of single periods around it.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "world/Object.h"
#include "world/WorldManager.h"

namespace {

const int ITERATIONS = 300;

// Notes the time of every step and ends the loop after the last one.
class StepTimer : public vt::Object {
 public:
  StepTimer() { registerInterest(vt::STEP_EVENT); }
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() != vt::STEP_EVENT) return 0;
    stamps.push_back(std::chrono::steady_clock::now());
    if (static_cast<int>(stamps.size()) == ITERATIONS + 1) {
      vt::GameManager::getInstance().setGameOver();
    }
    return 1;
  }
  std::vector<std::chrono::steady_clock::time_point> stamps;
};

double percentile(std::vector<double> values, double fraction) {
  std::sort(values.begin(), values.end());
  const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
  return values[index];
}

void BM_LoopPacing(benchmark::State& state) {
  std::string directory = (std::filesystem::temp_directory_path() / "vantor-bench-XXXXXX").string();
  if (mkdtemp(directory.data()) == nullptr) {
    state.SkipWithError("cannot make a temporary folder");
    return;
  }
  const std::string config_path = directory + "/config.txt";
  std::ofstream(config_path) << "headless:true,\nlogfile:" << directory << "/vantor.log,\n";
  setenv("VANTOR_CONFIG", config_path.c_str(), 1);
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  if (game_manager.startUp() != 0) {
    state.SkipWithError("game manager did not start");
    return;
  }
  const double frame_ms = game_manager.getFrameTime();
  for (auto _ : state) {
    auto* p_timer = new StepTimer;
    game_manager.run();
    std::vector<double> periods;
    std::vector<double> deviations;
    for (std::size_t i = 1; i < p_timer->stamps.size(); i++) {
      const double period =
          std::chrono::duration<double, std::milli>(p_timer->stamps[i] - p_timer->stamps[i - 1])
              .count();
      periods.push_back(period);
      deviations.push_back(std::fabs(period - frame_ms));
    }
    double total = 0;
    for (const double period : periods) total += period;
    state.counters["mean_period_ms"] = total / static_cast<double>(periods.size());
    state.counters["p50_deviation_ms"] = percentile(deviations, 0.50);
    state.counters["p99_deviation_ms"] = percentile(deviations, 0.99);
    state.counters["max_deviation_ms"] = percentile(deviations, 1.0);
    vt::WorldManager::getInstance().markForDelete(p_timer);
    vt::WorldManager::getInstance().update();
  }
  game_manager.shutDown();
  unsetenv("VANTOR_CONFIG");
  std::filesystem::remove_all(directory);
}

}  // namespace

BENCHMARK(BM_LoopPacing)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
