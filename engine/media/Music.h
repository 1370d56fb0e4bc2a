#pragma once

#include <SFML/Audio.hpp>
#include <string>

#include "media/AudioEnvironment.h"

namespace vt {

// A background track streamed from its file, found by its label. A stream
// cannot be copied, so neither can a Music.
class Music : private AudioEnvironment {
 public:
  Music() = default;
  Music(const Music&) = delete;
  Music& operator=(const Music&) = delete;

  // Opens the stream on the file; 0, or -1 when it cannot be read.
  int loadMusic(std::string filename);
  void setLabel(std::string new_label) { label = std::move(new_label); }
  std::string getLabel() const { return label; }

  // Plays (from the start unless paused), repeating when loop is true.
  void play(bool loop);
  void stop();
  void pause();
  sf::SoundSource::Status getStatus() const;
  // Whether it starts again from the beginning when it ends.
  bool getLoop() const { return music.getLoop(); }
  // How far into the track playing has got.
  sf::Time getPlayingOffset() const;

 private:
  sf::Music music;
  std::string label;
  // Stopped: silent now, back to the start at the next play.
  bool rewind_pending = false;
};

}  // namespace vt
