#pragma once

#include <SFML/Audio.hpp>
#include <string>

#include "media/AudioEnvironment.h"

namespace vt {

// A short sound effect held in memory, found by its label. A copy gets its
// own samples and its own (silent) voice.
class Sound : private AudioEnvironment {
 public:
  // Most samples a sound may hold: ten minutes of 48 kHz stereo. Longer
  // tracks belong in a Music, which streams them.
  static const sf::Uint64 MAX_SOUND_SAMPLES = 48000ull * 2 * 600;

  Sound() = default;
  Sound(const Sound& other);
  Sound& operator=(const Sound& other);

  // Loads the samples from the file; 0, or -1 when it cannot be read.
  int loadSound(std::string filename);
  void setLabel(std::string new_label) { label = std::move(new_label); }
  std::string getLabel() const { return label; }

  // Plays from the start (also when already playing), repeating when loop
  // is true.
  void play(bool loop);
  void stop() { sound.stop(); }
  void pause() { sound.pause(); }
  sf::SoundSource::Status getStatus() const { return sound.getStatus(); }

 private:
  // Gives the voice this object's samples, when there are any.
  void attachBuffer();

  sf::SoundBuffer sound_buffer;
  sf::Sound sound;
  std::string label;
};

}  // namespace vt
