#pragma once

#include <cstdint>
#include <vector>

namespace synth {

constexpr int SAMPLE_RATE = 22050;

enum class Wave { SQUARE, TRIANGLE, NOISE };

// Loudness over the life of a sound: a linear rise, an exponential fall to a
// held level, and a linear fade that reaches silence on the last sample.
struct Envelope {
  double attack = 0.003;  // seconds from silence to full level
  double decay = 0.1;     // time constant, in seconds, of the fall to the held level
  double sustain = 1.0;   // held level, 0 to 1
  double release = 0.01;  // seconds of the closing fade
  // The level `time` seconds into a sound whose last sample is at `end` seconds.
  double level(double time, double end) const;
};

// One chip voice playing one sound: a wave whose pitch glides exponentially
// from the start to the end frequency, shaped by an envelope. For noise the
// frequency is the rate at which the noise register shifts.
struct Tone {
  Wave wave = Wave::SQUARE;
  double duty = 0.5;  // share of the square's period spent high
  double start_frequency = 440.0;
  double end_frequency = 440.0;
  double length = 0.1;  // seconds
  double volume = 1.0;
  double vibrato = 0.0;  // depth, as a fraction of the frequency
  Envelope envelope;
};

// A square, triangle or noise generator that keeps its phase between samples.
class Oscillator {
 public:
  Oscillator(Wave wave, double duty);
  // The next sample at `frequency` Hz. It swings around zero: between -1 and 1,
  // except that a narrow pulse reaches further above zero than below.
  float next(double frequency);

 private:
  float square(double increment) const;
  float triangle() const;
  float noise(double increment);

  Wave wave;
  double duty;
  double phase = 0.0;
  std::uint16_t shift_register = 1;
  float noise_level = 1.0f;
};

std::vector<float> render(const Tone& tone);

}  // namespace synth
