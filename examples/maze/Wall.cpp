#include "Wall.h"

Wall::Wall(vt::Vector at) {
  setType("Wall");
  setSprite("wall");
  fitBoxInCell();
  setPosition(at);
}
