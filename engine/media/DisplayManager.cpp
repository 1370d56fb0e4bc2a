#include "media/DisplayManager.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/BackBufferCopy.h"
#include "media/CellBatch.h"
#include "media/LogStreamBuf.h"
#include "media/Terminal.h"
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

// sf::Text pads every glyph quad by one pixel so that smoothing has room.
const float GLYPH_PADDING = 1.0f;

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

}  // namespace

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
  if (chooseDisplay() != 0) return -1;
  if (config.getHeadless()) {
    log_manager.writeLog(1,
                         "DisplayManager::startUp(): not doing graphics since in headless mode.");
  } else if (terminal) {
    if (openTerminal() != 0) return -1;
  } else if (openWindow() != 0 || loadFont() != 0) {
    p_window.reset();
    return -1;
  } else {
    cell_width = charWidth();
    cell_height = charHeight();
    p_cells = std::make_unique<CellBatch>(
        sf::Vector2f(cell_width, cell_height), window_horizontal_chars, window_vertical_chars,
        sf::Vector2f(-backgroundInsetX(), backgroundInsetY()));
    p_back_buffer_copy = BackBufferCopy::forWindow(*p_window);
    p_cells->setKeptPixels(p_back_buffer_copy != nullptr);
  }
  frame.reset(window_horizontal_chars, window_vertical_chars, config.getWindowBackgroundColor());
  shake_random.seed();
  setBackgroundColor(config.getWindowBackgroundColor());
  if (p_cells != nullptr) p_cells->startFrame(window_background_color);
  Manager::startUp();
  log_manager.writeLog(5, "DisplayManager::startUp(): successfully started.");
  return 0;
}

int DisplayManager::chooseDisplay() {
  const char* p_chosen = std::getenv("VANTOR_DISPLAY");
  const std::string display = p_chosen != nullptr && *p_chosen != '\0'
                                  ? std::string(p_chosen)
                                  : Config::getInstance().getDisplay();
  terminal = display == "terminal" && !Config::getInstance().getHeadless();
  if (display == "terminal" || display == "window") return 0;
  LogManager::getInstance().writeLog(
      "DisplayManager::startUp(): Error! Unknown display '%s': 'window' or 'terminal'.",
      display.c_str());
  return -1;
}

int DisplayManager::openTerminal() {
  if (Terminal::getInstance().open() != 0) return -1;
  terminal_screen.setColorMode(
      TerminalScreen::colorModeFor(std::getenv("COLORTERM"), std::getenv("TERM")));
  fitTerminalScreen();
  return 0;
}

void DisplayManager::fitTerminalScreen() {
  int columns = window_horizontal_chars;
  int rows = window_vertical_chars;
  Terminal::getInstance().getSize(columns, rows);
  terminal_screen.setSize(columns, rows);
  LogManager::getInstance().writeLog(
      1, "DisplayManager: a terminal of %dx%d cells for a game of %dx%d%s.", columns, rows,
      window_horizontal_chars, window_vertical_chars,
      columns < window_horizontal_chars || rows < window_vertical_chars ? ": showing its top-left"
                                                                        : "");
}

void DisplayManager::presentInTerminal() {
  Terminal& tty = Terminal::getInstance();
  if (tty.takeResized()) fitTerminalScreen();
  // A terminal that did not take the whole frame shows something else now.
  if (!tty.write(terminal_screen.render(frame))) terminal_screen.invalidate();
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
  glyphs.fill(nullptr);
  for (sf::Uint32 code = FIRST_PRELOADED_CHAR; code <= LAST_PRELOADED_CHAR; code++) {
    glyphFor(static_cast<unsigned char>(code));
  }
  return 0;
}

void DisplayManager::shutDown() {
  capturing = false;
  if (terminal) Terminal::getInstance().close();
  terminal = false;
  drawable_skip_logged = false;
  p_cells.reset();
  p_back_buffer_copy.reset();
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

bool DisplayManager::setBackgroundColor(Color new_color) {
  frame_background = new_color;
  if (Config::getInstance().getHeadless()) return false;
  window_background_color = colorToSFML(new_color);
  return true;
}

void DisplayManager::setCapture(bool new_capturing) {
  capturing = new_capturing;
}

int DisplayManager::swapBuffers() {
  if (terminal && isStarted()) presentInTerminal();
  if (isStarted()) frame.reset(window_horizontal_chars, window_vertical_chars, frame_background);
  if (terminal) return 0;
  if (!canDraw()) return -1;
  p_cells->finishFrame(*p_window, p_font->getTexture(char_size));
  if (p_back_buffer_copy != nullptr) {
    p_back_buffer_copy->show();
  } else {
    p_window->display();
  }
  p_cells->startFrame(window_background_color);
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
