#include "Library.h"

namespace synth {

namespace {

Tone sweep(Wave wave, double from, double to, double length, double volume, Envelope envelope) {
  return {wave, 0.5, from, to, length, volume, 0.0, envelope};
}

Tone pulse(double duty, double from, double to, double length, double volume, Envelope envelope) {
  return {Wave::SQUARE, duty, from, to, length, volume, 0.0, envelope};
}

// A short "pew": a narrow pulse diving in pitch over a click of noise.
Effect fire() {
  return {0.45f,
          {{0.0, pulse(0.25, 1500.0, 300.0, 0.12, 1.0, {0.001, 0.05, 0.2, 0.02})},
           {0.0, sweep(Wave::NOISE, 12000.0, 3000.0, 0.05, 0.3, {0.001, 0.015, 0.0, 0.01})}}};
}

// A dry metallic tick, light enough to repeat hundreds of times on the boss.
Effect enemyHit() {
  return {0.4f,
          {{0.0, pulse(0.5, 1800.0, 900.0, 0.06, 1.0, {0.001, 0.02, 0.0, 0.01})},
           {0.0, sweep(Wave::NOISE, 20000.0, 8000.0, 0.04, 0.5, {0.001, 0.01, 0.0, 0.005})}}};
}

// A crunchy pop: falling noise and a square dropping to a growl.
Effect enemyDead() {
  return {0.65f,
          {{0.0, sweep(Wave::NOISE, 6000.0, 500.0, 0.4, 1.0, {0.001, 0.12, 0.0, 0.05})},
           {0.0, pulse(0.5, 700.0, 60.0, 0.25, 0.6, {0.001, 0.08, 0.0, 0.03})}}};
}

// The boss coming apart: a long rumble with two aftershocks.
Effect explode() {
  return {0.8f,
          {{0.0, sweep(Wave::NOISE, 4000.0, 60.0, 1.8, 1.0, {0.002, 0.5, 0.0, 0.3})},
           {0.0, sweep(Wave::TRIANGLE, 110.0, 28.0, 1.2, 0.9, {0.002, 0.4, 0.0, 0.2})},
           {0.25, sweep(Wave::NOISE, 8000.0, 1500.0, 0.6, 0.5, {0.001, 0.15, 0.0, 0.1})},
           {0.55, sweep(Wave::NOISE, 5000.0, 400.0, 0.8, 0.4, {0.001, 0.2, 0.0, 0.1})}}};
}

// A warbling charge rising to a shriek, then a deep blast that sweeps the sky.
Effect nuke() {
  Tone charge = pulse(0.5, 150.0, 2400.0, 0.45, 0.6, {0.01, 1.0, 1.0, 0.02});
  charge.vibrato = 0.03;
  return {0.8f,
          {{0.0, charge},
           {0.45, sweep(Wave::NOISE, 3000.0, 40.0, 1.6, 1.0, {0.002, 0.6, 0.0, 0.3})},
           {0.45, sweep(Wave::TRIANGLE, 90.0, 25.0, 1.4, 1.0, {0.002, 0.5, 0.0, 0.3})},
           {0.45, pulse(0.125, 1200.0, 100.0, 0.5, 0.3, {0.001, 0.2, 0.0, 0.05})}}};
}

// One note of the losing jingle, doubled an octave lower.
std::vector<Layer> sadNote(double start, const char* note, double droop, double length) {
  const double pitch = noteFrequency(note);
  Tone lead = pulse(0.5, pitch, pitch * droop, length, 1.0, {0.005, 0.3, 0.7, 0.05});
  lead.vibrato = length > 0.5 ? 0.02 : 0.0;
  Tone bass = sweep(Wave::TRIANGLE, pitch / 2, pitch * droop / 2, length, 0.8, lead.envelope);
  return {{start, lead}, {start, bass}};
}

// "Wah, wah, wah, waaah": three falling notes and a long drooping fourth.
Effect gameOver() {
  Effect effect{0.7f, {}};
  const std::vector<std::vector<Layer>> notes = {
      sadNote(0.0, "G4", 0.97, 0.3), sadNote(0.35, "F#4", 0.97, 0.3), sadNote(0.7, "F4", 0.97, 0.3),
      sadNote(1.05, "E4", 0.75, 1.1)};
  for (const std::vector<Layer>& note : notes) {
    effect.layers.insert(effect.layers.end(), note.begin(), note.end());
  }
  return effect;
}

}  // namespace

const std::map<std::string, Effect>& effects() {
  static const std::map<std::string, Effect> table = {
      {"fire.wav", fire()},       {"enemy-hit.wav", enemyHit()}, {"enemy-dead.wav", enemyDead()},
      {"explode.wav", explode()}, {"nuke.wav", nuke()},          {"game-over.wav", gameOver()}};
  return table;
}

}  // namespace synth
