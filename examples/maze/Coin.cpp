#include "Coin.h"

Coin::Coin(vt::Vector at) {
  setType("Coin");
  setSprite("coin");
  setSolidness(vt::SPECTRAL);
  setAltitude(1);
  setPosition(at);
}
