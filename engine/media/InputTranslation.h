#pragma once

#include <SFML/Window/Keyboard.hpp>
#include <SFML/Window/Mouse.hpp>
#include <vector>

namespace vt {

// Added to the SFML code of a key that has no engine code of its own.
const int UNLISTED_KEY_OFFSET = 97;

// The engine key code of an SFML key; unlisted keys give their SFML code
// plus UNLISTED_KEY_OFFSET.
int keyFromSFML(sf::Keyboard::Key key);

// Left, right and middle become the engine's buttons; any other button
// gives Mouse::UNDEFINED_MOUSE_BUTTON.
int buttonFromSFML(sf::Mouse::Button button);

// An SFML key and the engine key it stands for.
struct KeyBinding {
  sf::Keyboard::Key sfml_key;
  int engine_key;
};

// The keys polled for KEY_DOWN, in polling order, with the engine key
// reported while each is held. Num0 appears twice, as NUM0 and as
// BACKSPACE; Backspace, F11 and F12 are not polled.
const std::vector<KeyBinding>& polledKeys();

}  // namespace vt
