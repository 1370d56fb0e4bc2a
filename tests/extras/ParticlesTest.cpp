#include <gtest/gtest.h>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "extras/Particle.h"
#include "extras/Particles.h"
#include "support/HeadlessEngine.h"
#include "world/WorldManager.h"

using vt::Vector;
using vt::WorldManager;

namespace {

// Sends one step to every step listener and updates the world.
void runSteps(int count) {
  for (int i = 0; i < count; i++) {
    const vt::EventStep step(i);
    vt::GameManager::getInstance().onEvent(&step);
    WorldManager::getInstance().update();
  }
}

}  // namespace

TEST(Particles, BurstsSpreadFadeAndRemoveThemselves) {
  test::HeadlessEngine engine;
  WorldManager::getInstance().setBoundary(vt::Box(Vector(0, 0), 80, 24));
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_BURST, Vector(40, 12), 2.0f, vt::RED), 0);
  const vt::ObjectList particles = WorldManager::getInstance().objectsOfType("Particle");
  EXPECT_EQ(particles.getCount(), 20);
  for (const vt::Object* p_particle : particles) {
    EXPECT_EQ(p_particle->getSolidness(), vt::SPECTRAL);
    EXPECT_GT(p_particle->getSpeed(), 0);
  }
  runSteps(3);
  float farthest = 0;
  for (const vt::Object* p_particle : WorldManager::getInstance().objectsOfType("Particle")) {
    farthest = std::max(farthest, (p_particle->getPosition() - Vector(40, 12)).getMagnitude());
  }
  EXPECT_GT(farthest, 0.5f);
  runSteps(20);
  EXPECT_TRUE(WorldManager::getInstance().objectsOfType("Particle").isEmpty());
}

TEST(Particles, ColoursFadeTowardTheBackground) {
  unsigned char r = 0, g = 0, b = 0;
  vt::Particle::fadedColor(vt::YELLOW, 0, 10, r, g, b);
  EXPECT_EQ(r, 255);
  EXPECT_EQ(g, 255);
  EXPECT_EQ(b, 0);
  vt::Particle::fadedColor(vt::YELLOW, 5, 10, r, g, b);
  EXPECT_EQ(r, 128);
  EXPECT_EQ(b, 0);
  vt::Particle::fadedColor(vt::YELLOW, 10, 10, r, g, b);
  EXPECT_EQ(r, 0);
  EXPECT_EQ(g, 0);
}

TEST(Particles, OtherPresetsAndUnknownOnes) {
  test::HeadlessEngine engine;
  WorldManager::getInstance().setBoundary(vt::Box(Vector(0, 0), 80, 24));
  WorldManager::getInstance().setView(vt::Box(Vector(0, 0), 80, 24));
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_FIREWORK, Vector(40, 20), 1.0f, vt::CYAN), 0);
  EXPECT_EQ(WorldManager::getInstance().objectsOfType("Firework").getCount(), 1);
  runSteps(20);
  // The rocket has burst into particles of its own.
  EXPECT_TRUE(WorldManager::getInstance().objectsOfType("Firework").isEmpty());
  EXPECT_FALSE(WorldManager::getInstance().objectsOfType("Particle").isEmpty());

  ASSERT_EQ(vt::addParticles(vt::PARTICLE_SNOW, Vector(), 1.0f, vt::WHITE), 0);
  runSteps(30);
  EXPECT_TRUE(WorldManager::getInstance().objectsOfType("Precipitation").isEmpty());

  EXPECT_EQ(vt::addParticles(42, Vector(), 1.0f, vt::WHITE), -1);
  EXPECT_NE(engine.logText().find("addParticles(): Warning! Unknown preset 42."),
            std::string::npos);
}
