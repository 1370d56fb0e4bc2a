#pragma once

#include <list>
#include <utility>

#include "core/Event.h"
#include "core/Vector.h"

namespace vt {

// How a path search stands.
enum PathStatus {
  PATH_NOT_FOUND = 0,  // finished without a path
  PATH_SEARCHING = 1,
  PATH_FOUND = 2,
};

// The steps a path may take from a cell: to any of its eight neighbours (a
// diagonal step needs one of the two cells beside it free), or only up,
// down, left and right, as in a grid game.
enum PathDirections {
  EIGHT_DIRECTIONS = 0,
  FOUR_DIRECTIONS = 1,
};

// Tells an object that its path search ended, with the path when one was
// found: waypoints from its start to its goal.
class EventPath : public Event {
 public:
  explicit EventPath(int init_status = PATH_NOT_FOUND, std::list<Vector> init_path = {})
      : status(init_status), path(std::move(init_path)) {
    setType(PATH_EVENT);
  }

  void setStatus(int new_status) { status = new_status; }
  int getStatus() const { return status; }
  void setPath(std::list<Vector> new_path) { path = std::move(new_path); }
  std::list<Vector> getPath() const { return path; }

 private:
  int status;
  std::list<Vector> path;
};

}  // namespace vt
