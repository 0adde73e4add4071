// tests/windows/second_start_test.cpp - a second start with a file, and the keys for files and undo
#include "tests/windows/dialogs.h"
#include "tests/windows/program.h"

#include "resources/ids.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

// As in shell/given_files.h, which this program does not link: what another program would have to know.
constexpr ULONG_PTR handOverTag = 0x4B42464E;
constexpr size_t handOverRoom = 3 * 32768;

class SecondStart : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / ("kestrelbox-second-" + std::to_string(GetCurrentProcessId()));
        fs::create_directories(folder);
        write("part 1.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        write("part 2.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n");
        write("part 10.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nf 1 2 3 4\nf 1 2 5\n");
        ASSERT_TRUE(program.start(folder.wstring(), L"\"part 1.obj\""));
    }

    void TearDown() override
    {
        if (program.process)
        {
            closeDialogs(program.processId);
            EXPECT_EQ(program.close(), 1u);
        }
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    void write(const char* name, const std::string& text)
    {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    DWORD startAgain(const std::wstring& arguments)
    {
        return runProgram(L"\"" + programFolder() + L"\\kestrelbox.exe\" " + arguments, folder.wstring());
    }

    bool comesToShow(const wchar_t* vertices) const
    {
        return eventually([&] { return program.panelText(ID_VERT_COUNT) == vertices; });
    }

    LRESULT send(ULONG_PTR tag, const std::string& bytes) const
    {
        COPYDATASTRUCT data = { tag, static_cast<DWORD>(bytes.size()), const_cast<char*>(bytes.data()) };
        return SendMessageW(program.main, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }

    // A key as the keyboard gives it, with the window in front.
    void press(BYTE key, std::initializer_list<BYTE> held = {}) const
    {
        ASSERT_TRUE(eventually(
            [&]
            {
                SetForegroundWindow(program.main);
                return GetForegroundWindow() == program.main;
            }));
        for (BYTE modifier : held)
            keybd_event(modifier, 0, 0, 0);
        keybd_event(key, 0, 0, 0);
        keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
        for (BYTE modifier : held)
            keybd_event(modifier, 0, KEYEVENTF_KEYUP, 0);
        program.settle();
    }

    fs::path folder;
    Program program;
};

TEST_F(SecondStart, ItsFileOpensInTheFirstWindow)
{
    ShowWindow(program.main, SW_MINIMIZE);
    EXPECT_TRUE(eventually([&] { return IsIconic(program.main) != 0; }));
    EXPECT_EQ(startAgain(L"\"part 2.obj\""), 0u); // from the folder where it starts
    EXPECT_TRUE(comesToShow(L"4"));
    EXPECT_FALSE(IsIconic(program.main));
    EXPECT_TRUE(eventually([&] { return GetForegroundWindow() == program.main; }));
    EXPECT_EQ(startAgain(L""), 0u);
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"4");
}

TEST_F(SecondStart, AFileThatDoesNotOpenIsSaidByTheFirst)
{
    EXPECT_EQ(startAgain(L"missing.obj"), 0u);
    EXPECT_EQ(answerMessageBox(program.processId),
              L"Error: failed to open [" + (folder / "missing.obj").wstring() + L"]");
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"3");
}

TEST_F(SecondStart, ItsFileWaitsForAnOpenDialog)
{
    program.postCommand(ID_SAVE_IMAGE);
    HWND dialog = waitForDialog(program.processId, DialogKind::file);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(startAgain(L"\"part 2.obj\""), 0u) << "the second start does not wait";
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"3");
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(comesToShow(L"4"));
}

TEST_F(SecondStart, OtherMessagesOfOtherProgramsChangeNothing)
{
    std::string path = (folder / "part 2.obj").string();
    EXPECT_EQ(send(handOverTag + 1, path + std::string(1, '\0')), 0);
    EXPECT_EQ(send(handOverTag, path), 0) << "no terminator";
    EXPECT_EQ(send(handOverTag, path + std::string(1, '\0') + path + std::string(1, '\0')), 0);
    EXPECT_EQ(send(handOverTag, ""), 0);
    EXPECT_EQ(send(handOverTag, std::string(handOverRoom, 'n') + std::string(1, '\0')), 0);
    program.settle();
    EXPECT_EQ(program.panelText(ID_VERT_COUNT), L"3");
    EXPECT_EQ(send(handOverTag, path + std::string(1, '\0')), 1);
    EXPECT_TRUE(comesToShow(L"4"));
}

TEST_F(SecondStart, KeysPageThroughTheFolderAndReadAgain)
{
    press(VK_NEXT);
    EXPECT_TRUE(comesToShow(L"4"));
    press(VK_NEXT);
    EXPECT_TRUE(comesToShow(L"5"));
    press(VK_PRIOR);
    EXPECT_TRUE(comesToShow(L"4"));
    write("part 2.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 0 0 2\nf 1 2 3 4\n");
    press(VK_F5);
    EXPECT_TRUE(comesToShow(L"6"));
}

TEST_F(SecondStart, KeysUndoAndRedoATool)
{
    press(VK_NEXT);
    EXPECT_TRUE(comesToShow(L"4"));
    EXPECT_EQ(program.panelText(ID_FACE_COUNT), L"1");
    program.click(ID_TRI); // the notice closes by itself
    EXPECT_TRUE(eventually([&] { return program.panelText(ID_FACE_COUNT) == L"2"; }));
    press('Z', { VK_CONTROL });
    EXPECT_TRUE(eventually([&] { return program.panelText(ID_FACE_COUNT) == L"1"; }));
    EXPECT_EQ(program.title(), L"Kestrelbox: part 2.obj - undone: tri");
    press('Y', { VK_CONTROL });
    EXPECT_TRUE(eventually([&] { return program.panelText(ID_FACE_COUNT) == L"2"; }));
    press('Z', { VK_CONTROL });
    press('Z', { VK_CONTROL, VK_SHIFT });
    EXPECT_TRUE(eventually([&] { return program.title() == L"Kestrelbox: part 2.obj - done again: tri"; }));
    EXPECT_EQ(program.panelText(ID_FACE_COUNT), L"2");
}
