// tests/windows/hand_test.cpp - the window in the hand: real mouse and key events, sizes, screens of other resolutions
#include "tests/windows/dialogs.h"
#include "tests/windows/inside.h"
#include "tests/windows/screen.h"

#include "platform/win32/handles.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/drag.h"
#include "shell/scene.h"
#include "shell/win32/placement.h"

#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <string.h>
#include <algorithm>

class Hand : public testing::Test
{
protected:
    void SetUp() override
    {
        onProgramThread(
            []
            {
                SetForegroundWindow(mainWindow);
                SetFocus(displayWindow);
            });
        command(ID_RESET_VIEW);
    }

    void TearDown() override
    {
        onProgramThread([] { SetFocus(displayWindow); });
        command(ID_RESET_VIEW);
    }

    // Moves the pointer to a place of the display.
    static void point(int x, int y)
    {
        POINT place = { x, y };
        ClientToScreen(displayWindow, &place);
        SetCursorPos(place.x, place.y);
    }

    // Whether the pointer is at a place of the display, and the program has handled every move.
    static bool restsAt(int x, int y)
    {
        POINT place = { x, y }, now = {};
        ClientToScreen(displayWindow, &place);
        GetCursorPos(&now);
        WORD waiting = 0;
        onProgramThread([&] { waiting = HIWORD(GetQueueStatus(QS_INPUT)); });
        return now.x == place.x && now.y == place.y && waiting == 0;
    }

    // The X server reports moves late, and a late one moves the pointer back. So it is moved again until it has stayed.
    static void pointAndRest(int x, int y)
    {
        constexpr int looks = 8;
        int stayed = 0;
        point(x, y);
        EXPECT_TRUE(eventually(
            [&]
            {
                Sleep(25);
                stayed = restsAt(x, y) ? stayed + 1 : 0;
                if (stayed == 0)
                    point(x, y);
                return stayed == looks;
            }));
    }

    static bool captured()
    {
        bool held = false;
        onProgramThread([&] { held = GetCapture() == displayWindow; });
        return held;
    }

    static void pressLeft()
    {
        mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
        EXPECT_TRUE(eventually(captured));
    }
    static void releaseLeft()
    {
        mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
        EXPECT_TRUE(eventually([] { return !captured(); }));
    }

    static void slide(int fromX, int toX, int y)
    {
        int step = toX > fromX ? 20 : -20;
        for (int x = fromX + step; x != toX; x += step)
        {
            point(x, y);
            Sleep(10);
        }
        pointAndRest(toX, y);
    }

    static void drag(int fromX, int toX, int y)
    {
        pointAndRest(fromX, y);
        pressLeft();
        slide(fromX, toX, y);
        releaseLeft();
    }

    static void press(BYTE key)
    {
        keybd_event(key, 0, 0, 0);
        keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
    }

    static Matrix rotation()
    {
        Matrix now;
        onProgramThread([&] { now = frameState.view.rotation; });
        return now;
    }

    static double degreesOf(const Matrix& m)
    {
        double cosine = (m.m[0] + m.m[5] + m.m[10] - 1.0) / 2;
        return acos(std::clamp(cosine, -1.0, 1.0)) * 180 / 3.14159265358979;
    }

    // The angle on the ball between two places of the middle row, left and right of the middle alike.
    static double degreesAcross(int pixels)
    {
        double r = frameState.displayWidth / 2.0, x = pixels / 2.0;
        return 2 * atan(x * (x * x + r * r) / (r * r * r)) * 180 / 3.14159265358979;
    }

    static RECT placeOf(HWND window)
    {
        RECT rect;
        GetWindowRect(window, &rect);
        MapWindowPoints(nullptr, mainWindow, reinterpret_cast<POINT*>(&rect), 2);
        return rect;
    }

    static void growMainWindow(int dx, int dy)
    {
        onProgramThread(
            [=]
            {
                RECT rect;
                GetWindowRect(mainWindow, &rect);
                SetWindowPos(mainWindow, nullptr, 0, 0, rect.right - rect.left + dx, rect.bottom - rect.top + dy,
                             SWP_NOMOVE | SWP_NOZORDER);
            });
    }
};

TEST_F(Hand, ADragOf300PixelsTurnsByTheAngleOfTheBall)
{
    int middle = frameState.displayWidth / 2, row = frameState.displayHeight / 2;
    drag(middle - 150, middle + 150, row);
    EXPECT_NEAR(degreesOf(rotation()), degreesAcross(300), 1.0);
    EXPECT_GT(degreesAcross(300), 60);
    EXPECT_GT(rotation().m[2], 0.5f) << "to the right";
}

TEST_F(Hand, AReleaseAfterAPauseStandsStill)
{
    drag(200, 400, 200);
    Matrix released = rotation();
    EXPECT_FALSE(frameState.continuousRedraw);
    Sleep(300);
    EXPECT_EQ(memcmp(rotation().m, released.m, sizeof released.m), 0);
    EXPECT_GT(degreesOf(released), 20);
}

TEST_F(Hand, TenDragsDoNotDrift)
{
    drag(200, 300, 250);
    Matrix start = rotation();
    for (int i = 0; i < 5; ++i)
    {
        drag(200, 400, 250);
        EXPECT_GT(degreesOf(rotation()), 30);
        drag(400, 200, 250);
    }
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(rotation().m[i], start.m[i], 1e-4) << i;
}

TEST_F(Hand, ADragGoesOnOutsideTheDisplay)
{
    int middle = frameState.displayWidth / 2, row = frameState.displayHeight / 2;
    int outside = (frameState.displayWidth + 40 - middle) / 20 * 20 + middle; // over the tool panel
    pointAndRest(middle, row);
    pressLeft();
    slide(middle, outside, row);
    double turned = degreesOf(rotation());
    slide(outside, middle, row);
    EXPECT_EQ(degreesOf(rotation()), 0);
    releaseLeft();
    EXPECT_GT(outside, frameState.displayWidth);
    EXPECT_NEAR(turned, degreesAcross(2 * (outside - middle)) / 2, 1.0);
}

static double processorSeconds()
{
    FILETIME created, ended, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    auto ticks = [](const FILETIME& time) { return (uint64_t{ time.dwHighDateTime } << 32) + time.dwLowDateTime; };
    return static_cast<double>(ticks(kernel) + ticks(user)) * 1e-7;
}

// The steps are counted by the angle; one is small enough for two seconds.
TEST_F(Hand, ASpinTakesOneStepARefreshAndLeavesTheProcessorIdle)
{
    constexpr float stepDegrees = 1.25f;
    onProgramThread(
        []
        {
            rotationAboutScreenAxes(&frameState.view.step, 0, stepDegrees, 0);
            frameState.continuousRedraw = 1;
        });
    PostMessageW(mainWindow, WM_NULL, 0, 0);
    Matrix before = rotation();
    ULONGLONG start = GetTickCount64();
    double busy = processorSeconds();
    Sleep(2000);
    Matrix after = rotation(), back = before, turned;
    double seconds = static_cast<double>(GetTickCount64() - start) / 1000;
    busy = processorSeconds() - busy;
    press(VK_ESCAPE);
    EXPECT_TRUE(eventually([] { return !frameState.continuousRedraw; }));
    transposeMatrix(&back);
    multiplyMatrices(&turned, &after, &back);
    double steps = degreesOf(turned) / stepDegrees;
    EXPECT_LE(steps, 62 * seconds);
    EXPECT_GE(steps, 2 * seconds) << "slower only on a busy machine";
    EXPECT_LT(busy / seconds, 0.15) << "of a core; 0.07 with AVX2";
    printf("%.1f steps a second, %.1f %% of a core\n", steps / seconds, busy / seconds * 100);
}

// A late report of the X server can end the movement before the release does, so it may take several flicks.
TEST_F(Hand, AFlickSpins)
{
    bool spins = false;
    for (int attempt = 0; attempt < 10 && !spins; ++attempt)
    {
        pointAndRest(250, 260);
        pressLeft();
        for (int x = 250; x <= 400; x += 30)
        {
            point(x, 260);
            Sleep(15);
        }
        releaseLeft();
        onProgramThread([&] { spins = frameState.continuousRedraw; });
    }
    EXPECT_TRUE(spins);
    press(VK_ESCAPE);
    EXPECT_TRUE(eventually([] { return !frameState.continuousRedraw; }));
}

TEST_F(Hand, TheWheelZooms)
{
    pointAndRest(300, 260);
    mouse_event(MOUSEEVENTF_WHEEL, 0, 0, WHEEL_DELTA, 0);
    EXPECT_TRUE(eventually([] { return fabsf(frameState.view.zoom - 1.1f) < 1e-4f; }));
    mouse_event(MOUSEEVENTF_WHEEL, 0, 0, static_cast<DWORD>(-2 * WHEEL_DELTA), 0);
    EXPECT_TRUE(eventually([] { return frameState.view.zoom == 1.0f; }));
}

TEST_F(Hand, KeysActInTheDisplayAndInThePanel)
{
    for (HWND focus : { displayWindow, mainWindow, GetDlgItem(toolPanel, ID_ROUGH) })
    {
        onProgramThread([=] { SetFocus(focus); });
        uint32_t before = choices.render.renderFlags & renderWireframe;
        press('W');
        EXPECT_TRUE(eventually([=] { return (choices.render.renderFlags & renderWireframe) != before; }));
        EXPECT_EQ(IsDlgButtonChecked(toolPanel, ID_WIREFRAME) == BST_CHECKED, before == 0);
        press('W');
        EXPECT_TRUE(eventually([=] { return (choices.render.renderFlags & renderWireframe) == before; }));
        press(VK_RIGHT);
        EXPECT_TRUE(eventually([] { return degreesOf(rotation()) > 9.9; }));
        press(VK_HOME);
        EXPECT_TRUE(eventually([] { return degreesOf(rotation()) == 0; }));
        press(VK_ADD);
        EXPECT_TRUE(eventually([] { return frameState.view.zoom > 1.05f; }));
        press(VK_OEM_MINUS);
        EXPECT_TRUE(eventually([] { return frameState.view.zoom == 1.0f; }));
    }
}

TEST_F(Hand, TheListOfThePanelKeepsItsKeys)
{
    onProgramThread([] { SetFocus(GetDlgItem(toolPanel, ID_FILTER_LIST)); });
    uint32_t before = choices.render.renderFlags;
    press('W');
    press(VK_DOWN);
    keybd_event(VK_CONTROL, 0, 0, 0);
    press('E'); // the dialog is cancelled; by then the other keys have been handled
    keybd_event(VK_CONTROL, 0, KEYEVENTF_KEYUP, 0);
    Sleep(200);
    EXPECT_EQ(choices.render.renderFlags, before);
    EXPECT_EQ(degreesOf(rotation()), 0);
}

TEST_F(Hand, DShowsTheModeInTheTitle)
{
    press('D');
    EXPECT_TRUE(eventually([] { return windowText(mainWindow) == L"Kestrelbox: trailing drag"; }));
    EXPECT_EQ(currentDragMode(), dragTrailing);
    press('D');
    EXPECT_TRUE(eventually([] { return windowText(mainWindow) == L"Kestrelbox: direct drag"; }));
}

// Whether the display shows the picture of the frame buffer, pixel for pixel.
static bool displayShowsThePicture()
{
    RECT client;
    GetClientRect(displayWindow, &client);
    int width = client.right, height = client.bottom;
    MapWindowPoints(displayWindow, mainWindow, reinterpret_cast<POINT*>(&client), 2);
    std::vector<uint32_t> shown = screenPixels(mainWindow, client);
    bool same = true;
    onProgramThread(
        [&]
        {
            for (int y = 0; y < height; ++y)
            {
                const uint8_t* row = frameBuffer.picture.bits + ptrdiff_t{ y } * frameBuffer.pitch * 3;
                for (int x = 0; x < width; ++x, row += 3)
                    same =
                        same && shown[static_cast<size_t>(y) * width + x] ==
                                    (row[0] | static_cast<uint32_t>(row[1]) << 8 | static_cast<uint32_t>(row[2]) << 16);
            }
        });
    return same;
}

static bool nothingWhiteAround(const RECT& display, const RECT& panel)
{
    RECT client;
    GetClientRect(mainWindow, &client);
    std::vector<uint32_t> pixels = screenPixels(mainWindow, client);
    for (int y = 0; y < client.bottom; ++y)
    {
        for (int x = 0; x < client.right; ++x)
        {
            POINT place = { x, y };
            if (!PtInRect(&display, place) && !PtInRect(&panel, place) &&
                pixels[static_cast<size_t>(y) * client.right + x] == 0xFFFFFF)
                return false;
        }
    }
    return true;
}

TEST_F(Hand, TheDisplayGrowsWithTheWindow)
{
    RECT display = placeOf(displayWindow), panel = placeOf(toolPanel);
    for (auto [dx, dy] : { std::pair{ 150, 120 }, std::pair{ -400, 0 }, std::pair{ 300, -200 }, std::pair{ -50, 80 } })
    {
        growMainWindow(dx, dy);
        RECT newDisplay = placeOf(displayWindow), newPanel = placeOf(toolPanel), client;
        GetClientRect(mainWindow, &client);
        EXPECT_EQ(newDisplay.right - display.right, dx);
        EXPECT_EQ(newDisplay.bottom - display.bottom, dy);
        EXPECT_EQ(newDisplay.bottom, client.bottom);
        EXPECT_EQ(newPanel.right - newPanel.left, panel.right - panel.left);
        EXPECT_EQ(newPanel.bottom - newPanel.top, panel.bottom - panel.top);
        EXPECT_EQ(newPanel.right, client.right - 1);
        EXPECT_EQ(frameState.displayWidth, newDisplay.right - newDisplay.left - 2) << "inside the border";
        EXPECT_TRUE(eventually(displayShowsThePicture)) << dx;
        EXPECT_TRUE(eventually([&] { return nothingWhiteAround(newDisplay, newPanel); })) << dx;
        display = newDisplay;
        panel = newPanel;
    }
}

TEST_F(Hand, TheProgramLaysOutItsOwnPixels)
{
    EXPECT_TRUE(IsProcessDPIAware());
}

// As if the window had been moved to a screen of that resolution.
TEST_F(Hand, ThePanelHasItsSizeOnEveryScreen)
{
    std::vector<RECT> controls;
    auto measure = []
    {
        std::vector<RECT> places;
        for (HWND control = GetWindow(toolPanel, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
            places.push_back(placeOf(control));
        return places;
    };
    auto fontHeight = []
    {
        LOGFONTW font = {};
        GetObjectW(reinterpret_cast<HFONT>(SendDlgItemMessageW(toolPanel, ID_WELD, WM_GETFONT, 0, 0)), sizeof font,
                   &font);
        return font.lfHeight;
    };
    RECT outer, panel = placeOf(toolPanel);
    GetWindowRect(mainWindow, &outer);
    controls = measure();
    LONG usualFont = fontHeight();
    auto change = [&](int dpi)
    {
        RECT suggested = { 0, 0, scaledLength(outer.right - outer.left, usualDpi, dpi),
                           scaledLength(outer.bottom - outer.top, usualDpi, dpi) };
        onProgramThread(
            [&]
            { SendMessageW(mainWindow, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested)); });
    };
    for (int dpi : { 120, 144, 192, 96 })
    {
        change(dpi);
        std::vector<RECT> now = measure();
        RECT newPanel = placeOf(toolPanel), display = placeOf(displayWindow), client;
        GetClientRect(mainWindow, &client);
        ASSERT_EQ(now.size(), controls.size());
        for (size_t i = 0; i < now.size(); ++i)
        {
            LONG width = controls[i].right - controls[i].left;
            EXPECT_NEAR(now[i].right - now[i].left, width * dpi / 96.0, 1.0) << i;
            EXPECT_NEAR(now[i].top - newPanel.top, (controls[i].top - panel.top) * dpi / 96.0, 1.0) << i;
        }
        EXPECT_EQ(newPanel.bottom - newPanel.top, scaledLength(panel.bottom - panel.top, 96, dpi));
        EXPECT_EQ(fontHeight(), scaledLength(usualFont, 96, dpi));
        EXPECT_EQ(display.right - display.left, client.right - 4 - (newPanel.right - newPanel.left));
        bool onScreen = display.bottom < GetSystemMetrics(SM_CYSCREEN) - 100; // of the tests
        EXPECT_TRUE(!onScreen || eventually(displayShowsThePicture)) << dpi;
    }
    EXPECT_EQ(memcmp(measure().data(), controls.data(), controls.size() * sizeof(RECT)), 0) << "back as it was";
}
