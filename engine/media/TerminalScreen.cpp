#include "media/TerminalScreen.h"

#include <algorithm>
#include <cstring>

namespace vt {

namespace {

const char SYNC_BEGIN[] = "\x1b[?2026h";
const char SYNC_END[] = "\x1b[?2026l";

struct Rgb {
  int r;
  int g;
  int b;
};

// The sixteen colours as xterm shows them by default; the engine's named
// colours land on the bright ones, as pure as a terminal has.
const Rgb PALETTE_16[] = {{0, 0, 0},       {205, 0, 0},   {0, 205, 0},   {205, 205, 0},
                          {0, 0, 238},     {205, 0, 205}, {0, 205, 205}, {229, 229, 229},
                          {127, 127, 127}, {255, 0, 0},   {0, 255, 0},   {255, 255, 0},
                          {92, 92, 255},   {255, 0, 255}, {0, 255, 255}, {255, 255, 255}};
// The levels of each axis of the 256-colour cube.
const int CUBE_LEVELS[] = {0, 95, 135, 175, 215, 255};

int distance(const Rgb& a, const Rgb& b) {
  return (a.r - b.r) * (a.r - b.r) + (a.g - b.g) * (a.g - b.g) + (a.b - b.b) * (a.b - b.b);
}

int nearestPaletteIndex(const Rgb& color) {
  int best = 0;
  for (int i = 1; i < 16; i++) {
    if (distance(color, PALETTE_16[i]) < distance(color, PALETTE_16[best])) best = i;
  }
  return best;
}

int nearestCubeLevel(int value) {
  int best = 0;
  for (int i = 1; i < 6; i++) {
    if (std::abs(value - CUBE_LEVELS[i]) < std::abs(value - CUBE_LEVELS[best])) best = i;
  }
  return best;
}

// The cube's colour or the grey ramp's, whichever is nearer.
int nearest256Index(const Rgb& color) {
  const int r = nearestCubeLevel(color.r);
  const int g = nearestCubeLevel(color.g);
  const int b = nearestCubeLevel(color.b);
  const Rgb cube = {CUBE_LEVELS[r], CUBE_LEVELS[g], CUBE_LEVELS[b]};
  const int average = (color.r + color.g + color.b) / 3;
  const int grey_step = std::clamp((average - 8 + 5) / 10, 0, 23);
  const int grey_level = 8 + 10 * grey_step;
  const Rgb grey = {grey_level, grey_level, grey_level};
  if (distance(color, grey) < distance(color, cube)) return 232 + grey_step;
  return 16 + 36 * r + 6 * g + b;
}

// Control bytes would move the cursor and bytes above ASCII start UTF-8
// sequences: neither may reach the terminal as a character.
char printable(char ch) {
  const auto code = static_cast<unsigned char>(ch);
  return code >= 32 && code < 127 ? ch : '?';
}

void appendNumber(std::string& out, int number) {
  out += std::to_string(number);
}

}  // namespace

TerminalScreen::ColorMode TerminalScreen::colorModeFor(const char* colorterm, const char* term) {
  if (colorterm != nullptr &&
      (std::strcmp(colorterm, "truecolor") == 0 || std::strcmp(colorterm, "24bit") == 0)) {
    return COLORS_24BIT;
  }
  if (term != nullptr && std::strstr(term, "256color") != nullptr) return COLORS_256;
  return COLORS_16;
}

void TerminalScreen::setColorMode(ColorMode new_mode) {
  mode = new_mode;
  invalidate();
}

void TerminalScreen::setSize(int new_columns, int new_rows) {
  columns = std::max(new_columns, 1);
  rows = std::max(new_rows, 1);
  invalidate();
}

void TerminalScreen::invalidate() {
  shown.clear();
  cursor_column = -1;
  cursor_row = -1;
  foreground_set.clear();
  background_set.clear();
}

std::string TerminalScreen::colorSequence(std::uint8_t r, std::uint8_t g, std::uint8_t b,
                                          bool foreground) const {
  const Rgb color = {r, g, b};
  std::string sequence = "\x1b[";
  if (mode == COLORS_24BIT) {
    sequence += foreground ? "38;2;" : "48;2;";
    appendNumber(sequence, r);
    sequence += ';';
    appendNumber(sequence, g);
    sequence += ';';
    appendNumber(sequence, b);
  } else if (mode == COLORS_256) {
    sequence += foreground ? "38;5;" : "48;5;";
    appendNumber(sequence, nearest256Index(color));
  } else {
    const int index = nearestPaletteIndex(color);
    const int base = foreground ? 30 : 40;
    appendNumber(sequence, index < 8 ? base + index : base + 60 + index - 8);
  }
  return sequence + "m";
}

bool TerminalScreen::isCropped(const CellFrame& frame) const {
  return frame.getColumns() > columns || frame.getRows() > rows;
}

int TerminalScreen::usableRows(const CellFrame& frame) const {
  const int available = isCropped(frame) ? rows - 1 : rows;
  return std::max(0, std::min(frame.getRows(), available));
}

TerminalScreen::Shown TerminalScreen::wanted(const CellFrame& frame, int column, int row) const {
  const CellFrame::Cell cell = frame.at(column, row);
  Shown wanted_cell;
  wanted_cell.known = true;
  wanted_cell.background = static_cast<std::uint8_t>(frame.getBackground());
  if (!cell.drawn || cell.ch == ' ') {
    wanted_cell.ch = ' ';
    return wanted_cell;
  }
  wanted_cell.ch = printable(cell.ch);
  wanted_cell.r = cell.r;
  wanted_cell.g = cell.g;
  wanted_cell.b = cell.b;
  return wanted_cell;
}

std::string TerminalScreen::render(const CellFrame& frame) {
  if (frame.getColumns() != frame_columns || frame.getRows() != frame_rows) {
    frame_columns = frame.getColumns();
    frame_rows = frame.getRows();
    invalidate();
  }
  std::string out;
  if (shown.empty()) {
    shown.assign(static_cast<std::size_t>(frame_columns) * static_cast<std::size_t>(frame_rows),
                 Shown());
    clearScreen(out, frame);
    if (isCropped(frame)) writeCropNotice(out, frame);
  }
  const int visible_columns = std::min(frame_columns, columns);
  const int visible_rows = usableRows(frame);
  for (int row = 0; row < visible_rows; row++) {
    for (int column = 0; column < visible_columns; column++) {
      const Shown cell = wanted(frame, column, row);
      Shown& now = shown[static_cast<std::size_t>(row * frame_columns + column)];
      if (now == cell) continue;
      writeCell(out, column, row, cell);
      now = cell;
    }
  }
  if (out.empty()) return out;
  return SYNC_BEGIN + out + SYNC_END;
}

void TerminalScreen::writeCell(std::string& out, int column, int row, const Shown& cell) {
  moveCursor(out, column, row);
  writeColors(out, cell);
  out += cell.ch;
  // In the last column the cursor waits to wrap: where it goes next
  // differs between terminals.
  cursor_column = column + 1 < columns ? column + 1 : -1;
}

// A few columns to the right on the same row is the shortest move; else the
// position in full.
void TerminalScreen::moveCursor(std::string& out, int column, int row) {
  if (cursor_row == row && cursor_column == column) return;
  out += "\x1b[";
  if (cursor_row == row && cursor_column >= 0 && column > cursor_column) {
    appendNumber(out, column - cursor_column);
    out += 'C';
  } else {
    appendNumber(out, row + 1);
    out += ';';
    appendNumber(out, column + 1);
    out += 'H';
  }
  cursor_column = column;
  cursor_row = row;
}

void TerminalScreen::writeColors(std::string& out, const Shown& cell) {
  unsigned char r = 0;
  unsigned char g = 0;
  unsigned char b = 0;
  colorToRGB(static_cast<Color>(cell.background), r, g, b);
  const std::string background = colorSequence(r, g, b, false);
  if (background != background_set) {
    out += background;
    background_set = background;
  }
  // A blank shows no foreground: whatever is set will do.
  if (cell.ch == ' ') return;
  const std::string foreground = colorSequence(cell.r, cell.g, cell.b, true);
  if (foreground != foreground_set) {
    out += foreground;
    foreground_set = foreground;
  }
}

// Whatever was on the screen goes, and the rows and columns beyond the
// frame take its background.
void TerminalScreen::clearScreen(std::string& out, const CellFrame& frame) {
  unsigned char r = 0;
  unsigned char g = 0;
  unsigned char b = 0;
  colorToRGB(frame.getBackground(), r, g, b);
  background_set = colorSequence(r, g, b, false);
  out += "\x1b[0m" + background_set + "\x1b[2J";
  foreground_set.clear();
}

void TerminalScreen::writeCropNotice(std::string& out, const CellFrame& frame) {
  const std::string notice = "The terminal is " + std::to_string(columns) + "x" +
                             std::to_string(rows) + ", the game " +
                             std::to_string(frame.getColumns()) + "x" +
                             std::to_string(frame.getRows()) + ": showing its top-left.";
  moveCursor(out, 0, rows - 1);
  out += "\x1b[0m\x1b[2K";
  out += notice.substr(0, static_cast<std::size_t>(columns));
  foreground_set.clear();
  background_set.clear();
  cursor_column = -1;
}

}  // namespace vt
