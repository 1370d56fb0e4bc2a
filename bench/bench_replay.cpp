// Replays a recorded ten-minute session of the shooter headless, as fast as
// the loop runs, and reports its time, its steps and the recording's size.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Setup.h"
#include "extras/Harness.h"
#include "extras/Recording.h"

namespace {

const char* const SESSION = VANTOR_SESSIONS_DIR "/ten-minutes.vrec";

void BM_ReplayTenMinutes(benchmark::State& state) {
  if (chdir(VANTOR_GAME_DIR) != 0) {
    state.SkipWithError("cannot enter the game's folder");
    return;
  }
  for (auto _ : state) {
    vt::Harness harness;
    if (harness.startUp() != 0 || harness.replay(SESSION) != 0) {
      state.SkipWithError("cannot replay the session");
      return;
    }
    playGame();
    if (harness.finishReplay() != 0) {
      state.SkipWithError(harness.replayFailure().c_str());
      return;
    }
  }
  std::ifstream in(SESSION);
  vt::Recording recording;
  recording.read(in);
  state.counters["recording_bytes"] = static_cast<double>(std::filesystem::file_size(SESSION));
  state.counters["steps"] = recording.getEndStep();
}
BENCHMARK(BM_ReplayTenMinutes)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
