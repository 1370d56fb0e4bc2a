#include "core/Color.h"

#include <cctype>

#include "core/LogManager.h"

namespace vt {

namespace {

struct ColorEntry {
  const char* name;
  unsigned char r, g, b;
};

const ColorEntry COLOR_TABLE[] = {
    {"Black", 0, 0, 0},  {"Red", 255, 0, 0},       {"Green", 0, 255, 0},  {"Yellow", 255, 255, 0},
    {"Blue", 0, 0, 255}, {"Magenta", 255, 0, 255}, {"Cyan", 0, 255, 255}, {"White", 255, 255, 255},
};

bool isNamedColor(Color color) {
  return color >= BLACK && color <= WHITE;
}

}  // namespace

std::string colorToString(Color color) {
  return isNamedColor(color) ? COLOR_TABLE[color].name : "Unknown color";
}

bool colorFromName(const std::string& name, Color& color) {
  for (int named = BLACK; named <= WHITE; named++) {
    std::string lower = COLOR_TABLE[named].name;
    lower[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(lower[0])));
    if (name != lower) continue;
    color = static_cast<Color>(named);
    return true;
  }
  return false;
}

void colorToRGB(Color color, unsigned char& r, unsigned char& g, unsigned char& b) {
  if (isNamedColor(color)) {
    r = COLOR_TABLE[color].r;
    g = COLOR_TABLE[color].g;
    b = COLOR_TABLE[color].b;
  } else if (color != CUSTOM) {
    LogManager::getInstance().writeLog(5, "colorToRGB(): Color %d not supported.",
                                       static_cast<int>(color));
  }
}

}  // namespace vt
