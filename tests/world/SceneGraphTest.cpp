#include <gtest/gtest.h>

#include <functional>

#include "support/HeadlessEngine.h"
#include "world/SceneGraph.h"
#include "world/WorldManager.h"

// After each change the object is in exactly the lists its attributes call
// for; inactive objects leave every list but the inactive one and come back
// with the attributes changed meanwhile.
TEST(SceneGraph, ListsFollowTheObjectsAttributes) {
  test::HeadlessEngine engine;
  vt::SceneGraph& graph = vt::WorldManager::getInstance().getSceneGraph();
  auto* p = new vt::Object;
  p->setType("ship");
  const struct {
    std::function<void()> change;
    bool active, solid, visible_at_2, visible_at_4, ship;
  } steps[] = {
      {[] {}, true, true, true, false, true},
      {[&] { p->setSolidness(vt::SPECTRAL); }, true, false, true, false, true},
      {[&] { p->setSolidness(vt::SOFT); }, true, true, true, false, true},
      {[&] { p->setAltitude(4); }, true, true, false, true, true},
      {[&] { p->setVisible(false); }, true, true, false, false, true},
      {[&] { p->setVisible(true); }, true, true, false, true, true},
      {[&] { p->setActive(false); }, false, false, false, false, false},
      {[&] { p->setSolidness(vt::SPECTRAL); }, false, false, false, false, false},
      {[&] { p->setActive(true); }, true, false, false, true, true},
      {[&] { p->setType("rock"); }, true, false, false, true, false},
  };
  int index = 0;
  for (const auto& step : steps) {
    SCOPED_TRACE(index++);
    step.change();
    EXPECT_EQ(graph.activeObjects().contains(p), step.active);
    EXPECT_EQ(graph.inactiveObjects().contains(p), !step.active);
    EXPECT_EQ(graph.solidObjects().contains(p), step.solid);
    EXPECT_EQ(graph.visibleObjects(2).contains(p), step.visible_at_2);
    EXPECT_EQ(graph.visibleObjects(4).contains(p), step.visible_at_4);
    EXPECT_EQ(graph.objectsOfType("ship").contains(p), step.ship);
  }
  EXPECT_TRUE(graph.objectsOfType("rock").contains(p));
  EXPECT_EQ(graph.solidObjects().getCount(), 0);
  EXPECT_TRUE(graph.visibleObjects(5).isEmpty());
  EXPECT_NE(
      engine.logText().find("SceneGraph::visibleObjects(): Warning! altitude 5 not in [0,4]."),
      std::string::npos);
}
