#pragma once

#include <memory>
#include <string>

#include "core/Manager.h"
#include "media/Music.h"
#include "media/Sound.h"
#include "media/Sprite.h"

namespace vt {

class FileWatcher;

const int MAX_SPRITES = 1000;
const int MAX_SOUNDS = 100;
const int MAX_MUSICS = 50;

// Loads sprites from text files and sounds and music from audio files,
// keeps them in fixed-size tables and hands them out by label. A failed
// load leaves the tables as they were.
class ResourceManager : public Manager {
 public:
  static ResourceManager& getInstance();
  ~ResourceManager() override;

  int startUp() override;
  // Deletes every sprite and stops every sound and music.
  void shutDown() override;

  // Loads a sprite file of either format; 0, or -1 (after logging why).
  int loadSprite(std::string filename, std::string label);
  // Deletes the first sprite of that label; 0, or -1 when there is none.
  int unloadSprite(std::string label);
  // The first sprite of that label, or null.
  Sprite* getSprite(std::string label) const;
  int getSpriteCount() const { return sprite_count; }
  // With hot reload on (the configuration's hot_reload, or
  // VANTOR_HOT_RELOAD=1), reads again every sprite whose file was written
  // or replaced since the last call, in place: objects keep their pointers
  // and show the new frames. A file that does not load leaves its sprite
  // as it was, and the log says why. The game loop calls it every step.
  void reloadChangedSprites();

  int loadSound(std::string filename, std::string label);
  int unloadSound(std::string label);
  Sound* getSound(std::string label);
  int getSoundCount() const { return sound_count; }

  int loadMusic(std::string filename, std::string label);
  // Stops the music and clears its label; its slot is not used again.
  int unloadMusic(std::string label);
  Music* getMusic(std::string label);
  int getMusicCount() const { return music_count; }

 private:
  ResourceManager();

  int findSprite(const std::string& label) const;
  int findSound(const std::string& label) const;
  int findMusic(const std::string& label) const;
  void deleteSprites();
  void logFrames(const Sprite& sprite) const;
  void reloadSprite(Sprite& sprite);

  Sprite* p_sprite[MAX_SPRITES] = {};
  int sprite_count = 0;
  Sound sound[MAX_SOUNDS];
  int sound_count = 0;
  Music music[MAX_MUSICS];
  int music_count = 0;
  // Watches the loaded sprite files while hot reload is on.
  std::unique_ptr<FileWatcher> p_sprite_watcher;
};

}  // namespace vt
