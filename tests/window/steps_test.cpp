// tests/window/steps_test.cpp - what a user does in a window, and what must be seen then, for every kind of window
#include "tests/window/driver.h"

#include "model/memory.h"
#include "platform/resources.h"
#include "resources/controls.h"
#include "shell/keys.h"
#include "shell/scene.h"

#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <set>
#include <thread>

namespace fs = std::filesystem;

constexpr char square[] = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\ng one\nf 1 2 3 4\n";
constexpr char twoParts[] = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 1\ng one\nf 1 2 3\ng two\nf 1 3 4\n";

static void pause(int ms)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

class Window : public testing::Test
{
protected:
    // Every test begins with the choices of the start and a folder of its own. The model is the last one.
    void SetUp() override
    {
        auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        folder = fs::temp_directory_path() / ("window-steps-" + std::to_string(now));
        ASSERT_TRUE(fs::create_directory(folder));
        before = fs::current_path();
        fs::current_path(folder);
    }

    void TearDown() override
    {
        answerDialogs({});
        fs::current_path(before);
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    static void write(const fs::path& name, const std::string& bytes)
    {
        std::ofstream(name, std::ios::binary) << bytes;
    }

    static std::string bytesOf(const fs::path& name)
    {
        std::ifstream file(name, std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }

    void open(const char* name, const char* text)
    {
        write(name, text);
        answerDialogs({ path(name) });
        command(ID_OPEN_MESH);
        ASSERT_TRUE(titleNames(name)) << windowTitle();
    }

    std::string path(const char* name) const
    {
        return (folder / name).string();
    }

    static bool titleNames(const std::string& name)
    {
        return windowTitle().rfind("Kestrelbox: " + name, 0) == 0;
    }

    static std::set<int> tickedItems()
    {
        std::set<int> ticked;
        for (const Menu& menu : menus)
            for (const MenuEntry& entry : menu.entries)
                if (entry.text && menuTicked(entry.id))
                    ticked.insert(entry.id);
        return ticked;
    }

    // The size in which the program draws. A border may hide its last columns and rows.
    static Shown drawnSize()
    {
        Shown drawn = {};
        onProgramThread([&] { drawn = { frameState.displayWidth, frameState.displayHeight, {} }; });
        return drawn;
    }

    // What the command line draws with these arguments in the size of the display, cut to a width and a height.
    static Shown renderedPart(const std::string& arguments, int width, int height)
    {
        Shown drawn = drawnSize();
        std::string size = std::to_string(drawn.width) + "x" + std::to_string(drawn.height);
        if (!runKbx("render " + arguments + " --size " + size + " -o expected.bmp"))
            return {};
        std::string file = bytesOf("expected.bmp");
        Shown expected = { width, height, {} };
        if (width > drawn.width || height > drawn.height)
            return expected; // the display shows more than what is drawn
        size_t rowBytes = (static_cast<size_t>(drawn.width) * 3 + 3) / 4 * 4;
        for (int y = 0; y < height; ++y)
        {
            auto row = file.begin() + static_cast<ptrdiff_t>(54 + static_cast<size_t>(drawn.height - 1 - y) * rowBytes);
            expected.bytes.insert(expected.bytes.end(), row, row + ptrdiff_t{ width } * 3);
        }
        return expected;
    }

    static Shown rendered(const std::string& arguments)
    {
        Shown drawn = drawnSize();
        return renderedPart(arguments, drawn.width, drawn.height);
    }

    // A picture may reach the screen some time after it is drawn.
    static void expectPicture(const std::string& arguments)
    {
        Shown shown = shownPicture(), expected = renderedPart(arguments, shown.width, shown.height);
        for (int i = 0; i < 100 && shown.bytes != expected.bytes; ++i)
        {
            pause(20);
            shown = shownPicture();
        }
        EXPECT_TRUE(shown.bytes == expected.bytes) << arguments;
    }

    fs::path folder, before;
};

// The first test, because it needs the program as it starts.
TEST_F(Window, StartsWithTheTeapotAndTheChoicesOfTheStart)
{
    EXPECT_TRUE(windowTitle() == "Kestrelbox" || titleNames("teapot"))
        << windowTitle(); // later frames show the polygons
    EXPECT_EQ(tickedItems(), (std::set<int>{ ID_TEXTURE_WOOD, ID_LIGHT_1, ID_PRESET_BRASS, ID_BACKGROUND_GREY1,
                                             ID_KEYFRAMES_3DS, ID_EXACT_WELD }));
    EXPECT_EQ(drawnSize().width, 620);
    EXPECT_GE(drawnSize().height, 520); // the panel may be higher
    EXPECT_FALSE(menuEnabled(ID_TEXTURE_USER));
    EXPECT_EQ(panelText(ID_VERT_COUNT), "2828");
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    EXPECT_TRUE(panelTicked(ID_BACKCULLED));
    EXPECT_TRUE(panelTicked(ID_VERTEX_COLOUR));
    for (int id : { ID_WIREFRAME, ID_TEXTURED, ID_SHADOWS, ID_ROUGH, ID_METALLIC, ID_MOON, ID_BY_GROUP })
        EXPECT_FALSE(panelTicked(id)) << id;
    EXPECT_EQ(listEntries().at(0), "All Groups");
    expectPicture("");
}

TEST_F(Window, MenuChoicesShowWhatTheCommandLineRenders)
{
    command(ID_PRESET_GOLD);
    expectPicture("--preset gold");
    command(ID_LIGHT_2);
    expectPicture("--preset gold --lights 1,2");
    command(ID_LIGHT_2);
    command(ID_BACKGROUND_GREY2);
    expectPicture("--preset gold --background grey2");
    command(ID_BACKGROUND_GREY1);
    command(ID_TEXTURE_PATTERN);
    EXPECT_TRUE(panelTicked(ID_TEXTURED));
    expectPicture("--texture pattern");
    command(ID_TEXTURE_WOOD);
    command(ID_PRESET_BRASS);
    pressPanel(ID_TEXTURED);
    expectPicture("");
}

TEST_F(Window, PanelBoxesShowWhatTheCommandLineRenders)
{
    const std::pair<int, const char*> rows[] = { { ID_SHADOWS, "--shadows" },
                                                 { ID_ROUGH, "--rough" },
                                                 { ID_WIREFRAME, "--wireframe" },
                                                 { ID_BACKCULLED, "--no-backcull" },
                                                 { ID_MOON, "--moon" } };
    for (auto [id, option] : rows)
    {
        pressPanel(id);
        expectPicture(option);
        pressPanel(id);
    }
    expectPicture("");
}

TEST_F(Window, RightDragAndWheelZoom)
{
    pressMouse(rightButton, 300, 400);
    moveMouse(300, 200);
    releaseMouse(rightButton, 300, 200);
    expectPicture("--zoom 2");
    command(ID_RESET_VIEW);
    turnWheel(1);
    expectPicture("--zoom 1.1");
    turnWheel(-1);
    turnWheel(-1);
    expectPicture("--zoom 1");
    command(ID_RESET_VIEW);
}

// The rotation as an option of the command line.
static std::string viewOption()
{
    Matrix rotation = {};
    onProgramThread([&] { rotation = frameState.view.rotation; });
    std::string option = "--view ";
    for (int i = 0; i < 9; ++i)
    {
        char number[32];
        snprintf(number, sizeof number, "%s%.9g", i ? "," : "", static_cast<double>(rotation.m[i / 3 * 4 + i % 3]));
        option += number;
    }
    return option;
}

static double angleOfView()
{
    double trace = 0;
    onProgramThread(
        [&]
        {
            const float* m = frameState.view.rotation.m;
            trace = static_cast<double>(m[0]) + static_cast<double>(m[5]) + static_cast<double>(m[10]);
        });
    return acos((trace - 1) / 2);
}

// The ball's radius is half of the wider side; both ends of the drag lie on the row through its centre.
static double angleOnBall(double fromX, double toX, double radius)
{
    auto angle = [&](double x) { return atan2(x, radius * radius * radius / (x * x + radius * radius)); };
    return fabs(angle(toX) - angle(fromX));
}

TEST_F(Window, DragTurnsByTheAngleOfTheBallAndHoldsStill)
{
    command(ID_RESET_VIEW);
    Shown drawn = drawnSize();
    int middle = drawn.height / 2, centre = drawn.width / 2;
    pressMouse(leftButton, centre - 150, middle);
    for (int x = centre - 140; x <= centre + 150; x += 10)
        moveMouse(x, middle);
    pause(150);
    double radius = std::max(drawn.width, drawn.height) / 2.0;
    EXPECT_NEAR(angleOfView(), angleOnBall(-150, 150, radius), std::numbers::pi / 180);
    releaseMouse(leftButton, centre + 150, middle);
    Shown released = shownPicture();
    pause(100);
    EXPECT_TRUE(shownPicture().bytes == released.bytes);
    expectPicture(viewOption());
    command(ID_RESET_VIEW);
}

TEST_F(Window, FlickSpinsAndEscapeStops)
{
    pressMouse(leftButton, 200, 200);
    for (int x = 210; x <= 300; x += 10)
        moveMouse(x, 200);
    releaseMouse(leftButton, 310, 200);
    Shown first = shownPicture();
    pause(100);
    EXPECT_FALSE(shownPicture().bytes == first.bytes);
    pressKey(keyEscape, 0);
    pause(50);
    first = shownPicture();
    pause(100);
    EXPECT_TRUE(shownPicture().bytes == first.bytes);
    command(ID_RESET_VIEW);
}

TEST_F(Window, KeysOfTheTableWork)
{
    pressKey('W', 0);
    EXPECT_TRUE(panelTicked(ID_WIREFRAME));
    expectPicture("--wireframe");
    pressKey('W', 0);
    pressKey('S', 0);
    expectPicture("--shadows");
    pressKey('S', 0);
    pressKey('2', 0);
    expectPicture("--lights 1,2");
    pressKey('2', 0);
    pressKey('+', 0);
    expectPicture("--zoom 1.1");
    pressKey(keyHome, 0);
    expectPicture("");
    pressKey(keyRight, 0);
    expectPicture("--rotate 0,10,0");
    pressKey(keyHome, 0);
}

TEST_F(Window, DisplayGrowsWithTheWindowAndIsDrawnWhole)
{
    Shown first = shownPicture();
    enlargeWindow(200, 100);
    Shown grown = shownPicture();
    EXPECT_EQ(grown.width, first.width + 200);
    EXPECT_EQ(grown.height, first.height + 100);
    expectPicture("");
    enlargeWindow(-200, -100);
    EXPECT_EQ(shownPicture().width, first.width);
    expectPicture("");
}

TEST_F(Window, MinimisingPutsTheTitleBackAndStopsTheSpin)
{
    pressMouse(leftButton, 200, 200);
    for (int x = 210; x <= 300; x += 10)
        moveMouse(x, 200);
    releaseMouse(leftButton, 310, 200);
    minimiseWindow();
    EXPECT_EQ(windowTitle(), "Kestrelbox");
    int spins = 1;
    onProgramThread([&] { spins = frameState.continuousRedraw; });
    EXPECT_EQ(spins, 0);
    restoreWindow();
    command(ID_RESET_VIEW);
    expectPicture("");
}

TEST_F(Window, MenuIsTheOneOfTheTable)
{
    std::vector<std::string> expected;
    for (const Menu& menu : menus)
    {
        expected.push_back(menu.text);
        for (const MenuEntry& entry : menu.entries)
            expected.push_back(entry.text ? std::to_string(entry.id) + " " + entry.text : "-");
    }
    EXPECT_EQ(menuLines(), expected);
}

TEST_F(Window, PanelIsTheOneOfTheTable)
{
    std::vector<std::string> expected;
    for (const PanelGroup& group : panelGroups)
    {
        expected.push_back(group.text);
        if (group.listId)
            expected.push_back("list");
        for (const PanelControl& control : group.controls)
            expected.push_back(std::to_string(control.id) + " " + control.text);
    }
    EXPECT_EQ(panelLines(), expected);
}

TEST_F(Window, MarksFollowTheChoices)
{
    command(ID_TEXTURE_METAL);
    EXPECT_EQ(tickedItems(), (std::set<int>{ 161, 200, 309, 336, 339, 340 }));
    command(ID_LIGHT_3);
    command(ID_LIGHT_1);
    command(ID_PRESET_CHALK);
    command(ID_BACKGROUND_BLACK);
    command(ID_KEYFRAMES_3DS);
    command(ID_EXACT_WELD);
    EXPECT_EQ(tickedItems(), (std::set<int>{ 161, 202, 306, 338 }));
    for (int id : { ID_LIGHT_1, ID_LIGHT_3, ID_BACKGROUND_GREY1, ID_KEYFRAMES_3DS, ID_EXACT_WELD, ID_TEXTURE_WOOD })
        command(id);
    open("a.obj", square);
    EXPECT_EQ(tickedItems(), (std::set<int>{ 160, 200, 310, 336, 339, 340 }));
    pressPanel(ID_TEXTURED);
}

TEST_F(Window, EveryToolReportsInANotice)
{
    open("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 0\nv 5 0 0\nv 6 0 0\nv 6 1 0\n"
                  "f 1 2 3 4\nf 4 3 2 1\nf 6 7 8\n");
    const struct
    {
        int button;
        const char* notice;
        const char *vertices, *faces, *groups;
    } rows[] = {
        { ID_DUP_FACES, "Removed  1 dupfaces", "8", "2", "0" },
        { ID_WELD, "Removed 1 vertices", "7", "2", "0" },
        { ID_TRI, "Mesh converted to triangles", "7", "3", "0" },
        { ID_QUAD, "Mesh converted to quads", "7", "2", "0" },
        { ID_FIX_NORMALS, "Normals ok, nothing to do", "7", "2", "0" },
        { ID_SPLIT, "    Mesh spitted", "7", "2", "2" },
    };
    for (const auto& row : rows)
    {
        Box notice = noticeAfter(row.button);
        EXPECT_EQ(notice.text, row.notice);
        EXPECT_GE(notice.shownMs, 1200) << row.button;
        EXPECT_LT(notice.shownMs, 2600) << row.button; // a busy machine is late, but not twice the time
        EXPECT_EQ(panelText(ID_VERT_COUNT), row.vertices) << row.button;
        EXPECT_EQ(panelText(ID_FACE_COUNT), row.faces) << row.button;
        EXPECT_EQ(panelText(ID_GROUP_COUNT), row.groups) << row.button;
    }
    EXPECT_EQ(listEntries().size(), 4u);
}

TEST_F(Window, FilterShowsOneGroup)
{
    open("two parts.obj", twoParts);
    chooseInList(1);
    expectPicture("\"two parts.obj\"");
    pressPanel(ID_BY_GROUP);
    chooseInList(2);
    expectPicture("--filter 2 \"two parts.obj\"");
    pressPanel(ID_BY_GROUP);
    expectPicture("\"two parts.obj\"");
}

TEST_F(Window, FailedLoadKeepsTheModelAndSaysWhy)
{
    open("a.obj", square);
    write("bad.ply", "ply\nnothing");
    answerDialogs({ path("bad.ply") });
    Box box = boxAfter(ID_OPEN_MESH);
    EXPECT_EQ(box.text, "error reading ply file");
    EXPECT_EQ(box.caption, "error");
    EXPECT_TRUE(titleNames("a.obj")) << windowTitle();
    EXPECT_EQ(panelText(ID_VERT_COUNT), "4");
}

// The rows of a bitmap without their padding, which is what lies to the right of the display.
static std::vector<std::string> pixelRows(const std::string& bitmap, int width)
{
    size_t rowBytes = (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
    std::vector<std::string> rows;
    for (size_t at = 54; at + rowBytes <= bitmap.size(); at += rowBytes)
        rows.push_back(bitmap.substr(at, static_cast<size_t>(width) * 3));
    return rows;
}

TEST_F(Window, FilesEqualThoseOfTheCommandLine)
{
    write("a.mtl", "newmtl red\nKd 1 0 0\n");
    open("a.obj", (std::string("mtllib a.mtl\nusemtl red\n") + square).c_str());
    const std::pair<int, std::vector<const char*>> rows[] = { { ID_EXPORT_PP2, { "out.pp2" } },
                                                              { ID_EXPORT_OBJ, { "out.obj", "out.mtl" } },
                                                              { ID_SAVE_RKF, { "out.rkf" } } };
    fs::create_directory("expected");
    for (const auto& [id, names] : rows)
    {
        answerDialogs({ path(names[0]) });
        command(id);
        fs::current_path(folder / "expected");
        ASSERT_TRUE(runKbx(std::string("convert ../a.obj ") + names[0]));
        fs::current_path(folder);
        for (const char* name : names)
        {
            EXPECT_FALSE(bytesOf(name).empty()) << name;
            EXPECT_EQ(bytesOf(name), bytesOf(fs::path("expected") / name)) << name;
        }
    }
    answerDialogs({ path("out.bmp") });
    command(ID_SAVE_IMAGE);
    Shown drawn = drawnSize();
    EXPECT_EQ(bytesOf("out.bmp").size(), 54 + static_cast<size_t>((drawn.width * 3 + 3) / 4 * 4 * drawn.height));
    expectPicture("a.obj");
    EXPECT_TRUE(pixelRows(bytesOf("out.bmp"), drawn.width) == pixelRows(bytesOf("expected.bmp"), drawn.width));
}

TEST_F(Window, ASavedPictureOfAnyWidthIsThatOfTheCommandLine)
{
    open("a.obj", square);
    enlargeWindow(8, 0);
    for (int i = 0; i < 4 && drawnSize().width % 4 != 2; ++i)
        enlargeWindow(-1, 0);
    answerDialogs({ path("out.bmp") });
    command(ID_SAVE_IMAGE);
    expectPicture("a.obj");
    std::string saved = bytesOf("out.bmp"), expected = bytesOf("expected.bmp");
    int width = drawnSize().width;
    ASSERT_EQ(pixelRows(expected, width).size(), static_cast<size_t>(drawnSize().height));
    EXPECT_TRUE(pixelRows(saved, width) == pixelRows(expected, width));
    EXPECT_EQ(saved.substr(0, 54), expected.substr(0, 54));
}

TEST_F(Window, RkfIsSavedAndReadBack)
{
    open("a.obj", square);
    answerDialogs({ path("out.rkf") });
    command(ID_SAVE_RKF);
    open("b.obj", twoParts);
    answerDialogs({ path("out.rkf") });
    command(ID_READ_RKF);
    EXPECT_TRUE(titleNames("out.rkf")) << windowTitle();
    EXPECT_EQ(panelText(ID_FACE_COUNT), "1");
}

TEST_F(Window, LoadedTextureNamesAndEnablesItsMenuEntry)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    std::string jpeg(reinterpret_cast<const char*>(wood.bytes), wood.size);
    write("bad.jpg", "no picture");
    answerDialogs({ path("bad.jpg") });
    Box box = boxAfter(ID_LOAD_TEXTURE);
    EXPECT_EQ(box.text, "Error reading Jpeg file");
    EXPECT_FALSE(menuEnabled(ID_TEXTURE_USER));
    write("SALT&pepper.JPG", jpeg);
    answerDialogs({ path("SALT&pepper.JPG") });
    command(ID_LOAD_TEXTURE);
    EXPECT_EQ(menuText(ID_TEXTURE_USER), "salt&&pepper.jpg"); // shown as one &
    EXPECT_TRUE(menuEnabled(ID_TEXTURE_USER));
    EXPECT_TRUE(menuTicked(ID_TEXTURE_USER));
    EXPECT_TRUE(panelTicked(ID_TEXTURED));
    command(ID_TEXTURE_WOOD);
    pressPanel(ID_TEXTURED);
}

TEST_F(Window, LuxExportWritesBesideTheModel)
{
    open("a.obj", square);
    Box box = boxAfter(ID_LUX_EXPORT);
    EXPECT_EQ(box.text, "a.lxo, .lxm and .lxs files exported");
    EXPECT_EQ(box.caption, "LuxRender Export");
    for (const char* name : { "a.lxs", "a.lxo", "a.lxm" })
        EXPECT_TRUE(fs::exists(name)) << name;
}

TEST_F(Window, UndoAndRedoTakeToolsBackAndForth)
{
    open("a.obj", square);
    noticeAfter(ID_TRI);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");
    pressKey('Z', withControl);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "1");
    pressKey('Y', withControl);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");
    pressKey('Z', withControl);
    pressKey('Z', withControl | withShift);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");
}

TEST_F(Window, DroppedFilesOpenAndTheFirstOneCounts)
{
    write("a.obj", square);
    write("b.obj", twoParts);
    dropFiles({ path("b.obj"), path("a.obj") });
    EXPECT_TRUE(titleNames("b.obj")) << windowTitle();
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");
    expectPicture("b.obj");
}

TEST_F(Window, ASecondStartHandsOverItsFile)
{
    write("a b.obj", square);
    EXPECT_TRUE(startAgain("a b.obj"));
    EXPECT_TRUE(titleNames("a b.obj")) << windowTitle();
    EXPECT_TRUE(startAgain(""));
    EXPECT_TRUE(titleNames("a b.obj")) << windowTitle();
}

TEST_F(Window, KeysReadAgainAndTurnThePages)
{
    write("m10.obj", twoParts);
    open("m9.obj", square);
    pressKey(keyRight, 0);
    write("m9.obj", twoParts);
    pressKey(keyF5, 0);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");
    expectPicture("m9.obj --rotate 0,10,0");
    write("m9.obj", square);
    pressKey(keyPageDown, 0);
    EXPECT_TRUE(titleNames("m10.obj")) << windowTitle();
    pressKey(keyPageUp, 0);
    EXPECT_TRUE(titleNames("m9.obj")) << windowTitle();
    EXPECT_EQ(panelText(ID_FACE_COUNT), "1");
}

TEST_F(Window, CopiesThePicture)
{
    open("a.obj", square);
    pressKey('C', withControl);
    EXPECT_TRUE(titleNames("a.obj - picture copied")) << windowTitle(); // which stays for two seconds only
    Shown copied = clipboardPicture(), expected = rendered("a.obj");
    EXPECT_EQ(copied.width, expected.width);
    EXPECT_TRUE(copied.bytes == expected.bytes);
}

static size_t blocksInUse()
{
    size_t count = 0;
    onProgramThread(
        [&]
        {
            for (int32_t i = 0; i < memoryTable.highWater; ++i)
                count += memoryTable.entries[i].address != nullptr;
        });
    return count;
}

#if defined(__SANITIZE_ADDRESS__)
constexpr size_t growthLimit = SIZE_MAX; // the sanitizer keeps what is released
#else
constexpr size_t growthLimit = 1 << 20; // 500 meshes of 350 KB would be 170 MB
#endif

// Of every kind: a text, a binary and the program's own file, and one that fails.
TEST_F(Window, FiveHundredFilesInARowLeaveNothingBehind)
{
    open("a.obj", square);
    answerDialogs({ path("c.rkf") });
    command(ID_SAVE_RKF);
    size_t blocks = 0, objects = 0, bytes = 0;
    for (int i = 0; i < 500; ++i)
    {
        if (i % 5 == 4)
        {
            answerDialogs({ path("c.rkf") });
            command(ID_READ_RKF);
            ASSERT_TRUE(titleNames("c.rkf")) << windowTitle();
        }
        else
            open(i % 2 ? "a.obj" : "b.off", i % 2 ? square : "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
        if (i == 19)
        {
            blocks = blocksInUse();
            objects = objectCount();
            bytes = residentBytes();
        }
    }
    EXPECT_EQ(blocksInUse(), blocks);
    EXPECT_LE(objectCount(), objects + 4);
    EXPECT_LE(residentBytes() - std::min(bytes, residentBytes()), growthLimit);
}

// Only the reader of OBJ files says that a file is missing.
TEST_F(Window, AFileThatVanishesWhileItsDialogIsOpenLeavesTheModel)
{
    open("a.obj", square);
    answerDialogs({ path("gone.obj") });
    Box box = boxAfter(ID_OPEN_MESH);
    EXPECT_EQ(box.text, "Error: failed to open");
    EXPECT_EQ(box.caption, path("gone.obj"));
    for (auto [id, name] : { std::pair{ ID_OPEN_MESH, "gone.ply" }, std::pair{ ID_OPEN_MESH, "gone.3ds" },
                             std::pair{ ID_READ_RKF, "gone.rkf" }, std::pair{ ID_LOAD_TEXTURE, "gone.jpg" } })
    {
        answerDialogs({ path(name) });
        command(id);
    }
    for (auto [id, name] : { std::pair{ ID_EXPORT_OBJ, "out.obj" }, std::pair{ ID_SAVE_IMAGE, "out.bmp" } })
    {
        std::string gone = (folder / "gone" / name).string();
        answerDialogs({ gone });
        box = boxAfter(id);
        EXPECT_EQ(box.text, gone);
        EXPECT_EQ(box.caption, "Error cannot create");
    }
    EXPECT_TRUE(titleNames("a.obj")) << windowTitle();
    EXPECT_EQ(panelText(ID_VERT_COUNT), "4");
    expectPicture("a.obj");
}

TEST_F(Window, ADropAndASecondStartWaitUntilTheOpenBoxIsClosed)
{
    write("b.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n");
    open("a.obj", square);
    boxAfter(ID_LUX_EXPORT,
             [&]
             {
                 dropFiles({ path("b.obj") });
                 pause(300);
                 EXPECT_EQ(panelText(ID_VERT_COUNT), "4");
             });
    EXPECT_EQ(panelText(ID_VERT_COUNT), "3");
    boxAfter(ID_LUX_EXPORT,
             [&]
             {
                 EXPECT_TRUE(startAgain("a.obj"));
                 pause(300);
                 EXPECT_EQ(panelText(ID_VERT_COUNT), "3");
             });
    EXPECT_EQ(panelText(ID_VERT_COUNT), "4");
}

TEST_F(Window, KeysWorkAfterANoticeAndAfterAMessageBox)
{
    open("a.obj", square);
    noticeAfter(ID_TRI);
    pressKey('W', 0);
    EXPECT_TRUE(panelTicked(ID_WIREFRAME));
    boxAfter(ID_LUX_EXPORT);
    pressKey('W', 0);
    EXPECT_FALSE(panelTicked(ID_WIREFRAME));
}
