#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Color.h"
#include "core/Vector.h"

namespace vt {

// One step's picture as characters: what the display manager drew in each
// cell of the window, the character and its colour. Cells nothing was drawn
// in show the window's background.
class CellFrame {
 public:
  struct Cell {
    char ch = ' ';
    // Red, green and blue of the character.
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
    bool drawn = false;
  };

  // An empty frame of the given size.
  void reset(int new_columns, int new_rows, Color new_background);
  // A character at a position in window cells; it lands in the nearest
  // cell, and off the window it is dropped. A later character in a cell
  // replaces an earlier one.
  void put(Vector view_pos, char ch, std::uint8_t r, std::uint8_t g, std::uint8_t b);

  int getColumns() const { return columns; }
  int getRows() const { return rows; }
  Color getBackground() const { return background; }
  // The cell at a column and row; an undrawn cell outside the frame.
  Cell at(int column, int row) const;
  // The characters of a row, undrawn cells as blanks; "" for a row outside the frame.
  std::string rowText(int row) const;

  // The frame as text: a header line, the characters row by row, then the
  // colours row by row, one letter a cell (see the guide), each row ending
  // in '|' so that trailing blanks survive editors.
  std::string toText() const;

 private:
  int columns = 0;
  int rows = 0;
  Color background = BLACK;
  std::vector<Cell> cells;
};

// Compares two frame texts cell by cell; "" when they are the same, else a
// readable list of the first differences.
std::string describeFrameDifferences(const std::string& expected, const std::string& actual);

}  // namespace vt
