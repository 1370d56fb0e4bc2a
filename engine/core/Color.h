#pragma once

#include <string>

namespace vt {

enum Color {
  BLACK = 0,
  RED,
  GREEN,
  YELLOW,
  BLUE,
  MAGENTA,
  CYAN,
  WHITE,
  CUSTOM,
};

// "Black" ... "White"; "Unknown color" for CUSTOM and anything else.
std::string colorToString(Color color);

// Writes the colour's red, green and blue; leaves them untouched for CUSTOM
// and unknown values.
void colorToRGB(Color color, unsigned char& r, unsigned char& g, unsigned char& b);

}  // namespace vt
