// Sprite files of either format through the resource manager; a sprite that
// loads is then shown on an object for a few steps of the world.
#include <unistd.h>

#include <fstream>

#include "FuzzEngine.h"
#include "media/ResourceManager.h"
#include "world/Object.h"
#include "world/WorldManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::startEngine();
  // In memory where the system has such a folder: a file is made per input.
  static const std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") +
                                  "/vantor-fuzz-sprite-" + std::to_string(getpid());
  std::ofstream(path, std::ios::binary | std::ios::trunc) << fuzz::text(data, size);
  vt::ResourceManager& resources = vt::ResourceManager::getInstance();
  if (resources.loadSprite(path, "fuzz") == 0) {
    vt::WorldManager& world = vt::WorldManager::getInstance();
    auto* p_object = new vt::Object;
    p_object->setSprite("fuzz");
    for (int step = 0; step < 4; step++) {
      world.update();
      world.draw();
    }
    world.markForDelete(p_object);
    world.update();
    resources.unloadSprite("fuzz");
  }
  unlink(path.c_str());
  return 0;
}
