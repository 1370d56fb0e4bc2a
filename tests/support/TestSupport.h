#pragma once

#include <SFML/Graphics.hpp>

#include "support/HeadlessEngine.h"

namespace vt::test {

// Starts this process's own X server, of the screen given (WxHxDEPTH), on
// first use and points DISPLAY at it; false when it could not start. Call
// before any SFML window; the first call chooses the screen.
bool startProcessXvfb(const char* screen = "1280x1024x24");

// What the X server shows of the window after its last buffer swap.
sf::Image captureWindow(const sf::Window& window);

// How many pixels of two images differ; -1 when their sizes differ.
long countDifferentPixels(const sf::Image& a, const sf::Image& b);

}  // namespace vt::test
