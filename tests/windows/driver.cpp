// tests/windows/driver.cpp - the Windows program on a thread of the test, operated by messages as Windows posts them
#include "tests/windows/dialogs.h"
#include "tests/windows/inside.h"
#include "tests/windows/program.h"
#include "tests/windows/screen.h"

#include "platform/win32/handles.h"
#include "platform/win32/names.h"
#include "resources/ids.h"
#include "shell/keys.h"

#include <string.h>

constexpr DWORD usualEnd = 1;

int runTestsBeside(const std::vector<std::string>&, int (*runTests)())
{
    if (!startInside())
        return 1;
    int status = runTests();
    return endInside() == usualEnd ? status : 1;
}

void settle()
{
    workOff(toolPanel);
}

static std::string utf8(const std::wstring& text)
{
    return utf8FromWide(text.c_str());
}

static std::wstring currentFolder()
{
    wchar_t folder[MAX_PATH] = L"";
    GetCurrentDirectoryW(MAX_PATH, folder);
    return folder;
}

bool runKbx(const std::string& arguments)
{
    return runProgram(L"\"" + programFolder() + L"\\kbx.exe\" " + wideFromUtf8(arguments.c_str()), currentFolder()) ==
           0;
}

// ---- menu and panel ----

static bool isPanelControl(int id)
{
    return GetDlgItem(toolPanel, id) != nullptr;
}

// Chooses a menu entry or clicks a button, which may open a box.
static void postChoice(int id)
{
    if (isPanelControl(id))
        PostMessageW(GetDlgItem(toolPanel, id), BM_CLICK, 0, 0);
    else
        PostMessageW(mainWindow, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

void command(int id)
{
    postChoice(id);
    settle();
}

void pressPanel(int id)
{
    postChoice(id);
    settle();
}

void chooseInList(int index)
{
    HWND list = GetDlgItem(toolPanel, ID_FILTER_LIST);
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageW(toolPanel, WM_COMMAND, MAKEWPARAM(ID_FILTER_LIST, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    settle();
}

static std::string textIn(HMENU menu, UINT item, UINT by)
{
    wchar_t text[128] = L"";
    GetMenuStringW(menu, item, text, 128, by);
    return utf8(text);
}

static UINT menuState(int id)
{
    return GetMenuState(GetMenu(mainWindow), static_cast<UINT>(id), MF_BYCOMMAND);
}

std::string menuText(int id)
{
    return textIn(GetMenu(mainWindow), static_cast<UINT>(id), MF_BYCOMMAND);
}

bool menuEnabled(int id)
{
    return (menuState(id) & (MF_GRAYED | MF_DISABLED)) == 0;
}

bool menuTicked(int id)
{
    return (menuState(id) & MF_CHECKED) != 0;
}

bool panelTicked(int id)
{
    return IsDlgButtonChecked(toolPanel, id) == BST_CHECKED;
}

std::string panelText(int id)
{
    return utf8(windowText(GetDlgItem(toolPanel, id)));
}

std::vector<std::string> listEntries()
{
    std::vector<std::string> entries;
    HWND list = GetDlgItem(toolPanel, ID_FILTER_LIST);
    LRESULT count = SendMessageW(list, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i)
    {
        auto index = static_cast<WPARAM>(i);
        std::wstring text(static_cast<size_t>(SendMessageW(list, CB_GETLBTEXTLEN, index, 0)) + 1, L'\0');
        SendMessageW(list, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
        entries.push_back(utf8(text));
    }
    return entries;
}

std::vector<std::string> menuLines()
{
    std::vector<std::string> lines;
    HMENU bar = GetMenu(mainWindow);
    for (int i = 0; i < GetMenuItemCount(bar); ++i)
    {
        lines.push_back(textIn(bar, static_cast<UINT>(i), MF_BYPOSITION));
        HMENU menu = GetSubMenu(bar, i);
        for (int j = 0; j < GetMenuItemCount(menu); ++j)
        {
            UINT id = GetMenuItemID(menu, j);
            lines.push_back(id == 0 ? "-"
                                    : std::to_string(id) + " " + textIn(menu, static_cast<UINT>(j), MF_BYPOSITION));
        }
    }
    return lines;
}

static bool isGroupBox(HWND control)
{
    wchar_t name[16] = L"";
    GetClassNameW(control, name, 16);
    return wcscmp(name, L"Button") == 0 && (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

// A group's text has a blank on either side, and the text of a count is a control of its own before the count.
std::vector<std::string> panelLines()
{
    std::vector<std::string> lines;
    std::string label;
    for (HWND control = GetWindow(toolPanel, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
    {
        int id = static_cast<short>(GetDlgCtrlID(control));
        std::string text = utf8(windowText(control));
        if (isGroupBox(control))
            lines.push_back(text.size() > 2 ? text.substr(1, text.size() - 2) : text);
        else if (id == ID_FILTER_LIST)
            lines.emplace_back("list");
        else if (id < 0)
            label = text;
        else
            lines.push_back(std::to_string(id) + " " + (label.empty() ? text : label));
        if (id >= 0)
            label.clear();
    }
    return lines;
}

std::string windowTitle()
{
    return utf8(windowText(mainWindow));
}

size_t objectCount()
{
    Holdings held = measureHoldings();
    return held.gdi + held.user + held.handles;
}

size_t residentBytes()
{
    return measureHoldings().bytes;
}

// ---- boxes ----

Box noticeAfter(int id)
{
    Notice notice = noticeDuring([id] { SendDlgItemMessageW(toolPanel, id, BM_CLICK, 0, 0); }, NoticeTime::itsOwn);
    return { utf8(notice.text), "", static_cast<int>(notice.shownMs) };
}

Box boxAfter(int id, const std::function<void()>& meanwhile)
{
    postChoice(id);
    HWND box = waitForDialog(GetCurrentProcessId(), DialogKind::message);
    if (!box)
        return { "(no box)", "", 0 };
    if (meanwhile)
        meanwhile();
    Box shown = { utf8(messageOf(box)), utf8(windowText(box)), 0 };
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    waitUntilGone(box);
    settle();
    return shown;
}

// ---- mouse and keyboard ----

static WPARAM heldButton;

static void sendMouse(UINT message, WPARAM buttons, int x, int y)
{
    PostMessageW(displayWindow, message, buttons, MAKELPARAM(x, y));
    settle();
}

void pressMouse(MouseButton button, int x, int y)
{
    heldButton = button == leftButton ? MK_LBUTTON : MK_RBUTTON;
    sendMouse(button == leftButton ? WM_LBUTTONDOWN : WM_RBUTTONDOWN, heldButton, x, y);
}

void moveMouse(int x, int y)
{
    sendMouse(WM_MOUSEMOVE, heldButton, x, y);
}

void releaseMouse(MouseButton button, int x, int y)
{
    heldButton = 0;
    sendMouse(button == leftButton ? WM_LBUTTONUP : WM_RBUTTONUP, 0, x, y);
}

void turnWheel(int notches)
{
    PostMessageW(displayWindow, WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA), 0);
    settle();
}

static WPARAM codeOf(int key)
{
    switch (key)
    {
    case keyEscape: return VK_ESCAPE;
    case keyHome: return VK_HOME;
    case keyPageUp: return VK_PRIOR;
    case keyPageDown: return VK_NEXT;
    case keyLeft: return VK_LEFT;
    case keyRight: return VK_RIGHT;
    case keyUp: return VK_UP;
    case keyDown: return VK_DOWN;
    case keyF5: return VK_F5;
    case '+': return VK_ADD;
    case '-': return VK_SUBTRACT;
    }
    return static_cast<WPARAM>(key);
}

// The state that the program's thread sees with the messages that it handles next.
static void holdModifiers(uint32_t modifiers)
{
    constexpr BYTE held = 0x80;
    onProgramThread(
        [modifiers]
        {
            BYTE state[256] = {};
            state[VK_CONTROL] = modifiers & withControl ? held : BYTE{ 0 };
            state[VK_SHIFT] = modifiers & withShift ? held : BYTE{ 0 };
            SetKeyboardState(state);
        });
}

// To the control with the focus, as the keyboard does.
void pressKey(int key, uint32_t modifiers)
{
    constexpr LPARAM pressedOnce = 1;
    constexpr auto releasedNow = static_cast<LPARAM>(0xC0000001);
    holdModifiers(modifiers);
    if (HWND focus = focusOfProgram())
    {
        PostMessageW(focus, WM_KEYDOWN, codeOf(key), pressedOnce);
        PostMessageW(focus, WM_KEYUP, codeOf(key), releasedNow);
    }
    settle();
    holdModifiers(0);
}

void dropFiles(const std::vector<std::string>& paths)
{
    std::vector<std::wstring> wide;
    for (const std::string& path : paths)
        wide.push_back(wideFromUtf8(path.c_str()));
    postDrop(wide);
    settle();
}

bool startAgain(const std::string& path)
{
    std::wstring line = L"\"" + programFolder() + L"\\kestrelbox.exe\"";
    if (!path.empty())
        line += L" \"" + wideFromUtf8(path.c_str()) + L"\"";
    bool handed = runProgram(line, currentFolder()) == 0;
    settle();
    return handed;
}

// ---- the window ----

void enlargeWindow(int width, int height)
{
    onProgramThread(
        [=]
        {
            RECT rect;
            GetWindowRect(mainWindow, &rect);
            SetWindowPos(mainWindow, nullptr, 0, 0, rect.right - rect.left + width, rect.bottom - rect.top + height,
                         SWP_NOMOVE | SWP_NOZORDER);
        });
    settle();
}

void minimiseWindow()
{
    onProgramThread([] { ShowWindow(mainWindow, SW_MINIMIZE); });
    settle();
}

void restoreWindow()
{
    onProgramThread([] { ShowWindow(mainWindow, SW_RESTORE); });
    settle();
}

Shown shownPicture()
{
    RECT client;
    GetClientRect(displayWindow, &client);
    Shown shown = { client.right, client.bottom, {} };
    for (uint32_t pixel : screenPixels(displayWindow, client))
        for (int shift : { 0, 8, 16 })
            shown.bytes.push_back(static_cast<uint8_t>(pixel >> shift));
    return shown;
}

// The clipboard has the lowest row first, and rows of whole words.
static Shown shownFromBitmap(const BITMAPINFOHEADER* header)
{
    Shown shown = { header->biWidth, header->biHeight, {} };
    size_t rowBytes = static_cast<size_t>(shown.width) * 3, stride = (rowBytes + 3) / 4 * 4;
    const auto* rows = reinterpret_cast<const uint8_t*>(header + 1);
    for (auto row = static_cast<size_t>(shown.height); row-- > 0;)
        shown.bytes.insert(shown.bytes.end(), rows + row * stride, rows + row * stride + rowBytes);
    return shown;
}

Shown clipboardPicture()
{
    Shown shown = {};
    if (!eventually([] { return OpenClipboard(nullptr) != 0; }))
        return shown;
    HANDLE memory = GetClipboardData(CF_DIB);
    if (const auto* header = memory ? static_cast<const BITMAPINFOHEADER*>(GlobalLock(memory)) : nullptr)
    {
        if (header->biBitCount == 24 && header->biHeight > 0)
            shown = shownFromBitmap(header);
        GlobalUnlock(memory);
    }
    CloseClipboard();
    return shown;
}
