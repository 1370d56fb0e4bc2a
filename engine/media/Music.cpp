#include "media/Music.h"

#include "core/Config.h"
#include "core/LogManager.h"

namespace vt {

int Music::loadMusic(std::string filename) {
  rewind_pending = false;
  return music.openFromFile(filename) ? 0 : -1;
}

void Music::play(bool loop) {
  if (!Config::getInstance().getSound()) return;
  LogManager::getInstance().writeLog(5, "Music::play(): Playing music.");
  if (rewind_pending) {
    music.stop();
    rewind_pending = false;
  }
  music.play();
  music.setLoop(loop);
}

void Music::stop() {
  LogManager::getInstance().writeLog(5, "Music::stop(): Stopping music.");
  // Stopping a stream waits for its streaming thread, up to 10 ms; pausing
  // does not. The stream goes silent now and rewinds at the next play, so a
  // frame that stops one track and starts another waits once, not twice.
  music.pause();
  rewind_pending = true;
}

sf::Time Music::getPlayingOffset() const {
  return rewind_pending ? sf::Time::Zero : music.getPlayingOffset();
}

sf::SoundSource::Status Music::getStatus() const {
  return rewind_pending ? sf::SoundSource::Stopped : music.getStatus();
}

void Music::pause() {
  LogManager::getInstance().writeLog(5, "Music::pause(): Pausing music.");
  music.pause();
}

}  // namespace vt
