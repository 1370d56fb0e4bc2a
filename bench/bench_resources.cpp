// Resource loading cost: one large sprite in each file format, and a table
// of sprites, sounds and music the size of the game's.
#include <benchmark/benchmark.h>

#include <string>

#include "media/ResourceManager.h"
#include "support/ResourceEngine.h"

namespace {

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
  test::ResourceEngine engine;
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
  test::ResourceEngine engine;
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

}  // namespace

BENCHMARK(BM_LoadSimpleSprite100x80x24)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadSectionedSprite100x80x24)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadResourceTable)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
