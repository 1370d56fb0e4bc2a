#include "media/Sound.h"

#include "core/Config.h"
#include "core/LogManager.h"

namespace vt {

Sound::Sound(const Sound& other)
    : AudioEnvironment(other), sound_buffer(other.sound_buffer), label(other.label) {
  attachBuffer();
}

Sound& Sound::operator=(const Sound& other) {
  if (this == &other) return *this;
  // Replacing the samples stops and detaches this voice.
  sound_buffer = other.sound_buffer;
  attachBuffer();
  label = other.label;
  return *this;
}

void Sound::attachBuffer() {
  if (sound_buffer.getSampleCount() > 0) sound.setBuffer(sound_buffer);
}

int Sound::loadSound(std::string filename) {
  // SFML sizes the sample array from the file's header before reading: a
  // header that lies about its length must not reach it.
  sf::InputSoundFile file;
  if (!file.openFromFile(filename)) return -1;
  if (file.getSampleCount() > MAX_SOUND_SAMPLES) {
    LogManager::getInstance().writeLog(
        "Sound::loadSound(): Error! '%s' claims %llu samples, more than %llu.", filename.c_str(),
        static_cast<unsigned long long>(file.getSampleCount()),
        static_cast<unsigned long long>(MAX_SOUND_SAMPLES));
    return -1;
  }
  if (!sound_buffer.loadFromFile(filename)) return -1;
  sound.setBuffer(sound_buffer);
  return 0;
}

void Sound::play(bool loop) {
  if (!Config::getInstance().getSound()) return;
  LogManager::getInstance().writeLog(5, "Sound::play(): Playing sound.");
  sound.play();
  sound.setLoop(loop);
}

}  // namespace vt
