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

// Last: Xlib defines macros (None, Status, Bool) that clash with other headers.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace vt::test {

namespace {

bool opens_windows = false;

// The X server of this process, stopped at exit.
class XvfbServer {
 public:
  explicit XvfbServer(const char* screen) {
    int fds[2];
    if (pipe(fds) != 0) return;
    const std::string fd_text = std::to_string(fds[1]);
    pid = fork();
    if (pid == 0) {
      // Only async-signal-safe calls until exec; the server dies with us.
      const int null_fd = open("/dev/null", O_WRONLY);
      dup2(null_fd, STDOUT_FILENO);
      dup2(null_fd, STDERR_FILENO);
      prctl(PR_SET_PDEATHSIG, SIGTERM);
      execlp("Xvfb", "Xvfb", "-displayfd", fd_text.c_str(), "-screen", "0", screen, "-nolisten",
             "tcp", "-noreset", nullptr);
      _exit(127);
    }
    close(fds[1]);
    // The server writes its display number once it is ready.
    std::string number;
    pollfd poll_fd{fds[0], POLLIN, 0};
    char ch = 0;
    while (pid > 0 && poll(&poll_fd, 1, 10000) > 0 && read(fds[0], &ch, 1) == 1 && ch != '\n')
      number += ch;
    close(fds[0]);
    running = ch == '\n' && !number.empty();
    if (running) setenv("DISPLAY", (":" + number).c_str(), 1);
  }
  ~XvfbServer() {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
  }
  bool running = false;

 private:
  pid_t pid = -1;
};

// Keeps the GL driver loaded until exit, so that a sanitizer's leak checker
// can still name its allocations and apply the suppressions for them.
bool keepGraphicsDriverLoaded() {
  const sf::Context context;
  dl_iterate_phdr(
      [](dl_phdr_info* p_info, std::size_t, void*) {
        if (p_info->dlpi_name != nullptr && p_info->dlpi_name[0] != '\0')
          dlopen(p_info->dlpi_name, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
        return 0;
      },
      nullptr);
  return true;
}

}  // namespace

bool startProcessXvfb(const char* screen) {
  opens_windows = true;
  static const XvfbServer server(screen);
  [[maybe_unused]] static const bool driver_kept = server.running && keepGraphicsDriverLoaded();
  return server.running;
}

sf::Image captureWindow(const sf::Window& window) {
  // A round trip on the window's own connection: the server has its last swap.
  const sf::Vector2u size = window.getSize();
  window.getPosition();
  sf::Image image;
  Display* p_display = XOpenDisplay(nullptr);
  if (p_display == nullptr) return image;
  XImage* p_ximage =
      XGetImage(p_display, window.getSystemHandle(), 0, 0, size.x, size.y, AllPlanes, ZPixmap);
  if (p_ximage != nullptr) {
    image.create(size.x, size.y);
    for (unsigned int y = 0; y < size.y; y++) {
      for (unsigned int x = 0; x < size.x; x++) {
        const unsigned long pixel = XGetPixel(p_ximage, static_cast<int>(x), static_cast<int>(y));
        image.setPixel(x, y, sf::Color((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF));
      }
    }
    XDestroyImage(p_ximage);
  }
  XCloseDisplay(p_display);
  return image;
}

long countDifferentPixels(const sf::Image& a, const sf::Image& b) {
  if (a.getSize() != b.getSize()) return -1;
  long count = 0;
  for (unsigned int y = 0; y < a.getSize().y; y++)
    for (unsigned int x = 0; x < a.getSize().x; x++) count += a.getPixel(x, y) != b.getPixel(x, y);
  return count;
}

}  // namespace vt::test

// A process that opened windows skips LeakSanitizer's exit check: its tracer
// now and then crashes among the software GL driver's threads.
extern "C" int __lsan_is_turned_off() {
  return vt::test::opens_windows ? 1 : 0;
}
