#pragma once

#include <SFML/Config.hpp>
#include <SFML/Graphics/Color.hpp>
#include <SFML/System/Vector2.hpp>
#include <array>
#include <memory>
#include <random>
#include <string>

#include "core/Color.h"
#include "core/Manager.h"
#include "core/Vector.h"
#include "media/CellFrame.h"

namespace sf {
class Drawable;
class Font;
class Glyph;
class RenderWindow;
}  // namespace sf

namespace vt {

enum Justification {
  LEFT_JUSTIFIED = 0,
  CENTER_JUSTIFIED,
  RIGHT_JUSTIFIED,
};

class BackBufferCopy;
class CellBatch;
class TerminalScreen;

// Shows the character-cell world, in a window or in a terminal. In a window
// every character is a background-coloured cell with a glyph centred in it;
// in a terminal each step's cell frame is written, the cells that changed.
class DisplayManager : public Manager {
 public:
  static DisplayManager& getInstance();
  ~DisplayManager() override;

  int startUp() override;
  void shutDown() override;

  // One character at a world position; -1 when not started or headless.
  int drawCh(Vector world_pos, char ch, Color color);
  int drawCh(Vector world_pos, char ch, unsigned char r, unsigned char g, unsigned char b);
  int drawString(Vector world_pos, std::string str, Justification just, Color color);
  // A one-pixel line between two world positions; in a terminal, a line of
  // cells.
  int drawLine(Vector world_p1, Vector world_p2, Color color = WHITE);
  // Draws an SFML drawable into the window, above the characters drawn so
  // far in this frame. A terminal cannot show it: -1 there.
  int drawDrawable(const sf::Drawable& drawable);

  bool setBackgroundColor(Color new_color);
  // Shows the frame drawn since the last swap and starts the next one.
  int swapBuffers();
  // The characters drawn since the last swap: after a step of the loop,
  // the whole frame the world drew. Kept in a window always; headless only
  // while capturing.
  const CellFrame& getFrame() const { return frame; }
  // Headless, draws into the cell frame (and drawing succeeds) instead of
  // failing quietly. For tests, golden frames and replays.
  void setCapture(bool new_capturing);
  // Jitters the screen for duration steps; add lengthens and strengthens a
  // shake under way.
  void shake(int severity_x, int severity_y, int duration, bool add = false);

  int getHorizontal() const { return window_horizontal_chars; }
  int getVertical() const { return window_vertical_chars; }
  int getHorizontalPixels() const { return window_horizontal_pixels; }
  int getVerticalPixels() const { return window_vertical_pixels; }
  sf::RenderWindow* getWindow() const { return p_window.get(); }
  // True when the game is shown in a terminal.
  bool isTerminal() const { return terminal; }
  // True when the window keeps last frame's pixels and a frame redraws only the cells that changed.
  bool keepsPixels() const { return p_back_buffer_copy != nullptr; }

 private:
  DisplayManager();

  // Window or terminal, from VANTOR_DISPLAY or else the configuration.
  int chooseDisplay();
  int openWindow();
  int openTerminal();
  // The terminal's screen takes the terminal's size.
  void fitTerminalScreen();
  void presentInTerminal();
  int drawCellLine(Vector world_p1, Vector world_p2, Color color);
  void centreWindow();
  int loadFont();
  // True when drawing may go ahead; logs when the manager is not started.
  bool canDraw() const;
  // The same for drawing into the cell frame, which needs no window.
  bool canDrawCells() const;
  void addGlyph(sf::Uint32 code, sf::Vector2f position, sf::Color color);
  const sf::Glyph& glyphFor(unsigned char code);
  float backgroundInsetX() const;
  float backgroundInsetY() const;
  // Draws the characters collected since the last flush.
  void flushCells();

  std::unique_ptr<sf::RenderWindow> p_window;
  std::unique_ptr<sf::Font> p_font;
  unsigned int char_size = 0;
  std::array<const sf::Glyph*, 256> glyphs{};
  // A cell's size in pixels while the window is open.
  float cell_width = 0;
  float cell_height = 0;
  // The characters drawn since the last flush, waiting to be drawn at once.
  std::unique_ptr<CellBatch> p_cells;
  // Where the driver can show a window without swapping its buffers.
  std::unique_ptr<BackBufferCopy> p_back_buffer_copy;
  CellFrame frame;
  Color frame_background = BLACK;
  bool capturing = false;
  bool terminal = false;
  std::unique_ptr<TerminalScreen> p_terminal_screen;
  bool drawable_skip_logged = false;
  sf::Color window_background_color = sf::Color::Black;
  int window_horizontal_pixels = 0;
  int window_vertical_pixels = 0;
  int window_horizontal_chars = 0;
  int window_vertical_chars = 0;
  int shake_duration = 0;
  int shake_severity_x = 0;
  int shake_severity_y = 0;
  int shake_x = 0;
  int shake_y = 0;
  // The shake has numbers of its own, the same from every start: a game's
  // random numbers must not depend on whether it runs in a window.
  std::mt19937 shake_random;
};

// Cell size in pixels, from the configuration's window size.
float charHeight();
float charWidth();
Vector spacesToPixels(Vector spaces);
Vector pixelsToSpaces(Vector pixels);
// World and view coordinates differ by the corner of the world's view.
Vector worldToView(Vector world_pos);
Vector viewToWorld(Vector view_pos);
sf::Color colorToSFML(Color color);

}  // namespace vt
