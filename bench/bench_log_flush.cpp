// The cost of the game loop's flush of the log at the end of every step:
// a step's worth of log lines written and flushed, against the same lines
// left in the buffer. The difference is what the flush adds to a step; the
// counter frame_percent puts the flushed step's time in terms of a 33 ms
// frame.
#include <benchmark/benchmark.h>

#include <chrono>

#include "core/LogManager.h"
#include "extras/Harness.h"

namespace {

const double FRAME_NANOSECONDS = 33e6;

// Writes the lines a step of the game writes; flushes them when asked.
void writeStep(int lines, bool flush) {
  const vt::LogManager& log_manager = vt::LogManager::getInstance();
  for (int i = 0; i < lines; i++) {
    log_manager.writeLog("Object::setSprite(): Warning! Sprite '%s' not found", "bullet");
  }
  if (flush) log_manager.flush();
}

void runSteps(benchmark::State& state, bool flush) {
  vt::Harness harness;
  if (harness.startUp() != 0) {
    state.SkipWithError("the engine did not start");
    return;
  }
  // As in a game: the lines stay in the buffer until a flush, not each
  // pushed to the file as it is written.
  vt::LogManager::getInstance().setFlush(false);
  const int lines = static_cast<int>(state.range(0));
  const auto started = std::chrono::steady_clock::now();
  for (auto _ : state) writeStep(lines, flush);
  const std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - started;
  const double step_nanoseconds = spent.count() / static_cast<double>(state.iterations());
  state.counters["frame_percent"] = 100.0 * step_nanoseconds / FRAME_NANOSECONDS;
}

void BM_StepLinesFlushed(benchmark::State& state) {
  runSteps(state, true);
}

void BM_StepLinesBuffered(benchmark::State& state) {
  runSteps(state, false);
}

}  // namespace

// No line (most steps of a game at level 0), one, and a busy step's ten.
BENCHMARK(BM_StepLinesFlushed)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK(BM_StepLinesBuffered)->Arg(0)->Arg(1)->Arg(10);
BENCHMARK_MAIN();
