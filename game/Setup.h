#pragma once

// Loads every sprite, sound and music of the game.
void loadResources();

// Creates the star field and the title screen.
void populateWorld();

// Everything between the engine's start and its stop: the splash screen,
// the resources, the world, the pause key, and the loop until the game ends.
void playGame();
