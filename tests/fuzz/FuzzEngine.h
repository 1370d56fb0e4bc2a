#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "world/WorldManager.h"

namespace fuzz {

// Starts, once per process, a headless engine whose log goes nowhere: the
// log, world and resource managers.
inline void startEngine() {
  [[maybe_unused]] static const bool started = [] {
    vt::Config::getInstance().setHeadless(true);
    vt::Config::getInstance().setLogFile("/dev/null");
    unsetenv("VANTOR_LOG");
    vt::LogManager::getInstance().startUp();
    vt::WorldManager::getInstance().startUp();
    vt::ResourceManager::getInstance().startUp();
    return true;
  }();
}

inline std::string text(const uint8_t* data, size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace fuzz
