#pragma once

// How many coins lie on the board; collecting the last one ends the game.
const int COIN_COUNT = 5;
// The label of the score display, also the tag of the view events that
// change it.
const char* const SCORE_LABEL = "Score";

// Loads the sprites, from the working directory; 0, or -1 when one is
// missing or broken (the log says why).
int loadResources();
// The player, the coins and the score display.
void populateWorld();
