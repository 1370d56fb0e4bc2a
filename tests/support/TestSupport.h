#pragma once

#include <SFML/Graphics.hpp>
#include <string>

namespace vt::test {

// Starts this process's private X server (Xvfb, 1280x1024) on first use and
// points DISPLAY at it; false when it could not start. The server stops at
// exit, after SFML's own exit-time clean-up (SFML keeps its X connection
// until then). Call it before creating any SFML window.
bool startProcessXvfb();

// Points the configuration at the test font, a headless flag and a log file
// in a private temporary folder, and starts the log manager writing there,
// one flushed line at a time. The destructor stops the log manager, puts the
// log level and every setting back to default and removes the folder.
class TestConfig {
 public:
  explicit TestConfig(bool headless);
  ~TestConfig();
  TestConfig(const TestConfig&) = delete;
  TestConfig& operator=(const TestConfig&) = delete;

  const std::string& folder() const { return temp_folder; }
  // Everything written to the log so far.
  std::string logText() const;

 private:
  std::string temp_folder;
};

// What the X server shows of the window now, read straight from the server
// after the window's own requests (its last buffer swap) have reached it.
sf::Image captureWindow(const sf::Window& window);

// How many pixels of two same-sized images differ; -1 when the sizes differ.
long countDifferentPixels(const sf::Image& a, const sf::Image& b);

}  // namespace vt::test
