#include "Library.h"

#include <cmath>
#include <stdexcept>

#include "Mix.h"

namespace synth {

namespace {

std::vector<float> render(const Effect& effect) {
  std::vector<float> buffer;
  for (const Layer& layer : effect.layers) {
    mixAt(buffer, render(layer.tone),
          static_cast<std::size_t>(std::lround(layer.start * SAMPLE_RATE)));
  }
  normalize(buffer, effect.peak);
  return buffer;
}

std::vector<float> render(const Music& music) {
  std::vector<float> buffer = render(music.song);
  normalize(buffer, music.peak);
  return buffer;
}

}  // namespace

std::vector<float> make(const std::string& file_name) {
  const auto effect = effects().find(file_name);
  if (effect != effects().end()) return render(effect->second);
  const auto music = musics().find(file_name);
  if (music != musics().end()) return render(music->second);
  throw std::invalid_argument("no recipe for '" + file_name + "'");
}

}  // namespace synth
