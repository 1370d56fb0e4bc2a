#pragma once

#include <sys/types.h>
#include <SFML/Graphics.hpp>
#include <string>

namespace vt::test {

// A private X server (Xvfb) for window tests. The constructor starts it and
// points DISPLAY at it for this process; the destructor stops it and puts
// DISPLAY back as it was.
//
// Once SFML has opened a window it keeps its X connection until the process
// exits (its clipboard holds one, and later windows reuse it), so window
// tests share one server per process: processXvfb().
class XvfbServer {
 public:
  explicit XvfbServer(int width = 1280, int height = 1024);
  ~XvfbServer();
  XvfbServer(const XvfbServer&) = delete;
  XvfbServer& operator=(const XvfbServer&) = delete;

  bool isRunning() const { return pid > 0; }
  // ":N", or "" when the server did not start.
  const std::string& displayName() const { return display_name; }

 private:
  void stop();

  pid_t pid = -1;
  std::string display_name;
  bool had_display = false;
  std::string previous_display;
};

// The X server of this test process, 1280x1024, started on first use and
// stopped at exit, after SFML's own exit-time clean-up. It also keeps the GL
// driver loaded until exit, so that a sanitizer build's leak report can name
// (and suppress) the driver's allocations. Call it before creating any SFML
// window.
const XvfbServer& processXvfb();

// Points the configuration at the test font, a headless flag and a log file
// in a private temporary folder, and starts the log manager writing there,
// one flushed line at a time. The destructor stops the log manager, resets
// its level and removes the folder.
class TestConfig {
 public:
  explicit TestConfig(bool headless);
  ~TestConfig();
  TestConfig(const TestConfig&) = delete;
  TestConfig& operator=(const TestConfig&) = delete;

  const std::string& folder() const { return temp_folder; }
  const std::string& logPath() const { return log_path; }
  // Everything written to the log so far.
  std::string logText() const;

 private:
  std::string temp_folder;
  std::string log_path;
};

// What the X server shows of the window now, read straight from the server
// after the window's own requests (its last buffer swap) have reached it.
sf::Image captureWindow(const sf::Window& window);

// The window's top-left corner on the screen and the screen's size, as the X
// server reports them.
struct ScreenPlacement {
  sf::Vector2i position;
  sf::Vector2i screen_size;
};
ScreenPlacement windowPlacement(const sf::Window& window);

// How many pixels of two same-sized images differ; -1 when the sizes differ.
long countDifferentPixels(const sf::Image& a, const sf::Image& b);

}  // namespace vt::test
