#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "extras/Harness.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "world/Object.h"

namespace {

// A simple sprite file with a frame for each row given.
void writeSprite(const std::string& file, const std::string& color,
                 std::initializer_list<std::string> frames) {
  std::ofstream text(file);
  text << frames.size() << "\n" << frames.begin()->size() << "\n1\n0\n" << color << "\n";
  for (const std::string& frame : frames) text << frame << "\n";
}

}  // namespace

// Off unless asked for. Asked for, the new frame shows at the next step (not a blank for the frame
// the ship stood on) in the same sprite, and the box takes the new size unless the object has one
// of its own. A broken edit keeps the frames and says why.
TEST(HotReload, AChangedSpriteShowsAtTheNextStepAndABrokenOneKeepsTheOld) {
  for (const bool asked : {false, true}) {
    SCOPED_TRACE(asked ? "asked for" : "not asked for");
    asked ? setenv("VANTOR_HOT_RELOAD", "1", 1) : unsetenv("VANTOR_HOT_RELOAD");
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    const std::string file = std::filesystem::path(harness.getLogFile()).parent_path() / "ship.txt";
    // A ship of two frames at (10, 5): after a step it shows "A" and stands on "B".
    writeSprite(file, "green", {"A", "B"});
    ASSERT_EQ(vt::ResourceManager::getInstance().loadSprite(file, "ship"), 0);
    auto* p_ship = new vt::Object;
    EXPECT_EQ(p_ship->setSprite("ship"), 0);
    p_ship->setPosition(vt::Vector(10, 5));
    auto* p_boxed = new vt::Object;
    p_boxed->setSprite("ship");
    const vt::Box own_box(vt::Vector(-0.4f, -0.4f), 0.8f, 0.8f);
    EXPECT_EQ(p_boxed->setBox(own_box), 0);
    harness.step();
    // Saved as editors save, a new file renamed over the old one: one frame three cells wide.
    writeSprite(file + ".new", "red", {"<o>"});
    EXPECT_EQ(std::rename((file + ".new").c_str(), file.c_str()), 0);
    harness.step();
    EXPECT_EQ(harness.frameRow(5).substr(9, 3), asked ? "<o>" : " B ");
    if (!asked) continue;
    EXPECT_EQ(p_ship->getAnimation().getSprite(),
              vt::ResourceManager::getInstance().getSprite("ship"));
    EXPECT_EQ(p_ship->getBox().getHorizontal(), 3);
    EXPECT_EQ(p_boxed->getBox(), own_box);
    writeSprite(file, "mauve", {"XXX"});
    harness.step();
    EXPECT_EQ(harness.frameRow(5).substr(9, 3), "<o>");
    EXPECT_TRUE(harness.logContains("Unrecognized color 'mauve'"));
    EXPECT_TRUE(harness.logContains("Sprite 'ship' keeps its old frames"));
  }
}
