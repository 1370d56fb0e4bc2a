#include "Tone.h"

#include <algorithm>
#include <cmath>

namespace synth {

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr double VIBRATO_RATE = 6.0;    // Hz
constexpr double VIBRATO_DELAY = 0.12;  // seconds before the vibrato sets in

// Smooths the jump of a square wave at phase 0 (polynomial band-limited step),
// which keeps high notes from aliasing into hiss.
double stepCorrection(double phase, double increment) {
  if (phase < increment) {
    const double t = phase / increment;
    return t + t - t * t - 1.0;
  }
  if (phase > 1.0 - increment) {
    const double t = (phase - 1.0) / increment;
    return t * t + t + t + 1.0;
  }
  return 0.0;
}

double frequencyAt(const Tone& tone, double time) {
  const double glide = std::pow(tone.end_frequency / tone.start_frequency, time / tone.length);
  const double depth = time < VIBRATO_DELAY ? 0.0 : tone.vibrato;
  return tone.start_frequency * glide * (1.0 + depth * std::sin(2.0 * PI * VIBRATO_RATE * time));
}

}  // namespace

double Envelope::level(double time, double end) const {
  const double rise = attack > 0.0 ? std::min(1.0, time / attack) : 1.0;
  const double since_peak = std::max(0.0, time - attack);
  const double fall = sustain + (1.0 - sustain) * std::exp(-since_peak / decay);
  const double fade = release > 0.0 ? std::clamp((end - time) / release, 0.0, 1.0) : 1.0;
  return rise * fall * fade;
}

Oscillator::Oscillator(Wave wave, double duty) : wave(wave), duty(duty) {}

float Oscillator::next(double frequency) {
  const double increment = frequency / SAMPLE_RATE;
  float sample = 0.0f;
  switch (wave) {
    case Wave::SQUARE:
      sample = square(increment);
      break;
    case Wave::TRIANGLE:
      sample = triangle();
      break;
    case Wave::NOISE:
      return noise(increment);
  }
  phase = std::fmod(phase + increment, 1.0);
  return sample;
}

float Oscillator::square(double increment) const {
  double value = phase < duty ? 1.0 : -1.0;
  value += stepCorrection(phase, increment);
  value -= stepCorrection(std::fmod(phase + 1.0 - duty, 1.0), increment);
  // Without its average a narrow pulse keeps its full swing around zero.
  return static_cast<float>(value - (2.0 * duty - 1.0));
}

float Oscillator::triangle() const {
  return static_cast<float>(4.0 * std::abs(phase - 0.5) - 1.0);
}

float Oscillator::noise(double increment) {
  phase += increment;
  while (phase >= 1.0) {
    phase -= 1.0;
    const auto feedback = static_cast<std::uint16_t>((shift_register ^ (shift_register >> 1)) & 1u);
    shift_register = static_cast<std::uint16_t>((shift_register >> 1) | (feedback << 14));
    noise_level = (shift_register & 1u) != 0 ? 1.0f : -1.0f;
  }
  return noise_level;
}

std::vector<float> render(const Tone& tone) {
  const auto count = static_cast<std::size_t>(std::lround(tone.length * SAMPLE_RATE));
  const double end = count > 0 ? static_cast<double>(count - 1) / SAMPLE_RATE : 0.0;
  std::vector<float> samples(count);
  Oscillator oscillator(tone.wave, tone.duty);
  for (std::size_t i = 0; i < count; ++i) {
    const double time = static_cast<double>(i) / SAMPLE_RATE;
    const double gain = tone.volume * tone.envelope.level(time, end);
    samples[i] = static_cast<float>(gain) * oscillator.next(frequencyAt(tone, time));
  }
  return samples;
}

}  // namespace synth
