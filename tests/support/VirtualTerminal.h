#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace test {

// A terminal as far as the engine's screen output, or tmux's capture of a screen, needs one: cursor
// moves, colours, clearing, and characters written without wrapping.
class VirtualTerminal {
 public:
  struct Cell {
    char ch = 0;
    // The sequences that set the cell's colours; "" for the terminal's own.
    std::string foreground, background;
  };

  VirtualTerminal(int columns, int rows)
      : columns(columns), rows(rows), cells(static_cast<std::size_t>(columns * rows)) {}

  void apply(const std::string& bytes) {
    for (std::size_t i = 0; i < bytes.size(); i++) {
      if (bytes[i] != '\x1b') {
        put(bytes[i]);
        continue;
      }
      ASSERT_EQ(bytes.substr(i + 1, 1), "[") << "only control sequences are written";
      std::size_t end = i + 2;
      while (end < bytes.size() && !(bytes[end] >= '@' && bytes[end] <= '~')) end++;
      ASSERT_LT(end, bytes.size()) << "a sequence is cut short";
      control(bytes.substr(i + 2, end - i - 2), bytes[end], bytes.substr(i, end - i + 1));
      i = end;
    }
  }

  const Cell& at(int column, int row) const {
    return cells[static_cast<std::size_t>(row * columns + column)];
  }

  std::string rowText(int row) const {
    std::string text;
    for (int column = 0; column < columns; column++) text += at(column, row).ch;
    return text;
  }

 private:
  void put(char ch) {
    ASSERT_TRUE(ch >= 32 && ch < 127) << "a control byte reached the screen: " << int(ch);
    ASSERT_TRUE(x >= 0 && x < columns && y >= 0 && y < rows) << "written off the screen";
    cells[static_cast<std::size_t>(y * columns + x)] = {ch, foreground, background};
    if (x + 1 < columns) x++;
  }

  void control(const std::string& parameters, char final, const std::string& whole) {
    const std::size_t semicolon = parameters.find(';');
    const int code = std::atoi(parameters.c_str());
    if (final == 'H') {
      y = code - 1;
      x = std::stoi(parameters.substr(semicolon + 1)) - 1;
    } else if (final == 'C') {
      x += code;
    } else if (final == 'm' && code == 0) {
      foreground.clear(), background.clear();
    } else if (final == 'm') {
      // 40 to 49 and 100 to 109 set the background; 39 and 49 the default.
      (code / 10 == 4 || code / 10 == 10 ? background : foreground) = code % 10 == 9 ? "" : whole;
    } else if (final == 'J' || final == 'K') {
      const int first = final == 'J' ? 0 : y * columns;
      const int last = final == 'J' ? columns * rows : (y + 1) * columns;
      for (int i = first; i < last; i++) cells[static_cast<std::size_t>(i)] = {' ', "", background};
    }
  }

  int columns, rows;
  std::vector<Cell> cells;
  int x = 0, y = 0;
  std::string foreground, background;
};

}  // namespace test
