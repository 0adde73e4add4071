// tests/windows/inside_test.cpp - the desktop program from inside: menu, progress bar, keyboard focus, resources
#include "tests/windows/dialogs.h"
#include "tests/windows/inside.h"

#include "platform/boxes.h"
#include "platform/resources.h"
#include "platform/win32/handles.h"
#include "resources/controls.h"
#include "shell/choices.h"
#include "shell/scene.h"

#include <gtest/gtest.h>
#include <psapi.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace fs = std::filesystem;

class DesktopInside : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / (L"kestrelbox-inside-" + std::to_wstring(GetCurrentProcessId()));
        fs::create_directories(folder);
        before = fs::current_path();
        fs::current_path(folder);
    }

    void TearDown() override
    {
        answerDialogs({});
        closeDialogs(GetCurrentProcessId());
        fs::current_path(before);
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    static void write(const fs::path& name, const std::string& text)
    {
        std::ofstream(name, std::ios::binary) << text;
    }

    static void open(const char* name)
    {
        answerDialogs({ name });
        command(ID_OPEN_MESH);
    }

    static bool titleNames(const std::wstring& name)
    {
        return windowText(mainWindow).rfind(L"Kestrelbox: " + name, 0) == 0;
    }

    static std::wstring panelText(int id)
    {
        return windowText(GetDlgItem(toolPanel, id));
    }

    static std::set<int> checkedItems()
    {
        std::set<int> checked;
        for (int id = 100; id <= 340; ++id)
        {
            UINT state = GetMenuState(GetMenu(mainWindow), static_cast<UINT>(id), MF_BYCOMMAND);
            if (state != UINT_MAX && (state & MF_CHECKED))
                checked.insert(id);
        }
        return checked;
    }

    static std::wstring menuText(int id)
    {
        wchar_t text[128] = L"";
        GetMenuStringW(GetMenu(mainWindow), static_cast<UINT>(id), text, 128, MF_BYCOMMAND);
        return text;
    }

    fs::path folder, before;
};

constexpr char square[] = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\ng one\nf 1 2 3 4\n";

TEST_F(DesktopInside, EveryToolReportsInABoxWideEnough)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 0\nv 5 0 0\nv 6 0 0\nv 6 1 0\n"
                   "f 1 2 3 4\nf 4 3 2 1\nf 6 7 8\n");
    open("a.obj");
    const struct
    {
        int button;
        const wchar_t* notice;
        const wchar_t *vertices, *faces, *groups;
    } rows[] = {
        { ID_DUP_FACES, L"Removed  1 dupfaces", L"8", L"2", L"0" },
        { ID_WELD, L"Removed 1 vertices", L"7", L"2", L"0" },
        { ID_TRI, L"Mesh converted to triangles", L"7", L"3", L"0" },
        { ID_QUAD, L"Mesh converted to quads", L"7", L"2", L"0" },
        { ID_FIX_NORMALS, L"Normals ok, nothing to do", L"7", L"2", L"0" },
        { ID_SPLIT, L"    Mesh spitted", L"7", L"2", L"2" },
    };
    for (const auto& row : rows)
    {
        Notice notice = noticeDuring([&] { SendDlgItemMessageW(toolPanel, row.button, BM_CLICK, 0, 0); });
        EXPECT_EQ(notice.text, row.notice);
        EXPECT_TRUE(notice.fits) << row.button;
        EXPECT_EQ(panelText(ID_VERT_COUNT), row.vertices) << row.button;
        EXPECT_EQ(panelText(ID_FACE_COUNT), row.faces) << row.button;
        EXPECT_EQ(panelText(ID_GROUP_COUNT), row.groups) << row.button;
    }
    Corners first = currentMesh()->faces[0];
    SendDlgItemMessageW(toolPanel, ID_INVERT, BM_CLICK, 0, 0);
    EXPECT_NE(currentMesh()->faces[0], first);
    EXPECT_EQ(SendDlgItemMessageW(toolPanel, ID_FILTER_LIST, CB_GETCOUNT, 0, 0), 4);
}

TEST_F(DesktopInside, NoticeOfTheLargestCountIsReadable)
{
    Notice narrow = noticeDuring([] { showNotice("short"); });
    Notice wide = noticeDuring([] { showNotice("Removed 2147483647 vertices"); });
    EXPECT_TRUE(narrow.fits);
    EXPECT_TRUE(wide.fits);
    EXPECT_GT(wide.width, narrow.width);
}

TEST_F(DesktopInside, NoticeClosesByItselfAndOnlyThenTheCallerGoesOn)
{
    DWORD waitedMs = 0;
    auto show = [&]
    {
        ULONGLONG start = GetTickCount64();
        showNotice("wait");
        waitedMs = static_cast<DWORD>(GetTickCount64() - start);
    };
    DWORD shownMs = noticeDuring(show, NoticeTime::itsOwn).shownMs;
    EXPECT_GE(shownMs, 1290u);
    EXPECT_LT(shownMs, 2500u); // a busy machine is late, but not twice the time
    EXPECT_GE(waitedMs, 1290u);
}

TEST_F(DesktopInside, LuxExportWritesItsFilesOrSaysThatItFailed)
{
    write("a.obj", square);
    open("a.obj");
    EXPECT_EQ(boxTextAfter(toolPanel, ID_LUX_EXPORT), L"a.lxo, .lxm and .lxs files exported [LuxRender Export]");
    for (const char* name : { "a.lxs", "a.lxo", "a.lxm" })
        EXPECT_TRUE(fs::exists(name)) << name;
    fs::create_directory("b.lxs");
    write("b.obj", square);
    open("b.obj");
    EXPECT_EQ(boxTextAfter(toolPanel, ID_LUX_EXPORT), (folder / "b.lxs").wstring() + L" [Error cannot create]");
    EXPECT_EQ(answerMessageBox(GetCurrentProcessId()), L"Failed to export [LuxRender Export]");
    EXPECT_FALSE(fs::exists("b.lxo"));
}

TEST_F(DesktopInside, LuxExportWritesBesideTheModelWhereverADialogHasGone)
{
    fs::create_directory("models");
    fs::create_directory("elsewhere");
    write("models/a.b.obj", square);
    open("models\\a.b.obj");
    fs::current_path(folder / "elsewhere"); // as a file dialog leaves it
    EXPECT_EQ(boxTextAfter(toolPanel, ID_LUX_EXPORT), L"a.lxo, .lxm and .lxs files exported [LuxRender Export]");
    for (const char* name : { "a.lxs", "a.lxo", "a.lxm", "a_textures.txt" })
        EXPECT_TRUE(fs::exists(folder / "models" / name)) << name;
    EXPECT_TRUE(fs::is_empty(folder / "elsewhere"));
    fs::current_path(folder);
}

TEST_F(DesktopInside, LoadedTextureNamesAndEnablesItsMenuEntry)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    write(L"HOLZ \u03a9.JPG", std::string(reinterpret_cast<const char*>(wood.bytes), wood.size));
    write("bad.jpg", "no picture");
    command(ID_PRESET_BRASS);
    std::set<int> marks = checkedItems();
    CheckDlgButton(toolPanel, ID_TEXTURED, BST_UNCHECKED);
    answerDialogs({ "bad.jpg" });
    EXPECT_EQ(boxTextAfter(mainWindow, ID_LOAD_TEXTURE), L"Error reading Jpeg file [error]");
    EXPECT_EQ(menuText(163), L"User");
    EXPECT_EQ(checkedItems(), marks);
    EXPECT_FALSE(IsDlgButtonChecked(toolPanel, ID_TEXTURED));

    answerDialogs({ "HOLZ \u03a9.JPG" });
    command(ID_LOAD_TEXTURE);
    EXPECT_EQ(menuText(163), L"holz \u03a9.jpg");
    EXPECT_EQ(GetMenuState(GetMenu(mainWindow), 163, MF_BYCOMMAND) & MF_GRAYED, 0u);
    EXPECT_TRUE(checkedItems().count(163));
    EXPECT_FALSE(checkedItems().count(160));
    EXPECT_TRUE(IsDlgButtonChecked(toolPanel, ID_TEXTURED));

    write("salt&pepper.jpg", std::string(reinterpret_cast<const char*>(wood.bytes), wood.size));
    answerDialogs({ "salt&pepper.jpg" });
    command(ID_LOAD_TEXTURE);
    EXPECT_EQ(menuText(163), L"salt&&pepper.jpg"); // shown as one &
    command(ID_TEXTURE_WOOD);
    SendDlgItemMessageW(toolPanel, ID_TEXTURED, BM_CLICK, 0, 0);
}

TEST_F(DesktopInside, NamesOfAnyScriptOpenAndSave)
{
    fs::path greek = folder / L"\u03c6\u03ac\u03ba\u03b5\u03bb\u03bf\u03c2";
    fs::create_directory(greek);
    write(greek / L"\u6a21\u578b.obj", std::string("usemtl red\n") + square);
    std::string prefix = "\u03c6\u03ac\u03ba\u03b5\u03bb\u03bf\u03c2\\";
    open((prefix + "\u6a21\u578b.obj").c_str());
    EXPECT_TRUE(titleNames(L"\u6a21\u578b.obj"));
    EXPECT_EQ(panelText(ID_VERT_COUNT), L"4");

    answerDialogs({ prefix + "\u6728.obj", prefix + "\u6728.rkf", prefix + "\u6728.pp2", prefix + "\u6728.bmp" });
    for (int id : { ID_EXPORT_OBJ, ID_SAVE_RKF, ID_EXPORT_PP2, ID_SAVE_IMAGE })
        command(id);
    for (const wchar_t* name :
         { L"\u6728.obj", L"\u6728.mtl", L"\u6728.rkf", L"\u6728.pp2", L"\u6728.rsr", L"\u6728.bmp" })
        EXPECT_TRUE(fs::exists(greek / name)) << fs::path(name);
    answerDialogs({ prefix + "\u6728.rkf" });
    command(ID_READ_RKF);
    EXPECT_TRUE(titleNames(L"\u6728.rkf"));
}

TEST_F(DesktopInside, LongestPathOfAnyScriptOpens)
{
    std::wstring name(100, L'\u6728'); // 300 bytes, but fewer than 127 characters
    write(folder / (name + L".obj"), square);
    std::string path;
    for (int i = 0; i < 100; ++i)
        path += "\u6728";
    open((path + ".obj").c_str());
    EXPECT_EQ(panelText(ID_VERT_COUNT), L"4");
}

TEST_F(DesktopInside, ProgressBarHoldsOneCharacterForEachStep)
{
    std::wstring caption;
    std::vector<std::wstring> bars;
    HWND box = nullptr;
    onProgramThread(
        [&]
        {
            showProgress("LOADING.....");
            box = waitForDialog(GetCurrentProcessId(), DialogKind::progress);
            caption = windowText(GetDlgItem(box, ID_PROGRESS_CAPTION));
            for (float fraction : { 0.5f, 1.2f, -0.3f })
            {
                setProgress(fraction);
                bars.push_back(windowText(GetDlgItem(box, ID_PROGRESS_BAR)));
            }
            closeProgress();
        });
    EXPECT_EQ(caption, L"LOADING.....");
    EXPECT_EQ(bars, (std::vector<std::wstring>{ std::wstring(38, 127), std::wstring(76, 127), L"" }));
    EXPECT_FALSE(IsWindow(box));
}

TEST_F(DesktopInside, ProgressBarMovesDuringALoad)
{
    std::string text;
    for (int i = 0; i < 40000; ++i)
        text += "v " + std::to_string(i % 200) + " " + std::to_string(i / 200) + " 0\n";
    for (int i = 0; i + 201 < 40000; ++i)
        text += "f " + std::to_string(i + 1) + " " + std::to_string(i + 2) + " " + std::to_string(i + 202) + "\n";
    write("big.obj", text);
    takeBarLengths();
    open("big.obj");
    std::vector<int> lengths = takeBarLengths();
    EXPECT_TRUE(std::is_sorted(lengths.begin(), lengths.end()));
    EXPECT_GE((std::set<int>(lengths.begin(), lengths.end()).size()), 5u);
    EXPECT_EQ(panelText(ID_VERT_COUNT), L"40000");
}

TEST_F(DesktopInside, KeysWalkAndPressInThePanel)
{
    auto press = [](WPARAM key)
    {
        HWND focus = focusOfProgram();
        PostMessageW(focus, WM_KEYDOWN, key, 1);
        PostMessageW(focus, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
    };
    EXPECT_TRUE(eventually(
        []
        {
            onProgramThread([] { SetFocus(GetDlgItem(toolPanel, ID_WIREFRAME)); });
            workOff(toolPanel);
            return focusOfProgram() == GetDlgItem(toolPanel, ID_WIREFRAME);
        }));
    press(VK_TAB);
    EXPECT_TRUE(eventually([] { return focusOfProgram() == GetDlgItem(toolPanel, ID_BACKCULLED); }));
    press(VK_SPACE);
    EXPECT_TRUE(eventually([] { return (choices.render.renderFlags & renderBackCulled) == 0; }));
    press(VK_SPACE);
    EXPECT_TRUE(eventually([] { return (choices.render.renderFlags & renderBackCulled) != 0; }));
    uint32_t flags = choices.render.renderFlags;
    press(VK_RETURN);
    workOff(toolPanel);
    HWND focus = focusOfProgram();
    EXPECT_TRUE(focus == toolPanel || IsChild(toolPanel, focus));
    EXPECT_EQ(choices.render.renderFlags, flags);
    onProgramThread([] { SetFocus(displayWindow); });
}

TEST_F(DesktopInside, MessagesAreTakenWhileTheModelSpins)
{
    PostMessageW(displayWindow, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 260));
    PostMessageW(displayWindow, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(340, 260));
    PostMessageW(displayWindow, WM_LBUTTONUP, 0, MAKELPARAM(420, 260));
    ASSERT_TRUE(eventually([] { return frameState.continuousRedraw; }));
    for (int i = 0; i < 50; ++i)
        PostMessageW(mainWindow, WM_COMMAND, ID_KEYFRAMES_3DS, 0);
    PostMessageW(mainWindow, WM_COMMAND, ID_LIGHT_2, 0);
    EXPECT_TRUE(eventually([] { return choices.lightMask == 3; }));
    EXPECT_EQ(choices.keyframes3ds, 1);
    EXPECT_TRUE(frameState.continuousRedraw);
    command(ID_LIGHT_2);
    command(ID_RESET_VIEW);
    EXPECT_FALSE(frameState.continuousRedraw);
}

TEST_F(DesktopInside, ThousandCommandsLeaveNoObjectsBehind)
{
    for (int id = ID_PRESET_BRASS; id <= ID_PRESET_PROP; ++id)
        command(id);
    Holdings first = measureHoldings();
    for (int i = 0; i < 1000; ++i)
        SendMessageW(mainWindow, WM_COMMAND, static_cast<WPARAM>(ID_PRESET_BRASS + i % 11), 0);
    command(ID_PRESET_PROP);
    Holdings last = measureHoldings();
    EXPECT_LE(last.gdi, first.gdi + 2);
    EXPECT_LE(last.user, first.user + 2);
    EXPECT_LE(last.handles, first.handles + 2);
}
