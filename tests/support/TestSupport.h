#pragma once

#include <SFML/Graphics.hpp>
#include <string>

namespace vt::test {

// Starts this process's own X server, of the screen given (WxHxDEPTH), on
// first use and points DISPLAY at it; false when it could not start. Call
// before any SFML window; the first call chooses the screen.
bool startProcessXvfb(const char* screen = "1280x1024x24");

// The test font, the headless flag and a flushed log in a temporary folder;
// the destructor stops the log and puts every setting back.
class TestConfig {
 public:
  explicit TestConfig(bool headless);
  ~TestConfig();
  TestConfig(const TestConfig&) = delete;
  TestConfig& operator=(const TestConfig&) = delete;

  const std::string& folder() const { return temp_folder; }
  std::string logText() const;

 private:
  std::string temp_folder;
};

// What the X server shows of the window after its last buffer swap.
sf::Image captureWindow(const sf::Window& window);

// How many pixels of two images differ; -1 when their sizes differ.
long countDifferentPixels(const sf::Image& a, const sf::Image& b);

}  // namespace vt::test
