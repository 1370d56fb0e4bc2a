#include "media/DisplayManager.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <SFML/Graphics.hpp>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/BackBufferCopy.h"
#include "media/CellBatch.h"
#include "media/LogStreamBuf.h"
#include "media/Terminal.h"
#include "media/TerminalScreen.h"

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
}  // namespace

DisplayManager::DisplayManager() : p_terminal_screen(std::make_unique<TerminalScreen>()) {
  setType("DisplayManager");
}

DisplayManager::~DisplayManager() = default;

DisplayManager& DisplayManager::getInstance() {
  static DisplayManager display_manager;
  return display_manager;
}

int DisplayManager::startUp() {
  const LogManager& log_manager = LogManager::getInstance();
  if (alreadyStarted()) return -1;
  const Config& config = Config::getInstance();
  window_horizontal_pixels = config.getWindowHorizontalPixels();
  window_vertical_pixels = config.getWindowVerticalPixels();
  window_horizontal_chars = config.getWindowHorizontalChars();
  window_vertical_chars = config.getWindowVerticalChars();
  if (window_horizontal_pixels < 1 || window_vertical_pixels < 1 || window_horizontal_chars < 1 ||
      window_vertical_chars < 1) {
    return failStart(log_manager.writeLogText(
        "DisplayManager::startUp(): Error! Window of %dx%d pixels and %dx%d characters.",
        window_horizontal_pixels, window_vertical_pixels, window_horizontal_chars,
        window_vertical_chars));
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
    p_cells = std::make_unique<CellBatch>(sf::Vector2f(cell_width, cell_height),
                                          window_horizontal_chars, window_vertical_chars,
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
  return failStart(LogManager::getInstance().writeLogText(
      "DisplayManager::startUp(): Error! Unknown display '%s': 'window' or 'terminal'.",
      display.c_str()));
}

int DisplayManager::openTerminal() {
  Terminal& tty = Terminal::getInstance();
  if (tty.open() != 0) return failStart(tty.getOpenFailure());
  p_terminal_screen->setColorMode(
      TerminalScreen::colorModeFor(std::getenv("COLORTERM"), std::getenv("TERM")));
  fitTerminalScreen();
  return 0;
}

void DisplayManager::fitTerminalScreen() {
  int columns = window_horizontal_chars;
  int rows = window_vertical_chars;
  Terminal::getInstance().getSize(columns, rows);
  p_terminal_screen->setSize(columns, rows);
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
  if (!tty.write(p_terminal_screen->render(frame))) p_terminal_screen->invalidate();
}

int DisplayManager::openWindow() {
  const LogManager& log_manager = LogManager::getInstance();
  LogStreamBuf::captureSfmlErrors();
  const DisplayProbe probe;
  if (!probe.isOpen()) {
    const char* p_name = std::getenv("DISPLAY");
    return failStart(log_manager.writeLogText(
        "DisplayManager::startUp(): Error! Cannot open X display '%s'.", p_name ? p_name : ""));
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
    return failStart(
        log_manager.writeLogText("DisplayManager::startUp(): Unable to allocate window!"));
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
    p_font.reset();
    return failStart(LogManager::getInstance().writeLogText(
        "DisplayManager::startUp(): Unable to load font from file '%s'.", file_name.c_str()));
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

}  // namespace vt
