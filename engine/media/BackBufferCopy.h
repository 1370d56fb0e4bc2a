#pragma once

#include <SFML/Graphics/RenderWindow.hpp>
#include <memory>

namespace vt {

// Shows a window by copying its back buffer to the screen instead of
// swapping buffers. The back buffer then still holds the last frame when the
// next one starts, so a frame need only redraw what changed. Offered only
// where the window's GL driver can copy (GLX_MESA_copy_sub_buffer).
class BackBufferCopy {
 public:
  // Nothing when the driver cannot copy: the window is then swapped.
  static std::unique_ptr<BackBufferCopy> forWindow(sf::RenderWindow& window);

  // Copies the whole back buffer: parts of the screen that were covered are
  // mended on the way.
  void show();

 private:
  // As the driver hands it out: cast back to its own type to be called.
  using AnyFunction = void (*)();
  BackBufferCopy(sf::RenderWindow& window, void* p_display, AnyFunction copy);

  sf::RenderWindow& window;
  void* p_display;
  AnyFunction copy;
};

}  // namespace vt
