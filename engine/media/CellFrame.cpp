#include "media/CellFrame.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>

namespace vt {

namespace {

// The colour layer's letter of each named colour, in Color order.
const char NAMED_LETTERS[] = "krgybmcw";
const char UNDRAWN_LETTER = '.';
// Letters for colours other than the named ones, in order of appearance.
const char OTHER_LETTERS[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
const char TOO_MANY_COLORS = '?';
const int MAX_REPORTED_DIFFERENCES = 20;

std::string hexColor(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
  char text[8];
  std::snprintf(text, sizeof(text), "#%02x%02x%02x", r, g, b);
  return text;
}

char namedLetter(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
  for (int color = BLACK; color <= WHITE; color++) {
    unsigned char named_r = 0;
    unsigned char named_g = 0;
    unsigned char named_b = 0;
    colorToRGB(static_cast<Color>(color), named_r, named_g, named_b);
    if (named_r == r && named_g == g && named_b == b) return NAMED_LETTERS[color];
  }
  return 0;
}

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  std::string line;
  while (std::getline(stream, line)) lines.push_back(line);
  return lines;
}

// The colour a letter of the colour layer stands for, by the frame's legend.
std::string colorOfLetter(char letter, const std::map<char, std::string>& legend) {
  if (letter == UNDRAWN_LETTER) return "nothing drawn";
  const auto found = legend.find(letter);
  return found == legend.end() ? std::string(1, letter) : found->second;
}

std::map<char, std::string> readLegend(const std::vector<std::string>& lines) {
  std::map<char, std::string> legend;
  for (int color = BLACK; color <= WHITE; color++) {
    legend[NAMED_LETTERS[color]] = colorToString(static_cast<Color>(color));
  }
  if (lines.empty() || lines.back().rfind("legend:", 0) != 0) return legend;
  std::istringstream entries(lines.back().substr(7));
  std::string entry;
  while (entries >> entry) {
    if (entry.size() > 2 && entry[1] == '=') legend[entry[0]] = entry.substr(2);
  }
  return legend;
}

}  // namespace

void CellFrame::reset(int new_columns, int new_rows, Color new_background) {
  columns = new_columns < 0 ? 0 : new_columns;
  rows = new_rows < 0 ? 0 : new_rows;
  background = new_background;
  cells.assign(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), Cell());
}

void CellFrame::put(Vector view_pos, char ch, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
  const float column = std::floor(view_pos.getX() + 0.5f);
  const float row = std::floor(view_pos.getY() + 0.5f);
  // Also false for NaN.
  if (!(column >= 0 && column < static_cast<float>(columns) && row >= 0 &&
        row < static_cast<float>(rows))) {
    return;
  }
  cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
        static_cast<std::size_t>(column)] = {ch, r, g, b, true};
}

CellFrame::Cell CellFrame::at(int column, int row) const {
  if (column < 0 || column >= columns || row < 0 || row >= rows) return Cell();
  return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column)];
}

std::string CellFrame::rowText(int row) const {
  if (row < 0 || row >= rows) return "";
  std::string text;
  for (int column = 0; column < columns; column++) {
    const Cell cell = at(column, row);
    text += cell.drawn ? cell.ch : ' ';
  }
  return text;
}

std::string CellFrame::toText() const {
  std::string chars;
  std::string colors;
  std::map<std::string, char> others;
  std::string legend;
  for (int row = 0; row < rows; row++) {
    chars += rowText(row) + "|\n";
    for (int column = 0; column < columns; column++) {
      const Cell cell = at(column, row);
      char letter = cell.drawn ? namedLetter(cell.r, cell.g, cell.b) : UNDRAWN_LETTER;
      if (letter == 0) {
        const std::string hex = hexColor(cell.r, cell.g, cell.b);
        const auto found = others.find(hex);
        if (found != others.end()) {
          letter = found->second;
        } else if (others.size() + 1 < sizeof(OTHER_LETTERS)) {
          letter = OTHER_LETTERS[others.size()];
          others[hex] = letter;
          legend += std::string(" ") + letter + "=" + hex;
        } else {
          letter = TOO_MANY_COLORS;
        }
      }
      colors += letter;
    }
    colors += "|\n";
  }
  std::ostringstream text;
  text << "frame " << columns << "x" << rows << " background " << colorToString(background)
       << "\nchars:\n"
       << chars << "colors:\n"
       << colors << "legend:" << legend << "\n";
  return text.str();
}

std::string describeFrameDifferences(const std::string& expected, const std::string& actual) {
  const std::vector<std::string> expected_lines = splitLines(expected);
  const std::vector<std::string> actual_lines = splitLines(actual);
  if (expected_lines.empty() || actual_lines.empty() || expected_lines[0] != actual_lines[0] ||
      expected_lines.size() != actual_lines.size()) {
    return "the frames differ in size or background: '" +
           (actual_lines.empty() ? std::string() : actual_lines[0]) + "' where the expected is '" +
           (expected_lines.empty() ? std::string() : expected_lines[0]) + "'\n";
  }
  const std::map<char, std::string> expected_legend = readLegend(expected_lines);
  const std::map<char, std::string> actual_legend = readLegend(actual_lines);
  std::ostringstream report;
  int differences = 0;
  std::string layer;
  int row = 0;
  for (std::size_t i = 1; i < expected_lines.size(); i++) {
    const std::string& want = expected_lines[i];
    const std::string& got = actual_lines[i];
    if (want == "chars:" || want == "colors:") {
      layer = want.substr(0, want.size() - 1);
      row = 0;
      continue;
    }
    if (layer.empty() || want.rfind("legend:", 0) == 0) continue;
    for (std::size_t column = 0; column < std::max(want.size(), got.size()); column++) {
      const char want_ch = column < want.size() ? want[column] : ' ';
      const char got_ch = column < got.size() ? got[column] : ' ';
      const bool same = layer == "chars" ? want_ch == got_ch
                                         : colorOfLetter(want_ch, expected_legend) ==
                                               colorOfLetter(got_ch, actual_legend);
      if (same) continue;
      if (++differences > MAX_REPORTED_DIFFERENCES) continue;
      report << "row " << row << ", column " << column << ": ";
      if (layer == "chars") {
        report << "'" << got_ch << "' where the expected frame has '" << want_ch << "'\n";
      } else {
        report << colorOfLetter(got_ch, actual_legend) << " where the expected frame has "
               << colorOfLetter(want_ch, expected_legend) << "\n";
      }
    }
    row++;
  }
  if (differences > MAX_REPORTED_DIFFERENCES) {
    report << "... " << differences - MAX_REPORTED_DIFFERENCES << " more differing cells\n";
  }
  return report.str();
}

}  // namespace vt
