#pragma once

#include "world/Object.h"

// A coin, taken by the player who steps into its cell. SPECTRAL: it stands
// in nobody's way, path searches included.
class Coin : public vt::Object {
 public:
  explicit Coin(vt::Vector at);
};
