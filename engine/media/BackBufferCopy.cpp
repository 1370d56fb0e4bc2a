#include "media/BackBufferCopy.h"

#include <cstring>

// Last: Xlib defines macros (None, Status, Bool) that clash with other headers.
#include <GL/glx.h>

namespace vt {

namespace {

using CopySubBuffer = void (*)(Display* p_display, GLXDrawable drawable, int x, int y, int width,
                               int height);

bool hasExtension(Display* p_display, const char* name) {
  const char* p_extensions = glXQueryExtensionsString(p_display, DefaultScreen(p_display));
  if (p_extensions == nullptr) return false;
  const std::size_t length = std::strlen(name);
  for (const char* p = std::strstr(p_extensions, name); p != nullptr;
       p = std::strstr(p + length, name)) {
    const bool starts = p == p_extensions || p[-1] == ' ';
    const bool ends = p[length] == '\0' || p[length] == ' ';
    if (starts && ends) return true;
  }
  return false;
}

}  // namespace

std::unique_ptr<BackBufferCopy> BackBufferCopy::forWindow(sf::RenderWindow& window) {
  if (!window.setActive(true)) return nullptr;
  Display* p_display = glXGetCurrentDisplay();
  if (p_display == nullptr || !hasExtension(p_display, "GLX_MESA_copy_sub_buffer")) return nullptr;
  const AnyFunction copy =
      glXGetProcAddressARB(reinterpret_cast<const GLubyte*>("glXCopySubBufferMESA"));
  if (copy == nullptr) return nullptr;
  return std::unique_ptr<BackBufferCopy>(new BackBufferCopy(window, p_display, copy));
}

BackBufferCopy::BackBufferCopy(sf::RenderWindow& window, void* p_display, AnyFunction copy)
    : window(window), p_display(p_display), copy(copy) {}

void BackBufferCopy::show() {
  if (!window.setActive(true)) return;
  const sf::Vector2u size = window.getSize();
  reinterpret_cast<CopySubBuffer>(copy)(static_cast<Display*>(p_display), window.getSystemHandle(),
                                        0, 0, static_cast<int>(size.x), static_cast<int>(size.y));
}

}  // namespace vt
