// Resource loading cost: one large sprite in each file format, and a table
// of sprites, sounds and music the size of the game's. Hostile input: files
// that claim two billion frames, and the matcher on a huge text, each run
// in a child process whose peak resident memory is reported.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <SFML/Audio/OutputSoundFile.hpp>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "core/Match.h"
#include "extras/Harness.h"
#include "media/ResourceManager.h"

namespace {

// The engine started headless, and a folder for the files a benchmark loads.
class Engine {
 public:
  explicit Engine(benchmark::State& state) {
    if (harness.startUp() != 0) state.SkipWithError("the engine did not start");
  }
  bool isStarted() const { return harness.isStarted(); }
  // Writes the bytes as a file of the log's folder; returns its path.
  std::string writeFile(const std::string& name, const std::string& bytes) const {
    const std::string path = (folder() / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  // Writes a 16-bit mono 8 kHz WAV of a tone, count samples long; its path.
  std::string writeWav(const std::string& name, int count) const {
    std::vector<sf::Int16> samples(static_cast<std::size_t>(count));
    for (int i = 0; i < count; i++) {
      samples[static_cast<std::size_t>(i)] =
          static_cast<sf::Int16>(std::lround(8000 * std::sin(i * 0.3)));
    }
    const std::string path = (folder() / name).string();
    sf::OutputSoundFile file;
    if (file.openFromFile(path, 8000, 1)) file.write(samples.data(), samples.size());
    return path;
  }

 private:
  std::filesystem::path folder() const {
    return std::filesystem::path(harness.getLogFile()).parent_path();
  }
  vt::Harness harness;
};

// The text of a sprite file of that many frames of width x height.
std::string spriteText(int frames, int width, int height, bool sectioned) {
  std::string rows;
  for (int frame = 0; frame < frames; frame++) {
    for (int row = 0; row < height; row++) {
      rows +=
          std::string(static_cast<std::size_t>(width), static_cast<char>('!' + (frame + row) % 90));
      rows += "\n";
    }
    if (sectioned) rows += "end\n";
  }
  const std::string frames_text = std::to_string(frames);
  const std::string width_text = std::to_string(width);
  const std::string height_text = std::to_string(height);
  if (!sectioned) {
    return frames_text + "\n" + width_text + "\n" + height_text + "\n2\nyellow\n" + rows;
  }
  return "<HEADER>\nframes " + frames_text + "\nwidth " + width_text + "\nheight " + height_text +
         "\ncolor yellow\nslowdown 2\n</HEADER>\n<BODY>\n" + rows +
         "</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n";
}

void loadLargeSprite(benchmark::State& state, bool sectioned) {
  const Engine engine(state);
  if (!engine.isStarted()) return;
  vt::ResourceManager& resource_manager = vt::ResourceManager::getInstance();
  const std::string file = engine.writeFile("large.txt", spriteText(100, 80, 24, sectioned));
  for (auto _ : state) {
    if (resource_manager.loadSprite(file, "large") != 0) state.SkipWithError("load failed");
    resource_manager.unloadSprite("large");
  }
}

void BM_LoadSimpleSprite100x80x24(benchmark::State& state) {
  loadLargeSprite(state, false);
}
void BM_LoadSectionedSprite100x80x24(benchmark::State& state) {
  loadLargeSprite(state, true);
}

// Ten sprites of the game's sizes, six one-second sounds and six
// thirty-second musics, loaded into a freshly started manager.
void BM_LoadResourceTable(benchmark::State& state) {
  const Engine engine(state);
  if (!engine.isStarted()) return;
  vt::ResourceManager& resource_manager = vt::ResourceManager::getInstance();
  const int sizes[][3] = {{2, 40, 4}, {2, 33, 9},  {2, 12, 3},  {2, 6, 3},    {2, 1, 1},
                          {1, 1, 1},  {10, 13, 5}, {2, 64, 19}, {38, 56, 15}, {36, 64, 17}};
  std::string sprites[10];
  for (int i = 0; i < 10; i++) {
    sprites[i] = engine.writeFile("sprite" + std::to_string(i) + ".txt",
                                  spriteText(sizes[i][0], sizes[i][1], sizes[i][2], i % 2 == 0));
  }
  std::string sounds[6];
  std::string musics[6];
  for (int i = 0; i < 6; i++) {
    sounds[i] = engine.writeWav("sound" + std::to_string(i) + ".wav", 44100);
    musics[i] = engine.writeWav("music" + std::to_string(i) + ".wav", 44100 * 30);
  }
  for (auto _ : state) {
    int failures = 0;
    for (int i = 0; i < 10; i++) failures -= resource_manager.loadSprite(sprites[i], sprites[i]);
    for (int i = 0; i < 6; i++) {
      failures -= resource_manager.loadSound(sounds[i], sounds[i]);
      failures -= resource_manager.loadMusic(musics[i], musics[i]);
    }
    if (failures != 0) state.SkipWithError("a load failed");
    state.PauseTiming();
    resource_manager.shutDown();
    resource_manager.startUp();
    state.ResumeTiming();
  }
}

struct ChildFigures {
  double peak_mb;
  double ms;
  double cpu_ms;
  int result;
};

double cpuMs(const rusage& usage) {
  const auto ms = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
  };
  return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// Runs work in a forked child after prepare; reports the child's peak
// resident memory and how long work took, in wall-clock and CPU time.
ChildFigures measureInChild(const std::function<void()>& prepare,
                            const std::function<int()>& work) {
  int channel[2];
  if (pipe(channel) != 0) return {-1, -1, -1, -1};
  const pid_t child = fork();
  if (child == 0) {
    prepare();
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    const auto start = std::chrono::steady_clock::now();
    const int result = work();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const ChildFigures figures{static_cast<double>(usage.ru_maxrss) / 1024, taken.count(),
                               cpuMs(usage) - cpuMs(before), result};
    const ssize_t written = write(channel[1], &figures, sizeof figures);
    _exit(written == sizeof figures ? 0 : 1);
  }
  close(channel[1]);
  ChildFigures figures{-1, -1, -1, -1};
  if (read(channel[0], &figures, sizeof figures) != sizeof figures) figures = {-1, -1, -1, -1};
  close(channel[0]);
  waitpid(child, nullptr, 0);
  return figures;
}

void report(benchmark::State& state, const ChildFigures& figures, int expected_result) {
  if (figures.result != expected_result) state.SkipWithError("unexpected result");
  state.counters["peak_MB"] = figures.peak_mb;
  state.counters["ms"] = figures.ms;
  state.counters["cpu_ms"] = figures.cpu_ms;
}

// A file claiming two billion frames of 1x1, followed by megabytes of rows:
// each row is a whole frame, but far fewer than claimed.
std::string hostileSprite(int megabytes, bool sectioned) {
  const std::string frame = sectioned ? "x\nend\n" : "x\n";
  std::string body;
  while (body.size() < static_cast<std::size_t>(megabytes) << 20) body += frame;
  if (!sectioned) return "2000000000\n1\n1\n0\nred\n" + body;
  return "<HEADER>\nframes 2000000000\nwidth 1\nheight 1\n</HEADER>\n<BODY>\n" + body +
         "</BODY>\n<FOOTER>\nversion 1\n</FOOTER>\n";
}

void BM_HostileSprite(benchmark::State& state) {
  const Engine engine(state);
  if (!engine.isStarted()) return;
  const std::string file = engine.writeFile(
      "hostile.txt", hostileSprite(static_cast<int>(state.range(0)), state.range(1) != 0));
  for (auto _ : state) {
    report(
        state,
        measureInChild(
            [] {}, [&] { return vt::ResourceManager::getInstance().loadSprite(file, "hostile"); }),
        -1);
  }
}

// A text of many short entries, searched for a key it does not hold.
void BM_MatchHugeText(benchmark::State& state) {
  for (auto _ : state) {
    std::string text;
    report(state,
           measureInChild(
               [&] {
                 while (text.size() < static_cast<std::size_t>(state.range(0)) << 20) {
                   text += "a:1,";
                 }
               },
               [&] { return static_cast<int>(vt::match(text, "b").size()); }),
           0);
  }
}

}  // namespace

BENCHMARK(BM_HostileSprite)
    ->ArgsProduct({{10, 40}, {0, 1}})
    ->ArgNames({"MB", "sectioned"})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MatchHugeText)->Arg(54)->ArgName("MB")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSimpleSprite100x80x24)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSectionedSprite100x80x24)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadResourceTable)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
