#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace synth {

// Adds `sound` into `buffer` from sample `offset` on, growing the buffer when
// the sound runs past its end.
void mixAt(std::vector<float>& buffer, const std::vector<float>& sound, std::size_t offset);

// Adds `sound` into `buffer` from sample `offset` on; whatever runs past the
// end continues from the start, so that a loop of the buffer has no seam.
void mixWrapped(std::vector<float>& buffer, const std::vector<float>& sound, std::size_t offset);

// Scales the buffer so that its loudest sample has magnitude `peak`.
void normalize(std::vector<float>& buffer, float peak);

// Writes the samples as a mono 16-bit PCM WAV file; false when writing fails.
bool writeWav(const std::string& path, const std::vector<float>& samples);

}  // namespace synth
