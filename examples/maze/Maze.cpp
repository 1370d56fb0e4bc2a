#include "Maze.h"

#include "Coin.h"
#include "Monster.h"
#include "Player.h"
#include "Wall.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "media/EventKeyboard.h"
#include "media/ResourceManager.h"
#include "world/MapLoader.h"
#include "world/WorldManager.h"

int loadResources() {
  vt::ResourceManager& resource_manager = vt::ResourceManager::getInstance();
  for (const char* name : {"player", "monster", "wall", "coin"}) {
    if (resource_manager.loadSprite(std::string("sprites/") + name + ".txt", name) != 0) return -1;
  }
  return 0;
}

namespace {

vt::ViewObject* makeView(const char* label, int location, int value) {
  auto* p_view = new vt::ViewObject;
  p_view->setViewString(label);
  p_view->setLocation(location);
  p_view->setValue(value);
  p_view->setColor(vt::YELLOW);
  return p_view;
}

}  // namespace

Maze::Maze()
    : p_timers(new vt::Timers),
      p_actions(new vt::InputActions),
      p_lives_view(makeView("Lives", vt::TOP_LEFT, LIVES)),
      p_coins_view(makeView("Coins", vt::TOP_RIGHT, 0)),
      p_message(new vt::TextLabel(vt::Vector(40, 1), "", vt::WHITE)) {
  setType("Maze");
  setSolidness(vt::SPECTRAL);
  setVisible(false);
  p_message->setJustification(vt::CENTER_JUSTIFIED);
  bindActions();
}

void Maze::bindActions() {
  const struct {
    const char* action;
    int key;
  } bindings[] = {{"up", vt::Keyboard::W},    {"up", vt::Keyboard::UPARROW},
                  {"down", vt::Keyboard::S},  {"down", vt::Keyboard::DOWNARROW},
                  {"left", vt::Keyboard::A},  {"left", vt::Keyboard::LEFTARROW},
                  {"right", vt::Keyboard::D}, {"right", vt::Keyboard::RIGHTARROW},
                  {"quit", vt::Keyboard::Q}};
  for (const auto& binding : bindings) p_actions->bindKey(binding.action, binding.key);
}

int Maze::build(const std::string& map_file) {
  vt::MapLoader map;
  map.on('#', [](vt::Vector at) { new Wall(at); });
  map.on('.', [this](vt::Vector at) {
    new Coin(at);
    coins_left++;
  });
  map.on('P', [this](vt::Vector at) { p_player = new Player(at, *this); });
  map.on('M', [this](vt::Vector at) { monsters.push_back(new Monster(at, *this)); });
  if (map.load(map_file, MAP_ORIGIN) != 0) return -1;
  if (p_player == nullptr) {
    vt::LogManager::getInstance().writeLog("Maze::build(): Error! '%s' has no player (P).",
                                           map_file.c_str());
    return -1;
  }
  p_coins_view->setValue(coins_left);
  p_timers->every(CHASE_STEPS, [this] {
    for (Monster* p_monster : monsters) p_monster->chase(p_player);
  });
  return 0;
}

void Maze::coinTaken() {
  coins_left--;
  p_coins_view->setValue(coins_left);
  if (coins_left == 0) end("Every coin is yours!");
}

void Maze::caught() {
  // More than one monster may reach the player in the step the game ends.
  if (over) return;
  lives--;
  p_lives_view->setValue(lives);
  vt::LogManager::getInstance().writeLog(
      "Caught at (%.0f, %.0f); %d lives left", static_cast<double>(p_player->getPosition().getX()),
      static_cast<double>(p_player->getPosition().getY()), lives);
  if (lives == 0) {
    end("Caught! The game is over.");
    return;
  }
  show("Caught!");
  p_player->restart();
  for (Monster* p_monster : monsters) p_monster->restart(p_player);
}

void Maze::show(const std::string& message) {
  p_message->setText(message);
  p_timers->after(MESSAGE_STEPS, [this, message] {
    if (p_message->getText() == message) p_message->setText("");
  });
}

void Maze::end(const std::string& message) {
  over = true;
  p_message->setText(message);
  for (Monster* p_monster : monsters) vt::WorldManager::getInstance().markForDelete(p_monster);
  monsters.clear();
  p_timers->after(MESSAGE_STEPS, [] { vt::GameManager::getInstance().setGameOver(); });
}
