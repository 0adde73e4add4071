// shell/win32/program.cpp - one instance, three windows, one message loop
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/processor.h"
#include "platform/win32/handles.h"
#include "render/frame.h"
#include "shell/command_line.h"
#include "shell/given_files.h"
#include "shell/loop.h"
#include "shell/panel.h"
#include "shell/scene.h"
#include "shell/start_up.h"
#include "shell/win32/desktop.h"

#include <commctrl.h>
#include <shellapi.h>
#include <timeapi.h>

constexpr wchar_t mainClass[] = L"Kestrelbox"; // also the default title
constexpr wchar_t displayClass[] = L"display";
constexpr DWORD mainStyle = WS_CLIPCHILDREN | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX;
constexpr COLORREF panelGrey = 0xC0C0C0;
constexpr int extraWindowBytes = 4;

// Sends the file of this start to the first instance. Says so when that does not take it.
static void handOver(HWND running, const std::string& path)
{
    constexpr UINT patienceMs = 30000; // it may be reading a large model
    std::string full = fullPathOf(path.c_str());
    COPYDATASTRUCT data = { handOverTag, static_cast<DWORD>(full.size() + 1), full.data() };
    DWORD_PTR taken = 0;
    if (!SendMessageTimeoutW(running, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data), SMTO_NORMAL, patienceMs,
                             &taken) ||
        !taken)
        messageBox("Error: failed to open", path.c_str(), iconStop);
}

// A second start brings the first instance forward, which opens its file.
static bool raiseRunningInstance(const std::string& path)
{
    HWND running = FindWindowW(mainClass, nullptr);
    if (!running)
        return false;
    if (IsIconic(running))
        ShowWindow(running, SW_RESTORE);
    SetForegroundWindow(running);
    if (!path.empty())
        handOver(running, path);
    return true;
}

static ATOM registerClass(const wchar_t* name, WNDPROC procedure, const wchar_t* menu)
{
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = procedure;
    windowClass.cbWndExtra = extraWindowBytes;
    windowClass.hInstance = programInstance;
    windowClass.hIcon = LoadIconW(programInstance, L"appIcon");
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszMenuName = menu;
    windowClass.lpszClassName = name;
    return RegisterClassExW(&windowClass);
}

static bool createMainWindow()
{
    if (!registerClass(mainClass, mainWindowProc, L"AppMenu"))
        return false;
    WindowSize first = firstMainWindow(startDisplay());
    mainWindow = CreateWindowExW(0, mainClass, mainClass, mainStyle, CW_USEDEFAULT, CW_USEDEFAULT, first.width,
                                 first.height, nullptr, nullptr, programInstance, nullptr);
    if (mainWindow)
        DragAcceptFiles(mainWindow, TRUE);
    return mainWindow != nullptr;
}

static bool createDisplay(int showState)
{
    if (!registerClass(displayClass, displayProc, nullptr))
        return false;
    int32_t width = frameState.displayWidth, height = frameState.displayHeight;
    displayWindow = CreateWindowExW(WS_EX_TOPMOST, displayClass, L"hola", WS_CHILD | WS_BORDER, CW_USEDEFAULT,
                                    CW_USEDEFAULT, width, height, mainWindow, nullptr, programInstance, nullptr);
    frameState.displayWidth = width; // the buffer has the whole size, without subtracting the border
    frameState.displayHeight = height;
    if (!createFrameBuffer(&frameBuffer, width, height))
    {
        messageBox("Failed to create 3D context.", "", iconNone);
        return false;
    }
    layOutWindows();
    ShowWindow(displayWindow, showState);
    UpdateWindow(displayWindow);
    return true;
}

static void dispatch(MSG* message)
{
    TranslateMessage(message);
    DispatchMessageW(message);
}

// Sleeps until a message comes or the next frame is due. The operating system wakes a program in steps of up to 16 ms
// unless it is asked for finer ones.
static void waitForMessage(uint32_t ms)
{
    static_assert(noFrameDue == INFINITE);
    bool timed = ms != noFrameDue;
    if (timed)
        timeBeginPeriod(1);
    MsgWaitForMultipleObjectsEx(0, nullptr, ms, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    if (timed)
        timeEndPeriod(1);
}

static void runMessages()
{
    for (;;)
    {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            if (message.message == WM_QUIT)
                return;
            if (!takeKey(&message) && !IsDialogMessageW(toolPanel, &message))
                dispatch(&message);
            openWaitingFile();
            drawDueFrame();
        }
        openWaitingFile(); // another start sends its file past the queue of messages
        if (uint32_t ms = drawDueFrame())
            waitForMessage(ms);
    }
}

static void shutDown()
{
    loopState.appRunning = 0;
    destroyFrameBuffer(&frameBuffer);
    DestroyWindow(toolPanel);
    forgetPanel();
    releaseModels();
    DeleteObject(aboutBitmap);
    DeleteObject(panelBrush);
    releaseImages();
}

int runDesktop(HINSTANCE instance, const char* commandLine, int showState)
{
    std::string path = takeFileName(commandLine);
    if (raiseRunningInstance(path))
        return 0;
    programInstance = instance;
    if (!acceptProcessor(CpuFeatures()))
        return 0;
    InitCommonControls();
    aboutBitmap = LoadBitmapW(instance, L"about");
    panelBrush = CreateSolidBrush(panelGrey);
    if (!createMainWindow())
        return 0;
    if (!buildScene(path.c_str()))
        return 1;
    toolPanel = CreateDialogParamW(instance, L"ToolBarDialog", mainWindow, toolPanelProc, 0);
    rememberPanel(toolPanel);
    placeWindows();
    ShowWindow(mainWindow, showState);
    UpdateWindow(mainWindow);
    ShowWindow(toolPanel, SW_SHOWDEFAULT);
    UpdateWindow(toolPanel);
    if (!createDisplay(showState))
        return 0;
    fillFilterList(currentMesh());
    updateStatistics();
    SetFocus(displayWindow);
    loopState.appRunning = 1;
    runMessages();
    shutDown();
    return 1;
}
