#include "media/DisplayManager.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/LogStreamBuf.h"
#include "world/WorldManager.h"

// Last: Xlib defines macros (None, Status, Bool) that clash with other headers.
#include <X11/Xlib.h>

namespace vt {

namespace {

// The configuration's style values are SFML's own style bits.
static_assert(WINDOW_STYLE_DEFAULT == (sf::Style::Titlebar | sf::Style::Close));
static_assert(WINDOW_STYLE_FULLSCREEN == sf::Style::Fullscreen);

// Printable ASCII, rendered up front: the font's page texture grows as
// glyphs are added.
const sf::Uint32 FIRST_PRELOADED_CHAR = 32;
const sf::Uint32 LAST_PRELOADED_CHAR = 126;

// A quad is two triangles; a cell is a background quad and a glyph quad.
const std::size_t VERTICES_PER_QUAD = 6;
const std::size_t VERTICES_PER_CELL = 2 * VERTICES_PER_QUAD;

// Mesa's software renderer (llvmpipe) spends more on one long draw than on
// the same triangles in runs of a few hundred vertices: a full screen took
// about a quarter less CPU in runs of 384. A multiple of six keeps quads
// whole; the runs are drawn in order, so the picture is the same.
const std::size_t VERTICES_PER_DRAW = 384;

// sf::Text pads every glyph quad by one pixel so that smoothing has room.
const float GLYPH_PADDING = 1.0f;

// A rectangle by its edges: an intersection keeps the very floats that the
// rectangles are drawn with, so it covers exactly the pixels both cover.
struct Edges {
  float left;
  float top;
  float right;
  float bottom;

  bool isEmpty() const { return left >= right || top >= bottom; }
  Edges intersection(const Edges& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
  }
  // Appends what is left of this rectangle outside cover: itself, nothing,
  // or up to four pieces around the part covered.
  void subtract(const Edges& cover, std::vector<Edges>& rest) const {
    const Edges inside = intersection(cover);
    if (inside.isEmpty()) {
      rest.push_back(*this);
      return;
    }
    if (top < inside.top) rest.push_back({left, top, right, inside.top});
    if (inside.bottom < bottom) rest.push_back({left, inside.bottom, right, bottom});
    if (left < inside.left) rest.push_back({left, inside.top, inside.left, inside.bottom});
    if (inside.right < right) rest.push_back({inside.right, inside.top, right, inside.bottom});
  }
};

// SFML keeps a white square at the top-left of every font page; sampling its
// middle gives plain colour for the cell backgrounds.
const Edges WHITE_TEXEL = {1.0f, 1.0f, 1.0f, 1.0f};

// A connection of our own to the X server, open before SFML is asked for
// anything (SFML aborts when it cannot connect) and held while SFML connects:
// a server whose last client leaves resets and refuses connections a moment.
class DisplayProbe {
 public:
  DisplayProbe() : p_display(XOpenDisplay(nullptr)) {}
  ~DisplayProbe() {
    if (p_display != nullptr) XCloseDisplay(p_display);
  }
  DisplayProbe(const DisplayProbe&) = delete;
  DisplayProbe& operator=(const DisplayProbe&) = delete;

  bool isOpen() const { return p_display != nullptr; }

 private:
  Display* p_display;
};

// A pixel offset in [1 - severity, severity + 1], stepping by two.
int shakeOffset(int severity, std::mt19937& random) {
  const int span = severity + 1;
  if (span < 1) return 0;
  return span - 2 * static_cast<int>(random() % static_cast<unsigned>(span));
}

// Characters for which sf::Text draws no glyph.
bool isBlank(sf::Uint32 code) {
  return code == ' ' || code == '\t' || code == '\n';
}

int clampedIndex(float position, float bucket_size, int count) {
  const float index = std::floor(position / bucket_size);
  if (std::isnan(index)) return 0;
  return static_cast<int>(std::clamp(index, 0.0f, static_cast<float>(count - 1)));
}

}  // namespace

// The characters drawn since the last flush, as one list of triangles over
// the font's page texture in call order: each cell's background, then its
// glyph. While the window shows only the background colour apart from this
// batch's glyphs (right after a clear), a background changes pixels only
// where earlier glyphs reach into its cell, so only those overlaps are drawn:
// the picture is the same with far fewer pixels filled. Glyphs are found
// through a grid of cell-sized buckets. Quads that reach no pixel of the
// window are left out.
class CellBatch {
 public:
  CellBatch(sf::Vector2f cell_size, int columns, int rows)
      : cell_size(cell_size),
        columns(std::max(columns, 1)),
        rows(std::max(rows, 1)),
        window({0.0f, 0.0f, cell_size.x * static_cast<float>(this->columns),
                cell_size.y * static_cast<float>(this->rows)}),
        buckets(static_cast<std::size_t>(this->columns * this->rows)) {
    vertices.reserve(buckets.size() * VERTICES_PER_CELL);
  }

  // Set after the window was cleared to the colour the backgrounds to come
  // are drawn in; anything else drawn into the window ends it.
  void setPlainBackground(bool plain) { plain_background = plain; }

  void addBackground(const Edges& cell, sf::Color color) {
    if (isOffScreen(cell)) return;
    if (plain_background) {
      addOverlaps(cell, color);
    } else {
      addQuad(cell, WHITE_TEXEL, color);
    }
  }

  void addGlyph(const Edges& quad, const Edges& tex, sf::Color color) {
    if (isOffScreen(quad)) return;
    const std::size_t index = glyph_pieces.size();
    glyph_quads.push_back({vertices.size()});
    addQuad(quad, tex, color);
    glyph_pieces.push_back({quad});
    glyph_stamps.push_back(0);
    forEachBucket(quad, [&](std::vector<std::size_t>& bucket) { bucket.push_back(index); });
  }

  // Draws and forgets the batch. Its glyphs stay in the window unrecorded,
  // so the background is no longer plain.
  void draw(sf::RenderTarget& target, const sf::Texture& texture) {
    const sf::RenderStates states(&texture);
    for (std::size_t first = 0; first < vertices.size(); first += VERTICES_PER_DRAW) {
      const std::size_t count = std::min(VERTICES_PER_DRAW, vertices.size() - first);
      target.draw(vertices.data() + first, count, sf::Triangles, states);
    }
    vertices.clear();
    glyph_pieces.clear();
    glyph_stamps.clear();
    glyph_quads.clear();
    stamp = 0;
    for (std::vector<std::size_t>& bucket : buckets) bucket.clear();
    plain_background = false;
  }

 private:
  // Nothing of it would reach a pixel of the window.
  bool isOffScreen(const Edges& rect) const { return window.intersection(rect).isEmpty(); }

  // The parts of the cell that earlier glyphs cover, each glyph once. What
  // is painted over is forgotten: many glyphs drawn into one cell (a heads-
  // up display drawn over itself) then cost one quad each, not one for every
  // later background. A glyph painted over whole is dropped with the quads
  // that painted it: the plain background shows there either way.
  void addOverlaps(const Edges& cell, sf::Color color) {
    stamp++;
    forEachBucket(cell, [&](std::vector<std::size_t>& bucket) {
      for (std::size_t index : bucket) {
        if (glyph_stamps[index] == stamp) continue;
        glyph_stamps[index] = stamp;
        std::vector<Edges>& pieces = glyph_pieces[index];
        unpainted.clear();
        for (const Edges& piece : pieces) {
          const Edges overlap = cell.intersection(piece);
          if (!overlap.isEmpty()) {
            glyph_quads[index].push_back(vertices.size());
            addQuad(overlap, WHITE_TEXEL, color);
          }
          piece.subtract(cell, unpainted);
        }
        pieces.swap(unpainted);
        if (pieces.empty()) dropQuads(glyph_quads[index]);
      }
      // Glyphs painted over whole leave the bucket, so that a cell drawn
      // over many times is not walked over all its past glyphs each time.
      bucket.erase(std::remove_if(bucket.begin(), bucket.end(),
                                  [&](std::size_t index) { return glyph_pieces[index].empty(); }),
                   bucket.end());
    });
  }

  // Collapses each quad to a point, which draws nothing.
  void dropQuads(std::vector<std::size_t>& starts) {
    for (const std::size_t start : starts) {
      for (std::size_t i = start + 1; i < start + VERTICES_PER_QUAD; i++) {
        vertices[i].position = vertices[start].position;
      }
    }
    starts.clear();
  }

  // Two triangles, in the order sf::Text builds a glyph.
  void addQuad(const Edges& quad, const Edges& tex, sf::Color color) {
    const sf::Vertex top_left({quad.left, quad.top}, color, {tex.left, tex.top});
    const sf::Vertex top_right({quad.right, quad.top}, color, {tex.right, tex.top});
    const sf::Vertex bottom_left({quad.left, quad.bottom}, color, {tex.left, tex.bottom});
    const sf::Vertex bottom_right({quad.right, quad.bottom}, color, {tex.right, tex.bottom});
    vertices.insert(vertices.end(),
                    {top_left, top_right, bottom_left, bottom_left, top_right, bottom_right});
  }

  // Calls visit with every bucket the rectangle touches; parts beyond the
  // window count towards the buckets at its edge.
  template <typename Visit>
  void forEachBucket(const Edges& rect, Visit visit) {
    const int first_column = clampedIndex(rect.left, cell_size.x, columns);
    const int last_column = clampedIndex(rect.right, cell_size.x, columns);
    const int first_row = clampedIndex(rect.top, cell_size.y, rows);
    const int last_row = clampedIndex(rect.bottom, cell_size.y, rows);
    for (int row = first_row; row <= last_row; row++) {
      for (int column = first_column; column <= last_column; column++) {
        visit(buckets[static_cast<std::size_t>(row * columns + column)]);
      }
    }
  }

  sf::Vector2f cell_size;
  int columns;
  int rows;
  Edges window;
  std::vector<sf::Vertex> vertices;
  // The parts of each glyph not yet painted over.
  std::vector<std::vector<Edges>> glyph_pieces;
  std::vector<Edges> unpainted;
  // The last background query that met each glyph, so that it meets it once.
  std::vector<unsigned int> glyph_stamps;
  // Where each glyph's quad and the quads painted over it start.
  std::vector<std::vector<std::size_t>> glyph_quads;
  unsigned int stamp = 0;
  std::vector<std::vector<std::size_t>> buckets;
  bool plain_background = false;
};

DisplayManager::DisplayManager() {
  setType("DisplayManager");
}

DisplayManager::~DisplayManager() = default;

DisplayManager& DisplayManager::getInstance() {
  static DisplayManager display_manager;
  return display_manager;
}

int DisplayManager::startUp() {
  const LogManager& log_manager = LogManager::getInstance();
  if (isStarted()) {
    log_manager.writeLog("%s::startup(): Warning! %s already started.", getType().c_str(),
                         getType().c_str());
    return -1;
  }
  const Config& config = Config::getInstance();
  window_horizontal_pixels = config.getWindowHorizontalPixels();
  window_vertical_pixels = config.getWindowVerticalPixels();
  window_horizontal_chars = config.getWindowHorizontalChars();
  window_vertical_chars = config.getWindowVerticalChars();
  if (window_horizontal_pixels < 1 || window_vertical_pixels < 1 || window_horizontal_chars < 1 ||
      window_vertical_chars < 1) {
    log_manager.writeLog(
        "DisplayManager::startUp(): Error! Window of %dx%d pixels and %dx%d characters.",
        window_horizontal_pixels, window_vertical_pixels, window_horizontal_chars,
        window_vertical_chars);
    return -1;
  }
  if (config.getHeadless()) {
    log_manager.writeLog(1,
                         "DisplayManager::startUp(): not doing graphics since in headless mode.");
  } else if (openWindow() != 0 || loadFont() != 0) {
    p_window.reset();
    return -1;
  } else {
    p_cells = std::make_unique<CellBatch>(sf::Vector2f(charWidth(), charHeight()),
                                          window_horizontal_chars, window_vertical_chars);
  }
  frame.reset(window_horizontal_chars, window_vertical_chars, config.getWindowBackgroundColor());
  shake_random.seed();
  setBackgroundColor(config.getWindowBackgroundColor());
  Manager::startUp();
  log_manager.writeLog(5, "DisplayManager::startUp(): successfully started.");
  return 0;
}

int DisplayManager::openWindow() {
  const LogManager& log_manager = LogManager::getInstance();
  LogStreamBuf::captureSfmlErrors();
  const DisplayProbe probe;
  if (!probe.isOpen()) {
    const char* p_name = std::getenv("DISPLAY");
    log_manager.writeLog("DisplayManager::startUp(): Error! Cannot open X display '%s'.",
                         p_name ? p_name : "");
    return -1;
  }
  const sf::VideoMode desktop = sf::VideoMode::getDesktopMode();
  log_manager.writeLog(5, "DisplayManager::startUp(): window resolution (%d, %d) pixels.",
                       static_cast<int>(desktop.width), static_cast<int>(desktop.height));
  const Config& config = Config::getInstance();
  const sf::VideoMode mode(window_horizontal_pixels, window_vertical_pixels, 32);
  const sf::ContextSettings settings(0, 0, 0, 1, 1);
  p_window = std::make_unique<sf::RenderWindow>(mode, config.getWindowTitle(),
                                                config.getWindowStyle(), settings);
  if (!p_window->isOpen()) {
    log_manager.writeLog("DisplayManager::startUp(): Unable to allocate window!");
    return -1;
  }
  if (config.getWindowStyle() != WINDOW_STYLE_FULLSCREEN) centreWindow();
  p_window->setMouseCursorVisible(config.getShowMouse());
  p_window->setVerticalSyncEnabled(true);
  return 0;
}

// SFML's own placement can leave the bottom rows off screen.
void DisplayManager::centreWindow() {
  const sf::VideoMode desktop = sf::VideoMode::getDesktopMode();
  const int x = (static_cast<int>(desktop.width) - window_horizontal_pixels) / 2;
  const int y = (static_cast<int>(desktop.height) - window_vertical_pixels) / 2;
  p_window->setPosition(sf::Vector2i(std::max(0, x), std::max(0, y)));
}

int DisplayManager::loadFont() {
  const std::string file_name = Config::getInstance().getFontFile();
  p_font = std::make_unique<sf::Font>();
  if (!p_font->loadFromFile(file_name)) {
    LogManager::getInstance().writeLog(
        "DisplayManager::startUp(): Unable to load font from file '%s'.", file_name.c_str());
    p_font.reset();
    return -1;
  }
  // A scale from the configuration can be anything: keep the size usable.
  const float size = std::min(charWidth(), charHeight()) * Config::getInstance().getFontScale();
  char_size =
      std::isfinite(size) && size >= 1 ? static_cast<unsigned int>(std::min(size, 1024.0f)) : 1;
  for (sf::Uint32 code = FIRST_PRELOADED_CHAR; code <= LAST_PRELOADED_CHAR; code++) {
    p_font->getGlyph(code, char_size, true);
  }
  return 0;
}

void DisplayManager::shutDown() {
  capturing = false;
  p_cells.reset();
  if (p_window != nullptr) p_window->close();
  // The font's textures and the window go while the display is still there.
  p_font.reset();
  p_window.reset();
  LogManager::getInstance().writeLog("DisplayManager::shutDown(): successfully stopped.");
  Manager::shutDown();
}

bool DisplayManager::canDraw() const {
  if (notStarted()) return false;
  return p_window != nullptr;
}

bool DisplayManager::canDrawCells() const {
  if (notStarted()) return false;
  return p_window != nullptr || capturing;
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
  const Vector view_pos = worldToView(world_pos);
  frame.put(view_pos, ch, r, g, b);
  if (p_window == nullptr) return 0;
  const Vector pixels = spacesToPixels(view_pos);
  const float px = pixels.getX();
  const float py = pixels.getY();
  // The far edges are the near edges of the next cell, to the last bit, so
  // that cells side by side leave no sliver between them.
  const Vector far = spacesToPixels(worldToView(world_pos + Vector(1, 1)));
  const float inset_x = charWidth() / 10;
  const float inset_y = charHeight() / 5;
  p_cells->addBackground({px - inset_x, py + inset_y, far.getX() - inset_x, far.getY() + inset_y},
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
  const sf::Glyph& glyph = p_font->getGlyph(code, char_size, true);
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

void DisplayManager::flushCells() {
  p_cells->draw(*p_window, p_font->getTexture(char_size));
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

int DisplayManager::drawDrawable(const sf::Drawable& drawable) {
  if (!canDraw()) return -1;
  flushCells();
  p_window->draw(drawable);
  return 0;
}

bool DisplayManager::setBackgroundColor(Color new_color) {
  frame_background = new_color;
  if (Config::getInstance().getHeadless()) return false;
  const sf::Color sfml_color = colorToSFML(new_color);
  // Backgrounds of another colour than the window was cleared to are drawn whole.
  if (p_cells != nullptr && sfml_color != window_background_color) {
    p_cells->setPlainBackground(false);
  }
  window_background_color = sfml_color;
  return true;
}

void DisplayManager::setCapture(bool new_capturing) {
  capturing = new_capturing;
}

int DisplayManager::swapBuffers() {
  if (isStarted()) frame.reset(window_horizontal_chars, window_vertical_chars, frame_background);
  if (!canDraw()) return -1;
  flushCells();
  p_window->display();
  p_window->clear(window_background_color);
  p_cells->setPlainBackground(true);
  if (shake_duration < 1) {
    shake_x = 0;
    shake_y = 0;
    return 0;
  }
  shake_x = shakeOffset(shake_severity_x, shake_random);
  shake_y = shakeOffset(shake_severity_y, shake_random);
  shake_duration = std::max(0, shake_duration - 1);
  return 0;
}

void DisplayManager::shake(int severity_x, int severity_y, int duration, bool add) {
  if (add) {
    shake_severity_x += severity_x;
    shake_severity_y += severity_y;
    shake_duration += duration;
  } else {
    shake_severity_x = severity_x;
    shake_severity_y = severity_y;
    shake_duration = duration;
  }
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
