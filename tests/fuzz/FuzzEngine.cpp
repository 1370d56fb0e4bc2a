#include "FuzzEngine.h"

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "world/WorldManager.h"

namespace fuzz {

void startEngine() {
  static const bool started = [] {
    vt::Config::getInstance().setHeadless(true);
    vt::Config::getInstance().setLogFile("/dev/null");
    vt::LogManager::getInstance().startUp();
    vt::WorldManager::getInstance().startUp();
    vt::ResourceManager::getInstance().startUp();
    return true;
  }();
  (void)started;
}

std::string text(const uint8_t* data, size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace fuzz
