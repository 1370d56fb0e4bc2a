#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>

#include "media/CellFrame.h"
#include "media/TerminalScreen.h"
#include "support/VirtualTerminal.h"

namespace {

using test::VirtualTerminal;
using vt::TerminalScreen;

std::string sequenceOf(const TerminalScreen& screen, vt::Color color, bool foreground) {
  unsigned char r = 0, g = 0, b = 0;
  vt::colorToRGB(color, r, g, b);
  return screen.colorSequence(r, g, b, foreground);
}

// Every cell of the frame shows in the terminal: its character, in its
// colour, on the frame's background.
void expectShows(const VirtualTerminal& terminal, const TerminalScreen& screen,
                 const vt::CellFrame& frame, int columns, int rows) {
  for (int row = 0; row < rows; row++) {
    for (int column = 0; column < columns; column++) {
      const vt::CellFrame::Cell cell = frame.at(column, row);
      const VirtualTerminal::Cell& shown = terminal.at(column, row);
      const char expected = cell.drawn ? cell.ch : ' ';
      ASSERT_EQ(shown.ch, expected) << "column " << column << ", row " << row;
      ASSERT_EQ(shown.background, sequenceOf(screen, frame.getBackground(), false));
      if (expected == ' ') continue;
      ASSERT_EQ(shown.foreground, screen.colorSequence(cell.r, cell.g, cell.b, true))
          << "column " << column << ", row " << row;
    }
  }
}

void scatter(vt::CellFrame& frame, std::mt19937& random, int count) {
  const char* const chars = "#@*.o<>=-|ABZ ";
  for (int i = 0; i < count; i++) {
    unsigned char r = 0, g = 0, b = 0;
    vt::colorToRGB(static_cast<vt::Color>(random() % 8), r, g, b);
    frame.put(vt::Vector(random() % 40, random() % 12), chars[random() % 14], r, g, b);
  }
}

TEST(TerminalScreen, ShowsEachFrameWritingOnlyTheCellsThatChanged) {
  for (const auto mode :
       {TerminalScreen::COLORS_16, TerminalScreen::COLORS_256, TerminalScreen::COLORS_24BIT}) {
    SCOPED_TRACE(mode);
    TerminalScreen screen;
    screen.setColorMode(mode);
    screen.setSize(40, 12);
    VirtualTerminal terminal(40, 12);
    std::mt19937 random(7);
    vt::CellFrame frame;
    frame.reset(40, 12, vt::BLUE);
    scatter(frame, random, 300);
    const std::string first = screen.render(frame);
    EXPECT_EQ(first.rfind("\x1b[?2026h", 0), 0u) << "one synchronized update";
    EXPECT_EQ(first.substr(first.size() - 8), "\x1b[?2026l");
    terminal.apply(first);
    expectShows(terminal, screen, frame, 40, 12);
    EXPECT_EQ(screen.render(frame), "") << "nothing changed, nothing written";
    for (int changes = 1; changes <= 20; changes += 19) {
      vt::CellFrame next = frame;
      scatter(next, random, changes);
      const std::string update = screen.render(next);
      terminal.apply(update);
      expectShows(terminal, screen, next, 40, 12);
      EXPECT_LE(update.size(), 16u + 30u * static_cast<std::size_t>(changes));
      frame = next;
    }
  }
}

TEST(TerminalScreen, CropsALargerFrameToTheTopLeftAndSaysSoOnTheLastRow) {
  TerminalScreen screen;
  screen.setSize(30, 5);
  VirtualTerminal terminal(30, 5);
  vt::CellFrame frame;
  frame.reset(50, 8, vt::BLACK);
  for (int cell = 0; cell < 50 * 8; cell++) {
    const int column = cell % 50, row = cell / 50;
    frame.put(vt::Vector(column, row), static_cast<char>('a' + (column + row) % 26), 255, 0, 0);
  }
  terminal.apply(screen.render(frame));
  expectShows(terminal, screen, frame, 30, 4);
  EXPECT_EQ(terminal.rowText(4), "The terminal is 30x5, the game");
  // A larger terminal shows the whole frame, and nothing of the notice.
  screen.setSize(60, 10);
  VirtualTerminal larger(60, 10);
  larger.apply(screen.render(frame));
  expectShows(larger, screen, frame, 50, 8);
  EXPECT_EQ(larger.rowText(9), std::string(60, ' '));
}

// COLORTERM=truecolor and its 24-bit sequences: see the shooter played in tmux.
TEST(TerminalScreen, ChoosesColoursByWhatTheTerminalSaysAndMapsTheNamedOnes) {
  EXPECT_EQ(TerminalScreen::colorModeFor("24bit", nullptr), TerminalScreen::COLORS_24BIT);
  EXPECT_EQ(TerminalScreen::colorModeFor(nullptr, "tmux-256color"), TerminalScreen::COLORS_256);
  EXPECT_EQ(TerminalScreen::colorModeFor("", "xterm"), TerminalScreen::COLORS_16);
  EXPECT_EQ(TerminalScreen::colorModeFor(nullptr, nullptr), TerminalScreen::COLORS_16);
  // Each named colour's code among sixteen colours and among 256.
  const std::tuple<vt::Color, const char*, const char*> NAMED[] = {
      {vt::BLACK, "30", "16"},   {vt::RED, "91", "196"},  {vt::GREEN, "92", "46"},
      {vt::YELLOW, "93", "226"}, {vt::BLUE, "34", "21"},  {vt::MAGENTA, "95", "201"},
      {vt::CYAN, "96", "51"},    {vt::WHITE, "97", "231"}};
  TerminalScreen screen;
  for (const auto& [color, sixteen, two_fifty_six] : NAMED) {
    screen.setColorMode(TerminalScreen::COLORS_16);
    EXPECT_EQ(sequenceOf(screen, color, true), std::string("\x1b[") + sixteen + "m");
    screen.setColorMode(TerminalScreen::COLORS_256);
    EXPECT_EQ(sequenceOf(screen, color, false), std::string("\x1b[48;5;") + two_fifty_six + "m");
  }
  EXPECT_EQ(screen.colorSequence(128, 128, 128, true) + screen.colorSequence(247, 247, 247, true),
            "\x1b[38;5;244m\x1b[38;5;231m")
      << "greys on the ramp, and past its top step the cube's white";
}

}  // namespace
