#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

// Starts, once per process, a headless engine whose log goes nowhere: the
// log, world and resource managers.
void startEngine();
std::string text(const uint8_t* data, size_t size);

}  // namespace fuzz
