// tests/windows/inside_files_test.cpp - the desktop program from inside: drops, the clipboard, long paths, held files
#include "tests/windows/dialogs.h"
#include "tests/windows/inside.h"

#include "platform/controls.h"
#include "platform/resources.h"
#include "platform/win32/handles.h"
#include "platform/win32/names.h"
#include "resources/ids.h"
#include "shell/given_files.h"
#include "shell/picture_file.h"
#include "shell/scene.h"

#include <gtest/gtest.h>
#include <shellapi.h>
#include <shlobj.h>
#include <string.h>

constexpr char square[] = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\ng one\nusemtl red\nf 1 2 3 4\n";
constexpr char triangle[] = "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n";

// Paths begin with the prefix that has no limit of length, so that the tests can make and remove files of any path.
class FilesInside : public testing::Test
{
protected:
    void SetUp() override
    {
        wchar_t temporary[MAX_PATH];
        GetTempPathW(MAX_PATH, temporary);
        folder = std::wstring(temporary) + L"kestrelbox-files-" + std::to_wstring(GetCurrentProcessId());
        CreateDirectoryW(folder.c_str(), nullptr);
    }

    // Leaves the marks of the menu as they were at the start, for whichever test comes next.
    void TearDown() override
    {
        answerDialogs({});
        closeDialogs(GetCurrentProcessId());
        command(ID_PRESET_BRASS);
        removeAll(longForm(folder));
    }

    static std::wstring longForm(const std::wstring& path)
    {
        return LR"(\\?\)" + path;
    }

    static void removeAll(const std::wstring& path)
    {
        WIN32_FIND_DATAW entry;
        HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
        if (search != INVALID_HANDLE_VALUE)
        {
            do
            {
                std::wstring name = entry.cFileName, inner = path + L"\\" + name;
                if (name == L"." || name == L"..")
                    continue;
                SetFileAttributesW(inner.c_str(), FILE_ATTRIBUTE_NORMAL);
                if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                    removeAll(inner);
                else
                    DeleteFileW(inner.c_str());
            } while (FindNextFileW(search, &entry));
            FindClose(search);
        }
        RemoveDirectoryW(path.c_str());
    }

    static void write(const std::wstring& path, const std::string& text)
    {
        HANDLE file = CreateFileW(longForm(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD written;
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        CloseHandle(file);
    }

    static std::string read(const std::wstring& path)
    {
        HANDLE file =
            CreateFileW(longForm(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                        nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return "(no file)";
        std::string text(GetFileSize(file, nullptr), '\0');
        DWORD got = 0;
        ReadFile(file, text.data(), static_cast<DWORD>(text.size()), &got, nullptr);
        CloseHandle(file);
        return text;
    }

    static bool isThere(const std::wstring& path)
    {
        return GetFileAttributesW(longForm(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    std::wstring pathOf(const std::wstring& name) const
    {
        return folder + L"\\" + name;
    }

    static std::string utf8(const std::wstring& path)
    {
        return utf8FromWide(path.c_str());
    }

    static void drop(const std::vector<std::wstring>& paths)
    {
        postDrop(paths);
        workOff(toolPanel);
    }

    static std::wstring boxAfterDrop(const std::wstring& path)
    {
        postDrop({ path });
        std::wstring text = answerMessageBox(GetCurrentProcessId());
        workOff(toolPanel);
        return text;
    }

    static std::wstring vertices()
    {
        return windowText(GetDlgItem(toolPanel, ID_VERT_COUNT));
    }

    std::wstring folder;
};

TEST_F(FilesInside, OfDroppedModelsTheFirstOpens)
{
    write(pathOf(L"one \u03a9.obj"), square);
    write(pathOf(L"two.obj"), triangle);
    drop({ pathOf(L"one \u03a9.obj"), pathOf(L"two.obj") });
    EXPECT_EQ(vertices(), L"4");
    EXPECT_EQ(currentFileName, utf8(L"one \u03a9.obj"));
    drop({ pathOf(L"two.obj") });
    EXPECT_EQ(vertices(), L"3");
    EXPECT_TRUE(GetWindowLongW(mainWindow, GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
}

TEST_F(FilesInside, ADroppedPictureBecomesTheUsersTexture)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    write(pathOf(L"Bark.JPG"), std::string(reinterpret_cast<const char*>(wood.bytes), wood.size));
    drop({ pathOf(L"Bark.JPG") });
    wchar_t text[64] = L"";
    GetMenuStringW(GetMenu(mainWindow), ID_TEXTURE_USER, text, 64, MF_BYCOMMAND);
    EXPECT_STREQ(text, L"bark.jpg");
    command(ID_TEXTURE_WOOD);
    SendDlgItemMessageW(toolPanel, ID_TEXTURED, BM_CLICK, 0, 0);
    onProgramThread(
        []
        {
            renameMenuItem(ID_TEXTURE_USER, "User");
            enableMenuItem(ID_TEXTURE_USER, 0);
        });
}

TEST_F(FilesInside, WhatCannotBeOpenedIsSaidAndTheModelStays)
{
    write(pathOf(L"two.obj"), triangle);
    write(pathOf(L"notes.txt"), "x");
    drop({ pathOf(L"two.obj") });
    CreateDirectoryW(pathOf(L"folder.obj").c_str(), nullptr);
    for (const std::wstring& path :
         { pathOf(L"missing.obj"), pathOf(L"missing.rkf"), pathOf(L"folder.obj"), std::wstring(L"C:\\"),
           std::wstring(L"NUL"), std::wstring(LR"(\\.\pipe\kestrelbox.obj)"), std::wstring(L"con.obj"),
           std::wstring(L"\x01?*.obj") })
        EXPECT_EQ(boxAfterDrop(path), L"Error: failed to open [" + path + L"]");
    std::wstring endless = L"C:\\" + std::wstring(33000, L'n') + L".obj";
    EXPECT_EQ(boxAfterDrop(endless).rfind(L"Error: failed to open [C:\\nnn", 0), 0u);
    EXPECT_EQ(boxAfterDrop(pathOf(L"notes.txt")), L"Not supported file format [notes.txt]");
    EXPECT_EQ(vertices(), L"3");
    EXPECT_EQ(currentFileName, "two.obj");
}

TEST_F(FilesInside, AFileThatAnotherProgramHoldsKeepsTheWholeSet)
{
    write(pathOf(L"one.obj"), square);
    drop({ pathOf(L"one.obj") });
    for (const wchar_t* held : { L"out.obj", L"out.mtl" })
    {
        write(pathOf(L"out.obj"), "earlier");
        write(pathOf(L"out.mtl"), "earlier");
        HANDLE other =
            CreateFileW(pathOf(held).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        answerDialogs({ utf8(pathOf(L"out.obj")) });
        EXPECT_EQ(boxTextAfter(mainWindow, ID_EXPORT_OBJ), pathOf(held) + L" [Error cannot create]");
        CloseHandle(other);
        EXPECT_EQ(read(pathOf(L"out.obj")), "earlier");
        EXPECT_EQ(read(pathOf(L"out.mtl")), "earlier");
        EXPECT_EQ(currentFileName, "one.obj");
    }
    answerDialogs({ utf8(pathOf(L"out.obj")) });
    command(ID_EXPORT_OBJ);
    EXPECT_EQ(read(pathOf(L"out.obj")).substr(0, 9), "#vertices");
    EXPECT_NE(read(pathOf(L"out.mtl")), "earlier");
    EXPECT_EQ(windowText(mainWindow), L"Kestrelbox: File out.obj saved") << "and the drawing speed waits";
}

TEST_F(FilesInside, EveryWriterSaysThatItFailed)
{
    write(pathOf(L"one.obj"), square);
    drop({ pathOf(L"one.obj") });
    const std::pair<int, const wchar_t*> savings[] = { { ID_EXPORT_OBJ, L"no\\a.obj" },
                                                       { ID_EXPORT_PP2, L"no\\a.pp2" },
                                                       { ID_SAVE_RKF, L"no\\a.rkf" },
                                                       { ID_SAVE_IMAGE, L"no\\a.bmp" } };
    for (const auto& [id, name] : savings)
    {
        answerDialogs({ utf8(pathOf(name)) });
        EXPECT_EQ(boxTextAfter(mainWindow, id), pathOf(name) + L" [Error cannot create]");
    }
    EXPECT_EQ(currentFileName, "one.obj");
}

TEST_F(FilesInside, PathsOfAThousandCharactersOpenAndSave)
{
    std::wstring deep = folder;
    while (deep.size() < 900) // 2,700 bytes: under Wine the limit of 4,096 bytes of the system below counts
    {
        deep += L"\\" + std::wstring(99, L'\u6728'); // 300 bytes each
        ASSERT_TRUE(CreateDirectoryW(longForm(deep).c_str(), nullptr)) << deep.size();
    }
    write(deep + L"\\a.obj", std::string("mtllib a.mtl\n") + square);
    write(deep + L"\\a.mtl", "newmtl red\nKd 1 0 0\n");
    answerDialogs({ utf8(deep + L"\\a.obj") });
    command(ID_OPEN_MESH);
    EXPECT_EQ(vertices(), L"4");
    EXPECT_EQ(currentFilePath, utf8(deep + L"\\a.obj"));
    EXPECT_EQ(currentMesh()->materials[0].diffuse[1], 0.0f) << "the library beside it";
    answerDialogs({ utf8(deep + L"\\b.obj"), utf8(deep + L"\\b.pp2"), utf8(deep + L"\\b.rkf"), utf8(deep + L"\\b.bmp"),
                    utf8(deep + L"\\b.rkf") });
    for (int id : { ID_EXPORT_OBJ, ID_EXPORT_PP2, ID_SAVE_RKF, ID_SAVE_IMAGE, ID_READ_RKF })
        command(id);
    for (const wchar_t* name : { L"\\b.obj", L"\\b.mtl", L"\\b.pp2", L"\\b.rsr", L"\\b.rkf", L"\\b.bmp" })
        EXPECT_TRUE(isThere(deep + name)) << utf8(name);
    EXPECT_EQ(currentFileName, "b.rkf");
    drop({ deep + L"\\a.obj" });
    EXPECT_EQ(currentFilePath, utf8(deep + L"\\a.obj"));
    int reloaded = 0, next = 0;
    onProgramThread(
        [&]
        {
            reloaded = reloadModel();
            next = openNeighbour(1);
        });
    EXPECT_EQ(reloaded, 1);
    EXPECT_EQ(next, 1);
    EXPECT_EQ(currentFileName, "b.obj");
    EXPECT_EQ(boxTextAfter(toolPanel, ID_LUX_EXPORT), L"b.lxo, .lxm and .lxs files exported [LuxRender Export]");
    EXPECT_TRUE(isThere(deep + L"\\b.lxs"));
}
