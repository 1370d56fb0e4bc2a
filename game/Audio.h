#pragma once

#include <string>

// Plays the sound with this label once, when it is loaded.
void playSound(const std::string& label);
