#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/Vector.h"

namespace vt {

// Builds a level from a text map: every character of the file stands for a
// cell, and the handler given for that character is called with the cell's
// world position, to make what stands there. Blanks are empty cells unless
// a handler is given for ' '.
class MapLoader {
 public:
  // Most cells a map may have; a bigger file is refused as soon as it shows.
  static const int MAX_CELLS = 1 << 20;
  using CellHandler = std::function<void(Vector position)>;

  // Calls handler for every cell that holds ch; replaces an earlier handler
  // of the same character. An empty handler (nullptr) makes ch an empty cell.
  void on(char ch, CellHandler handler);

  // Reads the map, then calls the handler of each cell, row by row from the
  // top, each row from the left; the cell in row r and column c (counted
  // from 0) is at origin + (c, r). Nothing is called unless the whole map
  // is good: a missing file, rows of different lengths, a character without
  // a handler, an empty file or one of more than MAX_CELLS cells give a log
  // line naming the file (and the line) and -1. Else 0.
  int load(const std::string& filename, Vector origin = Vector());

  // The size of the last map loaded.
  int getColumns() const { return columns; }
  int getRows() const { return rows; }

 private:
  // The rows of the file, all of one length; false, after logging, when
  // the file cannot be read whole or its rows differ in length.
  bool readRows(const std::string& filename, std::vector<std::string>& lines) const;
  // False, after logging, at the first character no handler takes.
  bool checkCharacters(const std::string& filename, const std::vector<std::string>& lines) const;
  const CellHandler* handlerOf(char ch) const;

  std::map<char, CellHandler> handlers;
  int columns = 0;
  int rows = 0;
};

}  // namespace vt
