#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "media/CellFrame.h"

namespace vt {

// Turns cell frames into the bytes that show them in a terminal. It keeps
// what the terminal shows, so each frame writes only the cells that changed
// (moving the cursor over the rest), wrapped in one synchronized update so
// that the terminal never shows half a frame.
class TerminalScreen {
 public:
  enum ColorMode { COLORS_16, COLORS_256, COLORS_24BIT };

  // 24-bit colour where COLORTERM says so, 256 colours where TERM names
  // them, else 16.
  static ColorMode colorModeFor(const char* colorterm, const char* term);

  void setColorMode(ColorMode new_mode);
  ColorMode getColorMode() const { return mode; }
  // The terminal's size in cells. A frame larger than the terminal is
  // cropped around its top-left and the last row says so. A new size
  // redraws everything.
  void setSize(int new_columns, int new_rows);
  // Forgets what the terminal shows: the next frame is written whole.
  void invalidate();

  // The bytes that bring the terminal from the last frame to this one;
  // empty when nothing changed.
  std::string render(const CellFrame& frame);

  // The escape sequence that sets a colour, for the foreground or the
  // background, in the current colour mode.
  std::string colorSequence(std::uint8_t r, std::uint8_t g, std::uint8_t b, bool foreground) const;

 private:
  struct Shown {
    char ch = 0;
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
    std::uint8_t background = 0;
    bool known = false;

    bool operator==(const Shown& other) const {
      return known == other.known && ch == other.ch && r == other.r && g == other.g &&
             b == other.b && background == other.background;
    }
  };

  Shown wanted(const CellFrame& frame, int column, int row) const;
  void writeCell(std::string& out, int column, int row, const Shown& cell);
  void moveCursor(std::string& out, int column, int row);
  void writeColors(std::string& out, const Shown& cell);
  void clearScreen(std::string& out, const CellFrame& frame);
  void writeCropNotice(std::string& out, const CellFrame& frame);
  // Rows of the terminal the frame may use; the last is kept for the notice
  // when the frame is cropped.
  int usableRows(const CellFrame& frame) const;
  bool isCropped(const CellFrame& frame) const;

  ColorMode mode = COLORS_16;
  int columns = 80;
  int rows = 24;
  int frame_columns = 0;
  int frame_rows = 0;
  std::vector<Shown> shown;
  // Where the cursor is, -1 when unknown; and the colours last set.
  int cursor_column = -1;
  int cursor_row = -1;
  std::string foreground_set;
  std::string background_set;
};

}  // namespace vt
