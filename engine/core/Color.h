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

// The colour, BLACK to WHITE, of a name as sprite files and the
// configuration write it, in lower case ("black" ... "white"); false, with
// color untouched, for any other text.
bool colorFromName(const std::string& name, Color& color);

// Writes the colour's red, green and blue; leaves them untouched for CUSTOM
// and unknown values.
void colorToRGB(Color color, unsigned char& r, unsigned char& g, unsigned char& b);

}  // namespace vt
