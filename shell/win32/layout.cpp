// shell/win32/layout.cpp - placing the windows, and the tool panel on screens of another resolution
#include "shell/win32/desktop.h"

#include "platform/win32/handles.h"
#include "render/frame.h"
#include "resources/ids.h"
#include "shell/scene.h"
#include "shell/win32/placement.h"

#include <vector>

// A control of the panel as the dialog template made it.
struct PanelControl
{
    HWND window;
    WindowRect place;
};

struct PanelLayout
{
    int32_t dpi;     // of the screen that the template was laid out for
    WindowSize size; // there
    LOGFONTW font;   // there
    std::vector<PanelControl> controls;
    int32_t shownDpi; // of the screen that it is laid out for now
    HFONT shownFont;  // ours; null while the template's font is in use
};

static PanelLayout panelLayout;

// A function of user32.dll that older systems do not have; null there.
template <typename Function>
static Function systemFunction(const char* name)
{
    FARPROC address = GetProcAddress(GetModuleHandleW(L"user32.dll"), name);
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(address));
}

// Where a program cannot know the resolution of each screen, all count as the one of the whole system.
static int32_t dpiOf(HWND window)
{
    auto dpiForWindow = systemFunction<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    if (UINT dpi = dpiForWindow ? dpiForWindow(window) : 0)
        return static_cast<int32_t>(dpi);
    HDC screen = GetDC(nullptr);
    int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : usualDpi;
}

static void moveWindow(HWND window, const WindowRect& place)
{
    MoveWindow(window, place.x, place.y, place.width, place.height, TRUE);
}

static WindowSize sizeOf(HWND window)
{
    RECT rect;
    GetWindowRect(window, &rect);
    return { rect.right - rect.left, rect.bottom - rect.top };
}

static WindowSize clientOf(HWND window)
{
    RECT rect;
    GetClientRect(window, &rect);
    return { rect.right, rect.bottom };
}

WindowSize startDisplay()
{
    WindowSize display = firstDisplay(mainWindow ? dpiOf(mainWindow) : usualDpi);
    frameState.displayWidth = display.width;
    frameState.displayHeight = display.height;
    return display;
}

// A list is as high as with its entries, because that is what moving it takes.
static WindowRect placeInPanel(HWND panel, HWND control)
{
    RECT rect;
    GetWindowRect(control, &rect);
    if (GetDlgCtrlID(control) == ID_FILTER_LIST)
        SendMessageW(control, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&rect));
    MapWindowPoints(nullptr, panel, reinterpret_cast<POINT*>(&rect), 2);
    return { rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top };
}

void rememberPanel(HWND panel)
{
    constexpr int disableAll = 1; // DDC_DISABLE_ALL: newer systems would lay the dialog out, too
    using SetBehavior = BOOL(WINAPI*)(HWND, int, int);
    if (auto setBehavior = systemFunction<SetBehavior>("SetDialogDpiChangeBehavior"))
        setBehavior(panel, disableAll, disableAll);
    panelLayout.dpi = panelLayout.shownDpi = dpiOf(panel);
    panelLayout.size = sizeOf(panel);
    panelLayout.controls.clear();
    for (HWND control = GetWindow(panel, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
        panelLayout.controls.push_back({ control, placeInPanel(panel, control) });
    auto font = reinterpret_cast<HFONT>(SendMessageW(panel, WM_GETFONT, 0, 0));
    GetObjectW(font, sizeof panelLayout.font, &panelLayout.font);
}

void forgetPanel()
{
    if (panelLayout.shownFont)
        DeleteObject(panelLayout.shownFont);
    panelLayout = {};
}

static WindowSize shownPanelSize()
{
    const PanelLayout& layout = panelLayout;
    return { scaledLength(layout.size.width, layout.dpi, layout.shownDpi),
             scaledLength(layout.size.height, layout.dpi, layout.shownDpi) };
}

// Always from the template's own layout, so that nothing is lost by going there and back.
static void layOutPanel(int32_t dpi)
{
    PanelLayout* layout = &panelLayout;
    LOGFONTW description = layout->font;
    description.lfHeight = scaledLength(description.lfHeight, layout->dpi, dpi);
    description.lfWidth = 0;
    HFONT font = CreateFontIndirectW(&description);
    for (const PanelControl& control : layout->controls)
    {
        SendMessageW(control.window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        moveWindow(control.window, scaledRect(control.place, layout->dpi, dpi));
    }
    if (layout->shownFont)
        DeleteObject(layout->shownFont);
    layout->shownFont = font;
    layout->shownDpi = dpi;
    InvalidateRect(toolPanel, nullptr, TRUE);
}

// Moving the window can bring it to a screen of another resolution; then it is placed again.
void placeWindows()
{
    for (int32_t dpi = 0; dpi != dpiOf(mainWindow);)
    {
        dpi = dpiOf(mainWindow);
        WindowSize display = startDisplay(), panel = shownPanelSize();
        if (panel.height < display.height)
            panelLayout.size.height = scaledLength(display.height, panelLayout.shownDpi, panelLayout.dpi);
        moveWindow(mainWindow, placeMainWindow(display, shownPanelSize(), sizeOf(mainWindow), clientOf(mainWindow),
                                               sizeOf(GetDesktopWindow())));
    }
    layOutWindows();
}

void layOutWindows()
{
    if (!toolPanel || IsIconic(mainWindow))
        return;
    ClientLayout layout = layOutClient(clientOf(mainWindow), shownPanelSize());
    moveWindow(toolPanel, layout.panel);
    if (displayWindow)
        moveWindow(displayWindow, layout.display);
}

void changeResolution(int32_t dpi, const RECT* suggested)
{
    if (!toolPanel)
        return; // the panel is made for the new screen
    layOutPanel(dpi);
    if (displayWindow)
        moveWindow(mainWindow, { suggested->left, suggested->top, suggested->right - suggested->left,
                                 suggested->bottom - suggested->top });
    layOutWindows();
}
