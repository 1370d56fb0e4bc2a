#include "media/DisplayManager.h"

#include <algorithm>
#include <cmath>

#include <SFML/Graphics.hpp>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/CellBatch.h"
#include "world/WorldManager.h"

// The display manager's drawing: characters, strings and lines into the
// cell frame and the window's cells, and the conversions between cells,
// pixels, the world and the view.

namespace vt {

namespace {

// sf::Text pads every glyph quad by one pixel so that smoothing has room.
const float GLYPH_PADDING = 1.0f;

// Characters for which sf::Text draws no glyph.
bool isBlank(sf::Uint32 code) {
  return code == ' ' || code == '\t' || code == '\n';
}

}  // namespace

bool DisplayManager::canDraw() const {
  if (notStarted()) return false;
  return p_window != nullptr;
}

bool DisplayManager::canDrawCells() const {
  if (notStarted()) return false;
  return p_window != nullptr || capturing || terminal;
}

int DisplayManager::drawCh(Vector world_pos, char ch, Color color) {
  if (Config::getInstance().getHeadless() && !capturing) return -1;
  unsigned char r = 255;
  unsigned char g = 255;
  unsigned char b = 255;
  colorToRGB(color, r, g, b);
  return drawCh(world_pos, ch, r, g, b);
}

int DisplayManager::drawCh(Vector world_pos, char ch, unsigned char r, unsigned char g,
                           unsigned char b) {
  if (!canDrawCells()) return -1;
  const Vector corner = WorldManager::getInstance().getView().getCorner();
  const Vector view_pos = world_pos - corner;
  frame.put(view_pos, ch, r, g, b);
  if (p_window == nullptr) return 0;
  const float px = view_pos.getX() * cell_width;
  const float py = view_pos.getY() * cell_height;
  // The far edges are the near edges of the next cell, to the last bit, so
  // that cells side by side leave no sliver between them.
  const Vector far_view = (world_pos + Vector(1, 1)) - corner;
  const float far_x = far_view.getX() * cell_width;
  const float far_y = far_view.getY() * cell_height;
  const float inset_x = backgroundInsetX();
  const float inset_y = backgroundInsetY();
  p_cells->addBackground({px - inset_x, py + inset_y, far_x - inset_x, far_y + inset_y},
                         window_background_color);
  const sf::Vector2f glyph_position(px + static_cast<float>(shake_x),
                                    py + static_cast<float>(shake_y));
  addGlyph(static_cast<unsigned char>(ch), glyph_position, sf::Color(r, g, b, 255));
  return 0;
}

// The glyph's quad as sf::Text places it, with its baseline char_size below
// the position.
void DisplayManager::addGlyph(sf::Uint32 code, sf::Vector2f position, sf::Color color) {
  if (isBlank(code)) return;
  const sf::Glyph& glyph = glyphFor(code);
  const sf::FloatRect& bounds = glyph.bounds;
  const float baseline = static_cast<float>(char_size);
  // Summed in sf::Text's order, so that the floats come out the same.
  const Edges quad = {position.x + (bounds.left - GLYPH_PADDING),
                      position.y + (baseline + (bounds.top - GLYPH_PADDING)),
                      position.x + (bounds.left + bounds.width + GLYPH_PADDING),
                      position.y + (baseline + (bounds.top + bounds.height + GLYPH_PADDING))};
  const sf::IntRect& rect = glyph.textureRect;
  const Edges tex = {static_cast<float>(rect.left) - GLYPH_PADDING,
                     static_cast<float>(rect.top) - GLYPH_PADDING,
                     static_cast<float>(rect.left + rect.width) + GLYPH_PADDING,
                     static_cast<float>(rect.top + rect.height) + GLYPH_PADDING};
  p_cells->addGlyph(quad, tex, color);
}

// A cell's background sits a little left of and below the cell, where the
// glyph's ink is.
float DisplayManager::backgroundInsetX() const {
  return cell_width / 10;
}

float DisplayManager::backgroundInsetY() const {
  return cell_height / 5;
}

// The font keeps its glyphs where they are once made: they are looked up
// once.
const sf::Glyph& DisplayManager::glyphFor(unsigned char code) {
  const sf::Glyph*& p_glyph = glyphs[code];
  if (p_glyph == nullptr) p_glyph = &p_font->getGlyph(code, char_size, true);
  return *p_glyph;
}

void DisplayManager::flushCells() {
  p_cells->drawBeforeOther(*p_window, p_font->getTexture(char_size));
}

int DisplayManager::drawString(Vector world_pos, std::string str, Justification just, Color color) {
  if (!canDrawCells()) return -1;
  const int length = static_cast<int>(str.size());
  Vector start = world_pos;
  if (just == CENTER_JUSTIFIED) start.setX(start.getX() - static_cast<float>(length / 2));
  if (just == RIGHT_JUSTIFIED) start.setX(start.getX() - static_cast<float>(length));
  for (int i = 0; i < length; i++) {
    drawCh(Vector(start.getX() + static_cast<float>(i), start.getY()), str[i], color);
  }
  return 0;
}

int DisplayManager::drawLine(Vector world_p1, Vector world_p2, Color color) {
  if (terminal) return drawCellLine(world_p1, world_p2, color);
  if (!canDraw()) return -1;
  const Vector p1 = spacesToPixels(worldToView(world_p1));
  const Vector p2 = spacesToPixels(worldToView(world_p2));
  const sf::Color line_color = colorToSFML(color);
  const sf::Vertex line[] = {sf::Vertex({p1.getX(), p1.getY()}, line_color),
                             sf::Vertex({p2.getX(), p2.getY()}, line_color)};
  flushCells();
  p_window->draw(line, 2, sf::Lines);
  return 0;
}

// The cells nearest to the line, one a step along its longer axis.
int DisplayManager::drawCellLine(Vector world_p1, Vector world_p2, Color color) {
  if (!canDrawCells()) return -1;
  const Vector span = world_p2 - world_p1;
  const float dx = span.getX();
  const float dy = span.getY();
  const char ch =
      std::fabs(dy) < 0.5f ? '-' : (std::fabs(dx) < 0.5f ? '|' : (dx * dy > 0 ? '\\' : '/'));
  const float length = std::max(std::fabs(dx), std::fabs(dy));
  // Also false for NaN; a line longer than any grid is cut short.
  const int steps = length >= 0 ? static_cast<int>(std::min(length, 4096.0f)) : 0;
  for (int i = 0; i <= steps; i++) {
    const float t = steps == 0 ? 0.0f : static_cast<float>(i) / static_cast<float>(steps);
    drawCh(world_p1 + span * t, ch, color);
  }
  return 0;
}

int DisplayManager::drawDrawable(const sf::Drawable& drawable) {
  if (terminal && !drawable_skip_logged) {
    LogManager::getInstance().writeLog(
        "DisplayManager::drawDrawable(): SFML drawables are not shown in a terminal.");
    drawable_skip_logged = true;
  }
  if (!canDraw()) return -1;
  flushCells();
  p_window->draw(drawable);
  return 0;
}

float charHeight() {
  const Config& config = Config::getInstance();
  return static_cast<float>(config.getWindowVerticalPixels()) /
         static_cast<float>(config.getWindowVerticalChars());
}

float charWidth() {
  const Config& config = Config::getInstance();
  return static_cast<float>(config.getWindowHorizontalPixels()) /
         static_cast<float>(config.getWindowHorizontalChars());
}

Vector spacesToPixels(Vector spaces) {
  const Vector pixels(spaces.getX() * charWidth(), spaces.getY() * charHeight());
  LogManager::getInstance().writeLog(
      30, "spacesToPixels(int): spaces (%.2f,%.2f) = pixels (%.2f,%.2f)",
      static_cast<double>(spaces.getX()), static_cast<double>(spaces.getY()),
      static_cast<double>(pixels.getX()), static_cast<double>(pixels.getY()));
  return pixels;
}

Vector pixelsToSpaces(Vector pixels) {
  const Vector spaces(pixels.getX() / charWidth(), pixels.getY() / charHeight());
  LogManager::getInstance().writeLog(
      30, "pixelsToSpaces(): pixels (%.2f,%.2f) = spaces (%.2f,%.2f)",
      static_cast<double>(pixels.getX()), static_cast<double>(pixels.getY()),
      static_cast<double>(spaces.getX()), static_cast<double>(spaces.getY()));
  return spaces;
}

Vector worldToView(Vector world_pos) {
  return world_pos - WorldManager::getInstance().getView().getCorner();
}

Vector viewToWorld(Vector view_pos) {
  return view_pos + WorldManager::getInstance().getView().getCorner();
}

sf::Color colorToSFML(Color color) {
  switch (color) {
    case BLACK:
      return sf::Color::Black;
    case RED:
      return sf::Color::Red;
    case GREEN:
      return sf::Color::Green;
    case YELLOW:
      return sf::Color::Yellow;
    case BLUE:
      return sf::Color::Blue;
    case MAGENTA:
      return sf::Color::Magenta;
    case CYAN:
      return sf::Color::Cyan;
    case WHITE:
      return sf::Color::White;
    case CUSTOM:
      LogManager::getInstance().writeLog(5, "colorToSFML(): Color is CUSTOM.");
      return sf::Color::White;
  }
  LogManager::getInstance().writeLog(5, "colorToSFML(): Color %d not supported.",
                                     static_cast<int>(color));
  return sf::Color::White;
}

}  // namespace vt
