#include "Setup.h"

#include "GameStart.h"
#include "Star.h"
#include "core/GameManager.h"
#include "extras/Pause.h"
#include "extras/Splash.h"
#include "media/EventKeyboard.h"
#include "media/ResourceManager.h"

void loadResources() {
  vt::ResourceManager& resource_manager = vt::ResourceManager::getInstance();
  // A missing file only costs its log line: every user copes without it.
  static const struct {
    const char* label;
    const char* file;
  } SPRITES[] =
      {{"sans", "sprites/sans-spr.txt"},           {"boss", "sprites/boss-spr.txt"},
       {"drelk", "sprites/drelk-spr.txt"},         {"ship", "sprites/player-spr.txt"},
       {"bullet", "sprites/bullet-spr.txt"},       {"enemy-bullet", "sprites/bullet-enemy.txt"},
       {"explosion", "sprites/explosion-spr.txt"}, {"gamestart", "sprites/gamestart-spr.txt"},
       {"gameover", "sprites/gameover-spr.txt"},   {"win", "sprites/win-spr.txt"}},
    SOUNDS[] = {{"fire", "sounds/fire.wav"},
                {"explode", "sounds/explode.wav"},
                {"nuke", "sounds/nuke.wav"},
                {"game over", "sounds/game-over.wav"},
                {"enemydead", "sounds/enemy-dead.wav"},
                {"enemyhit", "sounds/enemy-hit.wav"}},
    MUSICS[] = {
        {"GameDead", "sounds/GameDead.wav"},     {"start music", "sounds/start-music.wav"},
        {"gameplay", "sounds/gameplay.wav"},     {"InGameBGM", "sounds/InGameBGM.wav"},
        {"VictoryBGM", "sounds/VictoryBGM.wav"}, {"Boss1BattleBGM", "sounds/Boss1BattleBGM.wav"}};
  for (const auto& sprite : SPRITES) resource_manager.loadSprite(sprite.file, sprite.label);
  for (const auto& sound : SOUNDS) resource_manager.loadSound(sound.file, sound.label);
  for (const auto& music : MUSICS) resource_manager.loadMusic(music.file, music.label);
}

void populateWorld() {
  for (int i = 0; i < 16; i++) new Star;
  new GameStart;
}

void playGame() {
  vt::splash();
  loadResources();
  populateWorld();
  new vt::Pause(vt::Keyboard::F10);
  vt::GameManager::getInstance().run();
}
