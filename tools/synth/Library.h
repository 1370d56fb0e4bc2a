#pragma once

#include <map>
#include <string>
#include <vector>

#include "Sequencer.h"
#include "Tone.h"

namespace synth {

// A tone that starts `start` seconds into a sound effect.
struct Layer {
  double start;
  Tone tone;
};

// A one-shot sound effect: layered tones, scaled to a peak level.
struct Effect {
  float peak;
  std::vector<Layer> layers;
};

// A looping piece of music, scaled to a peak level.
struct Music {
  float peak;
  Song song;
};

// The game's sound effects and music, each under the name of its file.
const std::map<std::string, Effect>& effects();
const std::map<std::string, Music>& musics();

// The samples of the named file; throws std::invalid_argument for a name
// that is neither an effect nor a piece of music.
std::vector<float> make(const std::string& file_name);

}  // namespace synth
