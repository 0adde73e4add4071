// tests/page/page_test.cpp - what only a page does: the network, fingers, narrow and fine screens, faults
#include "resources/ids.h"
#include "shell/keys.h"
#include "tests/page/bridge.h"
#include "tests/window/driver.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

static std::string titleBegin()
{
    return windowTitle().substr(0, windowTitle().find(" - "));
}

TEST(Page, TheFirstPictureTakesFewBytes)
{
    constexpr size_t firstLoadLimit = 350000; // compressed, for networks of phones
    auto load = askBridge("firstLoad");
    auto names = load["names"].get<std::vector<std::string>>();
    EXPECT_NE(std::find(names.begin(), names.end(), "/core.wasm"), names.end());
    EXPECT_LE(load["bytes"].get<size_t>(), firstLoadLimit) << load;
    EXPECT_GT(load["bytes"].get<size_t>(), firstLoadLimit / 3) << load;
}

TEST(Page, TheFirstPictureDoesNotWaitForFramesOfTheScreen)
{
    Shown usual = shownPicture();
    askBridge("startWithoutFrames");
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    EXPECT_EQ(shownPicture().bytes, usual.bytes);
    askBridge("visit", { { "search", "" } });
}

TEST(Page, StartsFromAServerThatDoesNotKnowWebAssembly)
{
    askBridge("serveModuleAs", { { "type", "application/octet-stream" } });
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    askBridge("serveModuleAs", { { "type", nullptr } });
}

TEST(Page, NeedsLittleMemoryForTheBuiltInModel)
{
    constexpr size_t memoryLimit = 60000000;
    size_t scripts = askBridge("scriptMemory").get<size_t>();
    EXPECT_GT(scripts, size_t{ 500000 }); // those of both are there
    EXPECT_LE(scripts + residentBytes(), memoryLimit);
}

TEST(Page, AsksTheServerForNothingAfterItHasLoaded)
{
    askBridge("whenKept");
    auto before = askBridge("requests").size();
    command(ID_TEXTURE_METAL);
    pressPanel(ID_METALLIC);
    pressPanel(ID_METALLIC);
    pressPanel(ID_TEXTURED);
    boxAfter(ID_ABOUT);
    command(ID_TEXTURE_WOOD);
    pressPanel(ID_TEXTURED);
    EXPECT_EQ(askBridge("requests").size(), before);
}

TEST(Page, WorksWithoutANetworkAfterTheFirstVisit)
{
    askBridge("whenKept");
    askBridge("cutNetwork", { { "cut", true } });
    askBridge("reload");
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    EXPECT_EQ(titleBegin(), "Kestrelbox: teapot");
    Shown plain = shownPicture();
    command(ID_TEXTURE_PATTERN);
    Shown textured = shownPicture();
    pressPanel(ID_METALLIC);
    Shown metallic = shownPicture();
    pressPanel(ID_METALLIC);
    pressPanel(ID_TEXTURED);
    Shown untextured = shownPicture(); // with the same materials
    EXPECT_NE(textured.bytes, untextured.bytes);
    EXPECT_NE(metallic.bytes, untextured.bytes);
    command(ID_PRESET_BRASS);
    EXPECT_EQ(shownPicture().bytes, plain.bytes);
    askBridge("cutNetwork", { { "cut", false } });
}

TEST(Page, ItsSecurityPolicyNamesNoOtherHost)
{
    std::string policy = askBridge("policy");
    EXPECT_NE(policy.find("default-src 'none'"), std::string::npos) << policy;
    EXPECT_EQ(policy.find("http"), std::string::npos) << policy;
    EXPECT_EQ(policy.find("unsafe-inline"), std::string::npos) << policy;
}

TEST(Page, TwoFingersZoomAndOneTurns)
{
    command(ID_RESET_VIEW);
    askBridge("pinch", { { "from", 60 }, { "to", 120 } });
    auto state = askBridge("state");
    EXPECT_NEAR(state["zoom"].get<double>(), 2.0, 0.02);
    command(ID_RESET_VIEW);
    askBridge("touchDrag", { { "fromX", 250 }, { "toX", 350 }, { "y", 300 } });
    EXPECT_LT(askBridge("state")["rotation"][0].get<double>(), 0.99);
    command(ID_RESET_VIEW);
}

TEST(Page, MenusWorkByKeysAlone)
{
    askBridge("keys",
              { { "names", { "focus:#menus button", "ArrowRight", "ArrowRight", "ArrowRight", "ArrowDown", "g" } } });
    EXPECT_TRUE(menuTicked(ID_PRESET_GOLD));
    askBridge("keys", { { "names", { "focus:#menus button", "m", "ArrowDown", "ArrowUp", "Enter" } } });
    EXPECT_TRUE(menuTicked(ID_PRESET_BRASS));
    askBridge("keys", { { "names", { "focus:#menus button", "ArrowDown", "Escape" } } });
    EXPECT_EQ(askBridge("openMenus").get<int>(), 0);
}

TEST(Page, EveryControlHasANameAndIsReachedByTheKeyboard)
{
    EXPECT_EQ(askBridge("nameless").get<std::vector<std::string>>(), std::vector<std::string>{});
    auto reached = askBridge("tabThrough").get<std::vector<std::string>>();
    for (int id : { ID_BY_GROUP, ID_SHADOWS, ID_ROUGH, ID_WELD, ID_LUX_EXPORT })
        EXPECT_NE(std::find(reached.begin(), reached.end(), std::to_string(id)), reached.end()) << id;
    for (const char* place : { "display", "choose-files", "choose-folder" })
        EXPECT_NE(std::find(reached.begin(), reached.end(), place), reached.end()) << place;
}

TEST(Page, FitsAScreenOf360Pixels)
{
    Shown wide = shownPicture();
    askBridge("viewport", { { "width", 360 }, { "height", 740 } });
    EXPECT_LE(askBridge("scrollWidth").get<int>(), 360);
    EXPECT_EQ(shownPicture().width, 360);
    askBridge("viewport", nlohmann::json::object());
    EXPECT_EQ(shownPicture().width, wide.width);
}

TEST(Page, HasAPixelOfThePictureForEachOfAFineScreen)
{
    for (double scale : { 1.5, 2.0 }) // the display may begin and end between two units
    {
        auto fine = askBridge("fineScreen", { { "scale", scale } });
        ASSERT_GT(fine.value("clientWidth", 0), 100);
        EXPECT_NEAR(fine.value("width", 0), fine.value("clientWidth", 0) * scale, 1.5);
        EXPECT_NEAR(fine.value("height", 0), fine.value("clientHeight", 0) * scale, 1.5);
    }
}

TEST(Page, FollowsTheDarkTheme)
{
    std::string light = askBridge("background", { { "theme", "light" } });
    std::string dark = askBridge("background", { { "theme", "dark" } });
    EXPECT_NE(light, dark);
}

TEST(Page, TheMarkOfAFailureIsSeenInBothThemes)
{
    constexpr double readable = 4.5; // what WCAG 2 asks of text
    fs::path path = fs::temp_directory_path() / "page-unknown.xyz";
    std::ofstream(path) << "x";
    askBridge("drop", { { "paths", { path.string() } } });
    EXPECT_GE(askBridge("contrastOfFailure", { { "theme", "dark" } }).get<double>(), readable);
    EXPECT_GE(askBridge("contrastOfFailure", { { "theme", "light" } }).get<double>(), readable);
    EXPECT_EQ(askBridge("closeBoxes").size(), 1u);
    fs::remove(path);
}

TEST(Page, AFolderBringsTheLibraryOfItsModel)
{
    fs::path folder = fs::temp_directory_path() / "page-folder";
    fs::remove_all(folder);
    fs::create_directories(folder / "parts");
    std::ofstream(folder / "parts" / "a.mtl") << "newmtl red\nKd 1 0 0\n";
    std::ofstream(folder / "b.obj") << "mtllib parts/a.mtl\nusemtl red\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    askBridge("folder", { { "path", folder.string() } });
    EXPECT_EQ(titleBegin(), "Kestrelbox: b.obj");
    EXPECT_EQ(panelText(ID_MATERIAL_COUNT), "1");
    fs::remove_all(folder);
}

TEST(Page, AFileThatHasChangedWithoutAHandleFailsAndThePageGoesOn)
{
    fs::path path = fs::temp_directory_path() / "page-changed.obj";
    std::ofstream(path) << "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    askBridge("drop", { { "paths", { path.string() } } });
    EXPECT_EQ(panelText(ID_FACE_COUNT), "1");
    std::ofstream(path) << "v 0 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nf 1 2 3\nf 2 3 4\n";
    pressKey(keyF5, 0);
    auto boxes = askBridge("closeBoxes");
    ASSERT_EQ(boxes.size(), 1u) << boxes;
    EXPECT_EQ(boxes[0][0], "Error: failed to open");
    EXPECT_EQ(panelText(ID_FACE_COUNT), "1");
    fs::remove(path);
}

TEST(Page, AModelOfTheServerOpensByTheAddress)
{
    askBridge("visit", { { "search", "?model=icon.png" } });
    auto box = askBridge("readBox");
    EXPECT_EQ(box["text"], "Not supported file format");
    askBridge("closeBox", { { "folder", "." } });
    askBridge("visit", { { "search", "?model=none.obj" } });
    EXPECT_EQ(askBridge("readBox")["text"], "Error: failed to open");
    askBridge("closeBox", { { "folder", "." } });
}

TEST(Page, TheModelOfTheAddressBringsTheLibraryBesideIt)
{
    askBridge("visit", { { "search", "?model=examples/chair.obj" } });
    EXPECT_EQ(titleBegin(), "Kestrelbox: chair.obj");
    EXPECT_EQ(panelText(ID_MATERIAL_COUNT), "2");
}

TEST(Page, AFaultOfTheProgramIsShownAndItStartsAnew)
{
    askBridge("breakProgram");
    auto box = askBridge("readBox");
    EXPECT_EQ(box["text"], "The program has stopped: RuntimeError: memory access out of bounds");
    askBridge("closeBox", { { "folder", "." } });
    askBridge("whenReady");
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    EXPECT_EQ(titleBegin(), "Kestrelbox: teapot");
    command(ID_TEXTURE_METAL); // nothing was fetched ahead for this start
    Shown textured = shownPicture();
    pressPanel(ID_TEXTURED);
    EXPECT_NE(shownPicture().bytes, textured.bytes);
    askBridge("visit", { { "search", "" } }); // the next tests expect the choices of the start
}
