#pragma once

#include <string>

#include "world/EventCollision.h"

// True when either object of the collision has the type.
bool involves(const vt::EventCollision* p_collision, const std::string& type);

// The hero was touched by something deadly: the "game over" sound, the
// defeat screen, and both parties of the collision go.
void defeatHero(const vt::EventCollision* p_collision);
