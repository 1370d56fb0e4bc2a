// A long headless session of the game's objects: titles, games, deaths and
// every other game the boss phase, for a million steps. Reports the growth
// of resident memory after the first game and the objects left at the title.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>

#include "Setup.h"
#include "core/EventStep.h"
#include "core/GameManager.h"
#include "extras/Harness.h"
#include "media/DisplayManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/ViewObject.h"
#include "world/EventCollision.h"
#include "world/WorldManager.h"

namespace {

vt::WorldManager& world() {
  return vt::WorldManager::getInstance();
}

double residentMb() {
  long pages = 0;
  long resident = 0;
  if (FILE* p_file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(p_file, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(p_file);
  }
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

std::map<std::string, int> objectCounts() {
  std::map<std::string, int> counts;
  for (const vt::Object* p_object : world().getAllObjects(true)) counts[p_object->getType()]++;
  return counts;
}

vt::Object* firstOf(const std::string& type) {
  for (vt::Object* p_object : world().getAllObjects(true)) {
    if (p_object->getType() == type) return p_object;
  }
  return nullptr;
}

// Plays as a player would: P at the title, the fire button held, and after
// a while a drelk that reaches the hero; every other game the score is
// taken past 1000 first, which brings in the boss.
class Player {
 public:
  void act(int step) {
    vt::Object* p_title = firstOf("GameStart");
    vt::Object* p_hero = firstOf("Hero");
    if (p_hero == nullptr) {
      game_step = 0;
      if (p_title != nullptr && p_title->isActive() && firstOf("GameOver") == nullptr) {
        at_title = objectCounts();
        press(p_title);
      }
      return;
    }
    if (game_step++ == 0) games++;
    fire(p_hero);
    if (games % 2 == 0 && game_step == 100) takeScorePastBoss();
    if (game_step == 600 + step % 400) collideWithDrelk(p_hero);
  }
  int games = 0;
  // The objects in the world when the title was last left.
  std::map<std::string, int> at_title;

 private:
  static void press(vt::Object* p_title) {
    vt::EventKeyboard key;
    key.setKey(vt::Keyboard::P);
    key.setKeyboardAction(vt::KEY_PRESSED);
    p_title->eventHandler(&key);
  }
  static void fire(vt::Object* p_hero) {
    vt::EventMouse mouse;
    mouse.setMouseAction(vt::PRESSED);
    mouse.setMouseButton(vt::Mouse::LEFT);
    p_hero->eventHandler(&mouse);
  }
  // The newest score display is the one this game added.
  static void takeScorePastBoss() {
    vt::ViewObject* p_points = nullptr;
    for (vt::Object* p_object : world().getAllObjects(true)) {
      if (p_object->getType() == "Points") p_points = static_cast<vt::ViewObject*>(p_object);
    }
    if (p_points != nullptr) p_points->setValue(1001);
  }
  static void collideWithDrelk(vt::Object* p_hero) {
    vt::Object* p_enemy = firstOf("Boss") != nullptr ? firstOf("Boss") : firstOf("Drelk");
    if (p_enemy == nullptr) return;
    const vt::EventCollision collision(p_enemy, p_hero, p_hero->getPosition());
    p_hero->eventHandler(&collision);
    p_enemy->eventHandler(&collision);
  }
  int game_step = 0;
};

void BM_HeadlessSession(benchmark::State& state) {
  // Started before entering the game's folder: the engine's default
  // settings, not the game's configuration file.
  vt::Harness harness;
  if (harness.startUp() != 0) {
    state.SkipWithError("the engine did not start");
    return;
  }
  if (chdir(VANTOR_GAME_DIR) != 0) state.SkipWithError("no game folder");
  // Headless and not capturing, the display draws nothing and says nothing.
  vt::DisplayManager::getInstance().setCapture(false);
  loadResources();
  const vt::Box screen(vt::Vector(0, 0), 80, 24);
  world().setBoundary(screen);
  world().setView(screen);
  populateWorld();
  Player player;
  const int steps = static_cast<int>(state.range(0));
  double after_first_game = 0;
  std::map<std::string, int> at_second_title;
  for (auto _ : state) {
    for (int step = 1; step <= steps; step++) {
      const vt::EventStep step_event(step);
      vt::GameManager::getInstance().onEvent(&step_event);
      world().update();
      world().draw();
      player.act(step);
      if (player.games == 2 && after_first_game == 0) {
        after_first_game = residentMb();
        at_second_title = player.at_title;
      }
    }
  }
  state.counters["games"] = player.games;
  state.counters["rss_after_first_game_MB"] = after_first_game;
  state.counters["rss_growth_MB"] = residentMb() - after_first_game;
  // Objects the title screen had at its last showing that it had not after
  // the first game: left behind by the games between.
  for (const auto& [type, count] : player.at_title) {
    const int before = at_second_title.count(type) > 0 ? at_second_title.at(type) : 0;
    if (count != before) state.counters["more_" + type] = count - before;
  }
  state.counters["log_MB"] = static_cast<double>(harness.logText().size()) / (1 << 20);
}

}  // namespace

BENCHMARK(BM_HeadlessSession)->Arg(100000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_MAIN();
