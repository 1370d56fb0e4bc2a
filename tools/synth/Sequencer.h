#pragma once

#include <string>
#include <vector>

#include "Tone.h"

namespace synth {

// One channel of a song. The pattern holds one token a step (a sixteenth
// note), separated by blanks:
//   a note such as "C4", "F#3" or "Bb5" starts a note (octave 4 holds A 440);
//   "-" holds the note before it for one more step;
//   "." is a step of silence;
//   "k", "s", "h" and "o" strike a kick, snare, closed or open hi-hat.
// A pattern shorter than the song repeats; the song is as long as its
// longest pattern, which every other pattern must divide evenly.
struct Track {
  Tone instrument;  // wave, duty, volume, vibrato and envelope of the notes
  std::string pattern;
};

struct Song {
  double tempo;  // beats (quarter notes) a minute
  std::vector<Track> tracks;
};

// The song as one seamless loop: sounds that ring past the end continue at
// the start.
std::vector<float> render(const Song& song);

// The tokens of a pattern, one a step.
std::vector<std::string> steps(const std::string& pattern);

// The frequency of a note name such as "C4", "F#3" or "Bb5".
double noteFrequency(const std::string& note);

}  // namespace synth
