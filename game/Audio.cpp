#include "Audio.h"

#include "media/ResourceManager.h"

void playSound(const std::string& label) {
  vt::Sound* p_sound = vt::ResourceManager::getInstance().getSound(label);
  if (p_sound != nullptr) p_sound->play(false);
}
