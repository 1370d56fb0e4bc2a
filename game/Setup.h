#pragma once

// Loads every sprite, sound and music of the game.
void loadResources();

// Creates the star field and the title screen.
void populateWorld();
