#include "Sequencer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "Mix.h"

namespace synth {

namespace {

constexpr int STEPS_PER_BEAT = 4;

// Semitones above C of the natural notes C, D, E, F, G, A and B.
constexpr int NATURAL_SEMITONES[] = {9, 11, 0, 2, 4, 5, 7};  // indexed from 'A'

// The kick is a triangle diving in pitch, the rest are bursts of noise.
Tone drum(char name) {
  switch (name) {
    case 'k':
      return {Wave::TRIANGLE, 0.5, 170.0, 45.0, 0.16, 1.0, 0.0, {0.001, 0.07, 0.0, 0.01}};
    case 's':
      return {Wave::NOISE, 0.5, 9000.0, 5000.0, 0.16, 0.6, 0.0, {0.001, 0.05, 0.0, 0.01}};
    case 'h':
      return {Wave::NOISE, 0.5, 22050.0, 22050.0, 0.04, 0.25, 0.0, {0.001, 0.012, 0.0, 0.005}};
    case 'o':
      return {Wave::NOISE, 0.5, 22050.0, 22050.0, 0.14, 0.25, 0.0, {0.001, 0.05, 0.0, 0.01}};
    default:
      throw std::invalid_argument("unknown drum '" + std::string(1, name) + "'");
  }
}

bool isDrum(const std::string& token) {
  return token.size() == 1 && std::string("ksho").find(token[0]) != std::string::npos;
}

// Steps from `start` until the next token that is not "-".
std::size_t heldSteps(const std::vector<std::string>& tokens, std::size_t start) {
  std::size_t end = start + 1;
  while (end < tokens.size() && tokens[end] == "-") ++end;
  return end - start;
}

class Timeline {
 public:
  Timeline(double tempo, std::size_t steps)
      : seconds_per_step(60.0 / (tempo * STEPS_PER_BEAT)), samples(sampleAt(steps)) {}
  std::size_t sampleAt(std::size_t step) const {
    return static_cast<std::size_t>(std::lround(step * seconds_per_step * SAMPLE_RATE));
  }
  double secondsBetween(std::size_t first, std::size_t last) const {
    return static_cast<double>(sampleAt(last) - sampleAt(first)) / SAMPLE_RATE;
  }
  std::size_t length() const { return samples; }

 private:
  double seconds_per_step;
  std::size_t samples;
};

// The sound that token `index` of the steps starts; silent for "-" and ".".
std::vector<float> soundAt(const Track& track, const std::vector<std::string>& tokens,
                           std::size_t index, std::size_t song_step, const Timeline& timeline) {
  const std::string& token = tokens[index];
  if (token == "-" || token == ".") return {};
  Tone tone = track.instrument;
  if (isDrum(token)) {
    tone = drum(token[0]);
    tone.volume *= track.instrument.volume;
  } else {
    tone.start_frequency = tone.end_frequency = noteFrequency(token);
    tone.length = timeline.secondsBetween(song_step, song_step + heldSteps(tokens, index));
  }
  return render(tone);
}

std::size_t songSteps(const Song& song) {
  std::size_t longest = 0;
  for (const Track& track : song.tracks) longest = std::max(longest, steps(track.pattern).size());
  for (const Track& track : song.tracks) {
    const std::size_t size = steps(track.pattern).size();
    if (size == 0 || longest % size != 0) {
      throw std::invalid_argument("a pattern of " + std::to_string(size) +
                                  " steps does not divide the song's " + std::to_string(longest));
    }
  }
  return longest;
}

}  // namespace

std::vector<std::string> steps(const std::string& pattern) {
  std::istringstream in(pattern);
  return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

double noteFrequency(const std::string& note) {
  if (note.size() < 2 || note[0] < 'A' || note[0] > 'G') {
    throw std::invalid_argument("bad note '" + note + "'");
  }
  int semitone = NATURAL_SEMITONES[note[0] - 'A'];
  std::size_t octave_at = 1;
  if (note[1] == '#' || note[1] == 'b') {
    semitone += note[1] == '#' ? 1 : -1;
    octave_at = 2;
  }
  const std::string digits = note.substr(octave_at);
  std::size_t used = 0;
  const int octave = std::stoi(digits, &used);
  if (used != digits.size()) throw std::invalid_argument("bad note '" + note + "'");
  const int midi = 12 * (octave + 1) + semitone;
  return 440.0 * std::pow(2.0, (midi - 69) / 12.0);
}

std::vector<float> render(const Song& song) {
  const std::size_t length = songSteps(song);
  const Timeline timeline(song.tempo, length);
  std::vector<float> buffer(timeline.length());
  for (const Track& track : song.tracks) {
    const std::vector<std::string> pattern = steps(track.pattern);
    for (std::size_t step = 0; step < length; ++step) {
      const std::size_t index = step % pattern.size();
      mixWrapped(buffer, soundAt(track, pattern, index, step, timeline), timeline.sampleAt(step));
    }
  }
  return buffer;
}

}  // namespace synth
