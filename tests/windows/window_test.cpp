// tests/windows/window_test.cpp - the desktop program from outside: start, clicks, drags, dialogs, end
#include "tests/windows/dialogs.h"
#include "tests/windows/program.h"

#include "resources/ids.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

class DesktopWindow : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / ("kestrelbox-window-" + std::to_string(GetCurrentProcessId()));
        fs::create_directories(folder);
        write("square.obj", "mtllib square.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\ng one\nusemtl red\nf 1 2 3 4\n");
        write("square.mtl", "newmtl red\nKd 1 0 0\n");
        write("two parts.obj",
              "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 3 0 0\nv 4 0 0\nv 3 1 0\ng left\nf 1 2 3\ng right\nf 4 5 6\n");
    }

    void TearDown() override
    {
        if (sharing && HasFailure())
            shared.close(); // the next test starts a new one
        else if (program.process && !sharing)
            program.close();
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    void write(const char* name, const std::string& text)
    {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    static void TearDownTestSuite()
    {
        if (shared.process)
            shared.close();
    }

    // The program with the built-in model, started once, for tests that restore what they change.
    void share()
    {
        ASSERT_TRUE(shared.process || shared.start(fs::temp_directory_path().wstring(), L""));
        program = shared;
        sharing = true;
    }

    void start(const std::wstring& arguments = L"")
    {
        if (shared.process)
            shared.close();
        ASSERT_TRUE(program.start(folder.wstring(), arguments));
    }

    std::wstring path(const wchar_t* name) const
    {
        return (folder / name).wstring();
    }

    // The part of kbx's picture with these options that fits in the display's client area.
    Shot rendered(const std::wstring& options)
    {
        RECT client;
        GetClientRect(program.display, &client);
        int width = client.right, height = client.bottom;
        std::wstring bitmap = path(L"expected.bmp");
        EXPECT_EQ(runProgram(L"\"" + programFolder() + L"\\kbx.exe\" render " + options + L" -o expected.bmp",
                             folder.wstring()),
                  0u);
        std::ostringstream text;
        text << std::ifstream(fs::path(bitmap), std::ios::binary).rdbuf();
        std::string bytes = text.str();
        Shot shot{ width, height, {} };
        constexpr size_t rowBytes = 620 * 3, headerBytes = 54;
        EXPECT_EQ(bytes.size(), rowBytes * 520 + headerBytes);
        for (int y = 0; y < height; ++y)
        {
            const char* row = bytes.data() + headerBytes + (519 - static_cast<size_t>(y)) * rowBytes;
            shot.bytes.insert(shot.bytes.end(), row, row + width * 3);
        }
        return shot;
    }

    // The picture may reach the screen some time after it is drawn.
    void expectShot(const Shot& expected) const
    {
        Shot shown;
        if (eventually([&] { return (shown = program.shot()) == expected; }))
            return;
        ASSERT_EQ(shown.bytes.size(), expected.bytes.size());
        size_t different = 0;
        for (size_t i = 0; i < shown.bytes.size(); ++i)
            different += shown.bytes[i] != expected.bytes[i];
        ADD_FAILURE() << different << " of " << shown.bytes.size() << " bytes differ";
    }

    void expectPicture(const std::wstring& options)
    {
        expectShot(rendered(options));
    }

    // The first picture on the screen that differs from this one.
    Shot otherThan(const Shot& before) const
    {
        Shot shown;
        EXPECT_TRUE(eventually([&] { return (shown = program.shot()) != before; })) << "the picture stays";
        return shown;
    }

    // Whether the title names a loaded or a saved file. After the next frame it shows the statistics instead.
    bool titleNames(const std::wstring& name) const
    {
        std::wstring start = L"Kestrelbox: ";
        std::wstring title = program.title();
        return title.rfind(start + name, 0) == 0 || title.rfind(start + L"File " + name + L" saved", 0) == 0;
    }

    fs::path folder;
    Program program;
    bool sharing = false;
    static Program shared;
};

Program DesktopWindow::shared;

TEST_F(DesktopWindow, StartsWithTheTeapot)
{
    start();
    EXPECT_TRUE(program.title() == L"Kestrelbox" || titleNames(L"teapot")); // a later frame shows its polygons
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"2828");
    EXPECT_EQ(program.panelText(ID_FACE_COUNT), L"4096");
    EXPECT_EQ(program.panelText(ID_GROUP_COUNT), L"1");
    EXPECT_TRUE(program.checked(ID_BACKCULLED));
    EXPECT_TRUE(program.checked(ID_VERTEX_COLOUR));
    EXPECT_FALSE(program.checked(ID_WIREFRAME));

    RECT client, panel, display;
    GetClientRect(program.main, &client);
    GetWindowRect(program.panel, &panel);
    GetWindowRect(program.display, &display);
    EXPECT_EQ(display.right - display.left, 620);
    EXPECT_EQ(display.bottom - display.top, 520);
    EXPECT_EQ(client.right, panel.right - panel.left + 624);
    EXPECT_EQ(client.bottom, 522);
    EXPECT_FALSE(GetWindowLongW(program.main, GWL_STYLE) & WS_MAXIMIZEBOX);
    expectPicture(L"");
    EXPECT_EQ(program.close(), 1u);
}

TEST_F(DesktopWindow, SecondStartRestoresAndRaisesTheFirstAndLeaves)
{
    share();
    ShowWindow(program.main, SW_MINIMIZE);
    EXPECT_TRUE(eventually([&] { return IsIconic(program.main) != 0; }));
    EXPECT_EQ(runProgram(L"\"" + programFolder() + L"\\kestrelbox.exe\"", folder.wstring()), 0u);
    EXPECT_TRUE(eventually([&] { return IsWindow(program.main) && !IsIconic(program.main); }));
    EXPECT_TRUE(eventually([&] { return GetForegroundWindow() == program.main; }));
}

TEST_F(DesktopWindow, DragTurnsFlickSpinsPressStopsResetRestores)
{
    share();
    Shot before = rendered(L"");
    expectShot(before);
    program.mouse(WM_LBUTTONDOWN, MK_LBUTTON, 300, 260);
    program.mouse(WM_MOUSEMOVE, MK_LBUTTON, 330, 260);
    program.mouse(WM_MOUSEMOVE, MK_LBUTTON, 360, 260);
    otherThan(before);
    program.postMouse(WM_MOUSEMOVE, MK_LBUTTON, 390, 260); // at once before the release, so that it is a flick
    program.mouse(WM_LBUTTONUP, 0, 420, 260);
    for (int i = 0; i < 3; ++i)
        otherThan(program.shot());
    program.mouse(WM_LBUTTONDOWN, MK_LBUTTON, 300, 260);
    Shot last;
    auto rests = [&]
    {
        last = program.shot();
        Sleep(200);
        return program.shot() == last;
    };
    EXPECT_TRUE(eventually(rests));
    program.command(ID_RESET_VIEW);
    expectShot(before);
}

TEST_F(DesktopWindow, AboutOpensAndCloses)
{
    share();
    program.postCommand(ID_ABOUT);
    HWND about = waitForDialog(program.processId, DialogKind::about);
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(windowText(about), L"About Kestrelbox");
    PostMessageW(about, WM_COMMAND, ID_ABOUT_OK, 0);
    EXPECT_TRUE(waitUntilGone(about));
    program.postCommand(ID_ABOUT);
    about = waitForDialog(program.processId, DialogKind::about);
    ASSERT_NE(about, nullptr);
    PostMessageW(about, WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitUntilGone(about));
}

TEST_F(DesktopWindow, QuotedCommandLineOpensTheFile)
{
    start(L"\"" + path(L"two parts.obj") + L"\" more");
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"6");
    EXPECT_EQ(program.panelText(ID_GROUP_COUNT), L"2");
    expectPicture(L"\"two parts.obj\"");
}

// A dialog changes the current folder to that of the chosen file.
TEST_F(DesktopWindow, LuxExportWritesBesideTheModelOfTheCommandLine)
{
    fs::create_directory(folder / "elsewhere");
    start(L"\"two parts.obj\"");
    EXPECT_TRUE(titleNames(L"two parts.obj"));
    program.postCommand(ID_SAVE_IMAGE);
    ASSERT_TRUE(answerFileDialog(program.processId, path(L"elsewhere\\saved.bmp")));
    EXPECT_TRUE(eventually([&] { return fs::exists(folder / "elsewhere" / "saved.bmp"); }));
    program.postClick(ID_LUX_EXPORT);
    EXPECT_EQ(answerMessageBox(program.processId), L"two parts.lxo, .lxm and .lxs files exported [LuxRender Export]");
    for (const wchar_t* name : { L"two parts.lxs", L"two parts.lxo", L"two parts.lxm", L"two parts_textures.txt" })
        EXPECT_TRUE(fs::exists(folder / name)) << fs::path(name);
    EXPECT_FALSE(fs::exists(folder / "elsewhere" / "two parts.lxo"));
}

TEST_F(DesktopWindow, OpenSaveAndReadThroughTheDialogs)
{
    start();
    program.postCommand(ID_OPEN_MESH);
    ASSERT_TRUE(answerFileDialog(program.processId, path(L"square.obj")));
    ASSERT_TRUE(eventually([&] { return program.panelText(ID_VERT_COUNT) == L"4"; }));
    program.settle();
    EXPECT_EQ(program.title().substr(0, 22), L"Kestrelbox: square.obj");
    EXPECT_EQ(program.panelText(ID_MATERIAL_COUNT), L"1");
    expectPicture(L"square.obj");

    program.postCommand(ID_SAVE_IMAGE);
    ASSERT_TRUE(answerFileDialog(program.processId, path(L"saved.bmp")));
    EXPECT_TRUE(eventually([&] { return fs::exists(folder / "saved.bmp"); }));

    const std::pair<int, const wchar_t*> exports[] = { { ID_EXPORT_OBJ, L"out.obj" },
                                                       { ID_EXPORT_PP2, L"out.pp2" },
                                                       { ID_SAVE_RKF, L"out.rkf" } };
    for (auto [id, name] : exports)
    {
        program.postCommand(id);
        ASSERT_TRUE(answerFileDialog(program.processId, path(name))) << id;
        EXPECT_TRUE(eventually([&] { return fs::exists(folder / name); })) << id;
        program.settle();
        EXPECT_TRUE(titleNames(id == ID_EXPORT_PP2 ? L"out.obj" : name))
            << id; // saving a prop does not rename the model
    }
    EXPECT_TRUE(fs::exists(folder / "out.mtl"));
    EXPECT_TRUE(fs::exists(folder / "out.rsr"));

    program.postCommand(ID_READ_RKF);
    ASSERT_TRUE(answerFileDialog(program.processId, path(L"out.rkf")));
    EXPECT_TRUE(eventually([&] { return program.title().substr(0, 19) == L"Kestrelbox: out.rkf"; }));
    program.settle();
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"4");
}

TEST_F(DesktopWindow, EndsCleanlyDuringASpinADragAndADialog)
{
    start();
    program.mouse(WM_LBUTTONDOWN, MK_LBUTTON, 300, 260);
    program.mouse(WM_MOUSEMOVE, MK_LBUTTON, 340, 260);
    EXPECT_EQ(program.close(), 1u);

    start();
    program.mouse(WM_LBUTTONDOWN, MK_LBUTTON, 300, 260);
    program.mouse(WM_MOUSEMOVE, MK_LBUTTON, 340, 260);
    program.mouse(WM_LBUTTONUP, 0, 420, 260);
    EXPECT_EQ(program.close(), 1u);

    start();
    program.postCommand(ID_ABOUT);
    ASSERT_NE(waitForDialog(program.processId, DialogKind::about), nullptr);
    EXPECT_EQ(program.close(), 1u);
}
