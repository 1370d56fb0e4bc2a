// The cost of the frame stats in a step of the game loop: the timing of
// the step's parts alone (stats off), with a row written to VANTOR_STATS's
// file, and with the F12 overlay drawn. A headless engine with 100 objects
// in the world; the counter frame_percent puts one step's cost in terms of
// a 33 ms frame.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/FrameStats.h"
#include "extras/Harness.h"
#include "world/Object.h"

namespace {

const double FRAME_NANOSECONDS = 33e6;
const int OBJECTS = 100;

enum Mode { STATS_OFF, STATS_FILE, STATS_OVERLAY };

// What the game loop asks of the frame stats in one step.
void timeOneStep(vt::FrameStats& stats, int step) {
  stats.beginStep();
  for (int part = 0; part < vt::FRAME_PART_COUNT; part++) {
    stats.endPart(static_cast<vt::FramePart>(part));
  }
  stats.drawOverlay();
  stats.endStep(step);
}

void BM_FrameStatsStep(benchmark::State& state) {
  const auto mode = static_cast<Mode>(state.range(0));
  // The stats file is opened as the engine starts, before the harness has
  // its folder: it goes in one of its own.
  std::string folder = (std::filesystem::temp_directory_path() / "vantor-bench-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    state.SkipWithError("cannot make a temporary folder");
    return;
  }
  if (mode == STATS_FILE) setenv("VANTOR_STATS", (folder + "/stats.csv").c_str(), 1);
  vt::Harness harness;
  if (harness.startUp() != 0) {
    state.SkipWithError("the engine did not start");
    unsetenv("VANTOR_STATS");
    std::filesystem::remove_all(folder);
    return;
  }
  for (int i = 0; i < OBJECTS; i++) new vt::Object;
  vt::FrameStats& stats = vt::FrameStats::getInstance();
  if (mode == STATS_OVERLAY) stats.toggleOverlay();
  int step = 0;
  const auto started = std::chrono::steady_clock::now();
  for (auto _ : state) timeOneStep(stats, step++);
  const std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - started;
  state.counters["frame_percent"] =
      100.0 * spent.count() / static_cast<double>(state.iterations()) / FRAME_NANOSECONDS;
  harness.shutDown();
  unsetenv("VANTOR_STATS");
  std::filesystem::remove_all(folder);
}

}  // namespace

BENCHMARK(BM_FrameStatsStep)->ArgName("mode")->Arg(STATS_OFF)->Arg(STATS_FILE)->Arg(STATS_OVERLAY);
BENCHMARK_MAIN();
