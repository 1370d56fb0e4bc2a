#include "media/ResourceManager.h"

#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/FileWatcher.h"
#include "media/LineReader.h"
#include "media/SpriteLoader.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

// Log level at which loaded frames are written out.
const int FRAME_DUMP_LEVEL = 15;

LogManager& logManager() {
  return LogManager::getInstance();
}

bool hotReloadWanted() {
  const char* p_variable = std::getenv("VANTOR_HOT_RELOAD");
  return Config::getInstance().getHotReload() ||
         (p_variable != nullptr && std::string(p_variable) == "1");
}

// The objects showing the sprite, each with whether its box is the
// sprite's size (as setSprite made it) rather than one of its own.
std::vector<std::pair<Object*, bool>> objectsShowing(const Sprite* p_sprite) {
  std::vector<std::pair<Object*, bool>> shown;
  for (Object* p_object : WorldManager::getInstance().getAllObjects(true)) {
    const Animation animation = p_object->getAnimation();
    if (animation.getSprite() == p_sprite) {
      shown.emplace_back(p_object, p_object->getBox() == animation.getBox());
    }
  }
  return shown;
}

// Their frame may be gone now, and their box may take the new size.
void fitToSprite(const std::vector<std::pair<Object*, bool>>& shown, const Sprite& sprite) {
  for (const auto& [p_object, sized_by_sprite] : shown) {
    Animation animation = p_object->getAnimation();
    if (animation.getIndex() >= sprite.getFrameCount()) animation.setIndex(0);
    p_object->setAnimation(animation, sized_by_sprite);
  }
}

// The sprite in the file, or null after logging why.
std::unique_ptr<Sprite> readSpriteFile(const std::string& file_name) {
  LineReader reader;
  if (reader.open(file_name)) return SpriteLoader(reader).load();
  LogManager::getInstance().writeLog("RM::reloadSprite(): Error! Cannot open file '%s'.",
                                     file_name.c_str());
  return nullptr;
}

}  // namespace

ResourceManager::ResourceManager() : p_sprite_watcher(std::make_unique<FileWatcher>()) {
  setType("ResourceManager");
}

ResourceManager::~ResourceManager() {
  deleteSprites();
}

ResourceManager& ResourceManager::getInstance() {
  static ResourceManager resource_manager;
  return resource_manager;
}

int ResourceManager::startUp() {
  if (alreadyStarted()) return -1;
  sprite_count = 0;
  sound_count = 0;
  music_count = 0;
  if (hotReloadWanted() && p_sprite_watcher->start() == 0) {
    logManager().writeLog(1,
                          "RM::startUp(): hot reload: sprite files are read again as they change.");
  }
  Manager::startUp();
  logManager().writeLog(5, "RM::startUp(): successfully started.");
  return 0;
}

void ResourceManager::shutDown() {
  p_sprite_watcher->stop();
  deleteSprites();
  for (int i = 0; i < sound_count; i++) sound[i].stop();
  for (int i = 0; i < music_count; i++) music[i].stop();
  sound_count = 0;
  music_count = 0;
  logManager().writeLog("RM::shutDown(): successfully stopped.");
  Manager::shutDown();
}

void ResourceManager::deleteSprites() {
  for (int i = 0; i < sprite_count; i++) {
    delete p_sprite[i];
    p_sprite[i] = nullptr;
  }
  sprite_count = 0;
}

// Sprites.

int ResourceManager::loadSprite(std::string filename, std::string label) {
  if (notStarted()) return -1;
  LogManager& log_manager = logManager();
  if (sprite_count == MAX_SPRITES) {
    log_manager.writeLog("RM::loadRobustSprite(): Error! Cannot add more Sprites (max is %d).",
                         MAX_SPRITES);
    log_manager.writeLog("RM::loadRobustSprite(): Sprite '%s' not loaded.", label.c_str());
    return -1;
  }
  log_manager.writeLog("RM::loadSprite(): Loading sprite '%s'.", filename.c_str());
  LineReader reader;
  if (!reader.open(filename)) {
    log_manager.writeLog("RM::loadSprite(): Error! Cannot open file '%s'.", filename.c_str());
    log_manager.writeLog("RM::loadSprite(): Sprite '%s' not loaded.", label.c_str());
    return -1;
  }
  std::unique_ptr<Sprite> p_new_sprite = SpriteLoader(reader).load();
  if (!p_new_sprite) {
    log_manager.writeLog("RM::loadSprite(): Sprite '%s' NOT loaded.", label.c_str());
    return -1;
  }
  p_new_sprite->setLabel(label);
  p_new_sprite->setFileName(filename);
  p_sprite[sprite_count++] = p_new_sprite.release();
  p_sprite_watcher->watch(filename);
  logFrames(*p_sprite[sprite_count - 1]);
  log_manager.writeLog(1, "RM::loadSprite(): Sprite '%s' loaded.", label.c_str());
  return 0;
}

void ResourceManager::logFrames(const Sprite& sprite) const {
  LogManager& log_manager = logManager();
  if (log_manager.getLogLevel() < FRAME_DUMP_LEVEL) return;
  log_manager.writeLog(FRAME_DUMP_LEVEL,
                       "RM::loadSprite(): Sprite '%s' frames:", sprite.getLabel().c_str());
  for (int i = 0; i < sprite.getFrameCount(); i++) {
    log_manager.writeLog(FRAME_DUMP_LEVEL, "\tFrame %d:", i + 1);
    const Frame frame = sprite.getFrame(i);
    const std::string text = frame.getString();
    const std::size_t width = static_cast<std::size_t>(frame.getWidth());
    for (std::size_t row = 0; row < text.size(); row += width) {
      log_manager.writeLog(FRAME_DUMP_LEVEL, "\t%s", text.substr(row, width).c_str());
    }
  }
}

void ResourceManager::reloadChangedSprites() {
  if (!p_sprite_watcher->isStarted()) return;
  for (const std::string& file_name : p_sprite_watcher->changedFiles()) {
    for (int i = 0; i < sprite_count; i++) {
      if (p_sprite[i]->getFileName() == file_name) reloadSprite(*p_sprite[i]);
    }
  }
}

void ResourceManager::reloadSprite(Sprite& sprite) {
  LogManager& log_manager = logManager();
  const std::string file_name = sprite.getFileName();
  std::unique_ptr<Sprite> p_new_sprite = readSpriteFile(file_name);
  if (!p_new_sprite) {
    log_manager.writeLog(
        "RM::reloadSprite(): Warning! Sprite '%s' keeps its old frames: '%s' did not load.",
        sprite.getLabel().c_str(), file_name.c_str());
    return;
  }
  const std::vector<std::pair<Object*, bool>> shown = objectsShowing(&sprite);
  p_new_sprite->setLabel(sprite.getLabel());
  p_new_sprite->setFileName(file_name);
  sprite = std::move(*p_new_sprite);
  fitToSprite(shown, sprite);
  log_manager.writeLog("RM::reloadSprite(): Sprite '%s' read again from '%s'.",
                       sprite.getLabel().c_str(), file_name.c_str());
}

int ResourceManager::unloadSprite(std::string label) {
  if (notStarted()) return -1;
  const int index = findSprite(label);
  if (index < 0) return -1;
  delete p_sprite[index];
  for (int i = index; i < sprite_count - 1; i++) p_sprite[i] = p_sprite[i + 1];
  p_sprite[--sprite_count] = nullptr;
  return 0;
}

Sprite* ResourceManager::getSprite(std::string label) const {
  logManager().writeLog(5, "RM::getSprite(): Looking for sprite '%s'.", label.c_str());
  const int index = findSprite(label);
  if (index >= 0) return p_sprite[index];
  logManager().writeLog("RM::getSprite(): Warning! Sprite '%s' not found.", label.c_str());
  return nullptr;
}

int ResourceManager::findSprite(const std::string& label) const {
  for (int i = 0; i < sprite_count; i++) {
    if (p_sprite[i]->getLabel() == label) return i;
  }
  return -1;
}

// Sounds.

int ResourceManager::loadSound(std::string filename, std::string label) {
  if (notStarted()) return -1;
  LogManager& log_manager = logManager();
  if (sound_count == MAX_SOUNDS) {
    log_manager.writeLog("RM::loadSound(): Error! Unable to add more sounds (max is %d).",
                         MAX_SOUNDS);
    return -1;
  }
  if (sound[sound_count].loadSound(filename) != 0) {
    log_manager.writeLog("RM::loadSound(): Error! Cannot load sound from file '%s'.",
                         filename.c_str());
    return -1;
  }
  sound[sound_count].setLabel(label);
  log_manager.writeLog(1, "RM::loadSound(): Sound '%s' successfully loaded.", label.c_str());
  sound_count++;
  return 0;
}

int ResourceManager::unloadSound(std::string label) {
  if (notStarted()) return -1;
  const int index = findSound(label);
  if (index < 0) return -1;
  for (int i = index; i < sound_count - 1; i++) sound[i] = sound[i + 1];
  sound_count--;
  // The slot left behind may still be playing; emptying it silences it.
  sound[sound_count] = Sound();
  return 0;
}

Sound* ResourceManager::getSound(std::string label) {
  logManager().writeLog(5, "RM::getSound(): Looking for sound '%s'.", label.c_str());
  const int index = findSound(label);
  if (index >= 0) return &sound[index];
  logManager().writeLog("RM::getSound(): Warning! Sound '%s' not found.", label.c_str());
  return nullptr;
}

int ResourceManager::findSound(const std::string& label) const {
  for (int i = 0; i < sound_count; i++) {
    if (sound[i].getLabel() == label) return i;
  }
  return -1;
}

// Music.

int ResourceManager::loadMusic(std::string filename, std::string label) {
  if (notStarted()) return -1;
  LogManager& log_manager = logManager();
  if (music_count == MAX_MUSICS) {
    log_manager.writeLog("RM::loadMusic(): Error! Unable to add more musics (max is %d).",
                         MAX_MUSICS);
    return -1;
  }
  if (label.empty()) {
    log_manager.writeLog("RM::loadMusic(): Error! Must provide label for music.");
    return -1;
  }
  if (music[music_count].loadMusic(filename) != 0) {
    log_manager.writeLog("RM::loadmusic(): Error! Cannot load music from file '%s'.",
                         filename.c_str());
    return -1;
  }
  music[music_count].setLabel(label);
  log_manager.writeLog(1, "RM::loadMusic(): Music '%s' successfully loaded.", label.c_str());
  music_count++;
  return 0;
}

int ResourceManager::unloadMusic(std::string label) {
  if (notStarted()) return -1;
  const int index = findMusic(label);
  if (index < 0) return -1;
  music[index].stop();
  music[index].setLabel("");
  return 0;
}

Music* ResourceManager::getMusic(std::string label) {
  logManager().writeLog(5, "RM::getMusic(): Looking for music '%s'.", label.c_str());
  const int index = findMusic(label);
  if (index >= 0) return &music[index];
  logManager().writeLog("RM::getMusic(): Warning! Music '%s' not found.", label.c_str());
  return nullptr;
}

// An unloaded music keeps its slot with an empty label: no label finds it.
int ResourceManager::findMusic(const std::string& label) const {
  if (label.empty()) return -1;
  for (int i = 0; i < music_count; i++) {
    if (music[i].getLabel() == label) return i;
  }
  return -1;
}

}  // namespace vt
