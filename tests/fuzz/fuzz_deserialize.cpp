// Serialized text into a live object and a live view object of a started
// headless world, then written back out and the world stepped.
#include "FuzzEngine.h"
#include "media/ViewObject.h"
#include "world/Object.h"
#include "world/WorldManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::startEngine();
  vt::WorldManager& world = vt::WorldManager::getInstance();
  const std::string text = fuzz::text(data, size);
  vt::Object* objects[] = {new vt::Object, new vt::ViewObject};
  for (vt::Object* p_object : objects) {
    p_object->deserialize(text);
    p_object->serialize("ALL");
  }
  world.update();
  world.draw();
  for (vt::Object* p_object : objects) world.markForDelete(p_object);
  world.update();
  return 0;
}
