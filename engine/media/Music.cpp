#include "media/Music.h"

#include "core/LogManager.h"

namespace vt {

int Music::loadMusic(std::string filename) {
  return music.openFromFile(filename) ? 0 : -1;
}

void Music::play(bool loop) {
  LogManager::getInstance().writeLog(5, "Music::play(): Playing music.");
  music.play();
  music.setLoop(loop);
}

void Music::stop() {
  LogManager::getInstance().writeLog(5, "Music::stop(): Stopping music.");
  music.stop();
}

void Music::pause() {
  LogManager::getInstance().writeLog(5, "Music::pause(): Pausing music.");
  music.pause();
}

}  // namespace vt
