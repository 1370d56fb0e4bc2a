#include <algorithm>

#include "Library.h"

namespace synth {

namespace {

Tone instrument(Wave wave, double duty, double volume, Envelope envelope) {
  Tone tone;
  tone.wave = wave;
  tone.duty = duty;
  tone.volume = volume;
  tone.envelope = envelope;
  return tone;
}

Tone lead(double duty, double volume, double vibrato) {
  Tone tone = instrument(Wave::SQUARE, duty, volume, {0.005, 0.25, 0.6, 0.02});
  tone.vibrato = vibrato;
  return tone;
}

Tone chime(double volume) {
  return instrument(Wave::SQUARE, 0.125, volume, {0.002, 0.06, 0.3, 0.01});
}

Tone bass(double volume) {
  return instrument(Wave::TRIANGLE, 0.5, volume, {0.003, 0.2, 0.8, 0.015});
}

Tone kit(double volume) {
  return instrument(Wave::NOISE, 0.5, volume, {});
}

std::string times(int count, const std::string& tokens) {
  std::string result;
  for (int i = 0; i < count; ++i) result += tokens + " ";
  return result;
}

// A bar of one four-note figure played four times.
std::string arpeggio(const std::string& figure) {
  return times(4, figure);
}

// A bar of eighth notes bouncing between a note and its octave.
std::string pump(const std::string& low, const std::string& high) {
  return times(4, low + " - " + high + " -");
}

// A bar of galloping sixteenths: low, rest, low, high.
std::string gallop(const std::string& low, const std::string& high) {
  return times(4, low + " . " + low + " " + high);
}

// The pattern delayed by `delay` steps, its tail brought round to the front:
// a quieter copy of a melody makes the classic chip echo.
std::string echo(const std::string& pattern, std::size_t delay) {
  std::vector<std::string> tokens = steps(pattern);
  std::rotate(tokens.rbegin(), tokens.rbegin() + static_cast<std::ptrdiff_t>(delay), tokens.rend());
  std::string result;
  for (const std::string& token : tokens) result += token + " ";
  return result;
}

// Title: a bright, catchy hook over C - Am - F - G.
Song title() {
  const std::string melody = R"(
      E5 - G5 - C6 - G5 - E5 - D5 - C5 - D5 -
      E5 - - - A4 - C5 - E5 - D5 - C5 - B4 -
      A4 - C5 - F5 - A5 - G5 - F5 - E5 - F5 -
      G5 - - - - - D5 - G5 - F5 - E5 - D5 -
      E5 - G5 - C6 - G5 - E5 - G5 - C6 - E6 -
      D6 - C6 - A5 - E5 - C6 - B5 - A5 - E5 -
      F5 - A5 - C6 - A5 - G5 - F5 - E5 - D5 -
      D5 - - - B4 - - - G4 - A4 - B4 - D5 - )";
  const std::string chords = arpeggio("C4 E4 G4 C5") + arpeggio("A3 C4 E4 A4") +
                             arpeggio("A3 C4 F4 A4") + arpeggio("B3 D4 G4 B4");
  const std::string roots =
      pump("C2", "C3") + pump("A1", "A2") + pump("F1", "F2") + pump("G1", "G2");
  return {140.0,
          {{lead(0.5, 0.45, 0.004), melody},
           {lead(0.25, 0.15, 0.0), echo(melody, 3)},
           {chime(0.2), chords},
           {bass(0.6), roots},
           {kit(0.35), "k . h . s . h . k k h . s . o ."}}};
}

// Four bars of the battle's broken chords: E minor, C, D and the given last chord.
std::string battleChords(const std::string& last) {
  return arpeggio("E4 B4 E5 B4") + arpeggio("C4 G4 C5 G4") + arpeggio("D4 A4 D5 A4") +
         arpeggio(last);
}

// Four bars of the battle's bass under those chords.
std::string battleRoots(const std::string& low, const std::string& high) {
  return gallop("E2", "E3") + gallop("C2", "C3") + gallop("D2", "D3") + gallop(low, high);
}

const char* const BATTLE_DRUMS = "k h h h s h h k k h k h s h h h";

// In play: a driving E minor riff over a galloping bass and busy hats.
Song battle() {
  const std::string melody = R"(
      E5 - - B4 - - E5 - G5 - F#5 - E5 - D5 -
      E5 - - - - - C5 - D5 - E5 - G5 - E5 -
      F#5 - - D5 - - F#5 - A5 - G5 - F#5 - D5 -
      E5 - - - - - - - B4 - D5 - E5 - G5 -
      B5 - - G5 - - E5 - B5 - A5 - G5 - F#5 -
      G5 - - E5 - - C5 - E5 - G5 - C6 - B5 -
      A5 - - F#5 - - D5 - A5 - G5 - F#5 - A5 -
      B5 - - - D#5 - - - F#5 - - - B4 - D#5 - )";
  return {160.0,
          {{lead(0.25, 0.4, 0.003), melody},
           {chime(0.16), battleChords("E4 B4 E5 B4") + battleChords("B3 F#4 B4 F#4")},
           {bass(0.6), battleRoots("E2", "E3") + battleRoots("B1", "B2")},
           {kit(0.3), BATTLE_DRUMS}}};
}

// The unused "gameplay" track: the battle's backing alone, a four-bar groove.
Song groove() {
  return {160.0,
          {{chime(0.2), battleChords("B3 F#4 B4 F#4")},
           {bass(0.6), battleRoots("B1", "B2")},
           {kit(0.3), BATTLE_DRUMS}}};
}

// The boss: D minor, a tritone-haunted line over a pounding pedal.
Song boss() {
  const std::string melody = R"(
      D5 - - - - - - - A5 - - - G#5 - - -
      A5 - - - F5 - - - E5 - F5 - E5 - D5 -
      D5 - - - F5 - - - Bb5 - - - A5 - G5 -
      A5 - - - - - - - C#5 - E5 - G5 - A5 -
      D6 - - - C6 - - - A5 - - - G#5 - - -
      A5 - F5 - D5 - F5 - A5 - D6 - C#6 - D6 -
      F6 - - - E6 - D6 - Bb5 - - - A5 - G5 -
      A5 - - - - - - - E5 - F5 - G5 - G#5 - )";
  const std::string chords =
      times(2, arpeggio("D4 F4 A4 F4")) + arpeggio("D4 F4 Bb4 F4") + arpeggio("C#4 E4 A4 E4");
  const std::string roots =
      times(2, gallop("D2", "D3")) + gallop("Bb1", "Bb2") + gallop("A1", "A2");
  return {150.0,
          {{lead(0.5, 0.4, 0.006), melody},
           {chime(0.18), chords},
           {bass(0.65), roots},
           {kit(0.32), "k . h k s . h . k . h k s . s h"}}};
}

// Defeat: a slow lament falling through A minor over a heartbeat.
Song defeat() {
  const std::string melody = R"(
      E5 - - - - - - - D5 - - - C5 - - -
      B4 - - - - - - - A4 - - - G#4 - - -
      A4 - - - - - - - F4 - - - E4 - - -
      E4 - - - - - - - - - - - . . . . )";
  const std::string harmony = R"(
      C5 - - - - - - - B4 - - - A4 - - -
      F#4 - - - - - - - F4 - - - E4 - - -
      C4 - - - - - - - B3 - - - G#3 - - -
      G#3 - - - - - - - - - - - . . . . )";
  const std::string roots = R"(
      A2 - - - - - - - G2 - - - - - - -
      F#2 - - - - - - - F2 - - - - - - -
      E2 - - - - - - - - - - - - - - -
      E2 - - - - - - - A1 - - - - - - - )";
  Tone sigh = lead(0.5, 0.45, 0.008);
  sigh.envelope = {0.02, 0.6, 0.5, 0.06};
  return {70.0,
          {{sigh, melody},
           {lead(0.25, 0.18, 0.0), harmony},
           {bass(0.6), roots},
           {kit(0.5), "k . k . . . . . . . . . . . . ."}}};
}

// Victory: a major fanfare that climbs and lands through Ab and Bb on C.
Song victory() {
  const std::string melody = R"(
      G4 G4 G4 . C5 - - - - - - - E5 - G5 -
      C6 - - - - - - - G5 - - - E5 - G5 -
      A5 A5 A5 . F5 - - - A5 - - - C6 - - -
      B5 B5 B5 . G5 - - - D6 - - - B5 - - -
      Ab5 - - - Ab5 - Ab5 - Bb5 - - - Bb5 - Bb5 -
      C6 - - - - - - - - - - - . . . . )";
  const std::string harmony = R"(
      E4 E4 E4 . E4 - - - - - - - C5 - E5 -
      G5 - - - - - - - E5 - - - C5 - E5 -
      F5 F5 F5 . C5 - - - F5 - - - A5 - - -
      G5 G5 G5 . D5 - - - B5 - - - G5 - - -
      Eb5 - - - Eb5 - Eb5 - F5 - - - F5 - F5 -
      E5 - - - - - - - - - - - . . . . )";
  const std::string roots = pump("C3", "C3") + pump("C3", "G2") + pump("F2", "F3") +
                            pump("G2", "G3") + "Ab2 - Ab2 - Ab2 - Ab2 - Bb2 - Bb2 - Bb2 - Bb2 - " +
                            "C3 - - - - - - - - - - - . . . .";
  const std::string drums = times(4, "k . h . s . h . k . h . s . s s") +
                            "s s s s s s s s s s s s s s s s " + "k . . . . . . . . . . . . . . .";
  return {120.0,
          {{lead(0.5, 0.45, 0.005), melody},
           {lead(0.25, 0.22, 0.0), harmony},
           {bass(0.6), roots},
           {kit(0.35), drums}}};
}

}  // namespace

const std::map<std::string, Music>& musics() {
  static const std::map<std::string, Music> table = {
      {"start-music.wav", {0.55f, title()}}, {"InGameBGM.wav", {0.55f, battle()}},
      {"gameplay.wav", {0.55f, groove()}},   {"Boss1BattleBGM.wav", {0.55f, boss()}},
      {"GameDead.wav", {0.55f, defeat()}},   {"VictoryBGM.wav", {0.55f, victory()}}};
  return table;
}

}  // namespace synth
