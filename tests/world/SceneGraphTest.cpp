#include <gtest/gtest.h>

#include "support/HeadlessEngine.h"
#include "world/Object.h"
#include "world/SceneGraph.h"
#include "world/WorldManager.h"

namespace {

vt::SceneGraph& graph() {
  return vt::WorldManager::getInstance().getSceneGraph();
}

}  // namespace

TEST(SceneGraph, ListsFollowTheObjectsAttributes) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  p_object->setType("ship");
  EXPECT_TRUE(graph().activeObjects().contains(p_object));
  EXPECT_TRUE(graph().objectsOfType("ship").contains(p_object));
  EXPECT_FALSE(graph().objectsOfType("(Undefined)").contains(p_object));
  EXPECT_TRUE(graph().solidObjects().contains(p_object));
  EXPECT_TRUE(graph().visibleObjects(2).contains(p_object));

  p_object->setSolidness(vt::SPECTRAL);
  EXPECT_FALSE(graph().solidObjects().contains(p_object));
  p_object->setSolidness(vt::SOFT);
  EXPECT_TRUE(graph().solidObjects().contains(p_object));
  p_object->setSolidness(vt::HARD);
  EXPECT_EQ(graph().solidObjects().getCount(), 1);

  p_object->setAltitude(4);
  EXPECT_FALSE(graph().visibleObjects(2).contains(p_object));
  EXPECT_TRUE(graph().visibleObjects(4).contains(p_object));
  p_object->setVisible(false);
  EXPECT_FALSE(graph().visibleObjects(4).contains(p_object));

  p_object->setVisible(true);
  p_object->setActive(false);
  EXPECT_FALSE(graph().activeObjects().contains(p_object));
  EXPECT_FALSE(graph().solidObjects().contains(p_object));
  EXPECT_FALSE(graph().visibleObjects(4).contains(p_object));
  EXPECT_FALSE(graph().objectsOfType("ship").contains(p_object));
  EXPECT_TRUE(graph().inactiveObjects().contains(p_object));
  // Inactive objects change attributes without touching the lists.
  p_object->setSolidness(vt::SPECTRAL);
  p_object->setSolidness(vt::HARD);
  p_object->setActive(true);
  EXPECT_TRUE(graph().activeObjects().contains(p_object));
  EXPECT_TRUE(graph().solidObjects().contains(p_object));
  EXPECT_TRUE(graph().visibleObjects(4).contains(p_object));
  EXPECT_TRUE(graph().objectsOfType("ship").contains(p_object));
  EXPECT_FALSE(graph().inactiveObjects().contains(p_object));
}

TEST(SceneGraph, KeptFailuresAndWarnings) {
  test::HeadlessEngine engine;
  auto* p_object = new vt::Object;
  p_object->setVisible(false);
  // An active invisible object is in no visible list, so its altitude
  // cannot change.
  EXPECT_EQ(p_object->setAltitude(3), -1);
  EXPECT_EQ(p_object->getAltitude(), 2);
  EXPECT_TRUE(graph().visibleObjects(5).isEmpty());

  // Taken out by hand, so that a second removal fails.
  vt::Object outsider;
  graph().removeObject(&outsider);
  EXPECT_EQ(graph().removeObject(&outsider), -1);

  const std::string log = engine.logText();
  EXPECT_NE(log.find("SceneGraph::updateAltitude(): remove from old altitude (2) failed!"),
            std::string::npos);
  EXPECT_NE(log.find("SceneGraph::visibleObjects(): Warning! altitude 5 not in [0,4]."),
            std::string::npos);
  EXPECT_NE(log.find("SceneGraph::removeObject(): Error removing Object (id " +
                     std::to_string(outsider.getId()) + ")! Pointer is "),
            std::string::npos);
  graph().insertObject(&outsider);
}
